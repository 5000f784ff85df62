#include "chain/reception.h"

#include <algorithm>
#include <utility>

#include "input/rtp.h"

namespace softdec
{

namespace
{

/** Without a packet for this long the sender counts as gone, and the next one as the stream that has resumed. */
constexpr Nanoseconds stream_gone = second;

} // namespace

Reception::Reception(const VirtualClock& clock, SMGR_TDEMUX_STATS& record, bool has_arrivals, Output output)
    : clock_(clock), record_(record), has_arrivals_(has_arrivals), output_(std::move(output)),
      rtp_([this](std::span<const std::uint8_t> bytes, std::optional<Nanoseconds> arrival) { output_(bytes, arrival); })
{
    record_.nSize = sizeof record_;
    record_.enState = SMGR_TDEMUX_STATS_STATE_LISTENING;
    record_.bStreamHasBeenStarted = TRUE;
}

void Reception::take(const Datagram& datagram)
{
    if (started_ == 0) started_ = clock_.now();
    record_.enState = SMGR_TDEMUX_STATS_STATE_ACTIVE;
    if (datagram.channel == Channel::media) count(datagram);
    if (encapsulation_ == Encapsulation::unknown && datagram.channel == Channel::media)
    {
        const bool rtp = has_arrivals_ && is_rtp_transport_stream(datagram.bytes);
        encapsulation_ = rtp ? Encapsulation::rtp : Encapsulation::none;
        if (rtp) record_.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_RTP;
        const auto payload = rtp ? parse_rtp(datagram.bytes)->payload : datagram.bytes;
        packet_distance_ = has_arrivals_ && has_check_bytes(payload) ? packet_size_with_check_bytes : datagram.packet_distance;
    }
    if (encapsulation_ == Encapsulation::rtp)
    {
        rtp_.receive(datagram);
        report_rtp();
    }
    else if (datagram.channel == Channel::media)
    {
        output_(datagram.bytes, datagram.arrival);
    }
}

void Reception::count(const Datagram& datagram)
{
    auto& counters = record_.tCounters;
    const std::time_t now = clock_.seconds();
    if (datagram.arrival)
    {
        ++counters.nNumReceivedPackets;
        count_interval(*datagram.arrival);
    }
    counters.nNumReceivedBytes += datagram.bytes.size();
    counters.tLastReceivedPacket = counters.iLastRxTime = now;
    bits_.add(clock_.now(), datagram.bytes.size() * 8);
}

void Reception::count_interval(Nanoseconds arrival)
{
    auto& counters = record_.tCounters;
    if (last_arrival_ != 0)
    {
        const Nanoseconds interval = std::max<Nanoseconds>(arrival - last_arrival_, 0);
        counters.nRxPacketToPacketIntervalUs = static_cast<unsigned long>(interval / microsecond);
        if (counters.nRxPacketToPacketIntervalUs > counters.nMaxRxPacketToPacketIntervalUs)
        {
            counters.nMaxRxPacketToPacketIntervalUs = counters.nRxPacketToPacketIntervalUs;
            counters.tMaxRxPacketToPacketInterval = clock_.seconds();
        }
        if (interval >= stream_gone)
        {
            ++counters.nNumResumedStreamFlags;
            counters.tLastResumedStreamFlag = clock_.seconds();
        }
    }
    last_arrival_ = std::max(last_arrival_, arrival);
}

void Reception::take(const InputStatus& status)
{
    auto& counters = record_.tCounters;
    record_.tStreamAddress = status.local;
    record_.nStreamPort = status.local_port;
    record_.tSourceAddress = status.sender;
    record_.nSourcePort = status.sender_port;
    if (const std::uint64_t errors = status.errors - std::exchange(input_errors_, status.errors); errors != 0)
    {
        counters.nNumErrors += errors;
        counters.tLastError = clock_.seconds();
    }
    if (const std::uint64_t overflows = status.overflows - std::exchange(overflows_, status.overflows); overflows != 0)
    {
        counters.nInputPacketListOverflows += overflows;
        counters.nNumDroppedPackets += overflows;
        counters.tLastInputPacketListOverflow = counters.tLastDroppedPacket = clock_.seconds();
    }
}

void Reception::report_rtp()
{
    auto& counters = record_.tCounters;
    const RtpCounts& counts = rtp_.counts();
    if (counts.missing != counters.nNumLostSegmentsRTP)
    {
        counters.nNumLostSegmentsRTP = counts.missing;
        counters.tLastLostSegmentRTP = clock_.seconds();
    }
    if (counts.invalid != datagrams_of_no_use_)
    {
        counters.nNumErrors += counts.invalid - std::exchange(datagrams_of_no_use_, counts.invalid);
        counters.tLastError = clock_.seconds();
    }
    counters.nInputPacketListSize = rtp_.held_bytes();
    if (counters.nInputPacketListSize > counters.nMaxInputPacketListSize)
    {
        counters.nMaxInputPacketListSize = counters.nInputPacketListSize;
        counters.tMaxInputPacketListSize = clock_.seconds();
    }
    if (counts.column_fec + counts.row_fec == 0) return;
    record_.enFECType = SMGR_FEC_TYPE_PRO_MPEG;
    // The record's counts are of 32 bits and wrap.
    const auto narrow = [](std::uint64_t count) { return static_cast<int>(static_cast<unsigned>(count)); };
    record_.Xport.PMFEC = {.nColumns = counts.columns,
                           .nRows = counts.rows,
                           .bRowFEC = counts.row_fec != 0,
                           .bBlockAlign = counts.block_aligned,
                           .nMediaPkts = narrow(counts.media),
                           .nColFecPkts = narrow(counts.column_fec),
                           .nRowFecPkts = narrow(counts.row_fec),
                           .nDroppedPkts = narrow(counts.missing),
                           .nRecoveredPkts = narrow(counts.recovered),
                           .nLostPkts = narrow(counts.lost),
                           .nDroppedRowFECPkts = narrow(counts.missing_row),
                           .nDroppedColFECPkts = narrow(counts.missing_column)};
}

void Reception::finish()
{
    if (encapsulation_ != Encapsulation::rtp) return;
    rtp_.finish();
    report_rtp();
}

void Reception::update(std::uint64_t packets)
{
    if (started_ == 0) return;
    record_.nUpTimeInSecs = static_cast<SMGR_COUNTER>((clock_.now() - started_) / second);
    record_.tCounters.nBitsPerSecond = static_cast<unsigned>(std::min(bits_.rate(clock_.now()), 4e9));
    if (!has_arrivals_) record_.tCounters.nNumReceivedPackets = packets;
}

} // namespace softdec
