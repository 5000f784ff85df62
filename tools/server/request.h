/**
 * @file request.h
 * What a client asks for.
 */
#ifndef SERVER_REQUEST_H
#define SERVER_REQUEST_H

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace server
{

/** A GET or HEAD, with what the answer depends on. The texts live as long as the request. */
struct Request
{
    std::string_view path;                                            /**< percent signs decoded; any bytes but NUL */
    std::vector<std::pair<std::string_view, std::string_view>> query; /**< its parameters in order, decoded */
    std::string_view accept;                                          /**< the header Accept; empty = none */
    std::string_view accept_encoding;                                 /**< the header Accept-Encoding; empty = none */
    std::string_view if_none_match;                                   /**< the header If-None-Match; empty = none */
};

} // namespace server

#endif
