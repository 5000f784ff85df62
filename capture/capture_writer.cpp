#include "capture_writer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "bytes.h"
#include "capture_error.h"
#include "capture_reader.h"
#include "component.h"
#include "frames.h"
#include "own_layouts.h"

namespace capture
{

namespace
{

Error write_error(const std::string& path, int number)
{
    const bool is_full = number == ENOSPC || number == EDQUOT || number == EFBIG;
    return system_error(is_full ? Problem::full : Problem::unwritable, path, number);
}

void put_instance(Output& out, const std::optional<records::Instance>& instance)
{
    const records::Instance known = instance.value_or(records::Instance{});
    out.put<std::uint8_t>(instance ? 1 : 0);
    out.put(known.id);
    out.put(known.started_at);
}

bool is_restart(const records::Snapshot& before, const records::Snapshot& after)
{
    return before.instance && after.instance && before.instance != after.instance;
}

bool is_known_alike(const records::Snapshot& one, const records::Snapshot& other)
{
    return one.decoder == other.decoder && one.host == other.host && one.instance == other.instance && one.present == other.present &&
           one.not_measured == other.not_measured;
}

records::Snapshot without_records(const records::Snapshot& snapshot)
{
    records::Snapshot head;
    head.decoder = snapshot.decoder;
    head.host = snapshot.host;
    head.instance = snapshot.instance;
    head.taken_at = snapshot.taken_at;
    head.present = snapshot.present;
    head.not_measured = snapshot.not_measured;
    return head;
}

} // namespace

OwnedFile::OwnedFile(const std::string& path)
{
    while (!open_and_lock(path)) close(descriptor_);
}

OwnedFile::~OwnedFile()
{
    close(descriptor_);
}

/** @return false if the file has lost its name meanwhile, as a capture that begins a new file does to the old one */
bool OwnedFile::open_and_lock(const std::string& path)
{
    descriptor_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
    if (descriptor_ < 0) throw write_error(path, errno);
    const auto fail = [this](const Error& error)
    {
        close(descriptor_);
        throw error;
    };
    struct stat own = {};
    if (fstat(descriptor_, &own) != 0 || !S_ISREG(own.st_mode)) fail(Error(Problem::unwritable, path, "not a regular file"));

    struct flock lock = {};
    lock.l_type = F_WRLCK;
    // Where a file system has no locks, two captures into one file are the only ones to notice.
    if (fcntl(descriptor_, F_OFD_SETLK, &lock) != 0 && (errno == EAGAIN || errno == EACCES))
        fail(Error(Problem::in_use, path, "another process captures into it"));
    struct stat named = {};
    return stat(path.c_str(), &named) == 0 && named.st_dev == own.st_dev && named.st_ino == own.st_ino;
}

bool is_being_written(const std::string& path)
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return false;
    struct flock lock = {};
    lock.l_type = F_RDLCK;
    const bool is_locked = fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    close(descriptor);
    return is_locked;
}

Writer::Writer(const std::string& path) : path_(path), file_(path)
{
    resume();
}

Writer::~Writer()
{
    if (end_ == 0) unlink(path_.c_str()); // nothing came of it
}

/** Finds the end of what an earlier capture has written. */
void Writer::resume()
{
    const FileHeader header = file_header();
    const std::span<const std::byte> expected = std::as_bytes(std::span(&header, 1));
    std::array<std::byte, sizeof header> found = {};
    const ssize_t count = pread(file_.descriptor(), found.data(), found.size(), 0);
    if (count < 0) throw system_error(Problem::unreadable, path_, errno);
    const auto has = static_cast<std::size_t>(count);
    if (has < sizeof header && std::ranges::equal(std::span(found).first(has), expected.first(has)))
    {
        if (has != 0) mark_gap(GapCause::cut_off, "");
    }
    else
    {
        Reader::Remainder before = Reader(path_).remainder();
        known_layouts_.insert(before.layouts.begin(), before.layouts.end());
        if (before.snapshot) last_ = without_records(*before.snapshot);
        mark_gap(before.is_ended ? GapCause::stopped : GapCause::cut_off, "");
        end_ = before.end;
    }
    struct stat status = {};
    const auto end = static_cast<off_t>(end_);
    if (fstat(file_.descriptor(), &status) == 0 && status.st_size == end) return;
    if (ftruncate(file_.descriptor(), end) != 0) throw write_error(path_, errno);
}

std::optional<std::int64_t> Writer::last_moment() const
{
    return last_ ? std::optional(last_->taken_at) : std::nullopt;
}

void Writer::mark_gap(GapCause cause, std::string_view text)
{
    if (!gap_) gap_ = PendingGap{.cause = cause, .text = std::string(text)};
}

bool Writer::needs_whole(const records::Snapshot& snapshot) const
{
    if (!base_crc_ || !last_ || gap_ || !is_known_alike(*last_, snapshot)) return true;
    const bool is_back = snapshot.taken_at < last_->taken_at;
    return is_back || difference(snapshot.taken_at, whole_at_) >= whole_every;
}

