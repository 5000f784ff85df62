#include "capture_files.h"

#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "capture_error.h"
#include "capture_reader.h"
#include "number_text.h"

namespace commands
{

namespace
{

/** The moment of a file's first snapshot. */
std::optional<std::int64_t> first_moment(const std::string& path)
{
    capture::Reader reader(path);
    while (const auto event = reader.next())
        if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event)) return (*snapshot)->taken_at;
    return std::nullopt;
}

/** A moment in the basic form of ISO 8601: 20220606T160655Z. */
std::string basic_text(std::int64_t moment)
{
    std::string text;
    views::append_rfc3339(text, moment);
    text.resize(19);
    std::erase_if(text, [](char character) { return character == '-' || character == ':'; });
    return text + "Z";
}

/** A path that nothing has yet. */
std::string filled_path(const std::string& path)
{
    const std::filesystem::path file(path);
    const std::string stem = (file.parent_path() / file.stem()).string() + "-" + basic_text(first_moment(path).value_or(0));
    std::string free = stem + file.extension().string();
    for (int i = 2; std::filesystem::exists(std::filesystem::symlink_status(free)); ++i)
        free = stem + "-" + std::to_string(i) + file.extension().string();
    return free;
}

std::int64_t day_of(std::int64_t moment)
{
    return std::chrono::floor<std::chrono::days>(std::chrono::nanoseconds(moment)).count();
}

} // namespace

std::optional<Rotation> parse_rotation(std::string_view text)
{
    if (text == "day") return Rotation{.each_day = true};
    std::uint64_t size = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size);
    if (error != std::errc() || size == 0) return std::nullopt;
    const std::string_view unit = text.substr(static_cast<std::size_t>(end - text.data()));
    constexpr std::string_view units = "KMG";
    if (unit.empty()) return Rotation{.above = size};
    if (unit.size() != 1 || units.find(unit[0]) == std::string_view::npos) return std::nullopt;
    const std::size_t shift = 10 * (units.find(unit[0]) + 1);
    if (size > ~std::uint64_t{0} >> shift) return std::nullopt;
    return Rotation{.above = size << shift};
}

CaptureFiles::CaptureFiles(const std::string& path, const Rotation& rotation)
    : path_(path), rotation_(rotation), writer_(std::make_unique<capture::Writer>(path))
{
}

bool CaptureFiles::is_filled(std::int64_t moment) const
{
    const auto last = writer_->last_moment();
    return last && (writer_->size() >= rotation_.above || (rotation_.each_day && day_of(moment) != day_of(*last)));
}

/** The file stays locked until it has its other name, so that nobody else captures into it meanwhile. */
void CaptureFiles::put_away()
{
    writer_->finish();
    if (std::rename(path_.c_str(), filled_path(path_).c_str()) != 0) throw system_error(capture::Problem::unwritable, path_, errno);
    filled_ += writer_->size();
    writer_.reset();
}

void CaptureFiles::begin()
try
{
    writer_ = std::make_unique<capture::Writer>(path_);
    if (std::exchange(was_full_, false)) writer_->mark_gap(capture::GapCause::no_space, "");
}
catch (const capture::Error& error)
{
    was_full_ = error.problem() == capture::Problem::full;
    throw;
}

void CaptureFiles::append(const records::Snapshot& snapshot)
{
    if (writer_ && is_filled(snapshot.taken_at)) put_away();
    if (!writer_) begin();
    writer_->append(snapshot);
}

/** Where there is no file, space is missing: that says it all. */
void CaptureFiles::mark_gap(capture::GapCause cause, std::string_view text)
{
    if (writer_) writer_->mark_gap(cause, text);
}

void CaptureFiles::finish()
{
    if (writer_) writer_->finish();
}

} // namespace commands
