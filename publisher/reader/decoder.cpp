#include "decoder.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <span>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "dictionary.h"
#include "slot.h"
#include "why.h"

namespace published
{

namespace
{

using publisher::Attempt;
using publisher::Slot;

// Writing a record takes less than a microsecond, so one of the first attempts falls between two writings; a writer that has
// lost its processor in the middle has it back within milliseconds.
constexpr int quick_attempts = 200;
constexpr int patient_attempts = 20;
constexpr std::chrono::milliseconds pause(1);

constexpr std::int64_t second = 1'000'000'000;

std::int64_t now(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return time.tv_sec * second + time.tv_nsec;
}

/** Whether the process that publishes is alive: its lock is held. A reader's lock, which anyone may take, does not count. */
bool is_locked(int descriptor)
{
    struct flock query = {};
    query.l_type = F_RDLCK;
    query.l_whence = SEEK_SET;
    return fcntl(descriptor, F_OFD_GETLK, &query) == 0 && query.l_type != F_UNLCK;
}

/** A moment out of a file: never negative, so that the time since then can be computed. */
std::int64_t believable(std::uint64_t moment)
{
    return std::max<std::int64_t>(static_cast<std::int64_t>(moment), 0);
}

/** Reads a slot; while its writer is alive, more than once. */
RecordState read_slot(const Slot& slot, bool has_writer, std::int64_t& moment, std::span<std::uint64_t> words)
{
    for (int attempt = 0; attempt < quick_attempts + patient_attempts; ++attempt)
    {
        std::uint64_t written_at = 0;
        switch (publisher::read_slot(slot, written_at, words.data(), words.size()))
        {
        case Attempt::whole: moment = believable(written_at); return RecordState::whole;
        case Attempt::empty: return RecordState::never;
        case Attempt::changing: break;
        }
        if (!has_writer) return RecordState::cut_off;
        if (attempt >= quick_attempts) std::this_thread::sleep_for(pause);
    }
    return RecordState::busy;
}

const Slot& slot_at(const Mapping& mapping, std::size_t offset)
{
    return *reinterpret_cast<const Slot*>(mapping.bytes().data() + offset);
}

std::string in_seconds(std::int64_t nanoseconds)
{
    const std::int64_t tenths = nanoseconds / (second / 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

} // namespace

std::string_view state_name(State state)
{
    constexpr std::string_view names[] = {"live",    "starting",      "hung",          "stale",  "closed",
                                          "missing", "no permission", "other version", "damaged"};
    return names[static_cast<std::size_t>(state)];
}

Decoder::Decoder(const std::string& path) : path_(path)
{
    descriptor_ = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor_ < 0)
    {
        found_ = why_not_opened(path, errno);
        return;
    }
    std::string problem;
    switch (read_contents(descriptor_, contents_, problem))
    {
    case Verdict::good: mapping_ = Mapping(descriptor_, contents_.size); break;
    case Verdict::other_version: found_ = {.state = State::other_version, .text = path + ": " + problem}; return;
    case Verdict::damaged: found_ = {.state = State::damaged, .text = path + ": damaged: " + problem}; return;
    }
    if (mapping_.bytes().empty())
    {
        found_ = {.state = State::damaged, .text = path + ": cannot be mapped: " + std::strerror(errno)};
        return;
    }
    found_ = {.state = State::live,
              .decoder = contents_.decoder,
              .host = contents_.host,
              .instance = contents_.instance,
              .heartbeat_interval = contents_.heartbeat_interval};
}

Decoder::Decoder(Decoder&& other) noexcept
    : path_(std::move(other.path_)), descriptor_(std::exchange(other.descriptor_, -1)), mapping_(std::move(other.mapping_)),
      contents_(std::move(other.contents_)), found_(std::move(other.found_))
{
}

Decoder& Decoder::operator=(Decoder&& other) noexcept
{
    std::swap(path_, other.path_);
    std::swap(descriptor_, other.descriptor_);
    std::swap(mapping_, other.mapping_);
    std::swap(contents_, other.contents_);
    std::swap(found_, other.found_);
    return *this;
}

Decoder::~Decoder()
{
    if (descriptor_ >= 0) close(descriptor_);
}

Status Decoder::status()
{
    return examine(false).status;
}

Look Decoder::look()
{
    return examine(true);
}

Look Decoder::examine(bool with_records)
{
    if (!has_records(found_.state)) return {.status = found_, .snapshot = {}};
    Look look;
    {
        const Reading reading(mapping_);
        look = read(with_records);
    }
    if (!mapping_.has_lost_pages()) return look;
    found_ = {.state = State::damaged, .text = path_ + ": damaged: has become shorter while it was read"};
    return {.status = found_, .snapshot = {}};
}

Look Decoder::read(bool with_records) const
{
    // The lock is asked for first: a writer that is gone by then has written its last word.
    const bool has_writer = is_locked(descriptor_);
    Look look = {.status = found_, .snapshot = {}};
    look.snapshot.decoder = contents_.decoder;
    look.snapshot.host = contents_.host;
    look.snapshot.instance = contents_.instance;
    read_records(look, has_writer, with_records);
    if (with_records) read_not_measured(look.snapshot);
    find_state(look.status, has_writer);

    look.snapshot.taken_at = has_writer ? now(CLOCK_REALTIME) : contents_.instance.started_at;
    for (const RecordStatus& record : look.status.records)
        if (!has_writer && record.state == RecordState::whole)
            look.snapshot.taken_at = std::max(look.snapshot.taken_at, record.published_at);
    return look;
}

void Decoder::read_records(Look& look, bool has_writer, bool with_records) const
{
    std::vector<std::uint64_t> words;
    std::vector<std::byte> own;
    for (const records::Component& component : records::components())
    {
        const Record& record = contents_.records[component.index];
        RecordStatus& status = look.status.records[component.index];
        if (record.slot == 0) continue;
        words.resize(with_records ? publisher::words_of(record.layout.record_size) : 0);
        status.state = read_slot(slot_at(mapping_, record.slot), has_writer, status.published_at, words);
        if (!with_records || status.state != RecordState::whole) continue;

        own.assign(component.record_size, std::byte{0});
        record.layout.convert(std::as_bytes(std::span(words)), own);
        look.snapshot.put(component, own);
        look.snapshot.written_at[component.index] = status.published_at;
        look.snapshot.not_measured |= record.layout.missing;
    }
}

void Decoder::read_not_measured(records::Snapshot& snapshot) const
{
    if (contents_.not_measured_slot == 0) return;
    std::vector<std::uint64_t> bits(contents_.not_measured_words);
    std::int64_t moment = 0;
    // Where its writer is in the middle of it, nothing is known not to be measured yet.
    if (read_slot(slot_at(mapping_, contents_.not_measured_slot), true, moment, bits) != RecordState::whole) return;
    for (const Record& record : contents_.records)
        for (std::size_t i = 0; i < record.layout.fields.size(); ++i)
        {
            const std::size_t bit = record.layout.first_field + i;
            if (record.layout.fields[i] == dictionary::no_field || bit / 64 >= bits.size()) continue;
            if ((bits[bit / 64] >> bit % 64 & 1) != 0) snapshot.not_measured.set(record.layout.fields[i]);
        }
}

void Decoder::find_state(Status& status, bool has_writer) const
{
    if (!has_writer)
    {
        struct stat file = {};
        const bool removed = fstat(descriptor_, &file) == 0 && file.st_nlink == 0;
        status.state = removed ? State::closed : State::stale;
        status.text = path_ + (removed ? ": closed: its host has ended publishing, or another has taken the name"
                                       : ": stale: its host has ended without closing it");
        return;
    }

    std::uint64_t beat_at = 0;
    std::int64_t written_at = 0;
    const RecordState beat = read_slot(slot_at(mapping_, contents_.heartbeat_slot), true, written_at, std::span(&beat_at, 1));
    status.heartbeat_age = hung_after_intervals * contents_.heartbeat_interval + 1; // where it was cut off in the middle
    if (beat == RecordState::whole) status.heartbeat_age = std::max<std::int64_t>(now(CLOCK_MONOTONIC) - believable(beat_at), 0);
    const auto is_published = [](const RecordStatus& record) { return record.state != RecordState::never; };
    if (status.heartbeat_age > hung_after_intervals * contents_.heartbeat_interval)
    {
        status.state = State::hung;
        status.text = path_ + ": hung: no heartbeat for " + in_seconds(status.heartbeat_age) + ", though its host promised one every " +
                      in_seconds(contents_.heartbeat_interval);
    }
    else if (std::ranges::none_of(status.records, is_published))
    {
        status.state = State::starting;
        status.text = path_ + ": still starting: nothing has been published yet";
    }
}

} // namespace published