/** What happened since the last snapshot. */
void Writer::put_events(const records::Snapshot& snapshot, Output& out)
{
    if (end_ == 0) out.put(file_header());
    if (last_ && snapshot.taken_at < last_->taken_at) mark_gap(GapCause::clock_changed, "");
    if (gap_)
    {
        Output payload;
        payload.put(gap_->cause);
        payload.put(last_ ? last_->taken_at : std::int64_t{0});
        payload.put(snapshot.taken_at);
        payload.put_text(gap_->text);
        put_frame(out, FrameType::gap, payload.bytes());
    }
    if (last_ && is_restart(*last_, snapshot))
    {
        Output payload;
        payload.put(snapshot.taken_at);
        put_instance(payload, last_->instance);
        put_instance(payload, snapshot.instance);
        put_frame(out, FrameType::restart, payload.bytes());
    }
}

/** The layouts that the file lacks, or all again after a while. */
void Writer::put_layouts(const records::Snapshot& snapshot, Output& out)
{
    const bool again = layouts_at_ && difference(snapshot.taken_at, *layouts_at_) >= layouts_every;
    if (again || !layouts_at_) layouts_at_ = snapshot.taken_at;
    for (const records::Component& component : records::components())
    {
        const OwnLayout& layout = own_layouts().at(component.index);
        if (snapshot.has(component) && (again || !known_layouts_.contains(layout.id))) put_frame(out, FrameType::layout, layout.bytes);
    }
}

std::uint32_t Writer::put_whole(const records::Snapshot& snapshot, Output& out)
{
    Output payload;
    payload.put(snapshot.taken_at);
    put_instance(payload, snapshot.instance);
    payload.put_text(snapshot.decoder);
    payload.put_text(snapshot.host);
    payload.put_varint(snapshot.present.count());
    codec_ = {};
    for (const records::Component& component : records::components())
    {
        if (!snapshot.has(component)) continue;
        const OwnLayout& layout = own_layouts().at(component.index);
        payload.put(layout.id);
        std::vector<std::size_t> not_measured;
        for (std::size_t i = 0; i < layout.layout.fields.size(); ++i)
            if (snapshot.not_measured[layout.layout.fields[i]]) not_measured.push_back(i);
        payload.put_varint(not_measured.size());
        std::size_t next = 0;
        for (const std::size_t field : not_measured) payload.put_varint(field - std::exchange(next, field + 1));
        codec_.add(layout.layout, component.offset);
    }
    codec_.encode(std::as_bytes(std::span(&snapshot.records, 1)), true, payload);
    interval_ = 0;
    return put_frame(out, FrameType::whole, payload.bytes());
}

std::uint32_t Writer::put_change(const records::Snapshot& snapshot, Output& out)
{
    Output payload;
    payload.put(*base_crc_);
    const std::int64_t interval = difference(snapshot.taken_at, last_->taken_at);
    payload.put_varint(fold(difference(interval, std::exchange(interval_, interval))));
    codec_.encode(std::as_bytes(std::span(&snapshot.records, 1)), false, payload);
    return put_frame(out, FrameType::change, payload.bytes());
}

void Writer::append(const records::Snapshot& snapshot)
{
    if (last_ && last_->decoder != snapshot.decoder)
        throw Error(Problem::other_decoder, path_,
                    "holds the snapshots of decoder '" + last_->decoder + "', and these are of '" + snapshot.decoder + "'");
    Output out;
    const bool is_whole = needs_whole(snapshot);
    put_events(snapshot, out);
    if (is_whole) put_layouts(snapshot, out);
    const std::uint32_t crc = is_whole ? put_whole(snapshot, out) : put_change(snapshot, out);

    base_crc_.reset(); // unless it is written, nothing can be told from it
    write(out.bytes());
    base_crc_ = crc;
    gap_.reset();
    if (is_whole)
    {
        whole_at_ = snapshot.taken_at;
        for (const records::Component& component : records::components())
            if (snapshot.has(component)) known_layouts_.insert(own_layouts().at(component.index).id);
        last_ = without_records(snapshot);
    }
    else
        last_->taken_at = snapshot.taken_at;
    has_appended_ = true;
}

/** Writes all of it at the end, or nothing. */
void Writer::write(std::span<const std::byte> bytes)
{
    for (std::size_t done = 0; done < bytes.size();)
    {
        const ssize_t count = pwrite(file_.descriptor(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(end_ + done));
        if (count > 0) done += static_cast<std::size_t>(count);
        if (count > 0 || (count < 0 && errno == EINTR)) continue;
        const int error = count == 0 ? ENOSPC : errno;
        // If the file cannot be cut off either, readers take what stands there for a frame that has not been finished.
        if (ftruncate(file_.descriptor(), static_cast<off_t>(end_)) != 0) errno = error;
        if (write_error(path_, error).problem() == Problem::full) mark_gap(GapCause::no_space, "");
        throw write_error(path_, error);
    }
    end_ += bytes.size();
}

void Writer::finish()
{
    if (!has_appended_) return;
    Output payload;
    payload.put(last_->taken_at);
    Output out;
    put_frame(out, FrameType::end, payload.bytes());
    write(out.bytes());
    base_crc_.reset();
    if (fsync(file_.descriptor()) != 0 && errno != EINVAL) throw write_error(path_, errno);
}

} // namespace capture
