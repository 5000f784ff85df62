/**
 * @file value_codec.h
 * The values of consecutive snapshots as what each says beyond what the one before let expect. A number is expected to be as it
 * was, or to change by as much as last time, whichever has been the cheaper guess; texts and bytes are expected to stay. Most
 * values are as expected and take no byte, and which of them are not hardly changes from one snapshot to the next.
 */
#ifndef CAPTURE_VALUE_CODEC_H
#define CAPTURE_VALUE_CODEC_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "bytes.h"
#include "record_layout.h"

namespace capture
{

/** Most values that a snapshot is believed to have. */
inline constexpr std::size_t most_values = 1 << 16;

/**
 * One side of the coding. Both sides add the same values and go through the same snapshots; an encoder only encodes, and a
 * decoder only decodes. The image is the bytes of the records.
 */
class ValueCodec
{
public:
    /**
     * Adds the values of a component: every field in the order of the layout, the elements of an array one after the other.
     * @param base offset of its record in the image [bytes]
     * @return false if there would be more than most_values
     */
    bool add(const dictionary::RecordLayout& layout, std::size_t base);

    /** Encodes a snapshot. @param whole nothing before counts */
    void encode(std::span<const std::byte> image, bool whole, Output& out);

    /**
     * Decodes a snapshot.
     * @param image where it is put; before, the snapshot before
     * @return false if the bytes are not those of one; image and codec are then of no more use until the next whole one
     */
    bool decode(Input& in, bool whole, std::span<std::byte> image);

private:
    /** A value, and what both sides know of it. */
    struct Value
    {
        std::uint32_t offset;            /**< in the image [bytes] */
        std::uint32_t size;              /**< [bytes] */
        bool is_number;                  /**< else bytes */
        bool unexpected = false;         /**< in the last snapshot */
        std::uint16_t cost = 0;          /**< of expecting no change, a running sum */
        std::uint16_t cost_of_trend = 0; /**< of expecting the same change again */
        std::int64_t last = 0;           /**< the number */
        std::int64_t change = 0;         /**< by which it last changed */
    };

    /** An unexpected value of the snapshot that is being encoded. */
    struct Surprise
    {
        std::size_t place;     /**< among the values */
        std::int64_t surprise; /**< of a number: the difference from what was expected */
    };

    void add_value(std::size_t offset, std::size_t size, bool is_number);
    void restart();
    static std::int64_t expected_change(const Value& value);
    static void learn(Value& value, std::int64_t number, bool whole);
    void put_turned(Output& out) const;
    bool get_turned(Input& in);

    std::vector<Value> values_;
    std::vector<std::byte> last_image_; /**< of the encoder */
    std::vector<Surprise> surprises_;   /**< of the snapshot that is being encoded */
    std::vector<std::size_t> turned_;   /**< the places in it that are unexpected and were not, or the other way round */
};

} // namespace capture

#endif
