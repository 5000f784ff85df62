#include "live.h"

#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

#include "failure.h"
#include "list.h"

namespace sources
{

namespace
{

using published::RecordState;
using published::State;

/** Whether its host is there. */
bool is_alive(const published::Listed& decoder)
{
    const State state = decoder.status.state;
    return state == State::live || state == State::starting || state == State::hung;
}

std::string only_live(const std::string& directory)
{
    const published::Listing listing = published::list(directory);
    if (listing.problem) files::fail_input("no SOURCE, and no live decoder: " + listing.problem->text);
    const auto first = std::ranges::find_if(listing.decoders, is_alive);
    if (first != listing.decoders.end() && std::none_of(first + 1, listing.decoders.end(), is_alive)) return first->path;

    std::string names;
    for (const published::Listed& decoder : listing.decoders)
        names.append(names.empty() ? "" : ", ").append(decoder.name).append(" (").append(state_name(decoder.status.state)).append(")");
    if (names.empty()) files::fail_input("no SOURCE, and no decoder is published in " + files::shown(directory));
    files::fail_input("which SOURCE? In " + files::shown(directory) +
                      (first == listing.decoders.end() ? " none is live: " : " there are ") + names);
}

/** Whether a path is a published file by its name. */
bool is_path_of_decoder(const std::string& path)
{
    std::error_code ignored; // what cannot be looked at is opened, and that says why
    return path.ends_with(published::suffix) && !std::filesystem::is_directory(path, ignored);
}

/** The components whose record is in that state. */
std::string components_in(const published::Status& status, RecordState state)
{
    std::string names;
    for (const records::Component& component : records::components())
        if (status.records[component.index].state == state) names.append(names.empty() ? "" : ", ").append(component.name);
    return names;
}

/** When the last of the records that can be read was published [ns since the epoch, UTC] */
std::int64_t last_published_at(const published::Status& status)
{
    std::int64_t last = status.instance.started_at;
    for (const published::RecordStatus& record : status.records)
        if (record.state == RecordState::whole) last = std::max(last, record.published_at);
    return last;
}

} // namespace

std::optional<std::string> find_live(const Source& source)
{
    const std::string& text = source.text;
    if (text.empty()) return only_live(source.directory);
    std::optional<std::string> as_path = is_path_of_decoder(text) ? std::optional(text) : std::nullopt;
    if (text == "-" || !published::is_name(text)) return as_path;

    // A name, unless it is a file of this directory.
    std::string path = published::path_of(source.directory, text);
    std::error_code ignored;
    const std::filesystem::file_type type = std::filesystem::symlink_status(path, ignored).type();
    const bool is_hidden = type == std::filesystem::file_type::none; // its directory may not be searched
    if (type != std::filesystem::file_type::not_found && !is_hidden) return path;
    if (std::filesystem::exists(text, ignored)) return as_path;
    files::fail_input(is_hidden ? published::Decoder(path).status().text
                                : text + ": neither a decoder in " + files::shown(source.directory) + " nor a file");
}

published::Look LiveDecoder::look()
{
    published::Look look = decoder_.look();
    const State state = look.status.state;
    if (published::has_records(state) && state != State::closed) return look;

    published::Decoder next(path_);
    published::Look newer = next.look();
    if (state == State::closed && !published::has_records(newer.status.state)) return look;
    decoder_ = std::move(next);
    return newer;
}

std::string problem_of(const published::Look& look)
{
    const published::Status& status = look.status;
    std::string text = status.text;
    if (!published::has_records(status.state)) return text;
    const auto add = [&](RecordState state, const std::string& why)
    {
        const std::string components = components_in(status, state);
        if (!components.empty()) text.append(text.empty() ? status.decoder + ": " : "; ").append(why + components);
    };
    add(RecordState::busy, "written too often to be read: ");
    add(RecordState::cut_off, "cut off in the middle of writing: ");
    return text;
}

std::int64_t updated_at(const published::Look& look)
{
    return look.status.state == State::hung ? last_published_at(look.status) : look.snapshot.taken_at;
}

records::Snapshot take_live(const std::string& path, bool as_last_updated)
{
    published::Look look = LiveDecoder(path).look();
    const std::string problem = problem_of(look);
    if (!published::has_records(look.status.state) || look.snapshot.present.none())
        files::fail_input(problem.empty() ? path + ": nothing has been published yet" : problem);
    if (!problem.empty()) files::warn(problem);
    look.snapshot.is_up = look.status.state == State::live;
    if (as_last_updated) look.snapshot.taken_at = updated_at(look);
    return std::move(look.snapshot);
}

} // namespace sources
