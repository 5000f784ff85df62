/**
 * @file streams.h
 * The test streams as datagrams with arrival times, and a chain run over them.
 */
#ifndef TESTS_SOFTDEC_STREAMS_H
#define TESTS_SOFTDEC_STREAMS_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "chain/chain.h"
#include "input/source.h"

namespace softdec_tests
{

using Bytes = std::vector<std::uint8_t>;

/** What arrives at one moment. */
struct Arrival
{
    softdec::Channel channel = softdec::Channel::media;
    softdec::Nanoseconds moment = 0;
    Bytes bytes;
};

/** A moment to begin streams at. */
inline constexpr softdec::Nanoseconds beginning = 1'700'000'000 * softdec::second;

/** The name of a test stream's tests: h264_aac_ts. */
std::string test_name(std::string stream);

/** The bytes of a test stream. */
Bytes read_stream(const std::string& name);

/** A transport stream again and again, with its clock, time stamps and continuity counters going on. */
class Passes
{
public:
    explicit Passes(Bytes stream);

    Bytes next();

    /** How long a pass takes [90 kHz ticks]. */
    std::int64_t length() const { return length_; }

private:
    Bytes stream_;
    std::int64_t length_;
    std::int64_t count_ = 0;
    std::map<unsigned, unsigned> counters_;
};

/** Some passes of a transport stream. */
Bytes repeat(const Bytes& stream, int times);

/** Packs a transport stream with a PCR into UDP datagrams, each arriving when the sender's clock, nominal, has come to it. */
std::vector<Arrival> datagrams(const Bytes& stream);

/** The same in RTP packets. */
std::vector<Arrival> rtp(const std::vector<Arrival>& datagrams, std::uint16_t first_sequence = 1000);

/** What arrives in a capture. */
std::vector<Arrival> read_capture(const std::string& name);

/** A chain that has run to its end. */
std::unique_ptr<softdec::Chain> run(const std::vector<Arrival>& arrivals, bool decode = true);

/** A chain that has read a file without arrival times to its end. */
std::unique_ptr<softdec::Chain> run_file(const Bytes& stream, bool decode = true);

} // namespace softdec_tests

#endif
