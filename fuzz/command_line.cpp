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

#include "command_line.h"
#include "failure.h"
#include "require.h"
#include "sample.h"

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
    const records::Component& tdemux = *records::find_component("tdemux");
    const records::Snapshot snapshot = sources::sample("live-srt-1080i", 1'654'531'615'000'000'000);
    std::ofstream("t").write(reinterpret_cast<const char*>(snapshot.record(tdemux).data()),
                             static_cast<std::streamsize>(tdemux.record_size));
    return 0;
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

    try
    {
        commands::run(static_cast<int>(words.size()), argv.data(), [] {});
    }
    catch (const files::Failure& failure)
    {
        const std::string_view message = failure.what();
        require(!message.empty(), "a failure says something");
        require(std::ranges::all_of(message, [](char character) { return character >= ' ' && character <= '~'; }),
                "what it says is one line, safe for a terminal");
    }
    std::fflush(stdout);
    return 0;
}
