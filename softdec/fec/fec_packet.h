/**
 * @file fec_packet.h
 * FEC packets of SMPTE ST 2022-1: each is the exclusive or of some media packets.
 */
#ifndef SOFTDEC_FEC_FEC_PACKET_H
#define SOFTDEC_FEC_FEC_PACKET_H

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace softdec
{

/** What follows the fixed header of a media packet. @param sequence of the packet @return nothing if it is not there */
using MediaBytes = std::function<std::optional<std::span<const std::uint8_t>>(std::int64_t sequence)>;

/** A FEC packet. */
struct FecPacket
{
    bool row = false;              /**< it protects a row of the matrix; otherwise a column */
    std::int64_t first = 0;        /**< first media packet that it protects [sequence number, extended] */
    std::int64_t step = 0;         /**< distance between those that it protects: 1 for a row, the columns for a column */
    std::int64_t count = 0;        /**< media packets that it protects */
    std::uint16_t length = 0;      /**< exclusive or of their lengths behind the fixed header [bytes] */
    std::vector<std::uint8_t> sum; /**< exclusive or of what they hold there */

    std::int64_t last() const { return first + step * (count - 1); }

    /**
     * Rebuilds the only packet that is missing of those that it protects.
     * @param missing the packet
     * @param media   the other packets
     * @return what follows the packet's fixed header, or nothing if what comes out is no transport stream
     */
    std::optional<std::vector<std::uint8_t>> rebuild(std::int64_t missing, const MediaBytes& media) const;
};

/**
 * Parses the payload of an RTP packet of a FEC stream.
 * @param reference extended sequence number of a media packet of about the same age
 * @return nothing if it is no FEC packet, or one for a matrix that no standard allows
 */
std::optional<FecPacket> parse_fec(std::span<const std::uint8_t> payload, std::int64_t reference);

} // namespace softdec

#endif
