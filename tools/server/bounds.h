/**
 * @file bounds.h
 * What a client can make the server do at most, and what the server keeps at most.
 */
#ifndef SERVER_BOUNDS_H
#define SERVER_BOUNDS_H

#include <chrono>
#include <cstddef>

namespace server
{

using std::chrono::nanoseconds;

/** Connections at a time. Nobody takes them all alone: that would lock everyone else out. */
inline constexpr unsigned most_connections = 256;
inline constexpr unsigned most_connections_of_an_address = 32;

/** Sizes of a request [bytes]: the line with its method and path, all header lines, and what the library has for both together. */
inline constexpr std::size_t longest_url = 4096;
inline constexpr std::size_t longest_headers = 8192;
inline constexpr std::size_t connection_memory = 20480;

/** A connection on which nothing comes is closed. */
inline constexpr std::chrono::seconds longest_silence(20);

/** A request is answered within this time, counted from the end of the one before on its connection, or the connection is ended. */
inline constexpr std::chrono::seconds longest_request(30);

/** How often decoders are looked at. */
inline constexpr nanoseconds look_interval = std::chrono::seconds(1);

/** A look that is younger is as good as a new one. */
inline constexpr nanoseconds freshness = std::chrono::milliseconds(200);

/** The memory of the metrics is kept for so long after the last scrape. */
inline constexpr nanoseconds metrics_memory = std::chrono::minutes(5);

/** How much of a decoder's past stays in memory, and for how long a decoder that has ended is remembered. */
inline constexpr nanoseconds history_length = std::chrono::minutes(10);

/** The memory of the past of all decoders together [bytes]. */
inline constexpr std::size_t history_bytes = std::size_t{64} << 20;

/** The time that one request for the past may span, and the fields it may name. */
inline constexpr std::chrono::seconds longest_history_request = std::chrono::hours(1);
inline constexpr std::size_t most_history_fields = 32;

/** Findings that are over are told for so long, and so many of them. */
inline constexpr nanoseconds episode_memory = std::chrono::hours(24);
inline constexpr std::size_t most_episodes = 200;

/** How far the moments lie apart that are compared for findings [s]. */
inline constexpr double short_window = 1;
inline constexpr double long_window = 10;

} // namespace server

#endif
