#include "decode/codec.h"

namespace softdec
{

AVCodecID codec_id(SMGR_TDEMUX_COMPRESSION_TYPE compression)
{
    switch (compression)
    {
    case SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED: return AV_CODEC_ID_S302M;
    case SMGR_TDEMUX_COMPRESSION_TYPE_H264: return AV_CODEC_ID_H264;
    case SMGR_TDEMUX_COMPRESSION_TYPE_H265: return AV_CODEC_ID_HEVC;
    case SMGR_TDEMUX_COMPRESSION_TYPE_MPEG1: return AV_CODEC_ID_MPEG1VIDEO;
    case SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2: return AV_CODEC_ID_MPEG2VIDEO;
    case SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS: return AV_CODEC_ID_AAC;
    case SMGR_TDEMUX_COMPRESSION_TYPE_AAC_LATM: return AV_CODEC_ID_AAC_LATM;
    case SMGR_TDEMUX_COMPRESSION_TYPE_AC3: return AV_CODEC_ID_AC3;
    case SMGR_TDEMUX_COMPRESSION_TYPE_MP1: return AV_CODEC_ID_MP1;
    case SMGR_TDEMUX_COMPRESSION_TYPE_MP2: return AV_CODEC_ID_MP2;
    case SMGR_TDEMUX_COMPRESSION_TYPE_MP3: return AV_CODEC_ID_MP3;
    default: return AV_CODEC_ID_NONE;
    }
}

CodecContext new_decoder(SMGR_TDEMUX_COMPRESSION_TYPE compression)
{
    const AVCodec* const codec = avcodec_find_decoder(codec_id(compression));
    if (codec == nullptr) return nullptr;
    CodecContext context(avcodec_alloc_context3(codec));
    // One thread: the delay of more would not be the stream's, and the same input is to give the same records.
    if (!context) return nullptr;
    context->thread_count = 1;
    switch (compression)
    {
    // These decoders hide an error that they have found unless they are to stop at it. (That for H.264 marks the picture.)
    case SMGR_TDEMUX_COMPRESSION_TYPE_H265: context->err_recognition |= AV_EF_EXPLODE; break;
    case SMGR_TDEMUX_COMPRESSION_TYPE_AC3:
    case SMGR_TDEMUX_COMPRESSION_TYPE_MP1:
    case SMGR_TDEMUX_COMPRESSION_TYPE_MP2:
    case SMGR_TDEMUX_COMPRESSION_TYPE_MP3: context->err_recognition |= AV_EF_CRCCHECK | AV_EF_EXPLODE; break;
    default: break;
    }
    return context;
}

bool open_decoder(AVCodecContext& context)
{
    // What is wrong with a stream stands in the records; the library would write a line for each damaged block.
    av_log_set_level(AV_LOG_QUIET);
    return avcodec_open2(&context, nullptr, nullptr) == 0;
}

} // namespace softdec
