/**
 * @file capture.h
 * Keeps the records of a chain in a capture file, one snapshot for each second of the chain's clock.
 */
#ifndef SOFTDEC_CHAIN_CAPTURE_H
#define SOFTDEC_CHAIN_CAPTURE_H

#include <array>
#include <cstdint>
#include <string>

#include "capture_writer.h"
#include "chain/chain.h"
#include "chain/not_measured.h"

namespace softdec
{

/** All of it throws capture::Error. */
class Capture
{
public:
    /**
     * Opens the file, to append where there is one.
     * @param decoder name of the decoder; empty = none
     */
    Capture(const std::string& path, const std::string& decoder, const Abilities& abilities);

    /** Goes with the chain to each whole second up to a moment, and takes a snapshot there. */
    void reach(Chain& chain, Nanoseconds moment);

    /** Takes the last snapshot, of a chain that has come to its end, and ends the capture in order. */
    void finish(Chain& chain);

private:
    void append(Chain& chain);

    capture::Writer writer_;
    std::string decoder_;
    Abilities abilities_;
    Nanoseconds began_ = 0; /**< when the chain's clock began; 0 = it has not */
    Nanoseconds due_ = 0;
};

} // namespace softdec

#endif
