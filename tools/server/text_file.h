/**
 * @file text_file.h
 * Small files that are read whole at the start.
 */
#ifndef SERVER_TEXT_FILE_H
#define SERVER_TEXT_FILE_H

#include <string>

namespace server
{

/** Reads a file of 64 KiB at most. @throw Failure if it cannot be read or is larger */
std::string read_text_file(const std::string& path);

} // namespace server

#endif
