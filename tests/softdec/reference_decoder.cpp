#include "reference_decoder.h"

#include <bitstream/mpeg/pes.h>

#include "decode/codec.h"
#include "packets.h"

namespace softdec_tests
{

namespace
{

void take_frames(AVCodecContext& decoder, AVFrame& frame, Reference& reference)
{
    while (avcodec_receive_frame(&decoder, &frame) == 0)
    {
        ++reference.frames;
        switch (frame.pict_type)
        {
        case AV_PICTURE_TYPE_I: ++reference.pictures_of_type[0]; break;
        case AV_PICTURE_TYPE_P: ++reference.pictures_of_type[1]; break;
        case AV_PICTURE_TYPE_B: ++reference.pictures_of_type[2]; break;
        default: break;
        }
    }
}

} // namespace

Bytes elementary_stream(const Bytes& stream, unsigned pid)
{
    Bytes bytes;
    for (std::size_t at = 0; at < stream.size(); at += ts_size)
    {
        const std::uint8_t* const packet = &stream[at];
        if (pid_of(packet) != pid || !has_payload(packet)) continue;
        std::size_t begin = payload_at(packet);
        if (starts_unit(packet)) begin += PES_HEADER_SIZE_NOPTS + std::size_t{pes_get_headerlength(packet + begin)};
        bytes.insert(bytes.end(), packet + begin, packet + ts_size);
    }
    return bytes;
}

Reference decode_alone(const Bytes& stream, unsigned pid, SMGR_TDEMUX_COMPRESSION_TYPE compression)
{
    const Bytes bytes = elementary_stream(stream, pid);
    softdec::CodecContext decoder = softdec::new_decoder(compression);
    softdec::open_decoder(*decoder);
    const softdec::Parser parser(av_parser_init(softdec::codec_id(compression)));
    const softdec::Frame frame(av_frame_alloc());
    const softdec::Packet packet(av_packet_alloc());
    Reference reference;
    Bytes padded = bytes;
    padded.resize(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE);
    std::size_t at = 0;
    for (bool flushed = false; !flushed;)
    {
        flushed = at == bytes.size();
        const int used = av_parser_parse2(parser.get(), decoder.get(), &packet->data, &packet->size, flushed ? nullptr : &padded[at],
                                          static_cast<int>(bytes.size() - at), AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
        at += static_cast<std::size_t>(used);
        if (packet->size == 0) continue;
        avcodec_send_packet(decoder.get(), packet.get());
        take_frames(*decoder, *frame, reference);
    }
    avcodec_send_packet(decoder.get(), nullptr);
    take_frames(*decoder, *frame, reference);
    reference.width = decoder->width;
    reference.height = decoder->height;
    reference.profile = decoder->profile;
    reference.level = decoder->level;
    reference.primaries = decoder->color_primaries;
    reference.transfer = decoder->color_trc;
    reference.matrix = decoder->colorspace;
    reference.sample_rate = decoder->sample_rate;
    reference.channels = decoder->ch_layout.nb_channels;
    return reference;
}

} // namespace softdec_tests
