/**
 * @file simulation_disturbance.h
 * What goes wrong at one moment of a simulation, by place in the chain. As it is made, nothing does. Shares are of 1.
 */
#ifndef SIMULATION_DISTURBANCE_H
#define SIMULATION_DISTURBANCE_H

namespace samples
{

struct Disturbance
{
    /* ---- shares, factors and times ---- */
    // network
    double arriving = 1; /**< share of what is sent that arrives in any form */
    double bunched = 0;  /**< the datagrams come in bunches, so far apart [s] */
    // link
    double lost = 0;       /**< share lost on the way and sent again or rebuilt in time */
    double gone = 0;       /**< share lost on the way for good */
    double round_trip = 1; /**< factor on the time to the peer and back */
    // transport stream
    double ts_gone = 0;   /**< share of the datagrams that the link delivers and the stream misses: lost before the sender's link */
    double corrupted = 0; /**< share of the datagrams that carry bit errors */
    double demux_overflow = 0;
    // framer
    double unframed = 0; /**< share of the pictures that the framer drops */
    double framer_overflow = 0;
    // video decoder
    double dropped = 0;   /**< share of the pictures that it drops */
    double concealed = 0; /**< share of the pictures that it conceals */
    // output
    double late = 0;         /**< share of the pictures that are sent late */
    double skipped = 0;      /**< share of the pictures that are skipped */
    double output_clock = 1; /**< speed of the output against the stream */
    double output_errors = 0;
    // audio
    double audio_errors = 0;
    double audio_skipped = 0;
    // metadata
    double metadata_dropped = 0;
    // buffering
    double late_release = 0; /**< share of the packets that the buffering controller releases late */
    double overflow = 0;     /**< share of the packets that the buffering controller throws away */

    /* ---- numbers ---- */
    // link
    int key_state = -1; /**< state of the key exchange; -1 = as it was */
    // clock
    long deviation = 0; /**< of the STC, beside what it has [Hz]; 27 Hz are 1 ppm */
    // audio
    int lip_sync = 0; /**< audio shifted against video [ms] */
    // buffering
    int multisync = 0; /**< error of the MultiSync mode; 0 = none */

    /* ---- whether ---- */
    // network
    bool hung = false;       /**< the host does not update its records */
    bool calling = false;    /**< the connection is gone and the sender does not answer */
    bool reconnects = false; /**< the connection is made again every eight seconds */
    bool errors = false;     /**< receiving fails now and then */
    // link
    bool undecryptable = false; /**< the keys do not fit */
    bool without_fec = false;   /**< no FEC packet arrives */
    bool fec_off = false;       /**< the input is RTP without FEC */
    bool fec_in_vain = false;   /**< nothing was lost since the start */
    // transport stream
    bool scrambled = false; /**< the elementary streams are scrambled */
    bool without_video = false;
    bool without_audio = false;
    bool without_klv = false;
    bool late_pts = false; /**< time stamps lie behind the PCR */
    bool demux_stalled = false;
    bool without_tables = false;  /**< neither PAT nor PMT comes; what was found by them is still followed */
    bool without_program = false; /**< neither PAT nor PMT comes, and what was found by them is given up */
    bool video_unlisted = false;  /**< the program has no video any more */
    bool audio_unlisted = false;  /**< the program has no audio any more */
    // clock
    bool without_pcr = false;
    bool pcr_jumps = false; /**< a jump of the PCR every five seconds */
    bool pcr_jitters = false;
    bool unlocked = false;
    // framer
    bool unsupported = false;
    bool format_changes = false; /**< every three seconds */
    bool framer_starved = false;
    bool framer_stalled = false;
    // video decoder
    bool stalled = false; /**< takes pictures and decodes none */
    bool decoder_starved = false;
    bool no_memory = false;
    bool overloaded = false;
    // output
    bool frozen = false;         /**< the output takes no picture */
    bool output_starved = false; /**< nothing is sent to the output */
    // audio
    bool audio_stalled = false;
    bool audio_starved = false;
    bool audio_discontinuous = false;
    // metadata
    bool metadata_stalled = false;
    // buffering
    bool too_small = false;
    bool buffer_stalled = false;
    bool too_large = false;
};

} // namespace samples

#endif
