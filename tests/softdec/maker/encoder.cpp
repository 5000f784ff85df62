#include "encoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <string>

#include "decode/codec.h"

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace softdec_tests
{

namespace
{

using softdec::CodecContext;
using softdec::Frame;
using softdec::Packet;

constexpr AVRational ticks_base = {1, static_cast<int>(softdec::ticks_per_second)};

void require(bool done, const std::string& what)
{
    if (!done) throw std::runtime_error("this libavcodec cannot code as a test asks: " + what);
}

CodecContext new_encoder(const char* name)
{
    av_log_set_level(AV_LOG_QUIET);
    const AVCodec* const codec = avcodec_find_encoder_by_name(name);
    require(codec != nullptr, name);
    CodecContext context(avcodec_alloc_context3(codec));
    require(context != nullptr, name);
    context->thread_count = 1; // the same stream each time
    return context;
}

void open(AVCodecContext& context, const std::string& options)
{
    AVDictionary* dictionary = nullptr;
    require(av_dict_parse_string(&dictionary, options.c_str(), "=", ",", 0) >= 0, options);
    const bool opened = avcodec_open2(&context, nullptr, &dictionary) == 0;
    const bool all_known = av_dict_count(dictionary) == 0;
    av_dict_free(&dictionary);
    require(opened && all_known, options);
}

/** Hands a frame to the encoder, or the end, and takes what comes out. */
void pass(AVCodecContext& context, const AVFrame* frame, std::vector<CodedUnit>& units)
{
    const Packet packet(av_packet_alloc());
    require(avcodec_send_frame(&context, frame) == 0, context.codec->name);
    while (avcodec_receive_packet(&context, packet.get()) == 0)
    {
        units.push_back({.pts = av_rescale_q(packet->pts, context.time_base, ticks_base),
                         .dts = av_rescale_q(packet->dts, context.time_base, ticks_base),
                         .data = Bytes(packet->data, packet->data + packet->size)});
        av_packet_unref(packet.get());
    }
}

/** A pattern that moves, with noise so that it takes bits. */
void draw(AVFrame& frame, int number)
{
    unsigned noise = 12345U + static_cast<unsigned>(number);
    const AVPixFmtDescriptor& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const int more_bits = format.comp[0].depth - 8;
    for (int plane = 0; plane < 3; ++plane)
    {
        const int width = plane == 0 ? frame.width : frame.width >> format.log2_chroma_w;
        const int height = plane == 0 ? frame.height : frame.height >> format.log2_chroma_h;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
            {
                noise = noise * 1103515245U + 12345U;
                const int value = plane == 0 ? 2 * x + y + 3 * number : 128 + (x - y + number) / 4;
                const int sample = (value + static_cast<int>(noise >> 28)) & 0xff;
                std::uint8_t* const line = frame.data[plane] + y * frame.linesize[plane];
                if (more_bits == 0)
                    line[x] = static_cast<std::uint8_t>(sample);
                else
                    reinterpret_cast<std::uint16_t*>(line)[x] = static_cast<std::uint16_t>(sample << more_bits);
            }
    }
}

/** Header of 7 bytes in front of a raw frame (ISO/IEC 14496-3, 1.A.2.2), AAC LC. */
Bytes adts(const Bytes& raw, int sample_rate, int channels)
{
    constexpr std::array rates = {96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350};
    std::size_t rate = 0;
    while (rates.at(rate) != sample_rate) ++rate;
    const std::size_t size = raw.size() + 7;
    Bytes frame = {0xff,
                   0xf1,
                   static_cast<std::uint8_t>(0x40 | rate << 2 | static_cast<unsigned>(channels) >> 2),
                   static_cast<std::uint8_t>((static_cast<unsigned>(channels) & 3) << 6 | size >> 11),
                   static_cast<std::uint8_t>(size >> 3),
                   static_cast<std::uint8_t>((size & 7) << 5 | 0x1f),
                   0xfc};
    frame.insert(frame.end(), raw.begin(), raw.end());
    return frame;
}

} // namespace

std::vector<CodedUnit> encode(const VideoCoding& coding)
{
    const CodecContext context = new_encoder(coding.encoder);
    context->width = coding.width;
    context->height = coding.height;
    context->pix_fmt = coding.pixels;
    context->time_base = {coding.per, coding.rate};
    context->framerate = {coding.rate, coding.per};
    context->bit_rate = coding.bits;
    context->rc_max_rate = coding.bits;
    context->rc_buffer_size = coding.bits / 2;
    context->gop_size = coding.group;
    context->max_b_frames = coding.b_pictures;
    std::string options = coding.options;
    const std::string name = coding.encoder;
    if (name.starts_with("libx26")) options = "preset=superfast" + (options.empty() ? "" : "," + options);
    if (name == "libx265" && options.find("x265-params") == std::string::npos) options += ",x265-params=log-level=none";
    if (coding.interlaced) context->flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    open(*context, options);

    const Frame frame(av_frame_alloc());
    frame->format = context->pix_fmt;
    frame->width = coding.width;
    frame->height = coding.height;
    std::vector<CodedUnit> units;
    require(av_frame_get_buffer(frame.get(), 0) == 0, "memory");
    for (int number = 0; number < coding.frames; ++number)
    {
        require(av_frame_make_writable(frame.get()) == 0, "memory");
        draw(*frame, number);
        frame->interlaced_frame = coding.interlaced;
        frame->top_field_first = coding.interlaced;
        frame->pts = number;
        pass(*context, frame.get(), units);
    }
    pass(*context, nullptr, units);
    return units;
}

std::vector<CodedUnit> encode(const AudioCoding& coding)
{
    const CodecContext context = new_encoder(coding.encoder);
    context->sample_rate = coding.sample_rate;
    context->bit_rate = coding.bits;
    context->sample_fmt = context->codec->sample_fmts[0];
    av_channel_layout_default(&context->ch_layout, coding.channels);
    context->time_base = {1, coding.sample_rate};
    open(*context, "");

    const Frame frame(av_frame_alloc());
    frame->format = context->sample_fmt;
    frame->nb_samples = context->frame_size;
    require(av_channel_layout_copy(&frame->ch_layout, &context->ch_layout) == 0, "memory");
    require(av_frame_get_buffer(frame.get(), 0) == 0, "memory");
    const bool planar = av_sample_fmt_is_planar(context->sample_fmt) != 0;
    const bool floating = av_get_packed_sample_fmt(context->sample_fmt) == AV_SAMPLE_FMT_FLT;
    std::vector<CodedUnit> units;
    const auto samples = static_cast<std::int64_t>(coding.seconds * coding.sample_rate);
    for (std::int64_t at = 0; at < samples; at += context->frame_size)
    {
        require(av_frame_make_writable(frame.get()) == 0, "memory");
        for (int i = 0; i < context->frame_size; ++i)
        {
            const double value = std::sin(static_cast<double>(at + i) * 440 * 2 * std::numbers::pi / coding.sample_rate) / 4;
            for (int channel = 0; channel < coding.channels; ++channel)
            {
                std::uint8_t* const data = frame->data[planar ? channel : 0];
                const auto place = static_cast<std::size_t>(planar ? i : i * coding.channels + channel);
                if (floating)
                    reinterpret_cast<float*>(data)[place] = static_cast<float>(value);
                else
                    reinterpret_cast<std::int16_t*>(data)[place] = static_cast<std::int16_t>(value * 32767);
            }
        }
        frame->pts = at;
        pass(*context, frame.get(), units);
    }
    pass(*context, nullptr, units);
    // The encoder's delay lets time begin below 0.
    const softdec::Ticks first = units.at(0).pts;
    for (CodedUnit& unit : units)
    {
        unit.pts -= first;
        unit.dts = unit.pts;
        if (context->codec_id == AV_CODEC_ID_AAC) unit.data = adts(unit.data, coding.sample_rate, coding.channels);
    }
    return units;
}

std::vector<CodedUnit> again(const std::vector<CodedUnit>& units, int times)
{
    const auto [first, last] = std::ranges::minmax(units, {}, &CodedUnit::pts);
    const auto count = static_cast<softdec::Ticks>(units.size());
    const softdec::Ticks length = (last.pts - first.pts) * count / (count - 1);
    std::vector<CodedUnit> all;
    for (int time = 0; time < times; ++time)
        for (CodedUnit unit : units)
        {
            unit.pts += time * length;
            unit.dts += time * length;
            all.push_back(unit);
        }
    return all;
}

std::vector<CodedUnit> as_latm(const std::vector<CodedUnit>& frames)
{
    std::vector<CodedUnit> units;
    for (const CodedUnit& frame : frames)
    {
        std::vector<bool> bits;
        const auto put = [&bits](unsigned value, unsigned count)
        {
            for (; count > 0; --count) bits.push_back((value >> (count - 1) & 1U) != 0);
        };
        put(0, 1);    // useSameStreamMux: the configuration is in each
        put(0, 1);    // audioMuxVersion
        put(1, 1);    // allStreamsSameTimeFraming
        put(0, 6);    // numSubFrames
        put(0, 4);    // numProgram
        put(0, 3);    // numLayer
        put(2, 5);    // AudioSpecificConfig: AAC LC
        put(3, 4);    // 48 kHz
        put(2, 4);    // stereo
        put(0, 3);    // GASpecificConfig
        put(0, 3);    // frameLengthType
        put(0xff, 8); // latmBufferFullness
        put(0, 1);    // otherDataPresent
        put(0, 1);    // crcCheckPresent
        std::size_t size = frame.data.size() - 7;
        for (; size >= 255; size -= 255) put(255, 8);
        put(static_cast<unsigned>(size), 8);
        for (std::size_t i = 7; i < frame.data.size(); ++i) put(frame.data[i], 8);
        while (bits.size() % 8 != 0) bits.push_back(false);
        const std::size_t length = bits.size() / 8;
        CodedUnit unit = {.pts = frame.pts,
                          .dts = frame.dts,
                          .data = {0x56, static_cast<std::uint8_t>(0xe0 | length >> 8), static_cast<std::uint8_t>(length)}};
        for (std::size_t i = 0; i < length; ++i)
        {
            unsigned byte = 0;
            for (std::size_t k = 0; k < 8; ++k) byte = byte << 1 | (bits[i * 8 + k] ? 1U : 0U);
            unit.data.push_back(static_cast<std::uint8_t>(byte));
        }
        units.push_back(unit);
    }
    return units;
}

} // namespace softdec_tests
