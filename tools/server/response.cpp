#include "response.h"

#include <new>
#include <utility>

#include <microhttpd.h>

#include "json_writer.h"
#include "utf8.h"

namespace server
{

namespace
{

Response owned(MHD_Response* response)
{
    if (response == nullptr) throw std::bad_alloc();
    return {response, MHD_destroy_response};
}

/** Nothing but what this server sends may run in a page of it, and no other page may read or frame any of it. */
void add_usual_headers(const Response& response, std::string_view content_type, bool gzip, Caching caching)
{
    add_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, std::string(content_type));
    add_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, caching == Caching::none ? "no-store" : "no-cache");
    add_header(response, MHD_HTTP_HEADER_CONTENT_SECURITY_POLICY,
               "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; base-uri 'none'; "
               "form-action 'none'; frame-ancestors 'none'");
    add_header(response, MHD_HTTP_HEADER_X_CONTENT_TYPE_OPTIONS, "nosniff");
    add_header(response, "Referrer-Policy", "no-referrer");
    add_header(response, "Cross-Origin-Resource-Policy", "same-origin");
    add_header(response, MHD_HTTP_HEADER_VARY, "Accept, Accept-Encoding");
    if (gzip) add_header(response, MHD_HTTP_HEADER_CONTENT_ENCODING, "gzip");
}

} // namespace

Response make_response(std::shared_ptr<const std::string> body, std::string_view content_type, bool gzip, Caching caching)
{
    using Body = std::shared_ptr<const std::string>;
    auto kept = std::make_unique<Body>(std::move(body));
    // The library asks for a buffer that may be written and does not write.
    Response made = owned(MHD_create_response_from_buffer_with_free_callback_cls(
        (*kept)->size(), const_cast<char*>((*kept)->data()), [](void* text) { delete static_cast<Body*>(text); }, kept.get()));
    static_cast<void>(kept.release()); // the response's
    add_usual_headers(made, content_type, gzip, caching);
    return made;
}

Response make_response(std::string body, std::string_view content_type, bool gzip, Caching caching)
{
    return make_response(std::make_shared<const std::string>(std::move(body)), content_type, gzip, caching);
}

Response make_static_response(std::string_view body, std::string_view content_type, bool gzip)
{
    Response made = owned(MHD_create_response_from_buffer(body.size(), const_cast<char*>(body.data()), MHD_RESPMEM_PERSISTENT));
    add_usual_headers(made, content_type, gzip, Caching::revalidate);
    return made;
}

void add_header(const Response& response, const char* name, const std::string& value)
{
    if (MHD_add_response_header(response.get(), name, value.c_str()) != MHD_YES) throw std::bad_alloc();
}

Answer refuse(unsigned status, std::string_view text)
{
    views::JsonWriter writer;
    writer.start_object();
    writer.member("error", views::valid_utf8(text));
    writer.end_object();
    Answer answer = {status, make_response(writer.str() + "\n", json_content_type)};
    if (status == MHD_HTTP_METHOD_NOT_ALLOWED) add_header(answer.response, MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
    if (status == MHD_HTTP_UNAUTHORIZED)
    {
        add_header(answer.response, MHD_HTTP_HEADER_WWW_AUTHENTICATE, "Bearer");
        add_header(answer.response, MHD_HTTP_HEADER_WWW_AUTHENTICATE, "Basic realm=\"decstats\", charset=\"UTF-8\"");
    }
    if (status == MHD_HTTP_SERVICE_UNAVAILABLE) add_header(answer.response, MHD_HTTP_HEADER_RETRY_AFTER, "1");
    return answer;
}

} // namespace server
