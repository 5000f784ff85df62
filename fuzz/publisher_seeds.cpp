// Writes what the target of the reader of published decoders starts from: files of hosts of this and of other releases.
//
//     publisher_seeds DIRECTORY
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "published_file.h"
#include "scratch_directory.h"
#include "support.h"

namespace
{

std::filesystem::path folder;

void write(const std::string& name, char how, const std::string& bytes)
{
    std::ofstream file(folder / name, std::ios::binary);
    file << how << bytes;
    file.close();
    if (!file) throw std::runtime_error("cannot write " + (folder / name).string());
}

std::string published(const char* sample)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "decoder-1", "host 1.0");
    if (sample != nullptr) publish_all(publisher.get(), sample_records(sample));
    const char* not_measured[] = {"tdemux.state", "audio.pairs[].mode"};
    STATS_PublishNotMeasured(publisher.get(), not_measured, 2, nullptr);
    return content_of(directory / "decoder-1.decstats");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    folder = std::filesystem::path(argv[1]) / "publisher-reader";
    std::filesystem::create_directories(folder);
    const std::string whole = published("trouble");
    for (char how = 0; how < 4; ++how) write("whole." + std::to_string(how), how, whole);
    write("starting", 1, published(nullptr));

    // Small ones, which are quicker to change everywhere: two components, and what other releases have.
    PublishedFile file(whole);
    std::erase_if(file.components, [](const FileComponent& one) { return one.key != "usage" && one.key != "clock_recovery"; });
    for (char how = 0; how < 4; ++how) write("small." + std::to_string(how), how, file.bytes());
    write("wide", 1, file.bytes(16, 8, 8));
    FileComponent& usage = file.component("usage");
    usage.remove("clear_requests");
    usage.insert(16, {.name = "brand_new", .member = "nBrandNew", .offset = 0, .size = 4, .count = 1, .stride = 0, .type = 1}, "new!");
    write("other", 1, file.bytes());
    usage.sequence = 7;
    write("changing", 1, file.bytes());
    write("cut-off", 0, file.bytes());
    file.header.version = 2;
    write("version", 0, file.bytes());
    return 0;
}
