/**
 * @file video_framer.h
 * Finds the pictures in a video stream, and keeps the framer record of what they are.
 */
#ifndef SOFTDEC_FRAMER_VIDEO_FRAMER_H
#define SOFTDEC_FRAMER_VIDEO_FRAMER_H

#include <deque>
#include <functional>
#include <optional>

#include "chain/rate_meter.h"
#include "demux/elementary_packet.h"
#include "framer/picture.h"
#include "framer/slice.h"
#include "sessmgr_types.h"

namespace softdec
{

class VideoFramer
{
public:
    using Output = std::function<void(Picture)>;

    VideoFramer(const VirtualClock& clock, SMGR_VFRAMER_STATS& record, Output output)
        : clock_(clock), record_(record), output_(std::move(output))
    {
        record_.enState = SMGR_VFRAMER_STATE_IDLE;
        forget_properties();
    }

    void take(ElementaryPacket packet);

    /** Passes the last picture on when none follows that would show where it ends. */
    void step();

    /** The stream has ended: the last picture is complete. */
    void finish();

    /** Brings what depends on the time up to date. */
    void update();

private:
    void begin_stream(const ElementaryPacket& packet);
    void forget_properties();
    void take_unit(const NalUnit& unit, const ElementaryPacket& packet, std::optional<std::size_t>& cut);
    void take_parameters(const NalUnit& unit);
    bool begins_picture(const NalUnit& unit, const std::optional<Slice>& slice) const;
    void begin_picture(const ElementaryPacket& packet, bool at_start);
    void add_slice(const std::optional<Slice>& slice);
    void count_unit(const NalUnit& unit);
    void complete();
    void count_picture(const Picture& picture);
    void count_structure(const Picture& picture);
    void count_metadata(const PictureMetadata& metadata);
    void take_format(const VideoFormat& format);
    void take_dynamic_range(const VideoFormat& format, const PictureMetadata& metadata);
    void measure_rate(Ticks dts);

    const VirtualClock& clock_;
    SMGR_VFRAMER_STATS& record_;
    Output output_;
    bool h265_ = false;
    bool supported_ = false;
    std::optional<SMGR_TDEMUX_COMPRESSION_TYPE> compression_;
    ParameterSets sets_;
    std::optional<VideoFormat> format_;
    std::optional<SequenceParameters> sequence_;

    Picture picture_; // that goes on
    bool has_slices_ = false;
    Nanoseconds last_piece_ = 0; // when the last packet came
    std::optional<Slice> first_slice_;
    bool pts_taken_ = false; // the time stamps of the packet that goes on belong to a picture already
    bool started_ = false;   // a key picture has come
    unsigned pictures_since_key_ = 0;
    unsigned b_in_a_row_ = 0;
    std::deque<Ticks> dts_; // of the last seconds
    RateMeter bits_;
};

/** Chroma format and depth of a format as the record has them. */
SMGR_VIDEO_COLOR_TYPE color_type(const VideoFormat& format);

} // namespace softdec

#endif
