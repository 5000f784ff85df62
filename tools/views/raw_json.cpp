#include "field_tree.h"
#include "json.h"
#include "json_values.h"
#include "json_writer.h"

namespace views
{

namespace
{

using Record = std::span<const std::byte>;

/** A struct: its members in the order of the record. */
void block_value(JsonWriter& writer, const FieldNode& block, Record record, std::size_t element)
{
    writer.start_object();
    for (const FieldNode& child : block.children)
    {
        if (child.field != nullptr)
        {
            write_raw_member(writer, child.name, *child.field, record, element);
            continue;
        }
        writer.key(child.name);
        if (child.elements == nullptr)
        {
            block_value(writer, child, record, element);
            continue;
        }
        writer.start_array();
        for (std::size_t i = 0; i < child.elements->count; ++i) block_value(writer, child, record, i);
        writer.end_array();
    }
    writer.end_object();
}

} // namespace

std::string raw_json(const records::Snapshot& snapshot)
{
    JsonWriter writer;
    writer.start_object();
    writer.envelope(raw_json_schema_id, snapshot);
    writer.key("components");
    writer.start_object();
    for (const records::Component& component : records::components())
    {
        if (!snapshot.has(component)) continue;
        writer.key(component.key);
        block_value(writer, fields_by_member(component), snapshot.record(component), 0);
    }
    writer.end_object();
    writer.end_object();
    return writer.str();
}

} // namespace views
