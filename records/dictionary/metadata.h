/**
 * @file metadata.h
 * The fields of the metadata decoder record.
 */
#ifndef DICTIONARY_METADATA_H
#define DICTIONARY_METADATA_H

#include "row.h"

namespace dictionary::row
{

#define METADATA(path) DICTIONARY_MEMBER(SMGR_METADATADEC_STATS, path)
#define CHANNEL(path)  DICTIONARY_MEMBER(SMGR_METADATADEC_CHANNEL_STATS, path)

// Idle channels too, so that their counters start at 0.
inline constexpr Elements metadata_channels = {.place = DICTIONARY_ARRAY(SMGR_METADATADEC_STATS, tChannel),
                                               .name = "channels",
                                               .label = "channel",
                                               .in_use = has_text("channels[].name")};
inline constexpr When with_timecode = is("timecode.valid", 1);

/* ---- The decoder ---- */

inline constexpr std::array metadata_rows = {
    state(METADATA(enState), "state", states::metadata_state).line("Metadata State"),
    identity(METADATA(nDecoderID), "decoder_id"),
    gauge(METADATA(nInputQOccupancy), "input_queue_length").line("Input Q Occupancy", debug),
};

/* ---- A channel ---- */

inline constexpr std::array metadata_channel_rows = {
    text(CHANNEL(szName), "name").line("Channel").line("Active Metadata"),
    state(CHANNEL(enType), "type", states::metadata_channel_type).line("Type", debug).label(),
    state(CHANNEL(enState), "state", states::metadata_state).line("Active Metadata"),
    gauge(CHANNEL(nLatencyInUs), "latency").line("Latency"),
    counter(CHANNEL(tCounters.nNumInputPackets), "received_packets").line("Received Packets"),
    last(CHANNEL(tCounters.tLastInputPacket), "last_received_packet_time", "received_packets").line("Received Packets"),
    counter(CHANNEL(tCounters.nNumSynchronousPackets), "synchronous_packets").line("Synchronous Packets"),
    last(CHANNEL(tCounters.tLastSynchronousPacket), "last_synchronous_packet_time", "synchronous_packets").line("Synchronous Packets"),
    counter(CHANNEL(tCounters.nNumAsynchronousPackets), "asynchronous_packets").line("Aynchronous Packets"),
    last(CHANNEL(tCounters.tLastAsynchronousPacket), "last_asynchronous_packet_time", "asynchronous_packets").line("Aynchronous Packets"),
    counter(CHANNEL(tCounters.nNumOutputPackets), "output_packets").line("Output Packets"),
    last(CHANNEL(tCounters.tLastOutputPacket), "last_output_packet_time", "output_packets").line("Output Packets"),
    counter(CHANNEL(tCounters.nNumFreedPackets), "freed_packets").line("Freed Packets"),
    last(CHANNEL(tCounters.tLastFreedPacket), "last_freed_packet_time", "freed_packets").line("Freed Packets"),
    counter(CHANNEL(tCounters.nNumDroppedPackets), "dropped_packets").line("Dropped Packets"),
    last(CHANNEL(tCounters.tLastDroppedPacket), "last_dropped_packet_time", "dropped_packets").line("Dropped Packets"),
    counter(CHANNEL(tCounters.nNumOutputFailedPackets), "failed_output_packets").line("Output Failed"),
    last(CHANNEL(tCounters.tLastOutputFailedPacket), "last_failed_output_packet_time", "failed_output_packets").line("Output Failed"),
    counter(CHANNEL(tCounters.nNumOutputFailedLatePackets), "failed_late_output_packets").line("Output Late"),
    last(CHANNEL(tCounters.tLastOutputFailedLatePacket), "last_failed_late_output_packet_time", "failed_late_output_packets")
        .line("Output Late"),
    counter(CHANNEL(tCounters.nNumOutputPayloadBytes), "output_payload_bytes").line("Payload Bytes"),
    extreme(CHANNEL(tCounters.nMaxOutputPayloadBytes), "max_output_payload_size").line("Payload Bytes"),
    moment(CHANNEL(tCounters.tMaxOutputPayloadBytes), "max_output_payload_size_time", "max_output_payload_size").line("Payload Bytes"),
    counter(CHANNEL(tCounters.nNumNonIncreasingOutputTimestamps), "non_increasing_pts").line("Nonincr. Timestamps"),
    last(CHANNEL(tCounters.tLastNonIncreasingOutputTimestamp), "last_non_increasing_pts_time", "non_increasing_pts")
        .line("Nonincr. Timestamps"),
    counter(CHANNEL(tCounters.nNumErrors), "other_errors").line("Other Errors"),
    event(CHANNEL(tCounters.tLastOutputTime), "last_output_time"),
    gauge(CHANNEL(tCounters.nNumInPacketList), "input_packet_list_length").line("Input List Occ.", debug),
    counter(CHANNEL(tCounters.nNumPacketListResets), "packet_list_resets").line("Pkt List Resets"),
    last(CHANNEL(tCounters.tLastPacketListReset), "last_packet_list_reset_time", "packet_list_resets").line("Pkt List Resets"),
    counter(CHANNEL(tCounters.nNumBDAllocated), "allocated_descriptors").line("BDs Allocated", debug),
    last(CHANNEL(tCounters.tLastBDAllocated), "last_allocated_descriptor_time", "allocated_descriptors").line("BDs Allocated", debug),
    counter(CHANNEL(tCounters.nNumBDAllocateFailed), "failed_descriptor_allocations").line("BDs Allocate Failed"),
    last(CHANNEL(tCounters.tLastBDAllocateFailed), "last_failed_descriptor_allocation_time", "failed_descriptor_allocations")
        .line("BDs Allocate Failed"),
    counter(CHANNEL(tCounters.nNumBDWritten), "written_descriptors").line("BDs Written", debug),
    last(CHANNEL(tCounters.tLastBDWritten), "last_written_descriptor_time", "written_descriptors").line("BDs Written", debug),
    counter(CHANNEL(tCounters.nNumBDFreed), "freed_descriptors").line("BDs Freed", debug),
    last(CHANNEL(tCounters.tLastBDFreed), "last_freed_descriptor_time", "freed_descriptors").line("BDs Freed", debug),
    gauge(CHANNEL(tCounters.nNumBDInFreeList), "free_descriptor_list_length").line("BD Free List Occ.", debug),
    gauge(CHANNEL(tCounters.nNumBDInUsedList), "used_descriptor_list_length").line("BD Used List Occ.", debug),
    gauge(CHANNEL(tCounters.nBDFreeListHeadIndex), "free_descriptor_list_head").line("BD Free Head Index", debug).no_metric(),
    gauge(CHANNEL(tCounters.nBDUsedListHeadIndex), "used_descriptor_list_head").line("BD Used Head Index", debug).no_metric(),
    gauge(CHANNEL(tCounters.nCurrentDelayInPackets), "delay_in_packets").line("Delay", debug),
    gauge(CHANNEL(tCounters.nNumInDelayList), "delay_list_length").line("Delay List Occ.", debug),
    counter(CHANNEL(tCounters.nNumOutputLate), "late_output_packets").line("Output Sent Late", debug),
    last(CHANNEL(tCounters.tLastOutputLate), "last_late_output_packet_time", "late_output_packets").line("Output Sent Late", debug),
    gauge(CHANNEL(tCounters.nOutputSTCLeadTime), "stc_lead").line("Output Lead Time", debug),
    min(CHANNEL(tCounters.nMinOutputSTCLeadTime), "min_stc_lead", "stc_lead").line("Output Lead Time", debug),
    moment(CHANNEL(tCounters.tMinOutputSTCLeadTime), "min_stc_lead_time", "min_stc_lead").line("Output Lead Time", debug),
    max(CHANNEL(tCounters.nMaxOutputSTCLeadTime), "max_stc_lead", "stc_lead").line("Output Lead Time", debug),
    moment(CHANNEL(tCounters.tMaxOutputSTCLeadTime), "max_stc_lead_time", "max_stc_lead").line("Output Lead Time", debug),
};

/* ---- What the decoder counts, and the last timecode ---- */

inline constexpr std::array metadata_counter_rows = {
    counter(METADATA(tCounters.nNumReceivedPackets), "received_packets").line("Received Packets", debug),
    flag(METADATA(tCounters.tTCValue.bTCValid), "timecode.valid"),
    gauge(METADATA(tCounters.tTCValue.nTCHours), "timecode.hours").when(with_timecode).line("Timecode").no_metric(),
    gauge(METADATA(tCounters.tTCValue.nTCMinutes), "timecode.minutes").when(with_timecode).line("Timecode").no_metric(),
    gauge(METADATA(tCounters.tTCValue.nTCSeconds), "timecode.seconds").when(with_timecode).line("Timecode").no_metric(),
    gauge(METADATA(tCounters.tTCValue.nTCFrames), "timecode.frames").when(with_timecode).line("Timecode").no_metric(),
};

inline constexpr auto metadata = rows_of<SMGR_METADATADEC_STATS>(
    "metadata", join(metadata_rows, each(metadata_channels, "channels[].", metadata_channel_rows), metadata_counter_rows),
    metadata_channels);
static_assert(tile<sizeof(SMGR_METADATADEC_STATS)>(metadata));

#undef METADATA
#undef CHANNEL

} // namespace dictionary::row

#endif
