/**
 * @file packets.h
 * Looks into the packets of a transport stream, and changes them.
 */
#ifndef TESTS_SOFTDEC_PACKETS_H
#define TESTS_SOFTDEC_PACKETS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include "streams.h"

namespace softdec_tests
{

inline constexpr std::size_t ts_size = 188;

/** PIDs of the test streams. */
inline constexpr unsigned pat_pid = 0;
inline constexpr unsigned video_pid = 256;
inline constexpr unsigned audio_pid = 257;
inline constexpr unsigned klv_pid = 272;
inline constexpr unsigned pmt_pid = 4096;

unsigned pid_of(const std::uint8_t* packet);
bool has_payload(const std::uint8_t* packet);
bool starts_unit(const std::uint8_t* packet);

/** Where the payload begins. */
std::size_t payload_at(const std::uint8_t* packet);

/** The packet's PCR [27 MHz]; nothing = it has none. */
std::optional<std::uint64_t> pcr_of(const std::uint8_t* packet);
void set_pcr(std::uint8_t* packet, std::uint64_t pcr);

/** Adds to PCR, PTS and DTS [90 kHz ticks]; they wrap at 33 bits. */
void shift_clock(std::uint8_t* packet, std::int64_t ticks);

/** Adds to PTS and DTS alone. */
void shift_timestamps(std::uint8_t* packet, std::int64_t ticks);

/** Places of the packets that are chosen, by their number in the stream. */
std::vector<std::size_t> find_packets(const Bytes& stream, const std::function<bool(const std::uint8_t*)>& chosen);

/** The stream without some packets. @param removed in rising order */
Bytes without(const Bytes& stream, const std::vector<std::size_t>& removed);

} // namespace softdec_tests

#endif
