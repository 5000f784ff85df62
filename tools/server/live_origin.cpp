#include <utility>

#include "live.h"
#include "moment.h"
#include "origin.h"

namespace server
{

namespace
{

using published::State;

class LiveOrigin : public Origin
{
public:
    LiveOrigin(std::string name, const std::string& path, std::string capture_file)
        : decoder_(path), name_(std::move(name)), path_(path), capture_file_(std::move(capture_file))
    {
        last_.decoder = name_;
    }

    Sight look() override
    {
        published::Look look = decoder_.look();
        const State state = look.status.state;
        Sight sight = {.listed = {.name = name_, .path = path_, .status = {}}, .state = published::state_name(state), .snapshot = {}};
        sight.is_listed = state != State::missing && state != State::closed;
        sight.looked_at = sources::present_moment();
        if (published::has_records(state))
        {
            const std::int64_t updated = sources::updated_at(look);
            sight.looked_at = look.snapshot.taken_at;
            std::string problem = sources::problem_of(look);
            last_ = std::move(look.snapshot);
            last_.taken_at = updated;
            look.status.text = std::move(problem);
        }
        last_.is_up = state == State::live;
        sight.listed.status = std::move(look.status);
        sight.snapshot = last_;
        return sight;
    }

    void follow(const Sight& sight, const std::function<void(const records::Snapshot&)>& take) override
    {
        const State state = sight.listed.status.state;
        if ((state != State::live && state != State::hung) || sight.snapshot.present.none()) return;
        records::Snapshot snapshot = sight.snapshot;
        snapshot.taken_at = sight.looked_at; // the host has the same records now
        take(snapshot);
    }

    std::string capture_file() const override { return capture_file_; }

private:
    sources::LiveDecoder decoder_;
    std::string name_;
    std::string path_;
    std::string capture_file_;
    records::Snapshot last_; // what was last seen of it
};

} // namespace

std::unique_ptr<Origin> live_origin(const std::string& name, const std::string& path, const std::string& capture_file)
{
    return std::make_unique<LiveOrigin>(name, path, capture_file);
}

} // namespace server
