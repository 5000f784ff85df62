/**
 * @file injector.h
 * Puts faults into a transport stream, each with a count that is known.
 */
#ifndef TESTS_SOFTDEC_INJECTOR_H
#define TESTS_SOFTDEC_INJECTOR_H

#include <cstddef>
#include <functional>
#include <vector>

#include "packets.h"

namespace softdec_tests
{

/** Numbers the continuity counters anew, so that what was removed does not show in them. */
Bytes renumber(Bytes stream);

/** Changes some packets. @param chosen places of packets */
Bytes change(Bytes stream, const std::vector<std::size_t>& chosen, const std::function<void(std::uint8_t*)>& fault);

/** Repeats some packets at once. */
Bytes duplicate(const Bytes& stream, const std::vector<std::size_t>& chosen);

/** Has some packets change places with the next one of their PID. */
Bytes swap_with_next(Bytes stream, const std::vector<std::size_t>& chosen);

/** Packets of a PID with a payload, as far as from some PES packet or section that begins at a place on. */
std::vector<std::size_t> payloads_of(const Bytes& stream, unsigned pid);

/** Those with which a PES packet begins. */
std::vector<std::size_t> starts_of(const Bytes& stream, unsigned pid);

/** Each n-th of some places, from the n-th on. */
std::vector<std::size_t> each(const std::vector<std::size_t>& places, std::size_t n);

/** All packets of the PES packets that begin at some places. */
std::vector<std::size_t> whole_units(const Bytes& stream, const std::vector<std::size_t>& starts);

/** Takes the PCR out of a packet, which keeps its length. */
void remove_pcr(std::uint8_t* packet);

} // namespace softdec_tests

#endif
