/**
 * @file snapshot_decoder.h
 * Snapshots from the payloads of whole and change frames.
 */
#ifndef CAPTURE_SNAPSHOT_DECODER_H
#define CAPTURE_SNAPSHOT_DECODER_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "bytes.h"
#include "record_layout.h"
#include "snapshot.h"
#include "value_codec.h"

namespace capture
{

/** Decodes the snapshots of a file in their order. */
class SnapshotDecoder
{
public:
    /** Gives a layout frame's payload by its CRC-32, or nothing. */
    using FindLayout = std::function<std::optional<std::vector<std::byte>>(std::uint32_t)>;

    explicit SnapshotDecoder(FindLayout find_layout);

    /** What became of a frame. */
    enum class Outcome
    {
        good,
        no_base,   /**< the snapshot that the change is told from is not at hand */
        no_layout, /**< nobody knows the layout */
        damaged,   /**< the payload is not that of a snapshot */
    };

    /** Decodes a whole snapshot. @param crc of its frame */
    Outcome whole(std::span<const std::byte> payload, std::uint32_t crc);

    /** Decodes a change. @param crc of its frame */
    Outcome change(std::span<const std::byte> payload, std::uint32_t crc);

    /** Forgets the last snapshot: only a whole one can follow. */
    void forget() { base_crc_.reset(); }

    /** The last one decoded, as records of this program. Valid after a good outcome. */
    const records::Snapshot& snapshot() const { return snapshot_; }

    /** CRC-32 of the layouts of the last one, in its order. */
    std::vector<std::uint32_t> layouts() const;

    /** The moment of a whole snapshot. @return nothing if the payload is too short for one */
    static std::optional<std::int64_t> moment_of(std::span<const std::byte> payload);

private:
    /** A component whose record the snapshots have. */
    struct Part
    {
        std::uint32_t id;                       /**< of its layout */
        const dictionary::RecordLayout* layout; /**< in layouts_ */
        std::size_t base;                       /**< offset of its record in the image */
    };

    const dictionary::RecordLayout* layout(std::uint32_t id);
    Outcome read_parts(Input& in);
    bool read_not_measured(Input& in, const dictionary::RecordLayout& layout);
    void convert();

    FindLayout find_layout_;
    std::map<std::uint32_t, dictionary::RecordLayout> layouts_; /**< those that the present parts may point to */
    std::vector<Part> parts_;
    ValueCodec codec_;
    std::vector<std::byte> image_;
    std::optional<std::uint32_t> base_crc_; /**< of the frame of the last snapshot */
    std::int64_t interval_ = 0;             /**< between the last two */
    records::Snapshot snapshot_;
};

} // namespace capture

#endif
