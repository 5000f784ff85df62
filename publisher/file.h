/**
 * @file file.h
 * The file of a publisher: created whole under a temporary name, locked, and put in its place at the end.
 */
#ifndef PUBLISHER_FILE_H
#define PUBLISHER_FILE_H

#include <cstddef>

#include "stats_publish.h"

namespace publisher
{

/** An open file. */
struct File
{
    int directory = -1;
    int descriptor = -1;            /**< holds the lock that says "alive" */
    unsigned char* bytes = nullptr; /**< the file, to be written */
    std::size_t size = 0;
    char name[STATS_PUBLISH_MAX_NAME + sizeof STATS_PUBLISH_SUFFIX] = {};
};

/**
 * Creates a file of zeros under a temporary name, which put_in_place() takes away.
 * @param decoder a name that is allowed
 * @return false where it cannot be created, with *error set and nothing left behind
 */
bool create_file(File& file, const char* directory, const char* decoder, std::size_t size, STATS_PUBLISH_ERROR* error);

/** Gives the file its name, unless a living process publishes under it. On failure as create_file. */
bool put_in_place(File& file, const char* directory, STATS_PUBLISH_ERROR* error);

/** Removes the file from its directory if it still stands there. */
void remove_file(const File& file);

/** Lets go of the file, and so of the lock, unless another process has the same descriptor. */
void release_file(File& file);

} // namespace publisher

#endif
