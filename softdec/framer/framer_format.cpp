#include "framer/video_framer.h"

namespace softdec
{

namespace
{

constexpr Ticks rate_window = 2 * ticks_per_second;

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

void VideoFramer::measure_rate(Ticks dts)
{
    if (!dts_.empty() && (dts <= dts_.back() || dts - dts_.back() > rate_window)) dts_.clear();
    dts_.push_back(dts);
    while (dts_.back() - dts_.front() > rate_window) dts_.pop_front();
    if (dts_.size() < 2) return;
    const double rate = static_cast<double>(dts_.size() - 1) * ticks_per_second / static_cast<double>(dts_.back() - dts_.front());
    record_.tCounters.fInputFrameRate = static_cast<float>(rate);
    if (!record_.tCurrentProperties.bFrameRateFoundInStream) record_.tCurrentProperties.fFrameRate = static_cast<float>(rate);
}

} // namespace softdec
