#include "gzip.h"

#include <new>
#include <stdexcept>

#include <zlib.h>

namespace server
{

std::string gzip(std::string_view text)
{
    constexpr int window_bits = 15;
    constexpr int as_gzip = 16;
    z_stream stream = {};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, window_bits + as_gzip, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    std::string compressed(deflateBound(&stream, static_cast<uLong>(text.size())), '\0');
    // The library asks for bytes that may be written and does not write them.
    stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(compressed.data());
    stream.avail_out = static_cast<uInt>(compressed.size());
    const int end = deflate(&stream, Z_FINISH);
    const std::size_t size = stream.total_out;
    deflateEnd(&stream);
    if (end != Z_STREAM_END) throw std::runtime_error("cannot compress an answer");
    compressed.resize(size);
    compressed.shrink_to_fit();
    return compressed;
}

} // namespace server
