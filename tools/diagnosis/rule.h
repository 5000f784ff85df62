/**
 * @file rule.h
 * What a rule is: what it looks for, why its limits are as they are, and what to do.
 */
#ifndef DIAGNOSIS_RULE_H
#define DIAGNOSIS_RULE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chain.h"
#include "window.h"

namespace diagnosis
{

/** What a finding does, after the three priorities of ETSI TR 101 290: decodability, continuity, application. */
enum class Severity : std::uint8_t
{
    critical, /**< picture or sound is gone */
    warning,  /**< it comes with faults, or may go at any time */
    note,     /**< worth knowing: nothing is lost */
};

/** The word of a severity: "critical". */
std::string_view severity_id(Severity severity);

/** What a fault does to what lies behind it. Bits. */
enum Effect : std::uint8_t
{
    no_effect = 0,
    stops = 1,  /**< nothing comes any more */
    loses = 2,  /**< parts are missing or damaged */
    delays = 4, /**< what comes, comes late or unevenly */
};

/** A field that a finding rests on. */
struct Evidence
{
    const Reading* reading;
    std::size_t element;
};

/** What a rule has found. Empty as long as it has found nothing. */
class Hit
{
public:
    /** Adds a field as evidence. */
    Hit& show(const Reading& reading, std::size_t element = 0)
    {
        evidence.push_back({&reading, element});
        return *this;
    }
    /** Tells when it began. @param age how long ago; nothing = not known [s] */
    Hit& since(std::optional<std::int64_t> age)
    {
        began_ago = age;
        return *this;
    }
    /** Says what the title leaves open. */
    Hit& say(std::string text)
    {
        detail = std::move(text);
        return *this;
    }
    /** Makes it weigh more or less than the rule says. */
    Hit& weigh(Severity changed)
    {
        severity = changed;
        return *this;
    }
    /** Says that it is found. */
    bool found() { return is_found = true; }

    std::vector<Evidence> evidence;
    std::optional<std::int64_t> began_ago;
    std::string detail;
    std::optional<Severity> severity;
    bool is_found = false;
};

/** A rule. */
struct Rule
{
    std::string_view id;               /**< stable: link.loss */
    Stage stage;                       /**< where the fault is */
    Severity severity;                 /**< by what it does */
    std::string_view title;            /**< what is wrong, one line without a final stop */
    std::string_view when;             /**< what it takes to be found, limits included */
    std::string_view reason;           /**< why the limits are as they are */
    std::string_view remedy;           /**< what to do now */
    bool needs_window;                 /**< one moment is not enough */
    double shortest_window = 0;        /**< within less it cannot be looked for [s] */
    std::uint8_t causes;               /**< what it does to what lies behind, Effect bits */
    std::uint8_t follows;              /**< the effects of earlier faults that explain it, Effect bits */
    std::vector<const Reading*> reads; /**< every field that it looks at */
    bool (*test)(const Window& window, Hit& hit);
};

/** The rules of one stage, the most telling first: an earlier one explains a later one of the same stage. */
using Rules = std::vector<Rule>;

const Rules& host_rules();
const Rules& network_rules();
const Rules& link_rules();
const Rules& ts_rules();
const Rules& clock_rules();
const Rules& buffering_rules();
const Rules& framer_rules();
const Rules& vdecoder_rules();
const Rules& output_rules();
const Rules& audio_rules();
const Rules& metadata_rules();

/** All rules, causes first. */
const std::vector<const Rule*>& rules();

/** Finds a rule. @return the rule, or NULL if there is none of that id */
const Rule* find_rule(std::string_view id);

/** A share of packets or pictures that is worth a finding: a few of them, and more than a part in a thousand or so. */
struct Limit
{
    std::int64_t least;      /**< at least so many */
    std::int64_t of_million; /**< and more than so many of a million */

    /** @param bad what went wrong @param all what could have, the bad included */
    constexpr bool reached(std::int64_t bad, std::int64_t all) const
    {
        return bad >= least && all > 0 && static_cast<double>(bad) * 1e6 >= static_cast<double>(of_million) * static_cast<double>(all);
    }
};

/** How much of something is bad, for Hit::say: "1.2 % of the packets". */
std::string share_text(std::int64_t bad, std::int64_t all, std::string_view of);

} // namespace diagnosis

#endif
