#include "list.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>

#include "why.h"

namespace published
{

namespace
{

struct CloseDirectory
{
    void operator()(DIR* directory) const { closedir(directory); }
};

} // namespace

std::vector<std::string> names(const std::string& directory, std::optional<Status>& problem)
{
    std::vector<std::string> found;
    const std::unique_ptr<DIR, CloseDirectory> open(opendir(directory.c_str()));
    if (!open)
    {
        problem = why_not_opened(directory, errno);
        return found;
    }
    while (const dirent* entry = readdir(open.get()))
    {
        std::string_view name = entry->d_name;
        if (!name.ends_with(suffix)) continue;
        name.remove_suffix(suffix.size());
        if (is_name(name)) found.emplace_back(name);
    }
    std::ranges::sort(found);
    return found;
}

Listing list(const std::string& directory)
{
    Listing listing;
    for (std::string& name : names(directory, listing.problem))
    {
        const std::string path = path_of(directory, name);
        Listed listed = {.name = std::move(name), .path = path, .status = Decoder(path).status()};
        if (listed.status.state != State::missing && listed.status.state != State::closed) listing.decoders.push_back(std::move(listed));
    }
    return listing;
}

} // namespace published
