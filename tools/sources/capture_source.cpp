#include "capture_source.h"

#include <limits>

namespace sources
{

namespace
{

/** Runs something whose failures are those of a capture file. */
template <typename Run> auto as_failure(const Run& run)
{
    try
    {
        return run();
    }
    catch (const capture::Error& error)
    {
        throw failure_of(error);
    }
}

} // namespace

bool is_capture(const std::string& path)
{
    return capture::Reader::is_capture(path);
}

files::Failure failure_of(const capture::Error& error)
{
    const bool is_output = error.problem() != capture::Problem::unreadable && error.problem() != capture::Problem::other_decoder;
    return {is_output ? files::ExitStatus::output_failed : files::ExitStatus::input_failed, error.what()};
}

std::string loss_text(const capture::Loss& loss)
{
    const auto count = [](std::uint64_t number, const char* what) { return std::to_string(number) + what + (number == 1 ? "" : "s"); };
    std::string text = loss.bytes == 0 ? "frames are missing" : count(loss.bytes, " byte") + " cannot be read";
    text += " at offset " + std::to_string(loss.offset);
    if (loss.snapshots != 0) text += ", which costs at least " + count(loss.snapshots, " snapshot");
    return text;
}

records::Snapshot take_captured(const std::string& path, const std::optional<At>& at)
{
    const auto fail = [&path](const std::string& text) -> files::Failure {
        return {files::ExitStatus::input_failed, files::shown(path) + ": " + text};
    };
    if (at && !at->moment) throw fail("a capture file has moments of its own, so none for --at mtime");
    const auto found = as_failure(
        [&]
        {
            capture::Reader reader(path);
            return at ? reader.at(*at->moment) : reader.last();
        });
    if (!found) throw fail(at ? "holds no snapshot of that moment or before" : "holds no snapshot that can be read");
    if (found->loss) files::warn(files::shown(path) + ": what follows the snapshot shown is damaged: " + loss_text(*found->loss));
    return found->snapshot;
}

Captured::Captured(const std::string& path, const Range& range)
    : reader_(as_failure([&path] { return capture::Reader(path); })), path_(path)
{
    constexpr std::int64_t earliest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t latest = std::numeric_limits<std::int64_t>::max();
    if (range.is_given()) as_failure([&] { reader_.select(range.from.value_or(earliest), range.to.value_or(latest)); });
}

std::optional<capture::Event> Captured::next_event()
{
    return as_failure([this] { return reader_.next(); });
}

std::optional<records::Snapshot> Captured::next()
{
    while (const auto event = next_event())
    {
        if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event)) return **snapshot;
        if (const auto* loss = std::get_if<capture::Loss>(&*event)) files::warn(files::shown(path_) + ": " + loss_text(*loss));
    }
    return std::nullopt;
}

} // namespace sources
