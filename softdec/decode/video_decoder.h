/**
 * @file video_decoder.h
 * Decodes the pictures, and keeps the video decoder's record up to the display.
 */
#ifndef SOFTDEC_DECODE_VIDEO_DECODER_H
#define SOFTDEC_DECODE_VIDEO_DECODER_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>

#include "chain/window.h"
#include "decode/codec.h"
#include "decode/decoded_picture.h"
#include "decode/load_meter.h"
#include "framer/picture.h"
#include "sessmgr_types.h"

namespace softdec
{

class VideoDecoder
{
public:
    using Output = std::function<void(const DecodedPicture&)>;

    VideoDecoder(const VirtualClock& clock, SMGR_VCUDEC_STATS& record, bool live, Output output);

    /** Takes a picture. @param compression of its stream */
    void take(Picture picture, SMGR_TDEMUX_COMPRESSION_TYPE compression);

    /** The stream has ended: what waits for its order comes out. */
    void finish();

    /** Brings what depends on the time up to date. */
    void update();

private:
    /** What is known of a picture that is being decoded. */
    struct Pending
    {
        std::optional<Ticks> pts;
        std::optional<DisplayPlace> place;
        unsigned time_base;
        bool damaged;
        bool cut;
        bool failed; // the decoder has refused it, and what comes out of it may be nothing
        PictureType type;
        unsigned shown_fields;
        Nanoseconds taken;
    };

    bool prepare(const Picture& picture, SMGR_TDEMUX_COMPRESSION_TYPE compression);
    void describe(const Picture& picture);
    void check_order(const Picture& picture);
    void send(Picture& picture);
    void take_frame();
    void drop(PictureType type);
    void give_up_first();

    const VirtualClock& clock_;
    SMGR_VCUDEC_STATS& record_;
    Output output_;
    LoadMeter load_;
    CodecContext decoder_;
    Frame frame_{av_frame_alloc()};
    Packet packet_{av_packet_alloc()};
    std::optional<SMGR_TDEMUX_COMPRESSION_TYPE> compression_;
    std::optional<VideoFormat> format_;
    std::int64_t number_ = 0; // of the last picture taken
    std::map<std::int64_t, Pending> pending_;
    Ticks period_ = ticks_per_second / 25;
    bool recovered_ = false; // a picture has come out whole
    std::optional<Ticks> last_dts_;
    unsigned untimed_ = 0; // pictures since then
    unsigned time_base_ = 0;
    Window output_delay_{10 * second};
    Window reorder_length_{10 * second};
};

} // namespace softdec

#endif
