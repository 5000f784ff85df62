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

Listing list(const std::string& directory)
{
    Listing listing;
    const std::unique_ptr<DIR, CloseDirectory> open(opendir(directory.c_str()));
    if (!open)
    {
        listing.problem = why_not_opened(directory, errno);
        return listing;
    }
    while (const dirent* entry = readdir(open.get()))
    {
        std::string_view name = entry->d_name;
        if (!name.ends_with(suffix)) continue;
        name.remove_suffix(suffix.size());
        if (!is_name(name)) continue;
        Listed listed = {.name = std::string(name), .path = path_of(directory, name), .status = {}};
        listed.status = Decoder(listed.path).status();
        if (listed.status.state != State::missing && listed.status.state != State::closed) listing.decoders.push_back(std::move(listed));
    }
    std::ranges::sort(listing.decoders, {}, &Listed::name);
    return listing;
}

} // namespace published
