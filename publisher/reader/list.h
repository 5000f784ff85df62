/**
 * @file list.h
 * The decoders that are published on this machine.
 */
#ifndef PUBLISHER_READER_LIST_H
#define PUBLISHER_READER_LIST_H

#include <optional>
#include <string>
#include <vector>

#include "decoder.h"
#include "name.h"

namespace published
{

/** One decoder of a directory. */
struct Listed
{
    std::string name; /**< by the name of its file */
    std::string path;
    Status status;
};

/** What a directory holds. */
struct Listing
{
    std::optional<Status> problem; /**< why the directory cannot be listed: missing, no permission or damaged, with its text */
    std::vector<Listed> decoders;  /**< by name; those that cannot be read are among them */
};

/**
 * The names of the decoders whose files a directory holds, in order, without a look at the files.
 * @param problem why the directory cannot be listed
 */
std::vector<std::string> names(const std::string& directory, std::optional<Status>& problem);

/** Lists a directory. Files that vanish meanwhile are not in it. */
Listing list(const std::string& directory);

} // namespace published

#endif
