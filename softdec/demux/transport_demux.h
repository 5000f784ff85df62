/**
 * @file transport_demux.h
 * Takes a transport stream apart, and keeps the demux record of what it finds.
 */
#ifndef SOFTDEC_DEMUX_TRANSPORT_DEMUX_H
#define SOFTDEC_DEMUX_TRANSPORT_DEMUX_H

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "chain/rate_meter.h"
#include "clock/clock_recovery.h"
#include "demux/continuity.h"
#include "demux/elementary_packet.h"
#include "demux/pes_assembler.h"
#include "demux/program_tables.h"
#include "demux/transport_sync.h"
#include "sessmgr_types.h"

namespace softdec
{

class TransportDemux
{
public:
    struct Events
    {
        std::function<void(const Program&)> program;  /**< the program is another one */
        std::function<void(ElementaryPacket)> packet; /**< a packet of an elementary stream */
        /** A PCR has come and is about to be taken, announced if it begins another time base; gives the arrival that the clock is to be
            recovered by, if it has one. */
        std::function<std::optional<Nanoseconds>(Pcr pcr, std::optional<Nanoseconds> arrival, bool announced)> pcr;
    };

    /** @param record to be filled, but for the network and the transport's own statistics */
    TransportDemux(const VirtualClock& clock, ClockRecovery& recovery, SMGR_TDEMUX_STATS& record, Events events);

    /** Takes bytes of the transport stream. @param arrival nothing = not known @param distance see TransportSync::feed */
    void feed(std::span<const std::uint8_t> bytes, std::optional<Nanoseconds> arrival, std::size_t distance = packet_size);

    /** The stream has ended. */
    void finish();

    /** Brings what depends on the time up to date. */
    void update();

    /** Transport stream packets so far, null packets included. */
    std::uint64_t packets() const { return packets_; }

private:
    /** Without a PCR for this long, frames have no clock. ISO/IEC 13818-1 asks for one each tenth of a second. */
    static constexpr Nanoseconds pcr_gone = second;

    /** A stream that is followed. */
    struct Followed
    {
        ElementaryStream stream;
        std::size_t source;
        PesAssembler assembler;
        RateMeter rate;
        Ticks pcr_at_start = 0; // last PCR when the PES packet began that is being assembled
        bool pcr_known = false;
        bool before_pcr = false; // the first PCR had not come then
        Nanoseconds begun = 0;
        TimeBase time_base = {};
        Nanoseconds last_piece = 0; // when a piece of it last came
        Nanoseconds last_timed = 0; // when a packet with a time stamp last came
    };

    void take(std::span<const std::uint8_t, packet_size> packet);
    void take_pcr(std::span<const std::uint8_t, packet_size> packet);
    bool take_tables(unsigned pid, std::span<const std::uint8_t, packet_size> packet);
    void take_stream(Followed& followed, std::span<const std::uint8_t> payload, bool start, bool scrambled);
    void take_pes(Followed& followed, PesPacket packet);
    void take_early();
    void count_timestamps(Followed& followed, const ElementaryPacket& packet);
    void follow(const Program& program);
    void drop(unsigned pid);
    void corrupted();
    SMGR_TDEMUX_SOURCE_STATS& source_of(const Followed& followed) { return record_.tSources[followed.source]; }

    const VirtualClock& clock_;
    ClockRecovery& recovery_;
    SMGR_TDEMUX_STATS& record_;
    Events events_;
    TransportSync sync_;
    ProgramTables tables_;
    std::optional<Nanoseconds> arrival_;
    std::array<Continuity, 8192> continuity_;
    std::map<unsigned, std::unique_ptr<Followed>> followed_; // by PID
    std::vector<std::pair<unsigned, PesPacket>> early_;      // by PID, from before the first PCR
    std::vector<std::unique_ptr<Followed>> given_up_;        // a change of the program comes from within one
    Program program_;
    std::uint64_t packets_ = 0;
    Nanoseconds last_pat_ = 0;
    Nanoseconds last_pmt_ = 0;
    Nanoseconds started_ = 0;
    bool scrambled_ = false;
    bool time_base_announced_ = false; // the next PCR begins another one
};

} // namespace softdec

#endif
