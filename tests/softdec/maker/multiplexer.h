/**
 * @file multiplexer.h
 * Puts coded streams into a transport stream (ISO/IEC 13818-1) of the shape that a test asks for.
 */
#ifndef TESTS_SOFTDEC_MAKER_MULTIPLEXER_H
#define TESTS_SOFTDEC_MAKER_MULTIPLEXER_H

#include <optional>
#include <vector>

#include "encoder.h"

namespace softdec_tests
{

/** A PES packet. */
struct Pes
{
    softdec::Ticks due = 0; /**< DTS of what is in it, which it is sent by */
    std::optional<softdec::Ticks> pts = {};
    std::optional<softdec::Ticks> dts = {}; /**< nothing = as the PTS */
    Bytes payload = {};
};

/** PES packets of so many whole units each. */
std::vector<Pes> packetize(const std::vector<CodedUnit>& units, std::size_t units_each = 1);

/** PES packets of so many bytes each, wherever units begin and end in them. */
std::vector<Pes> packetize_unaligned(const std::vector<CodedUnit>& units, std::size_t bytes_each);

/** An elementary stream, or sections of a table. */
struct Stream
{
    unsigned pid = 0;
    std::uint8_t type = 0;      /**< in the program's map */
    std::uint8_t stream_id = 0; /**< of its PES packets; 0 = the payloads are sections (without PES headers) */
    Bytes descriptors = {};
    std::vector<Pes> packets = {};
    bool bounded = true; /**< PES packets tell their length, if it fits */
    bool listed = true;  /**< in the program's map */
};

struct Multiplex
{
    std::vector<Stream> streams = {};
    double rate = 0;                       /**< bit/s, filled up with null packets; 0 = variable, without any */
    softdec::Ticks length = 0;             /**< of the whole, at least */
    softdec::Ticks lead = 60'000;          /**< that packets are sent before their DTS */
    softdec::Ticks begin = 900'000;        /**< first PCR; wraps */
    softdec::Ticks pcr_interval = 2'700;   /**< 30 ms */
    softdec::Ticks table_interval = 9'000; /**< of PAT and PMT */
    unsigned pcr_pid = 256;
    unsigned map_pid = 4096;
    unsigned program = 1;
    unsigned more_programs = 0; /**< that the PAT names behind it, with maps that do not come */
};

/** The transport stream, whole packets. */
Bytes multiplex(const Multiplex& multiplex);

} // namespace softdec_tests

#endif
