#include "why.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace published
{

namespace
{

/** What decides about permission: "owner 0, group 4, mode 0640; this process is user 1000". */
std::string permissions_of(const std::string& path)
{
    struct stat file = {};
    std::array<char, 160> text = {};
    if (stat(path.c_str(), &file) == 0)
        std::snprintf(text.data(), text.size(), "owner %u, group %u, mode %04o; this process is user %u", file.st_uid, file.st_gid,
                      file.st_mode & 07777U, geteuid());
    else
        std::snprintf(text.data(), text.size(), "its directory cannot be searched; this process is user %u", geteuid());
    return text.data();
}

} // namespace

Status why_not_opened(const std::string& path, int number)
{
    switch (number)
    {
    case ENOENT:
    case ENOTDIR: return {.state = State::missing, .text = path + ": " + std::strerror(number)};
    case EACCES:
    case EPERM: return {.state = State::no_permission, .text = path + ": no permission: " + permissions_of(path)};
    case ELOOP: return {.state = State::damaged, .text = path + ": damaged: a symbolic link, not a published decoder"};
    default: return {.state = State::damaged, .text = path + ": " + std::strerror(number)};
    }
}

} // namespace published
