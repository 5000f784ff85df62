#include "repair.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

#include "bytes.h"
#include "capture_error.h"
#include "capture_format.h"
#include "capture_reader.h"
#include "frames.h"

namespace capture
{

namespace
{

/** A file under a temporary name, until all of it is there. */
class NewFile
{
public:
    explicit NewFile(const std::string& path) : path_(path), temporary_(path + ".XXXXXX")
    {
        struct stat ignored = {};
        if (lstat(path_.c_str(), &ignored) == 0) throw system_error(Problem::unwritable, path_, EEXIST);
        descriptor_ = mkostemp(temporary_.data(), O_CLOEXEC);
        if (descriptor_ < 0) fail();
    }

    ~NewFile()
    {
        close(descriptor_);
        if (!is_kept_) unlink(temporary_.c_str());
    }

    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    void write(std::span<const std::byte> bytes)
    {
        while (!bytes.empty())
        {
            const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
            if (count >= 0)
                bytes = bytes.subspan(static_cast<std::size_t>(count));
            else if (errno != EINTR)
                fail();
        }
    }

    /** Gives it its name, and the mode of any new file. */
    void keep()
    {
        const mode_t mask = umask(0);
        umask(mask);
        if (fchmod(descriptor_, 0666 & ~mask) != 0 || (fsync(descriptor_) != 0 && errno != EINVAL)) fail();
        if (std::rename(temporary_.c_str(), path_.c_str()) != 0) fail();
        is_kept_ = true;
    }

private:
    [[noreturn]] void fail() const { throw system_error(Problem::unwritable, path_, errno); }

    std::string path_;
    std::string temporary_;
    int descriptor_ = -1;
    bool is_kept_ = false;
};

/** The frames of the new file. */
class Copy
{
public:
    Copy(Reader& reader, NewFile& file) : reader_(reader), file_(file) {}

    void take(const Event& event)
    {
        if (const auto* loss = std::get_if<Loss>(&event)) return take_loss(*loss);
        if (const auto* snapshot = std::get_if<const records::Snapshot*>(&event)) take_layouts((*snapshot)->taken_at);
        out_.put_bytes(reader_.frame());
        flush(enough);
    }

    void flush(std::size_t above = 0)
    {
        if (out_.bytes().size() <= above) return;
        file_.write(out_.bytes());
        written_ += out_.bytes().size();
        out_.bytes().clear();
    }

    std::uint64_t written() const { return written_; }

private:
    void take_loss(const Loss& loss)
    {
        Output payload;
        payload.put(GapCause::damaged);
        payload.put(loss.after.value_or(0));
        payload.put(loss.before.value_or(loss.after.value_or(0)));
        payload.put_text("");
        put_frame(out_, FrameType::gap, payload.bytes());
    }

    /** Layouts stand before the first snapshot that needs them, and again as often as in any file. */
    void take_layouts(std::int64_t moment)
    {
        const std::int64_t since = difference(moment, layouts_at_.value_or(moment));
        if (!layouts_at_ || since >= layouts_every || since < 0)
        {
            layouts_.clear();
            layouts_at_ = moment;
        }
        for (const std::uint32_t id : reader_.layouts())
            if (layouts_.insert(id).second) put_frame(out_, FrameType::layout, reader_.find_layout(id).value());
    }

    static constexpr std::size_t enough = 1 << 20;

    Reader& reader_;
    NewFile& file_;
    Output out_;
    std::uint64_t written_ = 0;
    std::set<std::uint32_t> layouts_;
    std::optional<std::int64_t> layouts_at_;
};

} // namespace

Repair repair(const std::string& path, const std::string& new_path)
{
    Reader reader(path);
    NewFile file(new_path);
    const FileHeader header = file_header();
    file.write(std::as_bytes(std::span(&header, 1)));

    Repair result;
    Copy copy(reader, file);
    while (const std::optional<Event> event = reader.next())
    {
        copy.take(*event);
        if (std::holds_alternative<const records::Snapshot*>(*event)) ++result.snapshots;
        if (const auto* loss = std::get_if<Loss>(&*event))
        {
            ++result.losses;
            result.bytes += loss->bytes;
        }
    }
    result.bytes += reader.tail();
    copy.flush();
    file.keep();
    return result;
}

} // namespace capture
