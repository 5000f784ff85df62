/**
 * @file reference_decoder.h
 * libavcodec alone on an elementary stream, with its own parsers: what the chain is compared with, and nothing of the chain in it.
 */
#ifndef TESTS_SOFTDEC_REFERENCE_DECODER_H
#define TESTS_SOFTDEC_REFERENCE_DECODER_H

#include <array>

#include "streams.h"

namespace softdec_tests
{

struct Reference
{
    unsigned long frames = 0;                        // video or audio
    std::array<unsigned long, 3> pictures_of_type{}; // I, P, B
    int width = 0;
    int height = 0;
    int profile = 0;
    int level = 0;
    int primaries = 0;
    int transfer = 0;
    int matrix = 0;
    int sample_rate = 0;
    int channels = 0;
};

/** Decodes the elementary stream of a PID. */
Reference decode_alone(const Bytes& stream, unsigned pid, SMGR_TDEMUX_COMPRESSION_TYPE compression);

/** The bytes of the elementary stream of a PID, one after the other. */
Bytes elementary_stream(const Bytes& stream, unsigned pid);

} // namespace softdec_tests

#endif
