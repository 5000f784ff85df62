/**
 * @file headers.h
 * The header of a request.
 */
#ifndef SERVER_HEADERS_H
#define SERVER_HEADERS_H

#include <cstddef>
#include <string_view>

struct MHD_Connection;

namespace server
{

/** What a request's header says, as far as anything depends on it. The texts are the connection's. */
struct Headers
{
    explicit Headers(MHD_Connection* connection);

    std::size_t size = 0;  /**< of all lines [bytes] */
    unsigned hosts = 0;    /**< how many lines Host it has */
    bool has_body = false; /**< a body follows */
    std::string_view host;
    std::string_view authorization;
    std::string_view accept;
    std::string_view accept_encoding;
    std::string_view if_none_match;
};

} // namespace server

#endif
