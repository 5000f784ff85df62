/**
 * @file text.h
 * How the services write into the caller's buffer. hostsvc.h states the contract that both functions keep.
 */
#ifndef HOSTSVC_TEXT_H
#define HOSTSVC_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
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

/** Writes the text of a value that no table holds: Unknown (<number>). @return szBuffer */
inline char* UnknownText(long long nValue, char* szBuffer, size_t nSize)
{
    snprintf(szBuffer, nSize, "Unknown (%lld)", nValue);
    return szBuffer;
}

} // namespace hostsvc

#endif
