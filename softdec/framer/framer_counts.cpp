#include <algorithm>

#include "framer/video_framer.h"

namespace softdec
{

namespace
{

/** Structures of ITU-T H.264, table D-1, that the record counts apart. */
constexpr unsigned frame_structure = 0;
constexpr unsigned top_first_structure = 3;
constexpr unsigned top_bottom_top_structure = 5;
constexpr unsigned doubled_structure = 7;

bool is_progressive(const Picture& picture)
{
    if (picture.top_fields + picture.bottom_fields != 0 || !picture.format || !picture.format->may_be_interlaced) return true;
    if (picture.metadata.progressive) return *picture.metadata.progressive;
    const auto structure = picture.metadata.picture_structure;
    return structure && (*structure == frame_structure || *structure >= doubled_structure);
}

} // namespace

void VideoFramer::take_parameters(const NalUnit& unit)
{
    auto& counters = record_.tCounters;
    if (unit.kind == NalKind::header || unit.kind == NalKind::extension)
    {
        mpeg_.take(unit, picture_.metadata);
    }
    else if (unit.kind == NalKind::sequence_parameters)
    {
        const auto set = is_h265() ? parse_sequence_h265(unit.bytes) : parse_sequence_h264(unit.bytes);
        if (set)
        {
            sets_.sequences[set->id] = *set;
            sequence_ = *set;
            return;
        }
        ++counters.nNumSPSErrors;
        counters.tLastSPSError = clock_.seconds();
    }
    else if (unit.kind == NalKind::picture_parameters)
    {
        const auto set = is_h265() ? parse_picture_h265(unit.bytes) : parse_picture_h264(unit.bytes);
        if (set)
        {
            sets_.pictures[set->id] = *set;
            return;
        }
        ++counters.nNumPPSErrors;
        counters.tLastPPSError = clock_.seconds();
    }
    else if (unit.kind == NalKind::supplement)
    {
        if (parse_supplement(unit.bytes, is_h265(), sequence_ ? &*sequence_ : nullptr, picture_.metadata)) return;
        ++counters.nNumSEIErrors;
        counters.tLastSEIError = clock_.seconds();
    }
}

void VideoFramer::count_unit(const NalUnit& unit)
{
    if (is_mpeg()) return; // it has no NAL units
    auto& counters = record_.tCounters;
    const std::time_t now = clock_.seconds();
    switch (unit.kind)
    {
    case NalKind::slice:
        ++counters.nNumSHNALs;
        counters.tLastSHNAL = now;
        break;
    case NalKind::video_parameters:
        ++counters.nNumVPSNALs;
        counters.tLastVPSNAL = now;
        break;
    case NalKind::sequence_parameters:
        ++counters.nNumSPSNALs;
        counters.tLastSPSNAL = now;
        break;
    case NalKind::picture_parameters:
        ++counters.nNumPPSNALs;
        counters.tLastPPSNAL = now;
        break;
    case NalKind::supplement:
        ++counters.nNumSEINALs;
        counters.tLastSEINAL = now;
        break;
    case NalKind::delimiter:
        ++counters.nNumAUDNALs;
        counters.tLastAUDNAL = now;
        break;
    case NalKind::filler:
        ++counters.nNumFillerNALs;
        counters.tLastFillerNAL = now;
        break;
    case NalKind::unknown:
        ++counters.nNumUnknownNALs;
        counters.tLastUnknownNAL = now;
        break;
    case NalKind::header:
    case NalKind::extension:
    case NalKind::end:
    case NalKind::other: break;
    }
}

void VideoFramer::count_picture(const Picture& picture)
{
    auto& counters = record_.tCounters;
    auto& properties = record_.tCurrentProperties;
    const std::time_t now = clock_.seconds();
    ++counters.nNumOutputFrames;
    counters.tLastOutputFrame = now;
    counters.nNumOutputBytesToDecoder += picture.data.size();
    if (picture.pieces == 1)
    {
        ++counters.nNumOutputFramesOnePiece;
        counters.tLastOutputFrameOnePiece = now;
    }
    else
    {
        ++counters.nNumOutputFramesAssembled;
        counters.tLastOutputFrameAssembled = now;
    }
    if (picture.key)
    {
        ++counters.nNumKeyFrames;
        counters.tLastKeyFrame = now;
        if (counters.nNumKeyFrames > 1) properties.nGopInterval = pictures_since_key_;
        pictures_since_key_ = 0;
    }
    ++pictures_since_key_;
    b_in_a_row_ = picture.type == PictureType::b ? b_in_a_row_ + 1 : 0;
    properties.nNumberOfBPicturesInARow = b_in_a_row_;
    if (b_in_a_row_ > counters.nMaxNumberOfBPicturesInARow) counters.nMaxNumberOfBPicturesInARow = b_in_a_row_;
    switch (picture.type)
    {
    case PictureType::i:
        ++counters.nNumIPictures;
        counters.tLastIPicture = now;
        properties.bHasIFrames = TRUE;
        break;
    case PictureType::p:
        ++counters.nNumPPictures;
        counters.tLastPPicture = now;
        properties.bHasPFrames = TRUE;
        break;
    case PictureType::b:
        ++counters.nNumBPictures;
        counters.tLastBPicture = now;
        properties.bHasBFrames = TRUE;
        break;
    case PictureType::unknown:
        ++counters.nNumUnknownPictures;
        counters.tLastUnknownPicture = now;
        break;
    }
    properties.nSliceCountPerFrame = picture.slices;
    properties.nLatencyInUs = static_cast<unsigned>((clock_.now() - picture.received) / microsecond);
    if (picture.dts)
    {
        // Pictures come in decoding order, in which presentation goes back and forth.
        const std::uint64_t timestamp = picture.time_base.timestamp_of(*picture.dts);
        if (properties.TimeStamp != 0) properties.TimeStampDelta = as_timestamp(static_cast<Ticks>(timestamp - properties.TimeStamp));
        properties.TimeStamp = timestamp;
        measure_rate(*picture.dts);
    }
    count_structure(picture);
    count_metadata(picture.metadata);
    if (picture.format) take_dynamic_range(*picture.format, picture.metadata);
}

void VideoFramer::count_structure(const Picture& picture)
{
    auto& counters = record_.tCounters;
    const std::time_t now = clock_.seconds();
    record_.tCurrentProperties.bInterlaced = TRUE;
    if (!picture.format)
    {
        ++counters.nNumUnknownPicStruct;
        counters.tLastUnknownPicStruct = now;
        return;
    }
    const auto structure = picture.metadata.picture_structure;
    if (picture.top_fields + picture.bottom_fields == 0 && is_progressive(picture))
    {
        ++counters.nNumProgressivePicStruct;
        counters.tLastProgressivePicStruct = now;
        record_.tCurrentProperties.bInterlaced = FALSE;
        return;
    }
    ++counters.nNumInterlacedPicStruct;
    counters.tLastInterlacedPicStruct = now;
    // Fields of H.265 are pictures of their own, told apart by their structure alone.
    const bool single_h265 = is_h265() && structure && *structure >= 1 && *structure <= 12 && (*structure <= 2 || *structure >= 9);
    const bool single_bottom = single_h265 && *structure % 2 == 0;
    const unsigned tops = picture.top_fields + (single_h265 && !single_bottom ? 1 : 0);
    const unsigned bottoms = picture.bottom_fields + (single_bottom ? 1 : 0);
    if (tops != 0)
    {
        counters.nNumInterlacedTopFields += tops;
        counters.tLastInterlacedTopField = now;
    }
    if (bottoms != 0)
    {
        counters.nNumInterlacedBottomFields += bottoms;
        counters.tLastInterlacedBottomField = now;
    }
    if (tops + bottoms != 1)
    {
        ++counters.nNumInterlacedBothFields;
        counters.tLastInterlacedBothFields = now;
    }
    if (structure && !single_h265)
        record_.tCurrentProperties.bInterlacedTFF = *structure == top_first_structure || *structure == top_bottom_top_structure;
}

void VideoFramer::count_metadata(const PictureMetadata& metadata)
{
    auto& counters = record_.tCounters;
    auto& properties = record_.tCurrentProperties;
    if (metadata.timecode)
    {
        properties.bTCPresent = TRUE;
        ++counters.nNumTC;
        counters.nNumTCBytesOutput += metadata.timecode_bytes;
        counters.tLastTCReceived = clock_.seconds();
    }
    if (metadata.caption_bytes != 0)
    {
        properties.bCCPresent = TRUE;
        ++counters.nNumCC;
        counters.nNumCCBytesOutput += metadata.caption_bytes;
        counters.tLastCCReceived = clock_.seconds();
    }
    if (metadata.active_format)
    {
        properties.bAFDPresent = TRUE;
        ++counters.nNumAFD;
        counters.nNumAFDBytesOutput += metadata.active_format_bytes;
        counters.tLastAFDReceived = clock_.seconds();
    }
}

} // namespace softdec
