#include <algorithm>

#include "decode/video_decoder.h"
#include "video_formats.h"

namespace softdec
{

/** What the record says of the pictures themselves. */
void VideoDecoder::describe(const Picture& picture)
{
    if (!picture.format) return;
    const VideoFormat& format = *picture.format;
    const auto structure = picture.metadata.picture_structure;
    record_.enPicStructure = picture.top_fields > picture.bottom_fields   ? VCUDEC_PICSTRUCTURE_TOP_FIELD
                             : picture.bottom_fields > picture.top_fields ? VCUDEC_PICSTRUCTURE_BOTTOM_FIELD
                             : structure && *structure <= 12              ? static_cast<SMGR_VCUDEC_PICSTRUCTURE>(*structure)
                             : format.may_be_interlaced                   ? VCUDEC_PICSTRUCTURE_UNKNOWN
                                                                          : VCUDEC_PICSTRUCTURE_FRAME;
    const bool interlaced = format.may_be_interlaced && record_.enPicStructure != VCUDEC_PICSTRUCTURE_FRAME;
    const auto rate = static_cast<UINT64>(ticks_per_second / period_);
    record_.nDisplayFormat = VIDEO_FORMAT_CODE(format.width(), format.height(), std::min<UINT64>(rate, VIDEO_FORMAT_RATE_MASK), interlaced);
    if (format_ == format) return;
    format_ = format;
    record_.bHasChroma = format.chroma_format != 0;
    record_.nFrameBufferWidth = format.coded_width;
    record_.nFrameBufferHeight = format.coded_height;
    record_.nFrameBufferNumber = format.picture_buffers;
    record_.nFrameBufferBitDepthY = format.luma_depth;
    record_.nFrameBufferBitDepthC = format.chroma_format == 0 ? 0 : format.chroma_depth;
    record_.nCropOffsetLeft = format.crop_left;
    record_.nCropOffsetRight = format.crop_right;
    record_.nCropOffsetTop = format.crop_top;
    record_.nCropOffsetBottom = format.crop_bottom;
    record_.bCropping = (format.crop_left | format.crop_right | format.crop_top | format.crop_bottom) != 0;
    record_.bReordering = format.reorders;
}

} // namespace softdec
