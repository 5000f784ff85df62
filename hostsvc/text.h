/**
 * @file text.h
 * How the services write into the caller's buffer. hostsvc.h states the contract that CopyText and BuildText keep.
 */
#ifndef HOSTSVC_TEXT_H
#define HOSTSVC_TEXT_H

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string_view>

namespace hostsvc
{

/** Writes text, cut to nSize - 1 characters, and its NUL. With nSize 0 nothing is written. @return szBuffer */
inline char* CopyText(std::string_view text, char* szBuffer, size_t nSize)
{
    if (nSize == 0) return szBuffer;
    const size_t nLength = std::min(text.size(), nSize - 1);
    std::memcpy(szBuffer, text.data(), nLength);
    szBuffer[nLength] = '\0';
    return szBuffer;
}

/** Most characters that AppendNumber writes: 20 digits, or a sign and 19 digits. */
inline constexpr size_t NUMBER_LENGTH = std::numeric_limits<unsigned long long>::digits10 + 1;

/** Writes text behind what a BuildText writer has written so far. @return the new end */
inline char* Append(char* pEnd, std::string_view text)
{
    std::memcpy(pEnd, text.data(), text.size());
    return pEnd + text.size();
}

/** Writes the decimal digits of an integer behind what a BuildText writer has written so far. @return the new end */
template <typename Integer> char* AppendNumber(char* pEnd, Integer nValue)
{
    return std::to_chars(pEnd, pEnd + NUMBER_LENGTH, nValue).ptr;
}

/** BuildText for a buffer that may be too small. Apart, so that the usual way has no local buffer to make room for. */
template <size_t nMaxLength, typename Writer> [[gnu::noinline]] char* BuildCutText(char* szBuffer, size_t nSize, Writer write)
{
    char text[nMaxLength];
    const char* pEnd = write(text);
    return CopyText({text, static_cast<size_t>(pEnd - text)}, szBuffer, nSize);
}

/**
 * Writes the text that write makes: straight into a buffer that is sure to hold it, else by way of a local one.
 * @tparam nMaxLength most characters that write makes
 * @param write writes the text, without a NUL, to the place that it is given and returns the text's end
 * @return szBuffer
 */
template <size_t nMaxLength, typename Writer> char* BuildText(char* szBuffer, size_t nSize, Writer write)
{
    if (nSize <= nMaxLength) return BuildCutText<nMaxLength>(szBuffer, nSize, write);
    *write(szBuffer) = '\0';
    return szBuffer;
}

/** Writes the text of a value that no table holds: Unknown (<number>). @return szBuffer */
inline char* UnknownText(long long nValue, char* szBuffer, size_t nSize)
{
    constexpr std::string_view PREFIX = "Unknown (";
    return BuildText<PREFIX.size() + NUMBER_LENGTH + 1>(
        szBuffer, nSize, [=](char* pEnd) { return Append(AppendNumber(Append(pEnd, PREFIX), nValue), ")"); });
}

} // namespace hostsvc

#endif
