#include "json.h"

#include <algorithm>
#include <cmath>

#include "field_tree.h"
#include "json_writer.h"
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

/** Writes the fields of a Snapshot as what they mean. */
class Interpreter
{
public:
    Interpreter(JsonWriter& writer, const records::Snapshot& snapshot, const Selection* selection)
        : writer_(writer), snapshot_(snapshot), selection_(selection)
    {
    }

    /** The members of a block that apply. */
    void members(const FieldNode& block, Record record, std::size_t element)
    {
        for (const FieldNode& child : block.children)
        {
            if (child.field != nullptr)
            {
                if (is_wanted(*child.field, record, element)) field_member(child.name, *child.field, record, element);
            }
            else if (child.elements != nullptr)
                elements(child, record);
            else if (has_any(child, record, element))
            {
                writer_.key(child.name);
                writer_.start_object();
                members(child, record, element);
                writer_.end_object();
            }
        }
    }

private:
    bool is_wanted(const Field& field, Record record, std::size_t element) const
    {
        return (selection_ == nullptr || selection_->has(field, element)) && applies_in_use(field, record, element);
    }

    bool has_any(const FieldNode& block, Record record, std::size_t element) const
    {
        return std::ranges::any_of(block.children,
                                   [&](const FieldNode& child)
                                   {
                                       if (child.field == nullptr) return has_any(child, record, element);
                                       return is_wanted(*child.field, record, element);
                                   });
    }

    /** The elements that are in use. A selection that has none of an array's fields leaves the array out. */
    void elements(const FieldNode& array, Record record)
    {
        bool has_started = selection_ == nullptr;
        const auto start = [&]
        {
            writer_.key(array.name);
            writer_.start_array();
        };
        if (has_started) start();
        for (std::size_t i = 0; i < array.elements->count; ++i)
        {
            if (!dictionary::in_use(*array.elements, record, i)) continue;
            if (selection_ != nullptr && !has_any(array, record, i)) continue;
            if (!has_started) start();
            has_started = true;
            writer_.start_object();
            writer_.member("index", i);
            members(array, record, i);
            writer_.end_object();
        }
        if (has_started) writer_.end_array();
    }

    void field_member(std::string_view name, const Field& field, Record record, std::size_t element)
    {
        if (!has_value(snapshot_, field, record, element))
        {
            writer_.key(name);
            writer_.null();
            return;
        }
        const dictionary::Value value = dictionary::value(field, record, element);
        if (field.kind == Kind::state)
            state(name, field, dictionary::integer(field, record, element), value);
        else if (const auto* text = std::get_if<std::string_view>(&value))
            writer_.member(name, valid_utf8(*text));
        else if (std::holds_alternative<std::span<const std::byte>>(value))
            writer_.member(name, bytes_text(field, record));
        else if (const auto* moment = std::get_if<dictionary::Moment>(&value))
            moment_member(name, *moment);
        else if (const auto* real = std::get_if<float>(&value))
            float_member(name, *real);
        else if (field.kind == Kind::flag && (std::get<std::int64_t>(value) == 0 || std::get<std::int64_t>(value) == 1))
        {
            writer_.key(name);
            writer_.boolean(std::get<std::int64_t>(value) == 1);
        }
        else
            integer_member(name, value);
    }

    void integer_member(std::string_view name, const dictionary::Value& value)
    {
        if (const auto* number = std::get_if<std::uint64_t>(&value))
            writer_.integer_member(name, *number);
        else
            writer_.integer_member(name, std::get<std::int64_t>(value));
    }

    /** A double holds no moment to the nanosecond, so the digits always stand beside it. */
    void moment_member(std::string_view name, const dictionary::Moment& moment)
    {
        std::string digits;
        append_moment(digits, moment);
        writer_.key(name);
        writer_.number(digits);
        writer_.digits_member(name, digits);
    }

    /** JSON has no numbers for what is not finite. */
    void float_member(std::string_view name, float value)
    {
        if (!std::isfinite(value)) return writer_.member(name, std::isnan(value) ? "NaN" : value > 0 ? "Infinity" : "-Infinity");
        std::string digits;
        append_float(digits, value);
        writer_.key(name);
        writer_.number(digits);
    }

    void state(std::string_view name, const Field& field, std::int64_t code, const dictionary::Value& value)
    {
        const auto text_or_null = [this](std::string_view key, const std::optional<std::string>& text)
        {
            writer_.key(key);
            if (text)
                writer_.text(*text);
            else
                writer_.null();
        };
        const std::string identifier = dictionary::identifier(field, code);
        writer_.key(name);
        writer_.start_object();
        integer_member("value", value);
        text_or_null("name", identifier.empty() ? std::nullopt : std::optional(identifier));
        text_or_null("text", state_text(field, code));
        writer_.end_object();
    }

    JsonWriter& writer_;
    const records::Snapshot& snapshot_;
    const Selection* selection_;
};

} // namespace

std::string json(const records::Snapshot& snapshot, const Selection* selection)
{
    JsonWriter writer;
    Interpreter interpreter(writer, snapshot, selection);
    writer.start_object();
    writer.envelope(json_schema_id, snapshot);
    writer.key("components");
    writer.start_object();
    for (const records::Component& component : records::components())
    {
        if (!snapshot.has(component)) continue;
        writer.key(component.key);
        writer.start_object();
        interpreter.members(fields_by_name(component), snapshot.record(component), 0);
        writer.end_object();
    }
    writer.end_object();
    writer.end_object();
    return writer.str();
}

} // namespace views
