// The whole tool on any command line. The input: the arguments, each ended by a NUL or the input's end.
//
// The tool runs in a folder of its own and names with a slash are left out, so that it neither reads nor writes elsewhere.
// Paths of the fuzzer's own have to be absolute.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "frozen_clock.h"
#include "require.h"
#include "samples.h"

int decstats_main(int argc, char** argv);

static std::filesystem::path scratch;

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    const int nothing = open("/dev/null", O_RDONLY);
    require(nothing >= 0 && dup2(nothing, STDIN_FILENO) == STDIN_FILENO, "standard input is empty");
    require(std::freopen("/dev/null", "w", stdout) != nullptr, "output can be thrown away");

    std::string pattern = std::filesystem::temp_directory_path() / "command-line.XXXXXX";
    require(mkdtemp(pattern.data()) != nullptr, "a folder of its own");
    scratch = pattern;
    std::atexit([] { std::filesystem::remove_all(scratch); });

    // In a folder below it, so that ".." is its own as well.
    std::filesystem::create_directories(scratch / "here" / "out");
    std::filesystem::current_path(scratch / "here");
    std::filesystem::create_symlink(STATS_FILE, "libstats.so");
    static SAMPLES_RECORDS records;
    samples_scenarios[0].pFill(&records, frozen_now);
    std::ofstream("t").write(reinterpret_cast<const char*>(&records.tTDemux), sizeof records.tTDemux);
    return 0;
}

/** A failure is one line, safe for a terminal. */
static void check_message(std::string_view text)
{
    require(text.starts_with("decstats: "), "the line on standard error names the tool");
    require(text.find('\n') == text.size() - 1, "there is one line on standard error");
    for (const char character : text.substr(0, text.size() - 1))
        require(character >= ' ' && character <= '~', "the line on standard error is printable");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    if (rest.find('/') != std::string_view::npos) return 0;

    std::vector<std::string> words = {"decstats"};
    while (!rest.empty())
    {
        words.emplace_back(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(std::min(rest.size(), words.back().size() + 1));
    }
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);

    // The C library's own variable, so that the sanitizers and the fuzzer still have the process's standard error.
    char* text = nullptr;
    size_t length = 0;
    FILE* const processErrors = stderr;
    stderr = open_memstream(&text, &length);
    const int status = decstats_main(static_cast<int>(words.size()), argv.data());
    std::fclose(stderr);
    stderr = processErrors;
    std::fflush(stdout);

    const std::string message(text, length);
    std::free(text);
    require(status >= 0 && status <= 2, "the exit status is one of the tool's");
    if (status == 0)
        require(message.empty(), "a success has nothing on standard error");
    else
        check_message(message);
    return 0;
}
