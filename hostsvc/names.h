/**
 * @file names.h
 * Tables of names and the lookup in them.
 */
#ifndef HOSTSVC_NAMES_H
#define HOSTSVC_NAMES_H

#include "text.h"

namespace hostsvc
{

/** One row of a table: a value and what an operator calls it. */
struct Name
{
    int nValue;
    std::string_view text;
};

/** Finds the text of a value. @return the text, empty if the table does not hold the value */
template <size_t nNames> constexpr std::string_view FindName(const Name (&names)[nNames], int nValue)
{
    for (const Name& name : names)
    {
        if (name.nValue == nValue) return name.text;
    }
    return {};
}

/** Writes the text of a value, Unknown (<number>) if the table does not hold it. @return szBuffer */
template <size_t nNames> char* NameText(const Name (&names)[nNames], int nValue, char* szBuffer, size_t nSize)
{
    const std::string_view text = FindName(names, nValue);
    return text.empty() ? UnknownText(nValue, szBuffer, nSize) : CopyText(text, szBuffer, nSize);
}

} // namespace hostsvc

#endif
