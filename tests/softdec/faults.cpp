#include "faults.h"

namespace softdec_tests
{

Faults faults_of(const records::Records& records)
{
    Faults faults;
    const auto add = [&faults](const std::string& name, auto count)
    {
        if (count != 0) faults[name] += static_cast<long>(count);
    };
    const auto& demux = records.tdemux.tCounters;
    add("tdemux.dropped_packets", demux.nNumDroppedPackets);
    add("tdemux.receive_errors", demux.nNumErrors);
    add("tdemux.corrupted_ts_frames", demux.nNumTSCorruptedFrames);
    add("tdemux.pes_size_mismatches", demux.nNumPESSizeMismatches);
    add("tdemux.lost_ts_segments", demux.nNumLostSegmentsMPEG2TS);
    add("tdemux.lost_rtp_segments", demux.nNumLostSegmentsRTP);
    add("tdemux.timestamp_rollovers", demux.nNumTimestampRollovers);
    add("tdemux.frames_without_pcr", demux.nNumFramesWithNoPCR);
    add("tdemux.frames_with_late_pts", demux.nNumFramesWithPTSLowerThanPCR);
    add("tdemux.resumed_stream_markers", demux.nNumResumedStreamFlags);
    add("tdemux.program_gone", records.tdemux.nProgramNumber == 0 ? 1 : 0);
    add("tdemux.scrambled", records.tdemux.enState == SMGR_TDEMUX_STATS_STATE_SCRAMBLED ? 1 : 0);
    for (const auto& source : records.tdemux.tSources)
    {
        add("tdemux.sources[].frames_without_pts", source.tCounters.nNumNoPTSValueFrames);
        add("tdemux.sources[].frames_without_dts", source.tCounters.nNumNoDTSValueFrames);
    }
    if (records.tdemux.enFECType == SMGR_FEC_TYPE_PRO_MPEG)
    {
        const auto& fec = records.tdemux.Xport.PMFEC;
        add("tdemux.fec.missing_packets", fec.nDroppedPkts);
        add("tdemux.fec.recovered_packets", fec.nRecoveredPkts);
        add("tdemux.fec.lost_packets", fec.nLostPkts);
        add("tdemux.fec.missing_row_packets", fec.nDroppedRowFECPkts);
        add("tdemux.fec.missing_column_packets", fec.nDroppedColFECPkts);
    }
    const auto& framer = records.vframer.tCounters;
    add("vframer.stream_changes", framer.nNumStreamIDTransitions);
    add("vframer.format_changes", framer.nNumFormatTransitions);
    add("vframer.unsupported_streams", framer.nNumUnsupported);
    add("vframer.dropped_packets", framer.nNumInputPacketsDropped);
    add("vframer.dropped_pictures", framer.nNumOutputFramesDropped);
    add("vframer.unknown_type_pictures", framer.nNumUnknownPictures);
    add("vframer.unknown_structure_pictures", framer.nNumUnknownPicStruct);
    add("vframer.unknown_nal_units", framer.nNumUnknownNALs);
    add("vframer.sps_errors", framer.nNumSPSErrors);
    add("vframer.pps_errors", framer.nNumPPSErrors);
    add("vframer.sei_errors", framer.nNumSEIErrors);
    add("vframer.slice_header_errors", framer.nNumSHErrors);
    add("vframer.frames_without_nal_units", framer.nNumNoNALsInFrame);
    const auto& decoder = records.vdecoder.tCounters;
    add("vdecoder.dropped_pictures", decoder.nNumDroppedFrames);
    add("vdecoder.concealed_pictures", decoder.nNumConcealedFrames);
    add("vdecoder.skipped_frames", decoder.nNumSkippedOutputFrames);
    add("vdecoder.replayed_frames", decoder.nNumReplayedOutputFrames);
    add("vdecoder.output_errors", decoder.nNumOutputErrors);
    add("vdecoder.late_output_pictures", decoder.nNumOutputLate);
    add("vdecoder.pictures_without_info", decoder.nNumNoInfoErrors);
    add("vdecoder.input_discontinuities", decoder.nNumDiscontinuty);
    add("vdecoder.non_increasing_pts", decoder.nOutputTimestampNotIncreasing);
    add("vdecoder.pictures_without_pts", decoder.nOutputTimestampsMissing);
    add("audio.skipped_frames", records.audio.nSkippedFrames);
    add("audio.decoder_errors", records.audio.nErrors);
    add("audio.timestamp_discontinuities", records.audio.nTSDiscontinuity);
    for (const auto& channel : records.metadata.tChannel)
    {
        add("metadata.channels[].other_errors", channel.tCounters.nNumErrors);
        add("metadata.channels[].late_output_packets", channel.tCounters.nNumOutputLate);
        add("metadata.channels[].non_increasing_pts", channel.tCounters.nNumNonIncreasingOutputTimestamps);
    }
    const auto& buffering = records.buffering.tCounters;
    add("buffering.late_output_packets", buffering.nNumLateOutputs);
    add("buffering.overflows", buffering.nBufferingOverflows);
    add("buffering.delay_adjustments", buffering.nNumBufferingAdjustments);
    add("buffering.failed_pts_syntheses", buffering.nSynthesizedAsyncTimestampFails);
    const auto& clock = records.clock_recovery;
    add("clock_recovery.resyncs", clock.ReSyncCount);
    add("clock_recovery.late_pcrs", clock.pcrLateCount);
    add("clock_recovery.pcr_jitter_errors", clock.pcrJitterErrCount);
    return faults;
}

} // namespace softdec_tests
