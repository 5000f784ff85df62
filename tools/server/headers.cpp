#include "headers.h"

#include <strings.h>

#include <microhttpd.h>

namespace server
{

namespace
{

bool is_called(std::string_view name, std::string_view known)
{
    return name.size() == known.size() && strncasecmp(name.data(), known.data(), known.size()) == 0;
}

MHD_Result take(void* headers, MHD_ValueKind /*kind*/, const char* key, std::size_t key_size, const char* value, std::size_t value_size)
{
    Headers& all = *static_cast<Headers*>(headers);
    const std::string_view name(key, key_size);
    const std::string_view text = value == nullptr ? std::string_view() : std::string_view(value, value_size);
    constexpr std::size_t separators = 4; // ": " and the line's end
    all.size += name.size() + text.size() + separators;
    if (is_called(name, MHD_HTTP_HEADER_HOST))
    {
        all.host = text;
        ++all.hosts;
    }
    if (is_called(name, MHD_HTTP_HEADER_AUTHORIZATION)) all.authorization = text;
    if (is_called(name, MHD_HTTP_HEADER_ACCEPT)) all.accept = text;
    if (is_called(name, MHD_HTTP_HEADER_ACCEPT_ENCODING)) all.accept_encoding = text;
    if (is_called(name, MHD_HTTP_HEADER_IF_NONE_MATCH)) all.if_none_match = text;
    if (is_called(name, MHD_HTTP_HEADER_CONTENT_LENGTH) && text != "0") all.has_body = true;
    if (is_called(name, MHD_HTTP_HEADER_TRANSFER_ENCODING)) all.has_body = true;
    return MHD_YES;
}

} // namespace

Headers::Headers(MHD_Connection* connection)
{
    MHD_get_connection_values_n(connection, MHD_HEADER_KIND, &take, this);
}

} // namespace server
