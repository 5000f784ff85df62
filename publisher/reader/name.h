/**
 * @file name.h
 * The names of decoders and of their files.
 */
#ifndef PUBLISHER_READER_NAME_H
#define PUBLISHER_READER_NAME_H

#include <string>
#include <string_view>

#include "stats_publish.h"

namespace published
{

/** Where hosts publish unless they were told otherwise. */
inline constexpr std::string_view default_directory = STATS_PUBLISH_DIRECTORY;

/** Ends the name of every decoder's file. */
inline constexpr std::string_view suffix = STATS_PUBLISH_SUFFIX;

/** Whether a text may be the name of a decoder: 1 to 64 of A-Z a-z 0-9 . _ -, the first no full stop. */
inline bool is_name(std::string_view text)
{
    constexpr std::string_view allowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
    return !text.empty() && text.size() <= STATS_PUBLISH_MAX_NAME && text.find_first_not_of(allowed) == text.npos && text[0] != '.';
}

/** The file of a decoder. @param name one that is_name() allows */
inline std::string path_of(std::string_view directory, std::string_view name)
{
    return std::string(directory).append("/").append(name).append(suffix);
}

} // namespace published

#endif
