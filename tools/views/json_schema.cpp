#include <algorithm>
#include <vector>

#include "field_tree.h"
#include "json.h"
#include "json_schema_values.h"
#include "json_writer.h"
#include "value_text.h"

namespace views
{

namespace
{

using dictionary::Field;
using dictionary::Kind;
using dictionary::Type;

/** Writes the schema: what is said of a member here is what json.cpp and raw_json.cpp write. */
class SchemaWriter
{
public:
    std::string write()
    {
        w_.start_object();
        w_.member("$schema", "https://json-schema.org/draft/2020-12/schema");
        w_.member("title", "The statistics of a video decoder at one moment");
        w_.member("type", "object");
        w_.words_member("required", {"schema"});
        w_.object_member("properties",
                         [this] {
                             w_.object_member("schema", [this] { w_.words_member("enum", {json_schema_id, raw_json_schema_id}); });
                         });
        w_.object_member(
            "if", [this]
            { w_.object_member("properties", [this] { w_.object_member("schema", [this] { w_.member("const", json_schema_id); }); }); });
        w_.object_member("then", [this] { w_.member("$ref", "#/$defs/snapshot"); });
        w_.object_member("else", [this] { w_.member("$ref", "#/$defs/raw_snapshot"); });
        w_.object_member("$defs", [this] { definitions(); });
        w_.end_object();
        return w_.str();
    }

private:
    void definitions()
    {
        w_.object_member("digits",
                         [this]
                         {
                             w_.member("type", "string");
                             w_.member("pattern", "^-?[0-9]+(\\.[0-9]{9})?$");
                             w_.member("description", "all digits of the number beside it");
                         });
        w_.object_member("moment",
                         [this]
                         {
                             w_.member("type", "string");
                             w_.member("format", "date-time");
                             w_.member("pattern", "^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{9}Z$");
                         });
        std::vector<const dictionary::States*> written;
        for (const Field& field : dictionary::fields())
            if (field.states != nullptr && std::ranges::find(written, field.states) == written.end())
            {
                written.push_back(field.states);
                states(*field.states);
            }
        w_.object_member("snapshot", [this] { snapshot(json_schema_id, false); });
        w_.object_member("raw_snapshot", [this] { snapshot(raw_json_schema_id, true); });
    }

    void states(const dictionary::States& states)
    {
        w_.object_member(states.name,
                         [&]
                         {
                             w_.member("type", "object");
                             w_.words_member("required", {"value", "name", "text"});
                             w_.object_member("properties",
                                              [&]
                                              {
                                                  w_.object_member("value", [this] { w_.member("type", "integer"); });
                                                  reference("value_s", "digits");
                                                  w_.object_member("name", [&] { state_names(states); });
                                                  w_.object_member("text", [this] { w_.words_member("type", {"string", "null"}); });
                                              });
                         });
    }

    void state_names(const dictionary::States& states)
    {
        // Rasters without a name of their own are named by their numbers.
        if (&states == &dictionary::states::display_format) return w_.words_member("type", {"string", "null"});
        w_.key("enum");
        w_.start_array();
        for (const dictionary::State& state : states.values) w_.text(state.identifier);
        w_.null();
        w_.end_array();
    }

    void snapshot(std::string_view id, bool raw)
    {
        w_.member("type", "object");
        w_.words_member("required", {"schema", "decoder", "instance", "taken_at", "components"});
        w_.object_member("properties",
                         [&]
                         {
                             w_.object_member("schema", [&] { w_.member("const", id); });
                             w_.object_member("decoder", [this] { w_.words_member("type", {"string", "null"}); });
                             w_.object_member("instance", [this] { instance(); });
                             reference("taken_at", "moment");
                             w_.object_member("components",
                                              [&]
                                              {
                                                  w_.member("type", "object");
                                                  w_.object_member("properties",
                                                                   [&]
                                                                   {
                                                                       for (const records::Component& component : records::components())
                                                                           w_.object_member(component.key,
                                                                                            [&] {
                                                                                                block(raw ? fields_by_member(component)
                                                                                                          : fields_by_name(component),
                                                                                                      raw);
                                                                                            });
                                                                   });
                                              });
                         });
    }

    void instance()
    {
        w_.words_member("type", {"object", "null"});
        w_.words_member("required", {"id", "started_at"});
        w_.object_member("properties",
                         [this]
                         {
                             w_.object_member("id",
                                              [this]
                                              {
                                                  w_.member("type", "string");
                                                  w_.member("pattern", "^[0-9a-f]{32}$");
                                              });
                             reference("started_at", "moment");
                         });
    }

    void block(const FieldNode& block, bool raw)
    {
        w_.member("type", "object");
        if (raw)
        {
            std::vector<std::string_view> names;
            for (const FieldNode& child : block.children) names.push_back(child.name);
            w_.words_member("required", names);
        }
        else if (block.elements != nullptr)
            w_.words_member("required", {"index"});
        w_.object_member("properties",
                         [&]
                         {
                             if (block.elements != nullptr && !raw) w_.object_member("index", [&] { index(block.elements->count); });
                             for (const FieldNode& child : block.children) member(child, raw);
                         });
    }

    void member(const FieldNode& child, bool raw)
    {
        if (child.elements != nullptr) return w_.object_member(child.name, [&] { array(child, raw); });
        if (child.field == nullptr) return w_.object_member(child.name, [&] { block(child, raw); });
        const Field& field = *child.field;
        w_.object_member(child.name,
                         [&]
                         {
                             w_.member("description",
                                       std::string(field.meaning) + (field.unit.empty() ? "" : " [" + std::string(field.unit) + "]"));
                             if (raw)
                                 write_raw_value_schema(w_, field);
                             else
                                 write_value_schema(w_, field);
                         });
        if (!raw && is_version(field)) w_.object_member(std::string(child.name) + "_text", [this] { w_.member("type", "string"); });
        const bool is_wide = field.type == Type::i64 || field.type == Type::u64 || field.type == Type::timespec;
        if (is_wide && (!raw || field.type != Type::timespec) && (raw || field.kind != Kind::state))
            reference(std::string(child.name) + "_s", "digits");
    }

    void array(const FieldNode& child, bool raw)
    {
        w_.member("type", "array");
        w_.member("maxItems", child.elements->count);
        if (raw) w_.member("minItems", child.elements->count);
        w_.object_member("items", [&] { block(child, raw); });
    }

    void index(std::size_t count)
    {
        w_.member("type", "integer");
        w_.member("minimum", std::uint64_t{0});
        w_.member("maximum", count - 1);
    }

    void reference(std::string_view name, std::string_view definition) { write_reference(w_, name, definition); }

    JsonWriter w_;
};

} // namespace

std::string json_schema()
{
    return SchemaWriter().write();
}

} // namespace views
