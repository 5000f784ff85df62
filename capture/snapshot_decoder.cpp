#include "snapshot_decoder.h"

#include <algorithm>
#include <string>
#include <utility>

namespace capture
{

namespace
{

/** Most layouts that are kept: many times those of one release. */
constexpr std::size_t most_layouts = 256;

constexpr std::size_t most_components = 64;

/** All records of a snapshot together. */
constexpr std::size_t largest_image = 4 * dictionary::largest_record;

} // namespace

SnapshotDecoder::SnapshotDecoder(FindLayout find_layout) : find_layout_(std::move(find_layout)) {}

std::optional<std::int64_t> SnapshotDecoder::moment_of(std::span<const std::byte> payload)
{
    Input in(payload);
    const auto moment = in.get<std::int64_t>();
    return in.ok() ? std::optional(moment) : std::nullopt;
}

std::vector<std::uint32_t> SnapshotDecoder::layouts() const
{
    std::vector<std::uint32_t> ids;
    for (const Part& part : parts_) ids.push_back(part.id);
    return ids;
}

const dictionary::RecordLayout* SnapshotDecoder::layout(std::uint32_t id)
{
    if (const auto known = layouts_.find(id); known != layouts_.end()) return &known->second;
    const std::optional<std::vector<std::byte>> bytes = find_layout_(id);
    if (!bytes) return nullptr;
    std::string problem;
    std::optional<dictionary::RecordLayout> read = dictionary::read_layout(*bytes, problem);
    return read ? &layouts_.emplace(id, std::move(*read)).first->second : nullptr;
}

bool SnapshotDecoder::read_not_measured(Input& in, const dictionary::RecordLayout& layout)
{
    const std::uint64_t count = in.get_varint();
    std::size_t next = 0;
    for (std::uint64_t i = 0; i < count; ++i)
    {
        const std::uint64_t between = in.get_varint();
        if (!in.ok() || between >= layout.fields.size() - next) return false;
        next += between + 1;
        const std::uint16_t field = layout.fields[next - 1];
        if (field < snapshot_.not_measured.size()) snapshot_.not_measured.set(field);
    }
    return in.ok();
}

SnapshotDecoder::Outcome SnapshotDecoder::read_parts(Input& in)
{
    const std::uint64_t count = in.get_varint();
    if (!in.ok() || count > most_components) return Outcome::damaged;
    std::size_t size = 0;
    for (std::uint64_t i = 0; i < count; ++i)
    {
        const auto id = in.get<std::uint32_t>();
        if (!in.ok()) return Outcome::damaged;
        const dictionary::RecordLayout* const found = layout(id);
        if (found == nullptr) return Outcome::no_layout;
        if (size + found->record_size > largest_image || !codec_.add(*found, size)) return Outcome::damaged;
        parts_.push_back({id, found, size});
        size += found->record_size;
        if (found->component != nullptr)
        {
            if (snapshot_.has(*found->component)) return Outcome::damaged;
            snapshot_.present.set(found->component->index);
            snapshot_.not_measured |= found->missing;
        }
        if (!read_not_measured(in, *found)) return Outcome::damaged;
    }
    image_.assign(size, std::byte{0});
    return Outcome::good;
}

/** The image as records of this program. */
void SnapshotDecoder::convert()
{
    const std::span<std::byte> records = std::as_writable_bytes(std::span(&snapshot_.records, 1));
    for (const Part& part : parts_)
    {
        if (part.layout->component == nullptr) continue;
        part.layout->convert(std::span(image_).subspan(part.base, part.layout->record_size),
                             records.subspan(part.layout->component->offset, part.layout->component->record_size));
    }
}

SnapshotDecoder::Outcome SnapshotDecoder::whole(std::span<const std::byte> payload, std::uint32_t crc)
{
    base_crc_.reset();
    parts_.clear();
    codec_ = {};
    if (layouts_.size() > most_layouts) layouts_.clear();

    Input in(payload);
    snapshot_ = {};
    snapshot_.taken_at = in.get<std::int64_t>();
    const bool has_instance = in.get<std::uint8_t>() != 0;
    const auto id = in.get<std::array<std::uint8_t, 16>>();
    const auto started_at = in.get<std::int64_t>();
    if (has_instance) snapshot_.instance = {.id = id, .started_at = started_at};
    snapshot_.decoder = in.get_text();
    snapshot_.host = in.get_text();
    if (!in.ok()) return Outcome::damaged;

    const Outcome outcome = read_parts(in);
    if (outcome != Outcome::good) return outcome;
    if (!codec_.decode(in, true, image_) || !in.empty()) return Outcome::damaged;
    interval_ = 0;
    base_crc_ = crc;
    convert();
    return Outcome::good;
}

SnapshotDecoder::Outcome SnapshotDecoder::change(std::span<const std::byte> payload, std::uint32_t crc)
{
    Input in(payload);
    const auto base = in.get<std::uint32_t>();
    if (!in.ok()) return Outcome::damaged;
    if (base_crc_ != base) return Outcome::no_base;
    base_crc_.reset();
    interval_ = sum(interval_, unfold(in.get_varint()));
    if (!codec_.decode(in, false, image_) || !in.empty()) return Outcome::damaged;
    snapshot_.taken_at = sum(snapshot_.taken_at, interval_);
    base_crc_ = crc;
    convert();
    return Outcome::good;
}

} // namespace capture
