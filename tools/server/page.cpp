#include "page.h"

#include <array>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

#include <zlib.h>

#include "gzip.h"
#include "negotiation.h"
#include "page_files.h"

namespace server
{

namespace
{

/** A file of the page, and what is sent of it. */
class PageFile
{
public:
    PageFile(std::string_view path, std::string_view content, std::string_view content_type)
        : path_(path), compressed_(gzip(content)), tag_(tag(content)), plain_response_(make_static_response(content, content_type)),
          compressed_response_(make_static_response(compressed_, content_type, true)), unchanged_(make_static_response({}, content_type))
    {
        for (const Response& response : {plain_response_, compressed_response_, unchanged_}) add_header(response, "ETag", tag_);
    }
    PageFile(const PageFile&) = delete;
    PageFile& operator=(const PageFile&) = delete;

    std::string_view path() const { return path_; }

    Answer answer(const Request& request) const
    {
        if (request.if_none_match.find(tag_) != std::string_view::npos) return {304, unchanged_};
        return {200, accepts_gzip(request.accept_encoding) ? compressed_response_ : plain_response_};
    }

private:
    /** What tells this file from those of other versions. */
    static std::string tag(std::string_view content)
    {
        const uLong sum = crc32_z(0, reinterpret_cast<const Bytef*>(content.data()), content.size());
        return "W/\"" + std::to_string(sum) + "-" + std::to_string(content.size()) + "\"";
    }

    std::string_view path_;
    std::string compressed_;
    std::string tag_;
    Response plain_response_;
    Response compressed_response_;
    Response unchanged_;
};

std::string_view content_type(std::string_view path)
{
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> types = {{{".html", "text/html; charset=utf-8"},
                                                                                     {".css", "text/css; charset=utf-8"},
                                                                                     {".js", "text/javascript; charset=utf-8"},
                                                                                     {".svg", "image/svg+xml"}}};
    for (const auto& [ending, type] : types)
        if (path.ends_with(ending)) return type;
    return "application/octet-stream";
}

/** All files, each under its path; the page itself is found under the root alone. */
const std::deque<PageFile>& served_files()
{
    static const std::deque<PageFile> served = []
    {
        std::deque<PageFile> all;
        for (const EmbeddedFile& file : page_files())
            all.emplace_back(file.path == "/index.html" ? "/" : file.path, *file.content, content_type(file.path));
        return all;
    }();
    return served;
}

} // namespace

Answer page_file(const Request& request)
{
    for (const PageFile& file : served_files())
        if (file.path() == request.path) return file.answer(request);
    return {404, nullptr};
}

} // namespace server
