#include "comparison.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "number_text.h"

namespace views
{

namespace
{

using dictionary::Field;
using dictionary::Kind;
using Record = std::span<const std::byte>;

Record record_of(const records::Snapshot& snapshot, const Field& field)
{
    return snapshot.record(dictionary::component_of(field));
}

/** Whether a field names something or is a state: what it tells comes before numbers. */
bool is_name_or_state(const FieldPlace& place)
{
    const Kind kind = place.field->kind;
    return kind == Kind::identity || kind == Kind::text || kind == Kind::state || kind == Kind::flag;
}

/** Two whole numbers apart: 64 bits hold it with its sign aside. */
struct Distance
{
    bool is_negative;
    std::uint64_t size;
};

Distance distance(std::uint64_t old, std::uint64_t now)
{
    return now < old ? Distance{true, old - now} : Distance{false, now - old};
}

Distance distance(std::int64_t old, std::int64_t now)
{
    const std::uint64_t apart = static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(old); // modulo 2^64, as it is its negative
    return now < old ? Distance{true, 0 - apart} : Distance{false, apart};
}

/** Of fields that hold whole numbers. */
std::optional<Distance> distance(const dictionary::Value& old, const dictionary::Value& now)
{
    if (const auto* number = std::get_if<std::uint64_t>(&old)) return distance(*number, std::get<std::uint64_t>(now));
    if (const auto* number = std::get_if<std::int64_t>(&old)) return distance(*number, std::get<std::int64_t>(now));
    return std::nullopt;
}

std::string digits(const Distance& distance)
{
    std::string text = distance.is_negative ? "-" : "";
    append_integer(text, distance.size);
    return text;
}

std::string float_difference(float old, float now)
{
    const auto difference = static_cast<float>(static_cast<double>(now) - static_cast<double>(old));
    if (!std::isfinite(difference)) return "";
    std::string text;
    append_float(text, difference);
    return text;
}

/** Of moments, in seconds; those that lie further apart than anyone's life have none. */
std::string moment_difference(const dictionary::Moment& old, const dictionary::Moment& now)
{
    constexpr std::int64_t furthest = 4'000'000'000;
    for (const std::int64_t part : {old.seconds, now.seconds, old.nanoseconds, now.nanoseconds})
        if (part < -furthest || part > furthest) return "";
    return seconds_text((now.seconds - old.seconds) * 1'000'000'000 + (now.nanoseconds - old.nanoseconds));
}

} // namespace

Comparison::Comparison(const records::Snapshot& old, const records::Snapshot& now) : old_(old), now_(now)
{
    for (const Field& field : dictionary::fields())
    {
        const records::Component& component = dictionary::component_of(field);
        if (!old.has(component) || !now.has(component)) continue;
        for (std::size_t i = 0; i < field.count(); ++i)
        {
            const FieldPlace place = {&field, i};
            if (!has_changed(place)) continue;
            changes_.push_back(place);
            if (is_fallen(place)) fallen_.push_back(place), reset_.set(field.component);
        }
    }
    std::stable_partition(changes_.begin(), changes_.end(), is_name_or_state); // not of ranges: Clang 14 does not take this library's
}

bool Comparison::is_other_decoder() const
{
    return !old_.decoder.empty() && !now_.decoder.empty() && old_.decoder != now_.decoder;
}

bool Comparison::has_changed(const FieldPlace& place) const
{
    const std::size_t offset = place.field->offset(place.element);
    return !std::ranges::equal(record_of(old_, *place.field).subspan(offset, place.field->size),
                               record_of(now_, *place.field).subspan(offset, place.field->size));
}

bool Comparison::has_value(const records::Snapshot& snapshot, const FieldPlace& place)
{
    const Record record = record_of(snapshot, *place.field);
    return !snapshot.not_measured[place.field->index] && dictionary::applies(*place.field, record, place.element) &&
           !dictionary::is_absent(*place.field, record, place.element);
}

std::string Comparison::difference(const FieldPlace& place) const
{
    const Field& field = *place.field;
    if (is_name_or_state(place) || !has_value(old_, place) || !has_value(now_, place)) return "";
    if (field.kind == Kind::counter && !is_continued(place) && !is_fallen(place)) return "";
    const dictionary::Value old = dictionary::value(field, record_of(old_, field), place.element);
    const dictionary::Value now = dictionary::value(field, record_of(now_, field), place.element);
    if (const auto apart = distance(old, now)) return digits(*apart);
    if (const auto* real = std::get_if<float>(&old)) return float_difference(*real, std::get<float>(now));
    if (const auto* moment = std::get_if<dictionary::Moment>(&old)) return moment_difference(*moment, std::get<dictionary::Moment>(now));
    return "";
}

std::optional<double> Comparison::rate(const FieldPlace& place) const
{
    const Field& field = *place.field;
    const std::int64_t apart = records::time_between(old_, now_, dictionary::component_of(field));
    if (field.kind != Kind::counter || apart <= 0 || reset_[field.component] || !is_continued(place)) return std::nullopt;
    if (!has_value(old_, place) || !has_value(now_, place)) return std::nullopt;
    const auto grown = distance(dictionary::value(field, record_of(old_, field), place.element),
                                dictionary::value(field, record_of(now_, field), place.element));
    if (!grown) return std::nullopt;
    return static_cast<double>(grown->size) * 1e9 / static_cast<double>(apart);
}

/** Whether a counter is less than it was, though its host has not started anew. */
bool Comparison::is_fallen(const FieldPlace& place) const
{
    const Field& field = *place.field;
    if (field.kind != Kind::counter || !is_continued(place) || !has_value(old_, place) || !has_value(now_, place)) return false;
    const auto apart = distance(dictionary::value(field, record_of(old_, field), place.element),
                                dictionary::value(field, record_of(now_, field), place.element));
    return apart && apart->is_negative;
}

/** Whether it goes on counting the same: the same run of the same decoder, and in an array the same thing in the element. */
bool Comparison::is_continued(const FieldPlace& place) const
{
    return !is_restarted() && !is_other_decoder() && has_same_element(place);
}

bool Comparison::has_same_element(const FieldPlace& place) const
{
    const dictionary::Array* array = place.field->array;
    if (array == nullptr) return true;
    const auto in_use = [&](const records::Snapshot& snapshot)
    { return dictionary::in_use(*array, record_of(snapshot, *place.field), place.element); };
    if (in_use(old_) != in_use(now_)) return false;
    const auto names = dictionary::fields().subspan(array->first_field, array->field_count);
    return std::ranges::none_of(names,
                                [&](const Field& field) {
                                    return (field.kind == Kind::identity || field.is_label) && has_changed({&field, place.element});
                                });
}

} // namespace views
