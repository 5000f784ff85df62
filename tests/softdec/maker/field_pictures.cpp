#include "field_pictures.h"

namespace softdec_tests
{

namespace
{

using softdec::Ticks;

constexpr int frames_a_second = 25;
constexpr int blocks_wide = field_picture_width / 16;
constexpr int blocks_high = field_picture_height / 16;
constexpr Ticks frame_period = softdec::ticks_per_second / frames_a_second;

enum class Part
{
    top,
    bottom,
    both,
};

class BitWriter
{
public:
    BitWriter& put(unsigned value, unsigned count)
    {
        for (; count > 0; --count)
        {
            if (used_++ % 8 == 0) bytes_.push_back(0);
            bytes_.back() = static_cast<std::uint8_t>(bytes_.back() | (value >> (count - 1) & 1U) << (7 - (used_ - 1) % 8));
        }
        return *this;
    }

    /** ue(v) of ITU-T H.264, clause 9.1. */
    BitWriter& golomb(unsigned value)
    {
        unsigned size = 0;
        while ((value + 1) >> (size + 1) != 0) ++size;
        return put(0, size).put(value + 1, size + 1);
    }

    const Bytes& bytes() const { return bytes_; }

private:
    Bytes bytes_;
    std::size_t used_ = 0;
};

/** A NAL unit with its start code, stop bit and emulation prevention. */
void put_nal(Bytes& stream, std::uint8_t header, BitWriter content)
{
    content.put(1, 1);
    stream.insert(stream.end(), {0, 0, 0, 1, header});
    unsigned zeros = 0;
    for (const std::uint8_t byte : content.bytes())
    {
        if (zeros >= 2 && byte <= 3)
        {
            stream.push_back(3);
            zeros = 0;
        }
        stream.push_back(byte);
        zeros = byte == 0 ? zeros + 1 : 0;
    }
}

void put_parameters_h264(Bytes& stream)
{
    BitWriter sequence;
    sequence.put(77, 8).put(0, 8).put(30, 8).golomb(0);
    sequence.golomb(0).golomb(0).golomb(4); // frame_num of 4 bits, picture order counts of 8
    sequence.golomb(1).put(0, 1).golomb(blocks_wide - 1).golomb(blocks_high / 2 - 1);
    sequence.put(0, 1).put(0, 1).put(1, 1).put(0, 1); // fields are allowed
    sequence.put(1, 1).put(0, 4).put(1, 1).put(1, 32).put(2 * frames_a_second, 32).put(1, 1).put(0, 3);
    sequence.put(1, 1).put(1, 1).golomb(0).golomb(0).golomb(10).golomb(10).golomb(0).golomb(1); // nothing is out of order
    put_nal(stream, 0x67, sequence);
    BitWriter picture;
    picture.golomb(0).golomb(0).put(0, 2).golomb(0).golomb(0).golomb(0).put(0, 3).golomb(0).golomb(0).golomb(0).put(0, 3);
    put_nal(stream, 0x68, picture);
}

void put_picture_h264(Bytes& stream, int number, Part part, bool intra)
{
    const bool instantaneous = intra && part != Part::bottom;
    BitWriter slice;
    slice.golomb(0).golomb(intra ? 7 : 5).golomb(0);
    slice.put(static_cast<unsigned>(number % frames_a_second) % 16, 4);
    slice.put(part != Part::both, 1);
    if (part != Part::both) slice.put(part == Part::bottom, 1);
    if (instantaneous) slice.golomb(static_cast<unsigned>(number / frames_a_second) % 2);
    slice.put(static_cast<unsigned>(number % frames_a_second) * 2 + (part == Part::bottom ? 1 : 0), 8);
    if (!intra) slice.put(0, 2);
    slice.put(0, instantaneous ? 2 : 1).golomb(0);
    const unsigned blocks = blocks_wide * blocks_high / (part == Part::both ? 1 : 2);
    if (!intra) slice.golomb(blocks);                                                             // all are skipped
    for (unsigned i = 0; intra && i < blocks; ++i) slice.golomb(3).golomb(0).golomb(0).put(1, 1); // Intra_16x16, DC, no residual
    put_nal(stream, instantaneous ? 0x65 : 0x61, slice);
}

/** What is behind a start code of ISO/IEC 13818-2, filled up to whole bytes with zeros. */
void put_unit(Bytes& stream, std::uint8_t code, const BitWriter& content)
{
    stream.insert(stream.end(), {0, 0, 1, code});
    stream.insert(stream.end(), content.bytes().begin(), content.bytes().end());
}

void put_sequence_mpeg2(Bytes& stream)
{
    BitWriter header;
    header.put(field_picture_width, 12).put(field_picture_height, 12).put(2, 4).put(3, 4).put(1000, 18).put(1, 1).put(20, 10).put(0, 3);
    put_unit(stream, 0xb3, header);
    BitWriter extension; // main profile at main level, 4:2:0
    extension.put(1, 4).put(0x48, 8).put(0, 1).put(1, 2).put(0, 16).put(1, 1).put(0, 16);
    put_unit(stream, 0xb5, extension);
    BitWriter group; // closed
    group.put(0, 12).put(1, 1).put(0, 12).put(1, 1).put(0, 1);
    put_unit(stream, 0xb8, group);
}

void put_picture_mpeg2(Bytes& stream, int number, Part part, bool intra)
{
    BitWriter header;
    header.put(static_cast<unsigned>(number % frames_a_second), 10).put(intra ? 1 : 2, 3).put(0xffff, 16);
    if (!intra) header.put(7, 4);
    header.put(0, 1);
    put_unit(stream, 0x00, header);
    BitWriter extension;
    extension.put(8, 4).put(intra ? 0xffff : 0x11ff, 16).put(0, 2).put(part == Part::top ? 1 : part == Part::bottom ? 2 : 3, 2);
    extension.put(part == Part::both, 1).put(part == Part::both, 1).put(0, 8);
    put_unit(stream, 0xb5, extension);
    for (int row = 0; row < blocks_high / (part == Part::both ? 1 : 2); ++row)
    {
        BitWriter slice;
        slice.put(2, 5).put(0, 1);
        for (int i = 0; i < blocks_wide; ++i)
        {
            slice.put(1, 1);
            if (intra)
            {
                slice.put(1, 1);
                for (int block = 0; block < 4; ++block) slice.put(0b100'10, 5);
                slice.put(0b00'10, 4).put(0b00'10, 4);
            }
            else
            {
                slice.put(1, 3); // forward, not coded, and no motion: of a field from the top one
                if (part != Part::both) slice.put(1, 2).put(0, 1);
                slice.put(3, 2);
            }
        }
        put_unit(stream, static_cast<std::uint8_t>(row + 1), slice);
    }
}

std::vector<CodedUnit> code(const FieldCoding& coding, void (*put_headers)(Bytes&), void (*put_picture)(Bytes&, int, Part, bool))
{
    std::vector<CodedUnit> units;
    for (int number = 0; number < coding.frames; ++number)
    {
        const bool key = number % frames_a_second == 0;
        units.push_back({.pts = number * frame_period, .dts = number * frame_period});
        if (key) put_headers(units.back().data);
        if (coding.frame_pictures != 0 && number % coding.frame_pictures == 0)
        {
            put_picture(units.back().data, number, Part::both, key);
            continue;
        }
        put_picture(units.back().data, number, Part::top, key);
        const Ticks second = units.back().pts + frame_period / 2;
        if (coding.a_unit_a_field) units.push_back({.pts = second, .dts = second});
        put_picture(units.back().data, number, Part::bottom, key && !coding.inter_in_pair);
    }
    return units;
}

} // namespace

std::vector<CodedUnit> field_pictures_h264(const FieldCoding& coding)
{
    return code(coding, put_parameters_h264, put_picture_h264);
}

std::vector<CodedUnit> field_pictures_mpeg2(const FieldCoding& coding)
{
    return code(coding, put_sequence_mpeg2, put_picture_mpeg2);
}

} // namespace softdec_tests
