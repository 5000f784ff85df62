#include "record_layout.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "dictionary.h"
#include "layout_section.h"

namespace dictionary
{

namespace
{

template <typename T> T read(std::span<const std::byte> bytes, std::size_t offset)
{
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

std::optional<std::string_view> text_at(std::span<const std::byte> bytes, std::size_t offset, std::size_t length)
{
    if (offset > bytes.size() || length > bytes.size() - offset) return std::nullopt;
    return std::string_view(reinterpret_cast<const char*>(bytes.data()) + offset, length);
}

/** Whether all elements of a field lie in its record. The numbers are those of a file: no product of them may wrap. */
bool lies_within(const LayoutRow& row, std::size_t record_size)
{
    if (row.count == 0 || row.size == 0 || row.size > record_size || row.offset > record_size - row.size) return false;
    if (row.count == 1) return true;
    return std::uint64_t{row.stride} * (row.count - 1) <= record_size - row.size - row.offset;
}

/** Finds an own field by its name. Where the layouts are alike it stands in the same place. */
const Field* find(std::span<const Field> fields, std::string_view name, std::size_t place)
{
    if (place < fields.size() && fields[place].name == name) return &fields[place];
    const auto found = std::ranges::find(fields, name, &Field::name);
    return found == fields.end() ? nullptr : &*found;
}

FieldCopy copy_of(const LayoutRow& row, const Field& field)
{
    return {.from = row.offset,
            .from_stride = row.stride,
            .to = field.offset(),
            .to_stride = field.array == nullptr ? 0 : field.array->stride,
            .size = field.size,
            .count = std::min<std::size_t>(row.count, field.count())};
}

bool stands_alike(const LayoutRow& row, const Field& field)
{
    return row.offset == field.offset() && row.count == field.count() && row.stride == (field.array == nullptr ? 0 : field.array->stride);
}

} // namespace

void RecordLayout::convert(std::span<const std::byte> from, std::span<std::byte> to) const
{
    if (same)
    {
        std::memcpy(to.data(), from.data(), to.size());
        return;
    }
    for (const FieldCopy& copy : copies)
        for (std::size_t i = 0; i < copy.count; ++i)
            std::memcpy(to.data() + copy.to + i * copy.to_stride, from.data() + copy.from + i * copy.from_stride, copy.size);
}

std::vector<std::byte> layout_section(const records::Component& component)
{
    const std::span<const Field> own = fields(component);
    LayoutSection header = {};
    std::ranges::copy(component.key, header.component);
    header.record_size = static_cast<std::uint32_t>(component.record_size);
    header.field_count = static_cast<std::uint32_t>(own.size());
    header.row_size = sizeof(LayoutRow);
    header.first_field = own.front().index;

    std::vector<LayoutRow> rows;
    std::string texts;
    const auto add = [&](std::string_view text, std::uint32_t& offset, std::uint16_t& length)
    {
        offset = static_cast<std::uint32_t>(sizeof header + own.size() * sizeof(LayoutRow) + texts.size());
        length = static_cast<std::uint16_t>(text.size());
        texts += text;
    };
    for (const Field& field : own)
    {
        LayoutRow row = {};
        row.offset = static_cast<std::uint32_t>(field.offset());
        row.size = static_cast<std::uint32_t>(field.size);
        row.count = static_cast<std::uint32_t>(field.count());
        row.stride = static_cast<std::uint32_t>(field.array == nullptr ? 0 : field.array->stride);
        row.type = static_cast<std::uint16_t>(field.type);
        add(field.name, row.name_offset, row.name_length);
        add(field.member, row.member_offset, row.member_length);
        rows.push_back(row);
    }

    std::vector<std::byte> bytes;
    const auto append = [&bytes](std::span<const std::byte> part) { bytes.insert(bytes.end(), part.begin(), part.end()); };
    append(std::as_bytes(std::span(&header, 1)));
    append(std::as_bytes(std::span(rows)));
    append(std::as_bytes(std::span(texts)));
    bytes.resize((bytes.size() + 7) / 8 * 8);
    return bytes;
}

std::optional<RecordLayout> read_layout(std::span<const std::byte> bytes, std::string& problem)
{
    const auto fail = [&problem](const char* text)
    {
        problem = text;
        return std::nullopt;
    };
    if (bytes.size() < sizeof(LayoutSection)) return fail("a layout is shorter than its own header");
    const LayoutSection header = read<LayoutSection>(bytes, 0);
    const std::size_t row_size = header.row_size;
    if (row_size < sizeof(LayoutRow) || row_size > 1024) return fail("a layout has rows of an impossible size");
    if (header.field_count > most_fields || sizeof(LayoutSection) + header.field_count * row_size > bytes.size())
        return fail("a layout has more fields than it has room for");
    if (header.record_size == 0 || header.record_size > largest_record) return fail("a layout has a record of an impossible size");

    RecordLayout layout;
    layout.record_size = header.record_size;
    layout.first_field = header.first_field;
    layout.component = records::find_component({header.component, strnlen(header.component, sizeof header.component)});

    const std::span<const Field> own = layout.component == nullptr ? std::span<const Field>() : fields(*layout.component);
    for (const Field& field : own) layout.missing.set(field.index);
    layout.same = layout.component != nullptr && header.record_size == layout.component->record_size;
    for (std::size_t i = 0; i < header.field_count; ++i)
    {
        const LayoutRow row = read<LayoutRow>(bytes, sizeof(LayoutSection) + i * row_size);
        const std::optional<std::string_view> name = text_at(bytes, row.name_offset, row.name_length);
        if (!name || !text_at(bytes, row.member_offset, row.member_length)) return fail("a field's name lies outside its layout");
        if (!lies_within(row, header.record_size)) return fail("a field lies outside its record");

        layout.rows.push_back(row);
        const Field* field = find(own, *name, i);
        const bool usable = field != nullptr && row.type == static_cast<std::uint16_t>(field->type) && row.size == field->size;
        layout.fields.push_back(usable ? field->index : no_field);
        if (!usable) continue;
        layout.missing.reset(field->index);
        layout.same = layout.same && stands_alike(row, *field);
        layout.copies.push_back(copy_of(row, *field));
    }
    layout.same = layout.same && layout.missing.none();
    if (layout.same) layout.copies.clear();
    return layout;
}

} // namespace dictionary
