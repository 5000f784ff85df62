/**
 * @file encoder.h
 * Codes moving pictures and sound with libavcodec, so that tests have streams of many shapes without keeping them.
 */
#ifndef TESTS_SOFTDEC_MAKER_ENCODER_H
#define TESTS_SOFTDEC_MAKER_ENCODER_H

#include <vector>

#include "clock/ticks.h"
#include "streams.h"

extern "C" {
#include <libavutil/pixfmt.h>
}

namespace softdec_tests
{

/** A coded picture, or a frame of sound. */
struct CodedUnit
{
    softdec::Ticks pts = 0; /**< from 0 on */
    softdec::Ticks dts = 0; /**< may begin below 0 */
    Bytes data = {};
};

struct VideoCoding
{
    const char* encoder = "libx264"; /**< as libavcodec names it */
    int width = 160;
    int height = 96;
    int rate = 25; /**< pictures a second are rate / per */
    int per = 1;
    int bits = 200'000; /**< a second */
    int group = 25;     /**< pictures from one key picture to the next */
    int b_pictures = 2; /**< in a row, at most */
    bool interlaced = false;
    AVPixelFormat pixels = AV_PIX_FMT_YUV420P;
    const char* options = ""; /**< more of the encoder's own: NAME=VALUE,... */
    int frames = 240;         /**< pictures in all */
};

struct AudioCoding
{
    const char* encoder = "aac";
    int sample_rate = 48'000; /**< [Hz] */
    int channels = 2;
    int bits = 64'000; /**< a second */
    double seconds = 9.6;
};

/** Coded pictures, in the order of their coding. @throw std::runtime_error if this libavcodec cannot code so */
std::vector<CodedUnit> encode(const VideoCoding& coding);

/** Coded frames of sound; AAC as ADTS (ISO/IEC 14496-3, 1.A.2.2). @throw std::runtime_error as above */
std::vector<CodedUnit> encode(const AudioCoding& coding);

/** The same units so many times, with time going on: they follow on each other as far as decoders see. */
std::vector<CodedUnit> again(const std::vector<CodedUnit>& units, int times);

/** The same frames of AAC in LATM with LOAS synchronisation (ISO/IEC 14496-3, 1.7.2 and 1.7.3). @param frames ADTS, 48 kHz stereo */
std::vector<CodedUnit> as_latm(const std::vector<CodedUnit>& frames);

} // namespace softdec_tests

#endif
