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
#include "framer/mpeg_headers.h"
#include "framer/picture.h"
#include "framer/slice.h"
#include "framer/unit_joiner.h"
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
    /** What a packet says of the first picture that begins in it. */
    struct Origin
    {
        std::optional<Ticks> pts;
        std::optional<Ticks> dts;
        TimeBase time_base = {};
        bool damaged = false;
    };

    bool is_h265() const { return syntax_ == VideoSyntax::h265; }
    bool is_mpeg() const { return syntax_ == VideoSyntax::mpeg; }
    void begin_stream(const ElementaryPacket& packet);
    void forget_properties();
    void take_piece(const UnitJoiner::Piece& piece);
    std::optional<Slice> slice_of(const NalUnit& unit);
    void take_parameters(const NalUnit& unit);
    bool begins_picture(const NalUnit& unit, const std::optional<Slice>& slice) const;
    void begin_picture(Origin& origin);
    void add_slice(const std::optional<Slice>& slice);
    void count_unit(const NalUnit& unit);
    void complete();
    bool is_decodable(Picture& picture);
    bool comes_before_first(const Picture& picture) const;
    void count_picture(const Picture& picture);
    void count_structure(const Picture& picture);
    void count_metadata(const PictureMetadata& metadata);
    void take_format(const VideoFormat& format);
    void take_dynamic_range(const VideoFormat& format, const PictureMetadata& metadata);
    void measure_rate(Ticks dts);
    void set_rate(Picture& picture) const;
    double rate_of(const VideoFormat& format) const;

    const VirtualClock& clock_;
    SMGR_VFRAMER_STATS& record_;
    Output output_;
    std::optional<VideoSyntax> syntax_; // nothing = the coding is not supported
    std::optional<SMGR_TDEMUX_COMPRESSION_TYPE> compression_;
    ParameterSets sets_;
    MpegHeaders mpeg_;
    std::optional<VideoFormat> format_;
    std::optional<SequenceParameters> sequence_;

    UnitJoiner joiner_;
    Origin now_;             // the last packet
    Origin held_;            // that in which what the joiner holds back begins
    bool unaligned_ = false; // pictures go on from one packet to the next
    Picture picture_;        // that goes on
    bool has_slices_ = false;
    Nanoseconds last_piece_ = 0; // when the last packet came
    std::optional<Slice> first_slice_;
    DisplayOrder order_;
    bool started_ = false;               // decoding has begun
    bool before_first_ = false;          // pictures may come that are shown before the one that decoding began with
    std::optional<Ticks> first_to_show_; // time of that one
    unsigned pictures_since_key_ = 0;
    unsigned b_in_a_row_ = 0;
    /** A picture with a time. */
    struct Timed
    {
        Ticks dts;
        std::uint64_t number; // of pictures so far
    };
    std::deque<Timed> timed_; // of the last seconds
    RateMeter bits_;
};

/** Chroma format and depth of a format as the record has them. */
SMGR_VIDEO_COLOR_TYPE color_type(const VideoFormat& format);

} // namespace softdec

#endif
