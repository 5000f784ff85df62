/**
 * @file past.h
 * /api/v1/decoders/NAME/history: fields over time, out of the memory and of the capture file that holds what is older.
 */
#ifndef SERVER_PAST_H
#define SERVER_PAST_H

#include <string>

#include "request.h"
#include "watched_decoder.h"

namespace server
{

/**
 * The past of a decoder as one line of JSON.
 * @return without the newline at its end @throw Refusal
 */
std::string past_json(WatchedDecoder& decoder, const Request& request);

} // namespace server

#endif
