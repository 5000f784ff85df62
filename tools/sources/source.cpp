#include "source.h"

#include <filesystem>
#include <string_view>

#include "capture_source.h"
#include "failure.h"
#include "live.h"
#include "record_files.h"
#include "sample.h"

namespace sources
{

records::Snapshot take(const Source& source, const std::optional<At>& at, const Wanted& wanted)
{
    constexpr std::string_view sample_prefix = "sample:";
    if (source.text.starts_with(sample_prefix))
    {
        if (at && !at->moment) files::fail_input(source.text + ": is no file, so it has no mtime for --at");
        return sample(source.text.substr(sample_prefix.size()), at ? *at->moment : present_moment());
    }
    if (const auto path = find_live(source))
    {
        if (at) files::fail_input(*path + ": a live decoder is shown as it is now; --at is for what is saved");
        return take_live(*path, wanted.as_last_updated);
    }
    if (is_capture(source.text)) return take_captured(source.text, at);
    std::error_code ignored; // what cannot be looked at is opened, and that says why
    if (std::filesystem::is_directory(source.text, ignored))
        return record_directory(source.text, at, wanted.as_last_updated, wanted.components);
    return record_file(nullptr, source.text, at, wanted.as_last_updated);
}

bool is_captured(const Source& source)
{
    return !find_live(source) && is_capture(source.text);
}

} // namespace sources
