/**
 * @file watched_decoder.h
 * A decoder that is looked at each second: how it stands, what is wrong with it, and its last minutes.
 */
#ifndef SERVER_WATCHED_DECODER_H
#define SERVER_WATCHED_DECODER_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "history.h"
#include "origin.h"
#include "running_diagnosis.h"
#include "sight.h"

namespace server
{

/** A decoder that is looked at again and again. Thread-safe. */
class WatchedDecoder
{
public:
    explicit WatchedDecoder(std::unique_ptr<Origin> origin);

    /** How it stands, at most `freshness` ago. */
    SightPointer sight();

    /** Looks at it: once a second. @param history_share memory for its past [bytes] */
    void look(std::size_t history_share);

    /** Since when it has not been there any more. */
    std::optional<std::chrono::steady_clock::time_point> gone_since() const;

    /** What is wrong with it, as JSON of decstats-findings(5) with the findings that are over. @return empty = not looked at yet */
    std::string findings() const;

    /** What is wrong with it. @return nothing = not looked at yet */
    std::optional<diagnosis::Result> diagnosis() const;

    /** Hands out the snapshots in memory of a time, both ends included [ns since the epoch, UTC]. */
    void read_history(std::int64_t from, std::int64_t to, const std::function<void(const records::Snapshot&)>& take) const;

    /** Moment of the first snapshot in memory [ns since the epoch, UTC]; nothing = there is none. */
    std::optional<std::int64_t> first_moment() const;

    /** The capture file that holds what is older; empty = none. */
    std::string capture_file() const;

private:
    const SightPointer& refresh(std::chrono::nanoseconds age);

    mutable std::mutex mutex_;
    std::unique_ptr<Origin> origin_;
    SightPointer sight_;
    std::chrono::steady_clock::time_point seen_at_;
    std::optional<std::chrono::steady_clock::time_point> gone_since_;
    RunningDiagnosis diagnosis_;
    History history_;
};

} // namespace server

#endif
