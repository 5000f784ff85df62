/**
 * @file text_buffer.h
 * A text that is written from its start to its end, fast: room is made once for several pieces.
 */
#ifndef VIEWS_TEXT_BUFFER_H
#define VIEWS_TEXT_BUFFER_H

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace views
{

/** A text as it grows, in a string whose memory it uses. Until this is gone, the string is longer than what is written. */
class TextBuffer
{
public:
    /** @param text what it holds is written over */
    explicit TextBuffer(std::string& text) : text_(text) {}
    ~TextBuffer() { text_.resize(size_); }
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    std::size_t size() const { return size_; }

    /** Makes room at the end. @return where to write: at most size bytes, the end of which is told by written_to() */
    char* room(std::size_t size)
    {
        if (text_.size() - size_ < size) text_.resize(size_ + size + step);
        return text_.data() + size_;
    }
    void written_to(const char* end) { size_ = static_cast<std::size_t>(end - text_.data()); }

    void append(std::string_view piece)
    {
        if (!piece.empty()) written_to(put(room(piece.size()), piece)); // one that is empty may have no address
    }

    /** Takes back what was written since. @param size of the text then */
    void cut(std::size_t size) { size_ = size; }

    /** Copies a piece into room that was made. @return its end */
    static char* put(char* to, std::string_view piece)
    {
        std::memcpy(to, piece.data(), piece.size());
        return to + piece.size();
    }

private:
    // The string fills what it grows by, so this is small; its memory it doubles by itself.
    static constexpr std::size_t step = std::size_t{8} * 1024; // [bytes]

    std::string& text_;
    std::size_t size_ = 0;
};

} // namespace views

#endif
