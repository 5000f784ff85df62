/**
 * @file parameters.h
 * The parameters behind the question mark of a request. What is wrong with one ends the request with status 400.
 */
#ifndef SERVER_PARAMETERS_H
#define SERVER_PARAMETERS_H

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

#include "dictionary.h"
#include "request.h"
#include "stats.h"

namespace server
{

/** Refuses every parameter but these. @throw Refusal */
void require_known(const Request& request, std::initializer_list<std::string_view> names);

/** Whether a parameter is there. It has no value. @throw Refusal */
bool flag(const Request& request, std::string_view name);

/** The report level that "level" names; the default one without it. @throw Refusal */
STATS_LEVEL level(const Request& request);

/** The component that "component" names. @return NULL = there is no such parameter @throw Refusal */
const records::Component* component(const Request& request);

/** A moment in seconds since the epoch, with a fraction if there is one [ns]; nothing = there is no such parameter. @throw Refusal */
std::optional<std::int64_t> moment(const Request& request, std::string_view name);

/** A field, in an array that of one element. */
struct NamedField
{
    std::string_view name; /**< as the request has it */
    const dictionary::Field* field;
    std::size_t element; /**< 0 outside arrays */
};

/** The fields that "field" names, each time that it stands there. @throw Refusal if there is none, or too many */
std::vector<NamedField> fields(const Request& request);

} // namespace server

#endif
