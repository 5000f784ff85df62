#include "json.h"

#include <algorithm>

#include "field_tree.h"
#include "json_values.h"
#include "json_writer.h"
#include "presence.h"

namespace views
{

namespace
{

using dictionary::Field;
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
                if (is_wanted(*child.field, record, element)) write_member(writer_, child.name, snapshot_, *child.field, element);
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
