/**
 * @file living.h
 * Snapshots of living samples.
 */
#ifndef TESTS_SAMPLES_LIVING_H
#define TESTS_SAMPLES_LIVING_H

#include <chrono>

#include "simulation.h"
#include "snapshot.h"

inline constexpr samples::Simulation::Moment start{std::chrono::seconds(1794830400)};

/** The records of a simulation as a host would publish them, of all components and every field. */
inline records::Snapshot snapshot_of(const samples::Simulation& simulation)
{
    const SAMPLES_RECORDS& records = simulation.records();
    records::Snapshot snapshot;
    snapshot.decoder = "decoder-1";
    snapshot.instance = records::Instance{.id = {1, 2, 3}, .started_at = start.time_since_epoch().count()};
    snapshot.taken_at = simulation.now().time_since_epoch().count();
    snapshot.present.set();
    snapshot.records = {.tdemux = records.tTDemux,
                        .vframer = records.tVFramer,
                        .vdecoder = records.tVideoDecoder,
                        .audio = records.tAudio,
                        .metadata = records.tMetadata,
                        .buffering = records.tBuffering,
                        .clock_recovery = records.tClockRecovery,
                        .usage = records.tUsage};
    return snapshot;
}

#endif
