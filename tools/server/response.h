/**
 * @file response.h
 * What is sent to a client.
 */
#ifndef SERVER_RESPONSE_H
#define SERVER_RESPONSE_H

#include <memory>
#include <string>
#include <string_view>

struct MHD_Response;

namespace server
{

/** The body of an answer with its headers. It may be sent any number of times, by several threads at a time. */
using Response = std::shared_ptr<MHD_Response>;

/** A response with a status of HTTP. */
struct Answer
{
    unsigned status;
    Response response;
};

inline constexpr std::string_view json_content_type = "application/json";
inline constexpr std::string_view text_content_type = "text/plain; charset=us-ascii";

/** How long an answer may be kept by whoever receives it. */
enum class Caching
{
    none,       /**< not at all: it is of this moment */
    revalidate, /**< until the next question whether it is still the same */
};

/** Makes a response with the headers that all answers have. @param gzip the body is compressed already */
Response make_response(std::shared_ptr<const std::string> body, std::string_view content_type, bool gzip = false,
                       Caching caching = Caching::none);
Response make_response(std::string body, std::string_view content_type, bool gzip = false, Caching caching = Caching::none);

/** Makes a response whose body outlives it. */
Response make_static_response(std::string_view body, std::string_view content_type, bool gzip = false);

/** Adds a header. @param value without line ends */
void add_header(const Response& response, const char* name, const std::string& value);

/** The answer to a request that is refused: {"error": text}. */
Answer refuse(unsigned status, std::string_view text);

} // namespace server

#endif
