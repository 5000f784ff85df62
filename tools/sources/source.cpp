#include "source.h"

#include <filesystem>
#include <string_view>

#include "failure.h"
#include "record_files.h"
#include "sample.h"

namespace sources
{

records::Snapshot take(const std::string& source, const std::optional<At>& at)
{
    constexpr std::string_view sample_prefix = "sample:";
    if (source.starts_with(sample_prefix))
    {
        if (at && !at->moment) throw files::Failure(files::ExitStatus::input_failed, source + ": is no file, so it has no mtime for --at");
        return sample(source.substr(sample_prefix.size()), at ? *at->moment : present_moment());
    }
    std::error_code ignored; // what cannot be looked at is opened, and that says why
    if (std::filesystem::is_directory(source, ignored)) return record_directory(source, at);
    return record_file(nullptr, source, at);
}

} // namespace sources
