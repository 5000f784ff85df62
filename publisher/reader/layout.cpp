#include "layout.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "dictionary.h"
#include "format.h"

namespace published
{

namespace
{

using publisher::FieldRow;
using publisher::Layout;

static_assert(unknown_field == dictionary::no_field);

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
bool lies_within(const FieldRow& row, std::size_t record_size)
{
    if (row.count == 0 || row.size == 0 || row.size > record_size || row.offset > record_size - row.size) return false;
    if (row.count == 1) return true;
    return std::uint64_t{row.stride} * (row.count - 1) <= record_size - row.size - row.offset;
}

/** Finds an own field by its name. Where the layouts are alike it stands in the same place. */
const dictionary::Field* find(std::span<const dictionary::Field> fields, std::string_view name, std::size_t place)
{
    if (place < fields.size() && fields[place].name == name) return &fields[place];
    const auto found = std::ranges::find(fields, name, &dictionary::Field::name);
    return found == fields.end() ? nullptr : &*found;
}

FieldCopy copy_of(const FieldRow& row, const dictionary::Field& field)
{
    return {.from = row.offset,
            .from_stride = row.stride,
            .to = field.offset(),
            .to_stride = field.array == nullptr ? 0 : field.array->stride,
            .size = field.size,
            .count = std::min<std::size_t>(row.count, field.count())};
}

bool stands_alike(const FieldRow& row, const dictionary::Field& field)
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

std::optional<RecordLayout> read_layout(std::span<const std::byte> bytes, std::string& problem)
{
    const auto fail = [&problem](const char* text)
    {
        problem = text;
        return std::nullopt;
    };
    if (bytes.size() < sizeof(Layout)) return fail("a layout is shorter than its own header");
    const Layout header = read<Layout>(bytes, 0);
    const std::size_t row_size = header.row_size;
    if (row_size < sizeof(FieldRow) || row_size > 1024) return fail("a layout has rows of an impossible size");
    if (header.field_count > most_fields || sizeof(Layout) + header.field_count * row_size > bytes.size())
        return fail("a layout has more fields than it has room for");
    if (header.record_size == 0 || header.record_size > largest_record) return fail("a layout has a record of an impossible size");

    RecordLayout layout;
    layout.record_size = header.record_size;
    layout.first_bit = header.first_field;
    layout.component = records::find_component({header.component, strnlen(header.component, sizeof header.component)});
    if (layout.component == nullptr) return layout;

    const std::span<const dictionary::Field> own = dictionary::fields(*layout.component);
    for (const dictionary::Field& field : own) layout.missing.set(field.index);
    layout.same = header.record_size == layout.component->record_size;
    for (std::size_t i = 0; i < header.field_count; ++i)
    {
        const FieldRow row = read<FieldRow>(bytes, sizeof(Layout) + i * row_size);
        const std::optional<std::string_view> name = text_at(bytes, row.name_offset, row.name_length);
        if (!name || !text_at(bytes, row.member_offset, row.member_length)) return fail("a field's name lies outside its layout");
        if (!lies_within(row, header.record_size)) return fail("a field lies outside its record");

        const dictionary::Field* field = find(own, *name, i);
        const bool usable = field != nullptr && row.type == static_cast<std::uint16_t>(field->type) && row.size == field->size;
        layout.fields.push_back(usable ? field->index : unknown_field);
        if (!usable) continue;
        layout.missing.reset(field->index);
        layout.same = layout.same && stands_alike(row, *field);
        layout.copies.push_back(copy_of(row, *field));
    }
    layout.same = layout.same && layout.missing.none();
    if (layout.same) layout.copies.clear();
    return layout;
}

} // namespace published
