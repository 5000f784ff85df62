/**
 * @file decoder_json.h
 * A decoder as JSON: what the tool prints of it, and how it stands now.
 */
#ifndef SERVER_DECODER_JSON_H
#define SERVER_DECODER_JSON_H

#include <string>

#include "sight.h"
#include "watched_decoder.h"

namespace server
{

/** The records of decstats-json(5), with the members "state", "problem" and "now" behind them. @param raw as they are in memory */
std::string decoder_json(const Sight& sight, bool raw);

/** The findings of decstats-findings(5) with the same members. @throw Refusal if nothing can be told yet */
std::string findings_json(const WatchedDecoder& decoder, const Sight& sight);

/** What all fields mean, as decstats-json(5) has it. */
std::string fields_json();

} // namespace server

#endif
