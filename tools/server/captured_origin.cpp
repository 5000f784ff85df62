#include <limits>
#include <optional>
#include <sys/stat.h>
#include <utility>

#include "bounds.h"
#include "capture_reader.h"
#include "capture_source.h"
#include "name.h"
#include "origin.h"

namespace server
{

namespace
{

/** Which file a path is: another one takes its place when a capture begins a new file. */
std::pair<dev_t, ino_t> identity(const std::string& path)
{
    struct stat file = {};
    if (stat(path.c_str(), &file) != 0) return {};
    return {file.st_dev, file.st_ino};
}

class CapturedOrigin : public Origin
{
public:
    explicit CapturedOrigin(std::string path) : path_(std::move(path))
    {
        open();
        name_ = last_.decoder;
        if (!published::is_name(name_)) files::fail_input(files::shown(path_) + ": has no name of a decoder to serve it by");
    }

    Sight look() override
    {
        Sight sight = {.listed = {.name = name_, .path = path_, .status = {}}, .state = captured_state, .snapshot = last_};
        sight.looked_at = last_.taken_at;
        published::Status& status = sight.listed.status;
        status.state = published::State::live; // what is listed of a file that can be read
        status.text = problem_;
        status.decoder = last_.decoder;
        status.host = last_.host;
        if (last_.instance) status.instance = *last_.instance;
        for (const records::Component& component : records::components())
            if (last_.has(component)) status.records[component.index] = {published::RecordState::whole, last_.taken_at};
        return sight;
    }

    void follow(const Sight& /*sight*/, const std::function<void(const records::Snapshot&)>& take) override
    {
        try
        {
            if (identity(path_) != identity_) open();
            while (const auto event = reader_->next())
            {
                const auto* snapshot = std::get_if<const records::Snapshot*>(&*event);
                if (snapshot == nullptr) continue;
                take(**snapshot);
                keep(**snapshot);
            }
            problem_.clear();
        }
        catch (const std::exception& error)
        {
            problem_ = error.what();
        }
    }

    std::string capture_file() const override { return path_; }

private:
    /** Opens the file, and goes to the last minutes of it. */
    void open()
    {
        const records::Snapshot last = sources::take_captured(path_, {});
        keep(last);
        reader_.emplace(path_);
        reader_->select(last.taken_at - history_length.count(), std::numeric_limits<std::int64_t>::max());
        identity_ = identity(path_);
    }

    /** What was captured is of another time, whatever the clock says: it is never shown as live. */
    void keep(const records::Snapshot& snapshot)
    {
        last_ = snapshot;
        last_.is_up = false;
    }

    std::string path_;
    std::string name_;
    std::optional<capture::Reader> reader_;
    std::pair<dev_t, ino_t> identity_;
    records::Snapshot last_;
    std::string problem_;
};

} // namespace

std::unique_ptr<Origin> captured_origin(const std::string& path)
{
    return std::make_unique<CapturedOrigin>(path);
}

} // namespace server
