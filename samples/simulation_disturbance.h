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
    /* network */
    double arriving = 1;     /**< share of what is sent that arrives in any form */
    double bunched = 0;      /**< the datagrams come in bunches, so far apart [s] */
    bool hung = false;       /**< the host does not update its records */
    bool calling = false;    /**< the connection is gone and the sender does not answer */
    bool reconnects = false; /**< the connection is made again every eight seconds */
    bool errors = false;     /**< receiving fails now and then */

    /* link */
    double lost = 0;            /**< share lost on the way and sent again or rebuilt in time */
    double gone = 0;            /**< share lost on the way for good */
    double round_trip = 1;      /**< factor on the time to the peer and back */
    bool undecryptable = false; /**< the keys do not fit */
    int key_state = -1;         /**< state of the key exchange; -1 = as it was */
    bool without_fec = false;   /**< no FEC packet arrives */
    bool fec_off = false;       /**< the input is RTP without FEC */
    bool fec_in_vain = false;   /**< nothing was lost since the start */

    /* transport stream */
    double ts_gone = 0;     /**< share of the datagrams that the link delivers and the stream misses: lost before the sender's link */
    double corrupted = 0;   /**< share of the datagrams that carry bit errors */
    bool scrambled = false; /**< the elementary streams are scrambled */
    bool without_video = false;
    bool without_audio = false;
    bool without_klv = false;
    bool late_pts = false; /**< time stamps lie behind the PCR */
    bool demux_stalled = false;
    double demux_overflow = 0;

    /* clock */
    bool without_pcr = false;
    bool pcr_jumps = false; /**< a jump of the PCR every five seconds */
    bool pcr_jitters = false;
    bool unlocked = false;
    long deviation = 0; /**< of the STC, beside what it has [Hz]; 27 Hz are 1 ppm */

    /* framer */
    bool unsupported = false;
    bool format_changes = false; /**< every three seconds */
    double unframed = 0;         /**< share of the pictures that the framer drops */
    bool framer_starved = false;
    bool framer_stalled = false;
    double framer_overflow = 0;

    /* video decoder */
    bool stalled = false; /**< takes pictures and decodes none */
    bool decoder_starved = false;
    bool no_memory = false;
    bool overloaded = false;
    double dropped = 0;   /**< share of the pictures that it drops */
    double concealed = 0; /**< share of the pictures that it conceals */

    /* output */
    double late = 0;             /**< share of the pictures that are sent late */
    double skipped = 0;          /**< share of the pictures that are skipped */
    double output_clock = 1;     /**< speed of the output against the stream */
    bool frozen = false;         /**< the output takes no picture */
    bool output_starved = false; /**< nothing is sent to the output */
    double output_errors = 0;

    /* audio */
    bool audio_stalled = false;
    bool audio_starved = false;
    double audio_errors = 0;
    double audio_skipped = 0;
    bool audio_discontinuous = false;
    int lip_sync = 0; /**< audio shifted against video [ms] */

    /* metadata */
    bool metadata_stalled = false;
    double metadata_dropped = 0;

    /* buffering */
    bool too_small = false;
    bool buffer_stalled = false;
    double late_release = 0; /**< share of the packets that the buffering controller releases late */
    bool too_large = false;
    double overflow = 0; /**< share of the packets that the buffering controller throws away */
    int multisync = 0;   /**< error of the MultiSync mode; 0 = none */
};

} // namespace samples

#endif
