/**
 * @file gzip.h
 * Bodies made smaller (RFC 1952).
 */
#ifndef SERVER_GZIP_H
#define SERVER_GZIP_H

#include <string>
#include <string_view>

namespace server
{

/** Compresses a text, quickly rather than well. */
std::string gzip(std::string_view text);

} // namespace server

#endif
