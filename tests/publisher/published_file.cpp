#include "published_file.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace
{

using namespace publisher;

template <typename T> T get(const std::string& bytes, std::size_t offset)
{
    if (offset + sizeof(T) > bytes.size()) throw std::out_of_range("published file");
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

template <typename T> void put(std::string& bytes, std::size_t offset, const T& value)
{
    if (bytes.size() < offset + sizeof value) bytes.resize(offset + sizeof value);
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

std::vector<Section> sections_of(const std::string& bytes)
{
    const Header header = get<Header>(bytes, 0);
    std::vector<Section> sections;
    for (std::uint32_t i = 0; i < header.section_count; ++i)
        sections.push_back(get<Section>(bytes, header.header_size + i * header.section_size));
    return sections;
}

bool is(const Section& section, SectionType type)
{
    return section.type == static_cast<std::uint32_t>(type);
}

std::vector<std::uint64_t> slot_words(const std::string& bytes, const Section& section)
{
    std::vector<std::uint64_t> words(section.size / 8);
    std::memcpy(words.data(), bytes.data() + section.offset, words.size() * 8);
    return words;
}

std::string slot_bytes(const std::vector<std::uint64_t>& words)
{
    return {reinterpret_cast<const char*>(words.data()), words.size() * 8};
}

FileComponent take_layout(const std::string& bytes, const Section& section)
{
    const Layout layout = get<Layout>(bytes, section.offset);
    FileComponent component = {.key = layout.component,
                               .first_field = layout.first_field,
                               .fields = {},
                               .sequence = 0,
                               .moment = 0,
                               .record = std::string(layout.record_size, '\0')};
    for (std::uint32_t i = 0; i < layout.field_count; ++i)
    {
        const FieldRow row = get<FieldRow>(bytes, section.offset + sizeof layout + i * layout.row_size);
        component.fields.push_back({.name = bytes.substr(section.offset + row.name_offset, row.name_length),
                                    .member = bytes.substr(section.offset + row.member_offset, row.member_length),
                                    .offset = row.offset,
                                    .size = row.size,
                                    .count = row.count,
                                    .stride = row.stride,
                                    .type = row.type});
    }
    return component;
}

std::string layout_bytes(const FileComponent& component, std::uint32_t row_size)
{
    Layout layout = {};
    component.key.copy(layout.component, sizeof layout.component);
    layout.record_size = static_cast<std::uint32_t>(component.record.size());
    layout.field_count = static_cast<std::uint32_t>(component.fields.size());
    layout.row_size = row_size;
    layout.first_field = component.first_field;
    std::string bytes;
    put(bytes, 0, layout);
    bytes.resize(sizeof layout + component.fields.size() * row_size);
    for (std::size_t i = 0; i < component.fields.size(); ++i)
    {
        const FileField& field = component.fields[i];
        FieldRow row = {.offset = field.offset,
                        .size = field.size,
                        .count = field.count,
                        .stride = field.stride,
                        .name_offset = 0,
                        .member_offset = 0,
                        .name_length = static_cast<std::uint16_t>(field.name.size()),
                        .member_length = static_cast<std::uint16_t>(field.member.size()),
                        .type = field.type,
                        .reserved = 0};
        row.name_offset = static_cast<std::uint32_t>(bytes.size());
        bytes += field.name;
        row.member_offset = static_cast<std::uint32_t>(bytes.size());
        bytes += field.member;
        put(bytes, sizeof layout + i * row_size, row);
    }
    return bytes;
}

} // namespace

FileField& FileComponent::field(const std::string& name)
{
    const auto found = std::ranges::find(fields, name, &FileField::name);
    if (found == fields.end()) throw std::out_of_range(name);
    return *found;
}

void FileComponent::remove(const std::string& name)
{
    const FileField removed = field(name);
    std::erase_if(fields, [&](const FileField& other) { return other.name == name; });
    for (FileField& other : fields)
        if (other.offset > removed.offset) other.offset -= removed.size;
    record.erase(removed.offset, removed.size);
}

void FileComponent::insert(std::uint32_t offset, const FileField& inserted, const std::string& value)
{
    for (FileField& other : fields)
        if (other.offset >= offset) other.offset += static_cast<std::uint32_t>(value.size());
    fields.insert(fields.begin(), inserted);
    fields.front().offset = offset;
    record.insert(offset, value);
}

PublishedFile::PublishedFile(const std::string& bytes) : header(get<Header>(bytes, 0))
{
    for (const Section& section : sections_of(bytes))
    {
        if (is(section, SectionType::layout)) components.push_back(take_layout(bytes, section));
        if (is(section, SectionType::heartbeat)) heartbeat = slot_words(bytes, section);
        if (is(section, SectionType::not_measured)) not_measured = slot_words(bytes, section);
        if (!is(section, SectionType::record)) continue;
        FileComponent& component = components.at(section.id);
        component.sequence = get<std::uint64_t>(bytes, section.offset);
        component.moment = get<std::uint64_t>(bytes, section.offset + 8);
        component.record = bytes.substr(section.offset + sizeof(Slot), component.record.size());
    }
}

FileComponent& PublishedFile::component(const std::string& key)
{
    const auto found = std::ranges::find(components, key, &FileComponent::key);
    if (found == components.end()) throw std::out_of_range(key);
    return *found;
}

std::string PublishedFile::bytes(std::uint32_t more_header, std::uint32_t more_entry, std::uint32_t more_row) const
{
    std::vector<std::pair<Section, std::string>> sections;
    const auto add = [&sections](std::uint32_t type, std::size_t id, const std::string& content) {
        sections.push_back({{.type = type, .id = static_cast<std::uint32_t>(id), .offset = 0, .size = content.size()}, content});
    };

    add(4711, 3, std::string(40, '\xff'));                 // of a type that is not known yet
    for (std::size_t id = 0; id < components.size(); ++id) // record before layout, numbered otherwise
    {
        const FileComponent& component = components[id];
        std::string slot = slot_bytes({component.sequence, component.moment}) + component.record;
        slot.resize((slot.size() + 7) / 8 * 8);
        add(static_cast<std::uint32_t>(SectionType::record), components.size() - 1 - id, slot);
    }
    for (std::size_t id = 0; id < components.size(); ++id)
        add(static_cast<std::uint32_t>(SectionType::layout), components.size() - 1 - id,
            layout_bytes(components[id], static_cast<std::uint32_t>(sizeof(FieldRow)) + more_row));
    add(static_cast<std::uint32_t>(SectionType::not_measured), 0, slot_bytes(not_measured));
    add(static_cast<std::uint32_t>(SectionType::heartbeat), 0, slot_bytes(heartbeat));

    Header start = header;
    start.header_size = static_cast<std::uint32_t>(sizeof start) + more_header;
    start.section_count = static_cast<std::uint32_t>(sections.size());
    start.section_size = static_cast<std::uint32_t>(sizeof(Section)) + more_entry;
    std::string bytes(start.header_size + sections.size() * start.section_size, '\0');
    for (std::size_t i = 0; i < sections.size(); ++i)
    {
        bytes.resize((bytes.size() + 7) / 8 * 8);
        sections[i].first.offset = bytes.size();
        put(bytes, start.header_size + i * start.section_size, sections[i].first);
        bytes += sections[i].second;
    }
    start.file_size = bytes.size();
    put(bytes, 0, start);
    return bytes;
}

std::size_t slot_offset(const std::string& bytes, SectionType type, std::uint32_t id)
{
    for (const Section& section : sections_of(bytes))
        if (is(section, type) && section.id == id) return section.offset;
    throw std::out_of_range("section");
}
