#include "error.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace publisher
{

namespace
{

STATS_PUBLISH_CODE code_of(int number)
{
    switch (number)
    {
    case ENOENT:
    case ENOTDIR: return STATS_PUBLISH_NO_DIRECTORY;
    case EACCES:
    case EPERM:
    case EROFS: return STATS_PUBLISH_NO_PERMISSION;
    case ENOSPC:
    case EDQUOT: return STATS_PUBLISH_NO_SPACE;
    default: return STATS_PUBLISH_SYSTEM;
    }
}

} // namespace

void set_error(STATS_PUBLISH_ERROR* error, STATS_PUBLISH_CODE code, const char* format, ...)
{
    if (error == nullptr) return;
    std::memset(error, 0, sizeof *error);
    error->enCode = code;
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(error->szText, sizeof error->szText, format, arguments);
    va_end(arguments);
}

void set_system_error(STATS_PUBLISH_ERROR* error, int number, const char* format, ...)
{
    if (error == nullptr) return;
    std::memset(error, 0, sizeof *error);
    error->enCode = code_of(number);
    error->nErrno = number;
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(error->szText, sizeof error->szText, format, arguments);
    va_end(arguments);

    const std::size_t length = std::strlen(error->szText);
    const char* description = strerrordesc_np(number); // in English whatever the locale, and from any thread
    std::snprintf(error->szText + length, sizeof error->szText - length, ": %s", description != nullptr ? description : "unknown error");
}

} // namespace publisher
