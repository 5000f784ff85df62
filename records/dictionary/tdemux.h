/**
 * @file tdemux.h
 * The fields of the transport demux record.
 */
#ifndef DICTIONARY_TDEMUX_H
#define DICTIONARY_TDEMUX_H

#include "row.h"

namespace dictionary::row
{

#define DEMUX(path)    DICTIONARY_MEMBER(SMGR_TDEMUX_STATS, path)
#define SOURCE(path)   DICTIONARY_MEMBER(SMGR_TDEMUX_SOURCE_STATS, path)
#define COUNTERS(path) DEMUX(tCounters.path)
#define SRT(path)      DICTIONARY_MEMBER(SMGR_STREAM_SRT_STATS, path)
#define FEC(path)      DICTIONARY_MEMBER(SMGR_STREAM_PMFECRX_STATS, path)

inline constexpr Elements sources = {.place = DICTIONARY_ARRAY(SMGR_TDEMUX_STATS, tSources),
                                     .name = "sources",
                                     .label = "source",
                                     .in_use = is_set("sources[].received_packets")};

// The transport's own statistics are a union.
inline constexpr When with_srt = is("encapsulation", SMGR_STREAM_ENCAPSULATION_TS_SRT);
inline constexpr When with_fec = both(is("encapsulation", SMGR_STREAM_ENCAPSULATION_TS_RTP), is("fec_type", SMGR_FEC_TYPE_PRO_MPEG));
inline constexpr When encrypted = is_not("key_state", SMGR_STREAM_SRT_KM_S_UNSECURED);

/* ---- The input ---- */

inline constexpr std::array demux_rows = {
    identity(DEMUX(nSize), "record_size").no_metric(),
    state(DEMUX(enState), "state", states::tdemux_state).line("State"),
    flag(DEMUX(bStreamHasBeenStarted), "stream_started"),
    identity(DEMUX(nSmgrStreamID), "stream_id").line("Stream ID", debug),
    state(DEMUX(enEncapsulation), "encapsulation", states::encapsulation).line("Encapsulation", debug).info(),
    state(DEMUX(enFECType), "fec_type", states::fec_type).info(),
    state(DEMUX(tStreamAddress.enType), "stream_address.family", states::address_family).line("Stream Address", debug).no_metric(),
    identity(DEMUX(tStreamAddress.acAddress), "stream_address.ip").line("Stream Address", debug),
    text(DEMUX(tStreamAddress.szHostName), "stream_address.host_name").line("Stream Address", debug),
    identity(DEMUX(nStreamPort), "stream_port").line("Stream Address", debug),
    state(DEMUX(tSourceAddress.enType), "sender_address.family", states::address_family).line("Source Address").no_metric(),
    identity(DEMUX(tSourceAddress.acAddress), "sender_address.ip").line("Source Address"),
    text(DEMUX(tSourceAddress.szHostName), "sender_address.host_name").line("Source Address"),
    identity(DEMUX(nSourcePort), "sender_port").line("Source Address"),
    gauge(DEMUX(nUpTimeInSecs), "uptime").line("Up Time"),
    identity(DEMUX(nProgramNumber), "program_number").line("Program Number"),
    identity(DEMUX(nPcrPid), "pcr_pid").line("PCR PID"),
    gauge(DEMUX(nPCR), "pcr").line("PCR").no_metric(),
    moment(DEMUX(tLastPCR), "last_pcr_time", "pcr").line("PCR"),
};

/* ---- An elementary stream ---- */

inline constexpr std::array source_rows = {
    state(SOURCE(enType), "type", states::data_type).line("STREAM").label(),
    state(SOURCE(enCompressionType), "compression", states::compression).line("Compression").info(),
    identity(SOURCE(tsStreamId), "pes_stream_id").line("Stream ID", debug),
    identity(SOURCE(tsPid), "pid").line("Program ID").label(),
    gauge(SOURCE(nTimebaseNum), "time_base_numerator").line("Time Base", debug).no_metric(),
    gauge(SOURCE(nTimebaseDen), "time_base_denominator").line("Time Base", debug).no_metric(),
    gauge(SOURCE(nPTS), "pts").line("PTS").no_metric(),
    gauge(SOURCE(nDTS), "dts").line("DTS").no_metric(),
    counter(SOURCE(tCounters.nNumReceivedPackets), "received_packets").line("Received Packets"),
    counter(SOURCE(tCounters.nNumReceivedBytes), "received_bytes").line("Received Bytes"),
    last(SOURCE(tCounters.tLastReceivedPacket), "last_received_packet_time", "received_packets").line("Received Packets"),
    counter(SOURCE(tCounters.nNumOutputPackets), "output_packets").line("Output Packets", debug),
    counter(SOURCE(tCounters.nNumOutputBytes), "output_bytes").line("Output Bytes", debug),
    last(SOURCE(tCounters.tLastOutputPacket), "last_output_packet_time", "output_packets").line("Output Packets", debug),
    event(SOURCE(tCounters.iLastTxTime), "last_transmission_time"),
    gauge(SOURCE(tCounters.nBitsPerSecond), "bit_rate").line("Bit Rate"),
    counter(SOURCE(tCounters.nNumNoPTSValueFrames), "frames_without_pts").line("No-PTS Packets", debug),
    last(SOURCE(tCounters.tLastNoPTSValueFrames), "last_frame_without_pts_time", "frames_without_pts").line("No-PTS Packets", debug),
    counter(SOURCE(tCounters.nNumNoDTSValueFrames), "frames_without_dts").line("No-DTS Packets", debug),
    last(SOURCE(tCounters.tLastNoDTSValueFrames), "last_frame_without_dts_time", "frames_without_dts").line("No-DTS Packets", debug),
    identity(SOURCE(nAudioPairNum), "audio_pair").when(is("type", SMGR_TDEMUX_DATA_TYPE_AUDIO)).line("STREAM"),
};

/* ---- What the demux counts ---- */

inline constexpr std::array demux_counter_rows = {
    counter(COUNTERS(nNumReceivedPackets), "received_packets").line("Received Packets"),
    counter(COUNTERS(nNumReceivedBytes), "received_bytes").line("Received Bytes"),
    last(COUNTERS(tLastReceivedPacket), "last_received_packet_time", "received_packets").line("Received Packets"),
    gauge(COUNTERS(nRxPacketToPacketIntervalUs), "packet_interval").line("Recv'd Pkt-Pkt Time", debug),
    max(COUNTERS(nMaxRxPacketToPacketIntervalUs), "max_packet_interval", "packet_interval").line("Recv'd Pkt-Pkt Time", debug),
    moment(COUNTERS(tMaxRxPacketToPacketInterval), "max_packet_interval_time", "max_packet_interval").line("Recv'd Pkt-Pkt Time", debug),
    gauge(COUNTERS(nExternalRxPacketToPacketIntervalUs), "external_packet_interval").line("Ext Rx Pkt-Pkt Time", debug),
    max(COUNTERS(nMaxExternalRxPacketToPacketIntervalUs), "max_external_packet_interval", "external_packet_interval")
        .line("Ext Rx Pkt-Pkt Time", debug),
    moment(COUNTERS(tMaxExternalRxPacketToPacketInterval), "max_external_packet_interval_time", "max_external_packet_interval")
        .line("Ext Rx Pkt-Pkt Time", debug),
    counter(COUNTERS(nNumOutputPackets), "output_packets").line("Output Packets", debug),
    counter(COUNTERS(nNumOutputBytes), "output_bytes").line("Output Bytes", debug),
    last(COUNTERS(tLastOutputPacket), "last_output_packet_time", "output_packets").line("Output Packets", debug),
    counter(COUNTERS(nNumDroppedPackets), "dropped_packets").line("Dropped Packets"),
    counter(COUNTERS(nNumDroppedBytes), "dropped_bytes").line("Dropped Bytes"),
    last(COUNTERS(tLastDroppedPacket), "last_dropped_packet_time", "dropped_packets").line("Dropped Packets"),
    counter(COUNTERS(nNumErrors), "receive_errors").line("Errors"),
    last(COUNTERS(tLastError), "last_receive_error_time", "receive_errors").line("Errors"),
    counter(COUNTERS(nNumTSCorruptedFrames), "corrupted_ts_frames").line("Corrupted Frames"),
    last(COUNTERS(tLastTSCorruptedFrame), "last_corrupted_ts_frame_time", "corrupted_ts_frames").line("Corrupted Frames"),
    counter(COUNTERS(nNumPESSizeMismatches), "pes_size_mismatches").line("PES Size Mismatches"),
    last(COUNTERS(tLastPESSizeMismatch), "last_pes_size_mismatch_time", "pes_size_mismatches").line("PES Size Mismatches"),
    counter(COUNTERS(nNumLostSegmentsMPEG2TS), "lost_ts_segments"),
    last(COUNTERS(tLastLostSegmentMPEG2TS), "last_lost_ts_segment_time", "lost_ts_segments"),
    counter(COUNTERS(nNumLostSegmentsRTP), "lost_rtp_segments"),
    last(COUNTERS(tLastLostSegmentRTP), "last_lost_rtp_segment_time", "lost_rtp_segments"),
    counter(COUNTERS(nNumReconnections), "connections").line("Connections"),
    last(COUNTERS(tLastReconnection), "last_connection_time", "connections").line("Connections"),
    counter(COUNTERS(nNumFailovers), "failovers").line("Failovers"),
    last(COUNTERS(tLastFailover), "last_failover_time", "failovers").line("Failovers"),
    counter(COUNTERS(nNumTimestampRollovers), "timestamp_rollovers").line("Timestamp Rollovers"),
    last(COUNTERS(tLastTimestampRollover), "last_timestamp_rollover_time", "timestamp_rollovers").line("Timestamp Rollovers"),
    counter(COUNTERS(nNumFramesWithNoPCR), "frames_without_pcr").line("Frames with No PCR"),
    last(COUNTERS(tLastFrameWithNoPCR), "last_frame_without_pcr_time", "frames_without_pcr").line("Frames with No PCR"),
    counter(COUNTERS(nNumFramesWithPTSLowerThanPCR), "frames_with_late_pts").line("Frames with PTS<=PCR"),
    last(COUNTERS(tLastFrameWithPTSLowerThanPCR), "last_frame_with_late_pts_time", "frames_with_late_pts").line("Frames with PTS<=PCR"),
    counter(COUNTERS(nNumNewStreamFlags), "new_stream_markers").line("New Stream Flags"),
    last(COUNTERS(tLastNewStreamFlag), "last_new_stream_marker_time", "new_stream_markers").line("New Stream Flags"),
    counter(COUNTERS(nNumResumedStreamFlags), "resumed_stream_markers").line("Resumed Stream Flags"),
    last(COUNTERS(tLastResumedStreamFlag), "last_resumed_stream_marker_time", "resumed_stream_markers").line("Resumed Stream Flags"),
    identity(COUNTERS(iLastPIDDropped), "last_dropped_pid").line("Last PID Dropped").no_metric(),
    state(COUNTERS(iLastError), "last_error", states::errno_or_eai).line("Last Error").no_metric(),
    moment(COUNTERS(iLastErrorTime), "last_error_time", "last_error").line("Occurred"),
    event(COUNTERS(iLastCorruptedFrameTime), "last_corrupted_frame_time"),
    gauge(COUNTERS(nBitsPerSecond), "bit_rate").line("Bit Rate"),
    gauge(COUNTERS(TimeStamp), "timestamp").line("Time Stamp", debug).no_metric(),
    event(COUNTERS(iLastRxTime), "last_reception_time"),
    gauge(COUNTERS(nNumStreams), "streams").line("Streams"),
    gauge(COUNTERS(nVideoStreams), "video_streams").line("Streams"),
    gauge(COUNTERS(nAudioStreams), "audio_streams").line("Streams"),
    gauge(COUNTERS(nKLVStreams), "klv_streams").line("Streams"),
    gauge(COUNTERS(nFilteredStreams), "filtered_streams").line("Streams"),
    gauge(COUNTERS(nInputPacketListSize), "input_packet_list_size").line("Input Pkt List Size", debug),
    max(COUNTERS(nMaxInputPacketListSize), "max_input_packet_list_size", "input_packet_list_size").line("Input Pkt List Size", debug),
    moment(COUNTERS(tMaxInputPacketListSize), "max_input_packet_list_size_time", "max_input_packet_list_size")
        .line("Input Pkt List Size", debug),
    counter(COUNTERS(nInputPacketListOverflows), "input_packet_list_overflows").line("Input Pkt List Ovflws"),
    last(COUNTERS(tLastInputPacketListOverflow), "last_input_packet_list_overflow_time", "input_packet_list_overflows")
        .line("Input Pkt List Ovflws"),
    gauge(COUNTERS(nReadPacketListSize), "read_packet_list_size").line("Read Pkt List Size", debug),
    max(COUNTERS(nMaxReadPacketListSize), "max_read_packet_list_size", "read_packet_list_size").line("Read Pkt List Size", debug),
    moment(COUNTERS(tMaxReadPacketListSize), "max_read_packet_list_size_time", "max_read_packet_list_size")
        .line("Read Pkt List Size", debug),
    counter(COUNTERS(nReadPacketListOverflows), "read_packet_list_overflows").line("Read Pkt List Ovflws"),
    last(COUNTERS(tLastReadPacketListOverflow), "last_read_packet_list_overflow_time", "read_packet_list_overflows")
        .line("Read Pkt List Ovflws"),
};

/* ---- The SRT link: a demux receives, so the sending half of the union never holds ---- */

inline constexpr std::array srt_rows = {
    gauge(SRT(Dir.Tx.nSentKbps), "sent_bit_rate").when(never).no_metric(),
    counter(SRT(Dir.Tx.nSentPkts), "sent_packets").when(never).no_metric(),
    counter(SRT(Dir.Tx.nSentBytes), "sent_bytes").when(never).no_metric(),
    counter(SRT(Dir.Tx.nResentPkts), "retransmitted_packets").when(never).no_metric(),
    counter(SRT(Dir.Tx.nResentBytes), "retransmitted_bytes").when(never).no_metric(),
    gauge(SRT(Dir.Rx.nRecvKbps), "received_bit_rate"),
    counter(SRT(Dir.Rx.nRecvPkts), "received_packets"),
    counter(SRT(Dir.Rx.nRecvBytes), "received_bytes"),
    counter(SRT(Dir.Rx.nUndecryptedPkts), "undecrypted_packets"),
    counter(SRT(Dir.Rx.nUndecryptedBytes), "undecrypted_bytes"),
    counter(SRT(nLostPkts), "lost_packets").line("Lost Packets"),
    counter(SRT(nDroppedPkts), "dropped_packets").line("Dropped Packets"),
    counter(SRT(nDroppedBytes), "dropped_bytes").line("Dropped Bytes"),
    counter(SRT(nXmitAckPkts), "sent_acks").line("Sent ACKs"),
    counter(SRT(nXmitNakPkts), "sent_naks").line("Sent NAKs"),
    counter(SRT(iReconnects), "connections").line("Connections"),
    gauge(SRT(iMSS), "mss"),
    gauge(SRT(iLatency), "latency").line("Latency"),
    gauge(SRT(iMaxBw), "bandwidth_limit"),
    gauge(SRT(iAvailBw), "available_bandwidth").line("Link Bandwidth"),
    state(SRT(iKeyState), "key_state", states::srt_key_state).line("AES Encryption").line("Decryption"),
    gauge(SRT(iKeyLength), "key_length").when(encrypted).line("Key Length"),
    gauge(SRT(iRTT), "rtt").line("RTT"),
    gauge(SRT(iBufPkts), "buffered_packets"),
    gauge(SRT(iBufBytes), "buffered_bytes"),
    gauge(SRT(iBufTimespan), "buffered_duration").line("Local Buffer Level"),
    identity(SRT(iRemotePort), "remote_port").line("Remote Port"),
    identity(SRT(iLocalPort), "local_port").line("Local Port"),
    counter(SRT(iOutPortGettingFullCnt), "output_port_nearly_full_events"),
    extreme(SRT(iMaxOutPortLevel), "max_output_port_level").no_metric(),
    identity(SRT(iVersion), "version").line("Local Version"),
    identity(SRT(iPeerVersion), "peer_version").line("Peer Version"),
};

/* ---- The Pro-MPEG FEC receiver ---- */

inline constexpr std::array fec_rows = {
    gauge(FEC(nColumns), "columns").line("Number of Columns"),
    gauge(FEC(nRows), "rows").line("Number of Rows"),
    flag(FEC(bRowFEC), "row_fec").line("Level"),
    flag(FEC(bBlockAlign), "block_aligned").line("Block Aligned"),
    counter(FEC(nMediaPkts), "received_packets"),
    counter(FEC(nColFecPkts), "received_column_packets").line("Received Col FEC", debug),
    counter(FEC(nRowFecPkts), "received_row_packets").line("Received Row FEC", debug),
    counter(FEC(nDroppedPkts), "missing_packets").line("Dropped Packets"),
    counter(FEC(nRecoveredPkts), "recovered_packets").line("Recovered Packets"),
    counter(FEC(nLostPkts), "lost_packets").line("Lost Packets"),
    counter(FEC(nDroppedRowFECPkts), "missing_row_packets").line("Lost Row FEC", debug),
    counter(FEC(nDroppedColFECPkts), "missing_column_packets").line("Lost Col FEC", debug),
};

inline constexpr auto tdemux =
    rows_of<SMGR_TDEMUX_STATS>("tdemux",
                               join(demux_rows, each(sources, "sources[].", source_rows), demux_counter_rows,
                                    within(DICTIONARY_PLACE(SMGR_TDEMUX_STATS, Xport.SRT), "srt.", with_srt, srt_rows),
                                    within(DICTIONARY_PLACE(SMGR_TDEMUX_STATS, Xport.PMFEC), "fec.", with_fec, fec_rows)),
                               sources);
static_assert(tile<sizeof(SMGR_TDEMUX_STATS)>(tdemux));

#undef DEMUX
#undef SOURCE
#undef COUNTERS
#undef SRT
#undef FEC

} // namespace dictionary::row

#endif
