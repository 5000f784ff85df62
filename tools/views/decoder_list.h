/**
 * @file decoder_list.h
 * The live decoders of a directory, and how they stand.
 */
#ifndef VIEWS_DECODER_LIST_H
#define VIEWS_DECODER_LIST_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "list.h"

namespace views
{

/**
 * The decoders for people: a line with name, state, start, instance and host, and below it what is wrong and how old the last
 * record of each component is.
 * @param now the moment that ages count to [ns since the epoch, UTC]
 */
std::string decoder_lines(const published::Listing& listing, std::int64_t now);

/** The same as one line of JSON. @param directory what was listed @return without the newline at its end */
std::string decoders_json(const published::Listing& listing, const std::string& directory, std::int64_t now);

/** The verdict about a decoder, as far as a list tells it. */
struct ListedVerdict
{
    std::string_view state; /**< the word of the state */
    std::string headline;
};

/** A decoder as someone lists it who knows more kinds than those that are published, and what is wrong with them. */
struct NamedDecoder
{
    const published::Listed* decoder;
    std::string_view state;                    /**< the word of its state */
    std::optional<ListedVerdict> verdict = {}; /**< nothing = the list has none */
};

/** The same of such decoders. */
std::string decoders_json(std::span<const NamedDecoder> decoders, const std::string& directory, std::int64_t now);

} // namespace views

#endif
