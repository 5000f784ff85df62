#include "record_files.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "failure.h"
#include "input_file.h"
#include "output_set.h"

namespace sources
{

namespace
{

std::string count_of_bytes(std::uint64_t count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

/** The size in words of a file of which count bytes were read, limit at most. */
std::string found_size(std::size_t count, std::size_t limit, std::optional<std::uint64_t> size)
{
    if (count <= limit) return count_of_bytes(count);
    return size > limit ? count_of_bytes(*size) : "more than " + count_of_bytes(limit);
}

std::string described(const records::Component& component)
{
    return (component.name.starts_with('a') ? "an " : "a ") + std::string(component.name) + " record";
}

std::size_t largest_record()
{
    return std::ranges::max_element(records::components(), {}, &records::Component::record_size)->record_size;
}

std::int64_t moment_of(const files::InputFile& file, const std::optional<At>& at, bool as_written)
{
    if (!at) return as_written ? file.modified_at().value_or(present_moment()) : present_moment();
    if (at->moment) return *at->moment;
    const auto written = file.modified_at();
    if (!written) files::fail_input(file.name() + ": is not a regular file, so it has no mtime for --at");
    return *written;
}

/** Whether a file of a directory has one of these components, by its name, or else by its size. */
bool has_any(const std::filesystem::path& file, std::bitset<records::component_count> components)
{
    const records::Component* component = records::find_component(file.stem().string());
    std::error_code ignored; // what has no size is no record
    if (component == nullptr) component = records::find_component_of_size(std::filesystem::file_size(file, ignored));
    return component != nullptr && components[component->index];
}

/** Whether a path leads to a directory, a FIFO or another thing whose bytes are not those of a file. What is not there is no such thing. */
bool is_other_than_file(const std::filesystem::path& path)
{
    std::error_code ignored; // what cannot be looked at is opened, and that says why
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

} // namespace

records::Snapshot record_file(const records::Component* component, const std::string& path, const std::optional<At>& at, bool as_written)
{
    files::InputFile file(path);
    const std::optional<std::uint64_t> size = file.remaining();

    // One byte more than a record shows a file that is too long, without reading all of it.
    const std::size_t limit = component != nullptr ? component->record_size : largest_record();
    std::vector<std::byte> bytes(limit + 1);
    const std::size_t count = file.read(bytes);

    const records::Component* const found = records::find_component_of_size(count);
    if (component != nullptr && found != component)
        files::fail_input(file.name() + ": " + found_size(count, limit, size) + ", but " + described(*component) + " has " +
                          std::to_string(limit));
    if (found == nullptr) files::fail_input(file.name() + ": " + found_size(count, limit, size) + ", which is the size of no record");

    records::Snapshot snapshot;
    snapshot.taken_at = moment_of(file, at, as_written);
    snapshot.put(*found, std::span(bytes).first(count));
    return snapshot;
}

records::Snapshot record_directory(const std::string& path, const std::optional<At>& at, bool as_written,
                                   std::bitset<records::component_count> components)
{
    std::error_code error;
    std::vector<std::filesystem::path> paths;
    for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error))
        if (entry->path().extension() == ".rec" && !entry->path().filename().string().starts_with('.')) paths.push_back(entry->path());
    if (error) files::fail_input(files::shown(path) + ": " + error.message());
    if (paths.empty()) files::fail_input(files::shown(path) + ": no record file, *.rec");
    std::ranges::sort(paths);

    records::Snapshot all;
    for (const std::filesystem::path& file : paths)
    {
        if (components.any() && !has_any(file, components)) continue;
        if (is_other_than_file(file)) files::fail_input(file.string() + ": is not a regular file, so it is no record");
        const records::Snapshot one = record_file(records::find_component(file.stem().string()), file.string(), at, as_written);
        for (const records::Component& component : records::components())
        {
            if (!one.has(component)) continue;
            if (all.has(component)) files::fail_input(file.string() + ": " + described(component) + ", of which the directory has another");
            all.put(component, one.record(component));
        }
        all.taken_at = std::max(all.taken_at, one.taken_at);
    }
    return all;
}

void write_record_files(const records::Snapshot& snapshot, const std::string& directory)
{
    const files::LockedDirectory locked(directory);
    std::vector<files::OutputFile> set;
    for (const records::Component& component : records::components())
        if (snapshot.has(component)) set.push_back({std::string(component.name) + ".rec", snapshot.record(component)});
    files::write_set(locked, set);
}

} // namespace sources
