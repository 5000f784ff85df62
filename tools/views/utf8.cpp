#include "utf8.h"

#include <algorithm>
#include <cstddef>

namespace views
{

namespace
{

/** What stands at the start of a text. */
struct Piece
{
    std::size_t size; // [bytes]
    bool valid;
};

/** The first character, or the longest start of one (Unicode, table 3-7). @param text not empty */
Piece first_piece(std::string_view text)
{
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    if (lead < 0x80) return {1, true};

    std::size_t size = 0;
    unsigned least = 0x80; // of the second byte: no overlong forms, no surrogates, nothing above U+10FFFF
    unsigned most = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF)
        size = 2;
    else if (lead >= 0xE0 && lead <= 0xEF)
    {
        size = 3;
        if (lead == 0xE0) least = 0xA0;
        if (lead == 0xED) most = 0x9F;
    }
    else if (lead >= 0xF0 && lead <= 0xF4)
    {
        size = 4;
        if (lead == 0xF0) least = 0x90;
        if (lead == 0xF4) most = 0x8F;
    }
    else
        return {1, false};

    for (std::size_t i = 1; i < size; ++i, least = 0x80, most = 0xBF)
        if (i == text.size() || byte(i) < least || byte(i) > most) return {i, false};
    return {size, true};
}

} // namespace

std::string valid_utf8(std::string_view text)
{
    std::string valid;
    valid.reserve(text.size());
    while (!text.empty())
    {
        const auto ascii_end = std::ranges::find_if(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
        valid.append(text.begin(), ascii_end);
        text.remove_prefix(static_cast<std::size_t>(ascii_end - text.begin()));
        if (text.empty()) break;

        const Piece piece = first_piece(text);
        valid += piece.valid ? text.substr(0, piece.size) : "\xEF\xBF\xBD";
        text.remove_prefix(piece.size);
    }
    return valid;
}

} // namespace views
