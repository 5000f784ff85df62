/**
 * @file simulation.h
 * A decoder that lives: the records of a scenario, moved on in time. Counters advance at the rates that the records
 * themselves tell, gauges jitter, extremes follow their gauges, and what one stage passes on is what the next receives.
 *
 * The same scenario, seed, start and steps give the same bytes. No clock is read: whoever steps it keeps the time.
 */
#ifndef SIMULATION_H
#define SIMULATION_H

#include <chrono>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "samples.h"

namespace samples
{

struct Disturbance;

/** Something that goes wrong. */
struct Fault
{
    const char* name;              /**< name, as srt-loss: lower case, digits and hyphens */
    const char* scenario;          /**< scenario that it can be seen in */
    const char* summary;           /**< what happens, one line without a final stop */
    void (*disturb)(Disturbance&); /**< adds what it does to a moment */
};

/** All faults, from the network to the host. */
std::span<const Fault> faults();

/** Finds a fault. @return the fault, or NULL if there is none of that name */
const Fault* find_fault(std::string_view name);

/** A healthy stream unlike the scenarios' own. Its counts so far are those of the scenario, its rates are its own. */
struct Variant
{
    std::string_view scenario = "live-srt-1080i"; /**< a healthy scenario: what is not given here is as there */
    unsigned bit_rate = 0;                        /**< of the transport stream [bit/s]; 0 = as the scenario */
    unsigned picture_rate_numerator = 0;          /**< [pictures/s]; 0 = as the scenario */
    unsigned picture_rate_denominator = 1;        /**< 1001 for the rates of 60 Hz countries */
    bool video = true;                            /**< false: the stream has none */
    bool audio = true;                            /**< false: the stream has none */
};

/** A living decoder. A plain value: a copy lives on by itself. */
class Simulation
{
public:
    using Moment = std::chrono::sys_time<std::chrono::nanoseconds>; /**< UTC */

    /**
     * A decoder in a scenario.
     * @param scenario a name of samples_scenarios; "extreme" stands still
     * @param seed     what jitters follows from it
     * @param start    the moment that the records are of at first
     * @throws std::invalid_argument if there is no such scenario
     */
    Simulation(std::string_view scenario, std::uint64_t seed, Moment start);

    /** A healthy decoder with a stream of its own. @throws std::invalid_argument if there is no such scenario */
    Simulation(const Variant& variant, std::uint64_t seed, Moment start);

    /**
     * Lets something go wrong.
     * @param fault a name of faults()
     * @param after from now on
     * @param lasts how long; it stays by default
     * @throws std::invalid_argument if there is no such fault
     */
    void inject(std::string_view fault, std::chrono::nanoseconds after = {}, std::chrono::nanoseconds lasts = std::chrono::hours(1000000));

    /** Moves the records on. @param duration not negative */
    void advance(std::chrono::nanoseconds duration);

    /** The records now. */
    const SAMPLES_RECORDS& records() const { return r_; }

    /** The moment that they are of. */
    Moment now() const { return now_; }

private:
    /** Packets between two places of the chain. */
    struct Queue
    {
        long now = 0;
        long usual = 0;
        long pass(long in, long wobble);
    };

    /** An elementary stream on its way. */
    struct Flow
    {
        std::size_t source = 0; /**< place among the demux's streams and the buffering controller's channels */
        int pair = -1;          /**< place among the audio pairs; -1 = not audio */
        double rate = 0;        /**< [packets/s] */
        double bytes = 0;       /**< of a packet, on average */
        double ticks = 0;       /**< of 90 kHz that a packet lasts */
        long received = 0;      /**< since the simulation began */
        bool is_listed = true;  /**< by the program's table */
        double due_in = 0;
        double due_out = 0;
        double due_played = 0;
        bool filling = false; /**< the buffer has run empty and fills again */
        Queue held;           /**< by the buffering controller */
        double held_bytes = 0;
        Queue decoding;
        Queue queued;
        long pts_at_start = 0;
        long played_at_start = 0; /**< time stamp */
        long played = 0;
    };

    struct Injection
    {
        const Fault* fault;
        std::chrono::nanoseconds from;
        std::chrono::nanoseconds until;
    };

    void learn();
    void learn_flows();
    void reshape(const Variant& variant);
    void remove_video(const SAMPLES_RECORDS& idle);
    void remove_audio(const SAMPLES_RECORDS& idle);
    void sum_flows();

    Disturbance disturbance() const;
    void tick(std::chrono::nanoseconds duration);
    void wait_for_name();
    void suffer();
    void receive(const Disturbance& d, double seconds);
    long link(const Disturbance& d, long sent, double seconds);
    long srt(const Disturbance& d, long sent, double seconds);
    long fec(const Disturbance& d, long sent);
    void read_tables(const Disturbance& d);
    void demultiplex(const Disturbance& d, double seconds);
    void clocks(const Disturbance& d, double seconds);
    void buffer(const Disturbance& d, double seconds);
    long release(const Disturbance& d, Flow& flow, double seconds);
    void count_framed(const Disturbance& d, long framed, long key_frames);
    long frame(const Disturbance& d, long pictures, double bytes);
    void decode(const Disturbance& d, long pictures, double seconds);
    void show(const Disturbance& d, long pictures, double seconds);
    void play(const Disturbance& d, Flow& flow, long frames, double seconds);
    void sum_audio();
    void metadata(const Disturbance& d, int type, long in, long out, long written, long freed);
    void timecode(const Disturbance& d);

    std::uint64_t random();
    long noise(long range);
    double fraction();
    bool chance(double per_second, double seconds);
    bool is_every(std::chrono::nanoseconds period) const;
    int type_of(const Flow& flow) const;
    static long share(double part, long of, double& carry);

    SAMPLES_RECORDS r_ = {};
    Moment now_;
    std::uint64_t random_;
    bool stands_still_ = false;
    bool flows_ = false; /**< a stream is received and decoded */
    bool fec_ = false;
    bool srt_ = false;
    std::chrono::nanoseconds elapsed_ = {};
    std::chrono::nanoseconds tick_ = {};
    time_t now_s_ = 0;

    std::vector<Flow> streams_;
    std::vector<Injection> injections_;

    unsigned long up_time_at_start_ = 0;
    double datagram_rate_ = 0;
    double datagram_bytes_ = 0;
    double due_datagrams_ = 0;
    double due_acks_ = 0;
    double due_fec_ = 0;
    double due_pcrs_ = 0;
    double due_stc_updates_ = 0;
    double pcr_rate_ = 0;
    double silence_ = 0; /**< without a datagram so far [s] */
    double gone_ = 0;    /**< share of the datagrams of this tick that is missing for good */
    long pcrs_ = 0;      /**< since the simulation began */
    unsigned long pcr_at_start_ = 0;
    long stc_behind_ = 0;
    long stc_drift_ = 0;
    Queue reordering_;
    Queue undisplayed_;
    double due_shown_ = 0;
    double due_queries_ = 0;
    long shown_ = 0;
    long shown_at_start_ = 0; /**< time stamp */
    long timecode_at_start_ = 0;
    bool starved_ = false;
    double carries_[24] = {};
    SAMPLES_RECORDS first_ = {}; /**< what gauges jitter around */
};

} // namespace samples

#endif
