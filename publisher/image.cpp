#include "image.h"

#include <array>
#include <bit>

#include "table.h"

namespace publisher
{

namespace
{

using dictionary::table::Entry;

constexpr std::size_t rounded(std::size_t size, std::size_t alignment)
{
    return (size + alignment - 1) / alignment * alignment;
}

// ---- Where everything stands ----

constexpr std::array<std::size_t, component_count> record_sizes = {
    dictionary::row::tdemux.size,   dictionary::row::vframer.size,   dictionary::row::vdecoder.size,       dictionary::row::audio.size,
    dictionary::row::metadata.size, dictionary::row::buffering.size, dictionary::row::clock_recovery.size, dictionary::row::usage.size};
static_assert(record_sizes[tdemux] == sizeof(SMGR_TDEMUX_STATS) && record_sizes[vframer] == sizeof(SMGR_VFRAMER_STATS));
static_assert(record_sizes[vdecoder] == sizeof(SMGR_VCUDEC_STATS) && record_sizes[audio] == sizeof(SMGR_DECODER_AUDIO_STATS));
static_assert(record_sizes[metadata] == sizeof(SMGR_METADATADEC_STATS) && record_sizes[buffering] == sizeof(SMGR_CBUFFERING_STATS));
static_assert(record_sizes[clock_recovery] == sizeof(SMGR_DECODER_CLOCK_RECOVERY_STATS));
static_assert(record_sizes[usage] == sizeof(SMGR_DECODER_SDI_USAGE_STATS));

static_assert(not_measured_words == words_of((dictionary::field_count + 7) / 8));
constexpr std::size_t section_count = 2 * component_count + 2;

constexpr std::string_view name_of(std::size_t field)
{
    return dictionary::table::full_names[field].substr(dictionary::table::entries[field].key.size() + 1);
}

constexpr std::string_view member_of(std::size_t field)
{
    return dictionary::table::members[field];
}

/** Fields of a component: they stand together. */
struct Range
{
    std::size_t first = 0;
    std::size_t count = 0;
};

constexpr Range fields_of(std::size_t component)
{
    Range range;
    for (std::size_t i = 0; i < dictionary::table::entries.size(); ++i)
        if (dictionary::table::entries[i].component == component && range.count++ == 0) range.first = i;
    return range;
}

constexpr std::size_t layout_size(std::size_t component)
{
    const Range range = fields_of(component);
    std::size_t size = sizeof(Layout) + range.count * sizeof(FieldRow);
    for (std::size_t i = range.first; i < range.first + range.count; ++i) size += name_of(i).size() + member_of(i).size();
    return rounded(size, 8);
}

constexpr std::array<Section, section_count> make_table()
{
    std::array<Section, section_count> table = {};
    std::size_t next = 0;
    std::size_t end = sizeof(Header) + sizeof table;
    const auto add = [&](SectionType type, std::uint32_t id, std::size_t alignment, std::size_t size)
    {
        end = rounded(end, alignment);
        table.at(next++) = {.type = static_cast<std::uint32_t>(type), .id = id, .offset = end, .size = size};
        end += size;
    };
    for (std::uint32_t id = 0; id < component_count; ++id) add(SectionType::layout, id, 8, layout_size(id));
    add(SectionType::not_measured, 0, slot_alignment, sizeof(Slot) + 8 * not_measured_words);
    add(SectionType::heartbeat, 0, slot_alignment, sizeof(Slot) + 8);
    for (std::uint32_t id = 0; id < component_count; ++id)
        add(SectionType::record, id, slot_alignment, sizeof(Slot) + 8 * words_of(record_sizes.at(id)));
    return table;
}

constexpr std::array<Section, section_count> table = make_table();
constexpr std::size_t image_size = table[component_count - 1].offset + table[component_count - 1].size;

// ---- The bytes ----

struct Image
{
    alignas(8) std::array<unsigned char, image_size> bytes = {};

    template <typename T> constexpr void put(std::size_t offset, const T& value)
    {
        const auto from = std::bit_cast<std::array<unsigned char, sizeof(T)>>(value);
        for (std::size_t i = 0; i < from.size(); ++i) bytes.at(offset + i) = from.at(i);
    }
    constexpr void put_text(std::size_t offset, std::string_view text)
    {
        for (std::size_t i = 0; i < text.size(); ++i) bytes.at(offset + i) = static_cast<unsigned char>(text[i]);
    }
};

constexpr FieldRow place_of(const Entry& entry)
{
    const dictionary::row::Place& array = dictionary::table::elements[entry.component].place;
    FieldRow row = {};
    row.offset = static_cast<std::uint32_t>(entry.row.member.offset);
    row.size = static_cast<std::uint32_t>(entry.row.member.size);
    row.count = static_cast<std::uint32_t>(entry.row.in_array ? array.count : 1);
    row.stride = static_cast<std::uint32_t>(entry.row.in_array ? array.stride : 0);
    row.type = static_cast<std::uint16_t>(entry.row.member.type);
    return row;
}

constexpr void put_layout(Image& image, const Section& section)
{
    const Range range = fields_of(section.id);
    Layout layout = {};
    const std::string_view key = dictionary::table::entries[range.first].key;
    for (std::size_t i = 0; i < key.size(); ++i) layout.component[i] = key[i];
    layout.record_size = static_cast<std::uint32_t>(record_sizes.at(section.id));
    layout.field_count = static_cast<std::uint32_t>(range.count);
    layout.row_size = sizeof(FieldRow);
    layout.first_field = static_cast<std::uint32_t>(range.first);
    image.put(section.offset, layout);

    std::size_t text = sizeof layout + range.count * sizeof(FieldRow);
    const auto put_text = [&](std::string_view characters, std::uint32_t& offset, std::uint16_t& length)
    {
        offset = static_cast<std::uint32_t>(text);
        length = static_cast<std::uint16_t>(characters.size());
        image.put_text(section.offset + text, characters);
        text += characters.size();
    };
    for (std::size_t i = 0; i < range.count; ++i)
    {
        FieldRow row = place_of(dictionary::table::entries[range.first + i]);
        put_text(name_of(range.first + i), row.name_offset, row.name_length);
        put_text(member_of(range.first + i), row.member_offset, row.member_length);
        image.put(section.offset + sizeof layout + i * sizeof row, row);
    }
}

constexpr Image make_image()
{
    Image image;
    Header header = {};
    for (std::size_t i = 0; i < sizeof magic; ++i) header.magic[i] = magic[i];
    header.version = format_version;
    header.header_size = sizeof header;
    header.file_size = rounded(table.back().offset + table.back().size, slot_alignment);
    header.section_count = section_count;
    header.section_size = sizeof(Section);
    image.put(0, header);
    image.put(sizeof header, table);
    for (const Section& section : table)
        if (section.type == static_cast<std::uint32_t>(SectionType::layout)) put_layout(image, section);
    return image;
}

constinit const Image made = make_image();

} // namespace

std::span<const unsigned char> image()
{
    return made.bytes;
}

std::span<const Section> sections()
{
    return table;
}

} // namespace publisher
