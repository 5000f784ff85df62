#include <algorithm>
#include <vector>

#include "clock/line_fit.h"
#include "framer/video_framer.h"

namespace softdec
{

namespace
{

/** Structures of ITU-T H.264, table D-1, with the first field again. */
constexpr unsigned top_field_twice = 5;
constexpr unsigned bottom_field_twice = 6;

constexpr Ticks rate_window = 2 * ticks_per_second;

/** So many are kept of pictures that are rarer. */
constexpr std::size_t least_pictures = 3;

/** No picture is shown for longer. */
constexpr Ticks longest_shown = 20 * ticks_per_second;

/** So many pictures show their rate, and fewer if they take so long. */
constexpr std::size_t enough_pictures = 8;
constexpr Ticks long_enough = ticks_per_second;

/** Codes of H.273 that are of the ordinary kind of dynamic range. */
SMGR_VFRAMER_HDR_TYPE dynamic_range(unsigned transfer)
{
    switch (transfer)
    {
    case 2: return SMGR_VFRAMER_HDR_TYPE_UNSPECIFIED;
    case 16: return SMGR_VFRAMER_HDR_TYPE_PQ;
    case 18: return SMGR_VFRAMER_HDR_TYPE_HLG;
    default: return SMGR_VFRAMER_HDR_TYPE_SDR;
    }
}

} // namespace

SMGR_VIDEO_COLOR_TYPE color_type(const VideoFormat& format)
{
    const unsigned depth = std::max(format.luma_depth, format.chroma_depth);
    switch (format.chroma_format)
    {
    case 0: return SMGR_VIDEO_COLOR_TYPE_MONOCHROME;
    case 1:
        return depth == 8 ? SMGR_VIDEO_COLOR_TYPE_420_8BIT : depth == 10 ? SMGR_VIDEO_COLOR_TYPE_420_10BIT : SMGR_VIDEO_COLOR_TYPE_UNKNOWN;
    case 2:
        return depth == 8 ? SMGR_VIDEO_COLOR_TYPE_422_8BIT : depth == 10 ? SMGR_VIDEO_COLOR_TYPE_422_10BIT : SMGR_VIDEO_COLOR_TYPE_UNKNOWN;
    default: return SMGR_VIDEO_COLOR_TYPE_444;
    }
}

void VideoFramer::forget_properties()
{
    record_.tCurrentProperties = {};
    record_.tCurrentProperties.colour_primaries = 2;
    record_.tCurrentProperties.transfer_characteristics = 2;
    record_.tCurrentProperties.matrix_coefficients = 2;
    if (compression_) return;
    record_.tPreviousProperties = record_.tCurrentProperties;
}

void VideoFramer::take_format(const VideoFormat& format)
{
    if (format_ == format) return;
    auto& counters = record_.tCounters;
    auto& properties = record_.tCurrentProperties;
    const std::time_t now = clock_.seconds();
    if (format_)
    {
        ++counters.nNumFormatTransitions;
        counters.tLastFormatTransition = now;
        record_.tPreviousProperties = properties;
        forget_properties();
        properties.enCompressionType = record_.tPreviousProperties.enCompressionType;
    }
    format_ = format;
    properties.enColorType = color_type(format);
    properties.nProfile = format.profile;
    properties.nLevel = format.level;
    properties.nWidth = static_cast<int>(format.width());
    properties.nHeight = static_cast<int>(format.height());
    properties.fFrameRate = static_cast<float>(format.frame_rate);
    properties.bFrameRateFoundInStream = format.frame_rate > 0;
    properties.colour_primaries = format.primaries;
    properties.transfer_characteristics = format.transfer;
    properties.matrix_coefficients = format.matrix;
    switch (properties.enColorType)
    {
    case SMGR_VIDEO_COLOR_TYPE_420_8BIT:
        ++counters.nNum420_8bitColortype;
        counters.tLast420_8bitColortype = now;
        break;
    case SMGR_VIDEO_COLOR_TYPE_420_10BIT:
        ++counters.nNum420_10bitColortype;
        counters.tLast420_10bitColortype = now;
        break;
    case SMGR_VIDEO_COLOR_TYPE_422_8BIT:
        ++counters.nNum422_8bitColortype;
        counters.tLast422_8bitColortype = now;
        break;
    case SMGR_VIDEO_COLOR_TYPE_422_10BIT:
        ++counters.nNum422_10bitColortype;
        counters.tLast422_10bitColortype = now;
        break;
    default:
        ++counters.nNumUnknownColortype;
        counters.tLastUnknownColortype = now;
        break;
    }
}

void VideoFramer::take_dynamic_range(const VideoFormat& format, const PictureMetadata& metadata)
{
    auto& properties = record_.tCurrentProperties;
    // HLG may be announced as the preferred transfer of a stream that older receivers take for an ordinary one.
    if (metadata.alternative_transfer || properties.enHDRTypeInStream == SMGR_VFRAMER_HDR_TYPE_UNSPECIFIED)
        properties.enHDRTypeInStream = dynamic_range(metadata.alternative_transfer.value_or(format.transfer));
    properties.enHDRType = properties.enHDRTypeInStream; // the output follows the stream
}

/** Not each picture need have a time: the others are counted. A pause between pictures that were closer is not of their rate. */
void VideoFramer::measure_rate(Ticks dts)
{
    if (!timed_.empty())
    {
        const Ticks step = dts - timed_.back().dts;
        const Ticks usual = timed_.size() > 1 ? timed_.back().dts - timed_[timed_.size() - 2].dts : longest_shown;
        if (step <= 0 || step > longest_shown || step > std::max(rate_window, 3 * usual)) timed_.clear();
    }
    timed_.push_back({.dts = dts, .number = record_.tCounters.nNumOutputFrames});
    while (timed_.size() > least_pictures && timed_.back().dts - timed_.front().dts > rate_window) timed_.pop_front();
    if (timed_.size() < 2) return;
    const bool has_fields = sequence_ && sequence_->field_pictures;
    const double frames = static_cast<double>(timed_.back().number - timed_.front().number) / (has_fields ? 2 : 1);
    const double rate = frames * ticks_per_second / static_cast<double>(timed_.back().dts - timed_.front().dts);
    record_.tCounters.fInputFrameRate = static_cast<float>(rate);
    if (!record_.tCurrentProperties.bFrameRateFoundInStream) record_.tCurrentProperties.fFrameRate = static_cast<float>(rate);
}

/** Films are shown for two and three fields in turn, which counts where the rate is that of the frames that they make. */
void VideoFramer::set_rate(Picture& picture) const
{
    if (!picture.format)
    {
        picture.rate = record_.tCounters.fInputFrameRate;
        return;
    }
    picture.rate = rate_of(*picture.format);
    const auto structure = picture.metadata.picture_structure;
    const bool has_third_field = structure == top_field_twice || structure == bottom_field_twice;
    if (has_third_field && picture.rate == picture.format->frame_rate) picture.shown_fields = 3;
    if (sequence_ && sequence_->field_pictures) picture.shown_fields = 1;
}

/** The rate that is signalled, but for one that is too high: some count fields or ticks. */
double VideoFramer::rate_of(const VideoFormat& format) const
{
    const double measured = record_.tCounters.fInputFrameRate;
    const double signalled = format.frame_rate;
    constexpr double too_high = 1.6; // films are shown for two and three fields in turn
    if (signalled <= 0 || signalled > 1000) return measured;
    const bool is_measured =
        timed_.size() >= enough_pictures || (timed_.size() > 1 && timed_.back().dts - timed_.front().dts >= long_enough);
    if (!is_measured || signalled < too_high * measured) return signalled;
    // Pictures that are missing are no lower rate.
    std::vector<double> periods;
    for (std::size_t i = 1; i < timed_.size(); ++i)
        periods.push_back(static_cast<double>(timed_[i].dts - timed_[i - 1].dts) /
                          static_cast<double>(timed_[i].number - timed_[i - 1].number));
    const double usual = ticks_per_second / median(periods);
    return signalled < too_high * usual ? signalled : usual;
}

} // namespace softdec
