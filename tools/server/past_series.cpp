#include "past_series.h"

#include <cmath>

#include "json_writer.h"
#include "number_text.h"
#include "presence.h"
#include "utf8.h"
#include "value_text.h"

namespace server
{

namespace
{

using dictionary::Kind;

/** A moment in seconds since the epoch, to the millisecond. */
std::string seconds_json(std::int64_t moment)
{
    return views::seconds_text(moment - moment % 1'000'000);
}

std::string text_json(std::string_view text)
{
    views::JsonWriter writer;
    writer.text(views::valid_utf8(text));
    return writer.str();
}

template <typename Elements, typename Write>
void array(views::JsonWriter& writer, std::string_view name, const Elements& elements, const Write& write)
{
    writer.key(name);
    writer.start_array();
    for (const auto& element : elements) write(element);
    writer.end_array();
}

} // namespace

PastSeries::PastSeries(std::vector<NamedField> fields) : fields_(std::move(fields)), values_(fields_.size()) {}

std::string PastSeries::value_json(const records::Snapshot& snapshot, const NamedField& named)
{
    const dictionary::Field& field = *named.field;
    const records::Component& component = dictionary::component_of(field);
    const auto record = snapshot.record(component);
    if (!snapshot.has(component) || !dictionary::applies(field, record, named.element) ||
        !views::has_value(snapshot, field, record, named.element))
        return {};
    const dictionary::Value value = dictionary::value(field, record, named.element);
    if (const auto* real = std::get_if<float>(&value); real != nullptr && !std::isfinite(*real)) return {};
    if (field.kind == Kind::state)
    {
        const std::string identifier = dictionary::identifier(field, dictionary::integer(field, record, named.element));
        if (!identifier.empty()) return text_json(identifier);
    }
    if (field.type == dictionary::Type::text || field.type == dictionary::Type::bytes)
        return text_json(views::value_text(field, record, named.element));
    std::string digits;
    if (const auto* natural = std::get_if<std::uint64_t>(&value)) views::append_integer(digits, *natural);
    if (const auto* whole = std::get_if<std::int64_t>(&value)) views::append_integer(digits, *whole);
    if (const auto* real = std::get_if<float>(&value)) views::append_float(digits, *real);
    if (const auto* moment = std::get_if<dictionary::Moment>(&value)) views::append_moment(digits, *moment);
    return digits;
}

void PastSeries::take(const records::Snapshot& snapshot)
{
    if (!moments_.empty() && snapshot.taken_at <= moments_.back()) return;
    if (moments_.empty() || instances_.back().second != snapshot.instance) instances_.emplace_back(snapshot.taken_at, snapshot.instance);
    moments_.push_back(snapshot.taken_at);
    for (std::size_t i = 0; i < fields_.size(); ++i) values_[i].push_back(value_json(snapshot, fields_[i]));
}

void PastSeries::take_gap(std::int64_t from, std::int64_t to)
{
    gaps_.emplace_back(from, to);
}

std::optional<std::int64_t> PastSeries::last_moment() const
{
    return moments_.empty() ? std::nullopt : std::optional(moments_.back());
}

std::string PastSeries::json(std::string_view decoder) const
{
    views::JsonWriter writer;
    writer.start_object();
    writer.member("schema", "decstats-history/1");
    writer.member("decoder", decoder);
    array(writer, "times", moments_, [&](std::int64_t moment) { writer.number(seconds_json(moment)); });
    writer.object_member("fields",
                         [&]
                         {
                             for (std::size_t i = 0; i < fields_.size(); ++i)
                                 array(writer, fields_[i].name, values_[i],
                                       [&](const std::string& value) { value.empty() ? writer.null() : writer.number(value); });
                         });
    array(writer, "instances", instances_,
          [&](const auto& instance)
          {
              writer.start_object();
              writer.key("at");
              writer.number(seconds_json(instance.first));
              writer.key("id");
              instance.second ? writer.text(views::instance_text(*instance.second)) : writer.null();
              writer.end_object();
          });
    array(writer, "gaps", gaps_,
          [&](const auto& gap)
          {
              writer.start_object();
              writer.key("from");
              writer.number(seconds_json(gap.first));
              writer.key("to");
              writer.number(seconds_json(gap.second));
              writer.end_object();
          });
    writer.end_object();
    return writer.str();
}

} // namespace server
