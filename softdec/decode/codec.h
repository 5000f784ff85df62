/**
 * @file codec.h
 * Owns the objects of libavcodec.
 */
#ifndef SOFTDEC_DECODE_CODEC_H
#define SOFTDEC_DECODE_CODEC_H

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "sessmgr_types.h"

namespace softdec
{

struct FreeCodec
{
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
};

using CodecContext = std::unique_ptr<AVCodecContext, FreeCodec>;
using Frame = std::unique_ptr<AVFrame, FreeCodec>;
using Packet = std::unique_ptr<AVPacket, FreeCodec>;
using Parser = std::unique_ptr<AVCodecParserContext, FreeCodec>;

/** libavcodec's number of a coding; AV_CODEC_ID_NONE = it has none. */
AVCodecID codec_id(SMGR_TDEMUX_COMPRESSION_TYPE compression);

/** A decoder's context that is not open yet; empty = this libavcodec has no decoder for the coding. */
CodecContext new_decoder(SMGR_TDEMUX_COMPRESSION_TYPE compression);

/** Opens it. @return whether it could be */
bool open_decoder(AVCodecContext& context);

} // namespace softdec

#endif
