#include "parameters.h"

#include <algorithm>
#include <string>

#include "bounds.h"
#include "component.h"
#include "field_search.h"
#include "moment.h"
#include "refusal.h"

namespace server
{

namespace
{

[[noreturn]] void refuse_parameter(std::string_view name, std::string_view value, const std::string& expected)
{
    throw Refusal(400, std::string(name) + "=" + std::string(value) + ": " + expected);
}

/** The value of a parameter that stands there once at most. */
std::optional<std::string_view> single(const Request& request, std::string_view name)
{
    std::optional<std::string_view> found;
    for (const auto& [key, value] : request.query)
    {
        if (key != name) continue;
        if (found) refuse_parameter(name, value, "stands there twice");
        found = value;
    }
    return found;
}

std::string joined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

NamedField field(std::string_view name)
{
    const auto found = dictionary::find(name);
    if (!found)
    {
        const std::string nearest = joined(views::nearest_field_names(name));
        refuse_parameter("field", name, "is no field" + (nearest.empty() ? "; /api/v1/fields has all" : "; near it: " + nearest));
    }
    if (found->field->array != nullptr && !found->element)
        refuse_parameter("field", name,
                         "which element? One of 0 to " + std::to_string(found->field->array->count - 1) + " stands in the brackets");
    return {name, found->field, found->element.value_or(0)};
}

} // namespace

void require_known(const Request& request, std::initializer_list<std::string_view> names)
{
    std::string known;
    for (const std::string_view name : names) known.append(known.empty() ? "" : ", ").append(name);
    for (const auto& [key, value] : request.query)
        if (std::ranges::find(names, key) == names.end())
            throw Refusal(400, std::string(key) + ": is no parameter here" + (known.empty() ? ": there are none" : ", which are " + known));
}

bool flag(const Request& request, std::string_view name)
{
    const auto value = single(request, name);
    if (value && !value->empty()) refuse_parameter(name, *value, "has no value");
    return value.has_value();
}

STATS_LEVEL level(const Request& request)
{
    const std::string_view value = single(request, "level").value_or("default");
    if (value == "default") return STATS_LEVEL_DEFAULT;
    if (value != "debug") refuse_parameter("level", value, "default or debug is expected");
    return STATS_LEVEL_DEBUG;
}

const records::Component* component(const Request& request)
{
    const auto value = single(request, "component");
    if (!value) return nullptr;
    const records::Component* const found = records::find_component(*value);
    if (found == nullptr) refuse_parameter("component", *value, "is no component, which are " + joined(records::component_names()));
    return found;
}

std::optional<std::int64_t> moment(const Request& request, std::string_view name)
{
    const auto value = single(request, name);
    if (!value) return std::nullopt;
    const auto at = sources::parse_at(*value);
    if (!at || !at->moment) refuse_parameter(name, *value, "a moment in seconds since 1970 is expected");
    return at->moment;
}

std::vector<NamedField> fields(const Request& request)
{
    std::vector<NamedField> fields;
    for (const auto& [key, value] : request.query)
    {
        if (key != "field" || std::ranges::find(fields, value, &NamedField::name) != fields.end()) continue;
        if (fields.size() == most_history_fields)
            throw Refusal(400, "field: " + std::to_string(most_history_fields) + " of them at most are expected");
        fields.push_back(field(value));
    }
    if (fields.empty()) throw Refusal(400, "field: the name of a field is expected, and is missing");
    return fields;
}

} // namespace server
