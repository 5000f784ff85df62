/**
 * @file fec_sender.h
 * Makes the FEC of SMPTE ST 2022-1 for RTP packets, and says what of a loss it can bring back.
 */
#ifndef TESTS_SOFTDEC_FEC_SENDER_H
#define TESTS_SOFTDEC_FEC_SENDER_H

#include <set>

#include "streams.h"

namespace softdec_tests
{

/** A matrix. */
struct Matrix
{
    int columns = 5;
    int rows = 5;
    bool row_fec = true; /**< level B; otherwise level A, columns alone */
};

/** Adds FEC to RTP packets: that of a matrix is sent while the next one is. */
std::vector<Arrival> with_fec(const std::vector<Arrival>& media, const Matrix& matrix);

/** Sequence number of an RTP packet. */
std::uint16_t sequence_of(const Arrival& packet);

/** What becomes of media packets that are removed. */
struct Outcome
{
    int recovered = 0;
    int lost = 0;

    bool operator==(const Outcome&) const = default;
};

/**
 * Works it out by sets of numbers: a FEC packet brings back the only one that is missing of those that it names, again and again.
 * @param packets as they are received, without the removed ones
 * @param removed media packets
 */
Outcome outcome_of(const std::vector<Arrival>& packets, std::set<std::uint16_t> removed);

} // namespace softdec_tests

#endif
