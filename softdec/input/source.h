/**
 * @file source.h
 * What every input gives: datagrams in the order of their arrival, and what it knows about the network.
 */
#ifndef SOFTDEC_INPUT_SOURCE_H
#define SOFTDEC_INPUT_SOURCE_H

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>

#include "chain/virtual_clock.h"
#include "sessmgr_types.h"

namespace softdec
{

/** An input that cannot be opened or read. The text names it and says why. */
class InputError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** Which of the streams of an input a datagram belongs to (SMPTE ST 2022-1: FEC on the media port + 2 and + 4). */
enum class Channel
{
    media,
    column_fec,
    row_fec,
};

/** What arrived at once: a datagram's payload, or a piece of a file. */
struct Datagram
{
    Channel channel = Channel::media;
    std::optional<Nanoseconds> arrival;  /**< nothing = the input has no arrival times */
    std::span<const std::uint8_t> bytes; /**< valid until the next one is read */
    std::size_t packet_distance = 188;   /**< from the begin of one transport stream packet to that of the next */
};

/** What an input knows about the network. */
struct InputStatus
{
    SMGR_IP_ADDRESS local = {};  /**< address that the stream is received on */
    unsigned local_port = 0;     /**< 0 = none */
    SMGR_IP_ADDRESS sender = {}; /**< address of the sender */
    unsigned sender_port = 0;    /**< 0 = none */
    std::uint64_t errors = 0;    /**< datagrams that could not be read whole */
    std::uint64_t overflows = 0; /**< datagrams that the receive buffer had no room for */
};

/** An input. */
class Source
{
public:
    virtual ~Source() = default;

    /** What one call of next came to. */
    enum class Result
    {
        datagram, /**< there is one */
        nothing,  /**< none within the time that a live input waits, a tenth of a second */
        end,      /**< the input has ended */
    };

    /** Waits for the next datagram. @throw InputError if the input cannot be read any more */
    virtual Result next(Datagram& datagram) = 0;

    /** Whether datagrams have arrival times. */
    virtual bool has_arrivals() const = 0;

    const InputStatus& status() const { return network; }

protected:
    InputStatus network; /**< what the input knows, for it to fill */
};

} // namespace softdec

#endif
