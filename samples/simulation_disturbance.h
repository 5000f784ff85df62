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
    double arriving = 1; /**< share of what is sent that arrives in any form */
    double bunched = 0;  /**< the datagrams come in bunches, so far apart [s] */
    bool hung = false;   /**< the host does not update its records */

    /* link */
    double lost = 0;            /**< share lost on the way and sent again or rebuilt in time */
    double gone = 0;            /**< share lost on the way for good */
    double round_trip = 1;      /**< factor on the time to the peer and back */
    bool undecryptable = false; /**< the keys do not fit */
    int key_state = -1;         /**< state of the key exchange; -1 = as it was */
    bool without_fec = false;   /**< no FEC packet arrives */
    bool fec_in_vain = false;   /**< nothing was lost since the start */

    /* transport stream */
    double ts_gone = 0;     /**< share of the datagrams that the link delivers and the stream misses: lost before the sender's link */
    double corrupted = 0;   /**< share of the datagrams that carry bit errors */
    bool scrambled = false; /**< the elementary streams are scrambled */
    bool without_video = false;
    bool without_audio = false;
    bool without_klv = false;
    bool late_pts = false; /**< time stamps lie behind the PCR */
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

    /* video decoder */
    bool stalled = false; /**< takes pictures and decodes none */
    bool no_memory = false;
    bool overloaded = false;
    double dropped = 0;   /**< share of the pictures that it drops */
    double concealed = 0; /**< share of the pictures that it conceals */

    /* output */
    double late = 0;     /**< share of the pictures that are sent late */
    double skipped = 0;  /**< share of the pictures that are skipped */
    double replayed = 0; /**< share of the frames that are shown again though there are new ones */
    bool frozen = false; /**< the output takes no picture */

    /* audio */
    bool audio_stalled = false;
    double audio_errors = 0;
    double audio_skipped = 0;
    bool audio_discontinuous = false;
    int lip_sync = 0; /**< audio shifted against video [ms] */

    /* metadata */
    bool metadata_stalled = false;

    /* buffering */
    bool too_small = false;
    bool too_large = false;
    double overflow = 0; /**< share of the packets that the buffering controller throws away */
    int multisync = 0;   /**< error of the MultiSync mode; 0 = none */
};

} // namespace samples

#endif
