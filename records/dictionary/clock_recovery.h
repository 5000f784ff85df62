/**
 * @file clock_recovery.h
 * The fields of the clock recovery record.
 */
#ifndef DICTIONARY_CLOCK_RECOVERY_H
#define DICTIONARY_CLOCK_RECOVERY_H

#include "row.h"

namespace dictionary::row
{

#define CLOCK(path) DICTIONARY_MEMBER(SMGR_DECODER_CLOCK_RECOVERY_STATS, path)

// Only while the STC follows the PCR.
inline constexpr When tracking = is_one_of("tracking_mode", SMGR_CLOCK_TRACKING_ENABLED, SMGR_CLOCK_TRACKING_ENABLED_LOCK);

inline constexpr std::array clock_rows = {
    flag(CLOCK(TrackingStarted), "tracking_started"),
    counter(CLOCK(SampleCount), "samples").line("Sample Count", debug),
    counter(CLOCK(ReSyncCount), "resyncs").line("ReSync Count"),
    counter(CLOCK(PcrUpdates), "pcr_updates").line("PCR Updates"),
    last(CLOCK(tLastPcrUpdate), "last_pcr_update_time", "pcr_updates").line("PCR Updates"),
    gauge(CLOCK(OldSndClk), "sender_clock").no_metric(),
    gauge(CLOCK(OldRcvClk), "receiver_clock").no_metric(),
    gauge(CLOCK(OldDeltaSnd), "sender_clock_delta"),
    gauge(CLOCK(FilterDeltaSnd), "filtered_sender_clock_delta"),
    gauge(CLOCK(OldDeltaClk), "clock_difference"),
    gauge(CLOCK(FilterDeltaClk), "filtered_clock_difference"),
    gauge(CLOCK(OldPll), "stc_frequency").when(tracking).line("Current STC"),
    gauge(CLOCK(StcClkNominal), "nominal_stc_frequency").line("Nominal STC", debug),
    state(CLOCK(trackingMode), "tracking_mode", states::tracking_mode).line("Tracking Mode").line("Lock Tracking Mode"),
    flag(CLOCK(PllNotSettled), "pll_unsettled").when(tracking),
    gauge(CLOCK(PllSettleTime), "pll_settling_duration").when(tracking).line("Settling Time", debug),
    gauge(CLOCK(curPllAvg), "average_stc_frequency").when(tracking).line("STC Avg (last 2 min)"),
    gauge(CLOCK(curPllMin), "recent_min_stc_frequency").min_of("stc_frequency").when(tracking).line("STC Avg (last 2 min)", debug),
    gauge(CLOCK(curPllMax), "recent_max_stc_frequency").max_of("stc_frequency").when(tracking).line("STC Avg (last 2 min)", debug),
    gauge(CLOCK(curPLLDevHz), "average_stc_deviation_hz").when(tracking).line("STC Avg (last 2 min)", debug),
    gauge(CLOCK(curPLLDevPpm), "average_stc_deviation_ppm").when(tracking).line("STC Avg (last 2 min)").line("Status").no_metric(),
    gauge(CLOCK(curPLLDevPpmNominal), "stc_deviation_ppm").when(tracking).line("Current STC"),
    gauge(CLOCK(curPLLDevPpmFract), "average_stc_deviation_ppm_fraction")
        .when(tracking)
        .line("STC Avg (last 2 min)")
        .line("Status")
        .no_metric(),
    gauge(CLOCK(avgDevHz), "stc_adjustment_hz").when(tracking).line("STC Adj (last 16 min)", debug),
    gauge(CLOCK(avgDevPpm), "stc_adjustment_ppm").when(tracking).line("STC Adj (last 16 min)", debug).no_metric(),
    gauge(CLOCK(avgDevPpmFract), "stc_adjustment_ppm_fraction").when(tracking).line("STC Adj (last 16 min)", debug).no_metric(),
    counter(CLOCK(pcrLateCount), "late_pcrs").line("PCR Late Count", debug),
    extreme(CLOCK(pcrLateMaxValue), "max_pcr_gap").line("No PCR received for", debug),
    counter(CLOCK(pcrJitterErrCount), "pcr_jitter_errors").line("PCR Jitter Err Count", debug),
    gauge(CLOCK(pcrJitterErr), "last_pcr_jitter"),
    max(CLOCK(pcrJitterMaxErrValue), "max_pcr_jitter", "last_pcr_jitter").line("Wrong PCR, deviation", debug),
    gauge(CLOCK(curPcr), "pcr").line("Current PCR", debug).no_metric(),
    gauge(CLOCK(curPcrFpga), "register_pcr").line("Current PCR (reg val)", debug).no_metric(),
    gauge(CLOCK(curPcrFpgaDelta), "pcr_register_difference").line("PCR Delta (Enc vs Reg)", debug),
    gauge(CLOCK(mafDivFactor), "clock_filter_divisor").line("MAF DeltaClk div fact", debug),
    gauge(CLOCK(pcrTsDelta), "timestamp_distance").line("PCR reg Vs TS Delta", debug),
    gauge(CLOCK(pcrTsDeltaAud0), "audio_timestamp_distance_0").metric_name("audio_timestamp_distance", "pair", "1"),
    gauge(CLOCK(pcrTsDeltaAud1), "audio_timestamp_distance_1").metric_name("audio_timestamp_distance", "pair", "2"),
    gauge(CLOCK(pcrTsDeltaAud2), "audio_timestamp_distance_2").metric_name("audio_timestamp_distance", "pair", "3"),
    gauge(CLOCK(pcrTsDeltaAud3), "audio_timestamp_distance_3").metric_name("audio_timestamp_distance", "pair", "4"),
    gauge(CLOCK(pcrTsDeltaAud4), "audio_timestamp_distance_4").metric_name("audio_timestamp_distance", "pair", "5"),
    gauge(CLOCK(pcrTsDeltaAud5), "audio_timestamp_distance_5").metric_name("audio_timestamp_distance", "pair", "6"),
    gauge(CLOCK(pcrTsDeltaAud6), "audio_timestamp_distance_6").metric_name("audio_timestamp_distance", "pair", "7"),
    gauge(CLOCK(pcrTsDeltaAud7), "audio_timestamp_distance_7").metric_name("audio_timestamp_distance", "pair", "8"),
    gauge(CLOCK(pcrTsDeltaKlv), "klv_timestamp_distance"),
    gauge(CLOCK(pcrTsDeltaMinValue), "recent_min_timestamp_distance").min_of("timestamp_distance").line("MinMax PCR Vs TS Delta", debug),
    gauge(CLOCK(pcrTsDeltaMaxValue), "recent_max_timestamp_distance").max_of("timestamp_distance").line("MinMax PCR Vs TS Delta", debug),
    gauge(CLOCK(pcrTsDeltaMinMaxDlyMS), "timestamp_distance_interval").line("MinMax PCR Vs TS Delta", debug),
    min(CLOCK(pcrTsDeltaMinExtValue), "min_timestamp_distance", "timestamp_distance").line("MinMax PCR Vs TS Delta", debug),
    max(CLOCK(pcrTsDeltaMaxExtValue), "max_timestamp_distance", "timestamp_distance").line("MinMax PCR Vs TS Delta", debug),
    gauge(CLOCK(PcrJump), "last_pcr_jump").line("PCR Encoder Jump", debug),
    moment(CLOCK(tLastPcrJump), "last_pcr_jump_time", "last_pcr_jump").line("PCR Encoder Jump", debug),
    max(CLOCK(PcrJumpMaxValue), "max_pcr_jump", "last_pcr_jump").line("PCR Encoder Jump Max", debug),
    moment(CLOCK(tLastPcrJumpMaxValue), "max_pcr_jump_time", "max_pcr_jump").line("PCR Encoder Jump Max", debug),
};

inline constexpr auto clock_recovery = rows_of<SMGR_DECODER_CLOCK_RECOVERY_STATS>("clock_recovery", clock_rows);
static_assert(tile<sizeof(SMGR_DECODER_CLOCK_RECOVERY_STATS)>(clock_recovery));

#undef CLOCK

} // namespace dictionary::row

#endif
