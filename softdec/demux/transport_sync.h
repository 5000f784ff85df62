/**
 * @file transport_sync.h
 * Cuts bytes into transport stream packets (ISO/IEC 13818-1, 2.4.3.2) and finds the next one where they are damaged.
 */
#ifndef SOFTDEC_DEMUX_TRANSPORT_SYNC_H
#define SOFTDEC_DEMUX_TRANSPORT_SYNC_H

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace softdec
{

/** Bytes of a transport stream packet. */
inline constexpr std::size_t packet_size = 188;

class TransportSync
{
public:
    using Output = std::function<void(std::span<const std::uint8_t, packet_size> packet)>;

    /** @param packet takes each packet @param lost is called for the place of each packet, or rest of such, that holds none */
    TransportSync(Output packet, std::function<void()> lost) : packet_(std::move(packet)), lost_(std::move(lost)) {}

    /**
     * Takes the bytes that follow those of the last call.
     * @param distance from the begin of one packet to that of the next: more than a packet has where something stands between them
     */
    void feed(std::span<const std::uint8_t> bytes, std::size_t distance = packet_size);

    /** The stream has ended. */
    void finish();

private:
    std::size_t cut(std::span<const std::uint8_t> bytes);
    void skip(std::size_t count);

    Output packet_;
    std::function<void()> lost_;
    std::vector<std::uint8_t> rest_; // the begin of a packet, or what no sync byte has been found in yet
    std::size_t skipped_ = 0;        // bytes since the last packet [bytes]
    std::size_t distance_ = packet_size;
};

} // namespace softdec

#endif
