// The reader of capture files. The input is the bytes of a file. Half of the changed inputs get the checks of their frames
// right again, so that what lies behind these is reached.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "capture_error.h"
#include "capture_reader.h"
#include "capture_writer.h"
#include "captured.h"
#include "repair.h"
#include "require.h"

namespace
{

std::string path()
{
    const char* directory = std::getenv("TMPDIR");
    return std::string(directory == nullptr ? "/tmp" : directory) + "/captured." + std::to_string(getpid());
}

std::string new_path()
{
    return path() + ".new";
}

void write_file(const uint8_t* data, size_t size)
{
    static const bool is_cleaned_up = std::atexit([] { unlink(path().c_str()); }) == 0;
    require(is_cleaned_up, "a file that goes away");
    const int file = open(path().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    require(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size), "a file");
    close(file);
}

/** What a file holds. */
struct Contents
{
    std::vector<records::Snapshot> snapshots;
    std::size_t losses = 0;
    std::uint64_t tail = 0;
};

constexpr records::Records zeros = {};

constexpr std::size_t most = 200; // snapshots that are kept to be compared

Contents contents_of(const std::string& name)
{
    Contents held;
    capture::Reader reader(name);
    std::size_t events = 0;
    while (const auto event = reader.next())
    {
        require(++events < 1'000'000, "an end");
        if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event))
        {
            for (const records::Component& component : records::components())
                require((*snapshot)->has(component) ||
                            std::memcmp((*snapshot)->record(component).data(), &zeros, component.record_size) == 0,
                        "a record that is not there is 0");
            if (held.snapshots.size() < most) held.snapshots.push_back(**snapshot);
        }
        held.losses += std::holds_alternative<capture::Loss>(*event);
    }
    held.tail = reader.tail();
    return held;
}

void require_same(const Contents& one, const Contents& other)
{
    require(one.snapshots.size() == other.snapshots.size(), "as many snapshots");
    for (std::size_t i = 0; i < one.snapshots.size(); ++i)
        require(differences(one.snapshots[i], other.snapshots[i]).empty(), "the same snapshot");
}

} // namespace

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size, unsigned seed)
{
    size = LLVMFuzzerMutate(data, size, max_size);
    if (seed % 2 == 0) return size;
    for (size_t offset = sizeof(capture::FileHeader); offset + capture::frame_overhead <= size;)
    {
        uint32_t word = 0;
        std::memcpy(&word, data + offset, sizeof word);
        const size_t length = word & 0xFFFFFF;
        if (length > size - offset - capture::frame_overhead) break;
        const auto bytes = std::as_bytes(std::span(data, size));
        const uint32_t crc =
            capture::crc_of(bytes.subspan(offset + capture::frame_head, length), capture::crc_of(bytes.subspan(offset, sizeof word)));
        std::memcpy(data + offset + sizeof word, &crc, sizeof crc);
        std::memcpy(data + offset + capture::frame_head + length, &word, sizeof word);
        offset += capture::frame_overhead + length;
    }
    return size;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
try
{
    write_file(data, size);
    const Contents held = contents_of(path());

    capture::Reader reader(path());
    const auto last = reader.last();
    require(last || held.snapshots.empty(), "the last snapshot is found where there is one");
    if (!held.snapshots.empty())
    {
        const std::int64_t moment = held.snapshots[held.snapshots.size() / 2].taken_at;
        const auto found = reader.at(moment);
        require(!found || found->snapshot.taken_at <= moment, "not later than asked for");
        reader.select(moment, moment);
        while (const auto event = reader.next())
            if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event)) require((*snapshot)->taken_at == moment, "selected");
    }

    unlink(new_path().c_str());
    capture::repair(path(), new_path());
    const Contents repaired = contents_of(new_path());
    unlink(new_path().c_str());
    require_same(held, repaired);
    require(repaired.losses == 0 && repaired.tail == 0, "a repaired file is whole");

    // A capture goes on there.
    records::Snapshot next;
    if (last) next.decoder = last->snapshot.decoder;
    next.taken_at = 1;
    next.present.set(7);
    const std::size_t before = held.snapshots.size();
    {
        capture::Writer writer(path());
        writer.append(next);
    }
    const Contents longer = contents_of(path());
    require(before == most || longer.snapshots.size() == before + 1, "one snapshot more");
    return 0;
}
catch (const capture::Error& error)
{
    require(error.problem() == capture::Problem::unreadable || error.problem() == capture::Problem::other_decoder, error.what());
    return 0;
}
