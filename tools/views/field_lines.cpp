#include "field_lines.h"

#include <cmath>

#include "number_text.h"
#include "presence.h"
#include "utf8.h"
#include "value_text.h"

namespace views
{

namespace
{

using dictionary::Field;
using dictionary::Kind;
using Record = std::span<const std::byte>;

/** A text on one line, safe for a terminal. */
std::string one_line(std::string_view text)
{
    std::string line = valid_utf8(text);
    for (char& character : line)
        if (static_cast<unsigned char>(character) < ' ' || character == '\x7F') character = '?';
    return line;
}

std::string float_text(float value)
{
    std::string text;
    if (std::isfinite(value))
        append_float(text, value);
    else
        text = std::isnan(value) ? "NaN" : value > 0 ? "Infinity" : "-Infinity";
    return text;
}

std::string value_text(const Field& field, Record record, std::size_t element)
{
    const dictionary::Value value = dictionary::value(field, record, element);
    std::string text;
    if (const auto* words = std::get_if<std::string_view>(&value)) return one_line(*words);
    if (std::holds_alternative<Record>(value)) return bytes_text(field, record);
    if (const auto* real = std::get_if<float>(&value)) return float_text(*real);
    if (const auto* moment = std::get_if<dictionary::Moment>(&value))
    {
        append_moment(text, *moment);
        return text;
    }
    const std::int64_t code = dictionary::integer(field, record, element);
    if (field.kind == Kind::state) text = dictionary::identifier(field, code);
    if (field.kind == Kind::flag && (code == 0 || code == 1)) text = code == 1 ? "true" : "false";
    if (!text.empty()) return text;
    if (const auto* natural = std::get_if<std::uint64_t>(&value))
        append_integer(text, *natural);
    else
        append_integer(text, code);
    return text;
}

void append_line(std::string& text, const records::Snapshot& snapshot, const Field& field, std::size_t element)
{
    const Record record = snapshot.record(dictionary::component_of(field));
    text += dictionary::element_name(field, element);
    text += ' ';
    text += dictionary::applies(field, record, element) && has_value(snapshot, field, record, element) ? value_text(field, record, element)
                                                                                                       : "-";
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
