// The coding of values, by itself: what one side encodes the other decodes, whatever the values do.

#include <gtest/gtest.h>
#include <random>

#include "type.h"
#include "value_codec.h"

namespace
{

using dictionary::LayoutRow;
using dictionary::Type;

/** A layout of one field of each type, an array, and two that share their bytes. */
dictionary::RecordLayout layout()
{
    dictionary::RecordLayout layout;
    const auto add = [&layout](Type type, std::uint32_t size, std::uint32_t count = 1, std::uint32_t stride = 0)
    {
        LayoutRow row = {};
        row.offset = static_cast<std::uint32_t>(layout.record_size);
        row.size = size;
        row.count = count;
        row.stride = stride;
        row.type = static_cast<std::uint16_t>(type);
        layout.rows.push_back(row);
        layout.record_size += count == 1 ? size : count * stride;
    };
    add(Type::u8, 1);
    add(Type::i32, 4);
    add(Type::u32, 4);
    add(Type::i64, 8);
    add(Type::u64, 8);
    add(Type::f32, 4);
    add(Type::timespec, 16);
    add(Type::text, 12);
    add(Type::bytes, 6);
    add(Type::u32, 4, 5, 4);
    LayoutRow shared = layout.rows[3];
    shared.type = static_cast<std::uint16_t>(Type::bytes);
    layout.rows.push_back(shared);
    add(static_cast<Type>(99), 3); // of a later release
    return layout;
}

using Image = std::vector<std::byte>;

/** Encodes images one after the other, the first of every so many whole, and expects them back. @return the size of the last */
std::size_t expect_back(const std::vector<Image>& images, std::size_t whole_every)
{
    capture::ValueCodec encoder;
    capture::ValueCodec decoder;
    EXPECT_TRUE(encoder.add(layout(), 0) && decoder.add(layout(), 0));
    Image decoded(layout().record_size);
    std::size_t size = 0;
    for (std::size_t i = 0; i < images.size(); ++i)
    {
        capture::Output out;
        encoder.encode(images[i], i % whole_every == 0, out);
        capture::Input in(out.bytes());
        EXPECT_TRUE(decoder.decode(in, i % whole_every == 0, decoded));
        EXPECT_TRUE(in.empty());
        EXPECT_EQ(decoded, images[i]) << i;
        if (decoded != images[i]) break;
        size = out.bytes().size();
    }
    return size;
}

Image random_image(std::mt19937_64& random)
{
    Image image(layout().record_size);
    for (std::byte& byte : image) byte = static_cast<std::byte>(random());
    return image;
}

template <typename T> void set(Image& image, std::size_t offset, T value)
{
    std::memcpy(image.data() + offset, &value, sizeof value);
}

TEST(ValueCodec, RandomBytesComeBack)
{
    std::mt19937_64 random(1);
    std::vector<Image> images;
    for (int i = 0; i < 300; ++i) images.push_back(random_image(random));
    expect_back(images, 7);
}

TEST(ValueCodec, SomeBytesChangeAndOthersStay)
{
    std::mt19937_64 random(2);
    std::vector<Image> images = {random_image(random)};
    for (int i = 0; i < 3000; ++i)
    {
        Image next = images.back();
        for (auto changes = random() % 4; changes > 0; --changes) next[random() % next.size()] = static_cast<std::byte>(random());
        images.push_back(next);
    }
    expect_back(images, 60);
}

TEST(ValueCodec, NumbersWrap)
{
    std::vector<Image> images;
    for (const std::uint64_t number : {std::uint64_t{0}, ~std::uint64_t{0}, std::uint64_t{1} << 63, std::uint64_t{1} << 31,
                                       std::uint64_t{1}, ~std::uint64_t{0} >> 1, std::uint64_t{0xFFFF'FFFF}, std::uint64_t{0x7FFF'FFFF}})
        for (const std::uint64_t other : {std::uint64_t{5}, ~number, number})
        {
            Image image(layout().record_size);
            for (std::size_t i = 0; i + sizeof other <= image.size(); i += sizeof other) set(image, i, i % 3 == 0 ? number : other);
            images.push_back(image);
        }
    expect_back(images, 1000);
}

TEST(ValueCodec, WhatStaysTakesNoByte)
{
    std::mt19937_64 random(3);
    const Image image = random_image(random);
    EXPECT_EQ(expect_back({image, image, image}, 1000), 1u); // the number of places at which anything is new: none
}

TEST(ValueCodec, WhatGrowsEvenlyTakesNoByteAfterSomeTime)
{
    std::vector<Image> images;
    for (std::uint64_t i = 0; i < 20; ++i)
    {
        Image image(layout().record_size);
        set(image, 17, std::uint64_t{1} << 40 | i * 123'456'789); // the u64
        images.push_back(image);
    }
    EXPECT_EQ(expect_back(images, 1000), 1u);
}

TEST(ValueCodec, WhatJittersIsToldByItsChange)
{
    std::mt19937_64 random(4);
    std::vector<Image> images;
    for (int i = 0; i < 100; ++i)
    {
        Image image(layout().record_size);
        set(image, 17, 1'000'000'000 + random() % 32); // a gauge: it changes by less than 32, so by one byte, folded
        images.push_back(image);
    }
    EXPECT_LE(expect_back(images, 1000), 3u);
}

TEST(ValueCodec, BytesThatAreNoSnapshotAreRefused)
{
    const auto decode = [](std::vector<std::uint8_t> bytes)
    {
        capture::ValueCodec codec;
        EXPECT_TRUE(codec.add(layout(), 0));
        Image image(layout().record_size);
        capture::Input in(std::as_bytes(std::span(bytes)));
        return codec.decode(in, true, image) && in.empty();
    };
    EXPECT_TRUE(decode({0}));
    EXPECT_TRUE(decode({1, 0, 2}));                                                        // value 0 is 1
    EXPECT_FALSE(decode({}));                                                              // nothing
    EXPECT_FALSE(decode({1}));                                                             // a place is missing
    EXPECT_FALSE(decode({1, 0}));                                                          // a value is missing
    EXPECT_FALSE(decode({1, 17, 1}));                                                      // there are 17 values, 0 to 16
    EXPECT_FALSE(decode({1, 8, 13, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));               // the text has 12 bytes
    EXPECT_TRUE(decode({1, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1}));  // 64 bits
    EXPECT_FALSE(decode({1, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 2})); // 65 bits
    EXPECT_FALSE(decode({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(ValueCodec, MoreValuesThanAnySnapshotHasAreRefused)
{
    dictionary::RecordLayout many;
    LayoutRow row = {};
    row.size = 1;
    row.count = ~std::uint32_t{0};
    row.type = static_cast<std::uint16_t>(Type::u8);
    many.rows = {row};
    many.record_size = 1;
    EXPECT_FALSE(capture::ValueCodec().add(many, 0));
}

} // namespace
