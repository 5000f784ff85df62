#include "field_lines.h"

#include "presence.h"
#include "value_text.h"

namespace views
{

namespace
{

using dictionary::Field;
using Record = std::span<const std::byte>;

void append_line(std::string& text, const records::Snapshot& snapshot, const Field& field, std::size_t element)
{
    const Record record = snapshot.record(dictionary::component_of(field));
    text += dictionary::element_name(field, element);
    text += ' ';
    text += dictionary::applies(field, record, element) && has_value(snapshot, field, record, element) ? value_text(field, record, element)
                                                                                                       : "-";
    if (is_version(field) && has_value(snapshot, field, record, element)) text.append(" ").append(version_text(field, record));
    if (!field.unit.empty()) text += ' ';
    text += field.unit;
    text += '\n';
}

} // namespace

std::string field_lines(const records::Snapshot& snapshot, std::span<const dictionary::Found> fields)
{
    std::string text;
    for (const auto& [field, element] : fields)
    {
        if (field->array == nullptr || element)
        {
            append_line(text, snapshot, *field, element.value_or(0));
            continue;
        }
        const Record record = snapshot.record(dictionary::component_of(*field));
        for (std::size_t i = 0; i < field->array->count; ++i)
            if (dictionary::in_use(*field->array, record, i)) append_line(text, snapshot, *field, i);
    }
    return text;
}

} // namespace views
