#include "window.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace diagnosis
{

namespace
{

constexpr Reading uptime{"tdemux.uptime"};

constexpr std::int64_t nanoseconds = 1'000'000'000;

std::int64_t seconds_of(std::int64_t moment)
{
    return moment >= 0 ? moment / nanoseconds : (moment - nanoseconds + 1) / nanoseconds;
}

/** Every element of every counter, found once. */
struct CounterPlace
{
    const dictionary::Field* field;
    std::size_t offset;
};

const std::vector<CounterPlace>& counters()
{
    static const std::vector<CounterPlace> places = []
    {
        std::vector<CounterPlace> all;
        for (const dictionary::Field& field : dictionary::fields())
        {
            if (field.kind != dictionary::Kind::counter || field.condition.never) continue;
            for (std::size_t i = 0; i < field.count(); ++i) all.push_back({&field, i});
        }
        return all;
    }();
    return places;
}

} // namespace

const dictionary::Field& Reading::field() const
{
    const dictionary::Field* known = field_.load(std::memory_order_relaxed);
    if (known == nullptr)
    {
        const auto found = dictionary::find(name_);
        if (!found) throw std::logic_error("the dictionary has no field " + std::string(name_));
        known = found->field;
        field_.store(known, std::memory_order_relaxed);
    }
    return *known;
}

Window::Window(const records::Snapshot* before, const records::Snapshot& now, double longest)
    : before_(before), now_(now), now_seconds_(seconds_of(now.taken_at))
{
    if (before == nullptr)
    {
        break_ = Break::single;
        return;
    }

    seconds_ = static_cast<double>(now.taken_at - before->taken_at) / static_cast<double>(nanoseconds);
    if (now.instance != before->instance)
        break_ = Break::instance;
    else if (now.taken_at <= before->taken_at)
        break_ = Break::clock_back;
    else if (now.present.test(0) && before->present.test(0) && measured(uptime))
    {
        const std::int64_t ran = value(uptime) - value_of(*before, uptime, 0);
        // The records' own time runs evenly, and reads whole seconds. A host that hangs lets none pass.
        if (ran < 0)
            break_ = Break::stream;
        else if (ran > 0 && std::abs(static_cast<double>(ran) - seconds_) > 2 + 0.1 * seconds_)
            break_ = Break::clock_back;
    }
    if (break_ == Break::none && seconds_ > longest) break_ = Break::gap;
    if (break_ != Break::none)
        seconds_ = 0;
    else
        find_cleared();
}

double Window::seconds(const Reading& reading) const
{
    if (!whole()) return 0;
    const records::Component& component = dictionary::component_of(reading.field());
    return std::max(0.0, static_cast<double>(records::time_between(*before_, now_, component)) / static_cast<double>(nanoseconds));
}

void Window::find_cleared()
{
    for (const CounterPlace& place : counters())
    {
        const dictionary::Field& field = *place.field;
        if (cleared_[field.component] || !now_.present[field.component] || !before_->present[field.component]) continue;
        const records::Component& component = records::components()[field.component];
        const std::int64_t was = dictionary::integer(field, before_->record(component), place.offset);
        const std::int64_t is = dictionary::integer(field, now_.record(component), place.offset);
        if (field.type == dictionary::Type::u64 ? static_cast<std::uint64_t>(is) < static_cast<std::uint64_t>(was) : is < was)
        {
            // What belongs to another transport, or to none, may hold anything.
            if (dictionary::applies(field, now_.record(component), place.offset)) cleared_.set(field.component);
        }
    }
}

bool Window::measured(const Reading& reading) const
{
    const dictionary::Field& field = reading.field();
    return now_.present[field.component] && !now_.not_measured[field.index];
}

bool Window::applies(const Reading& reading, std::size_t element) const
{
    const dictionary::Field& field = reading.field();
    return now_.present[field.component] && dictionary::applies(field, now_.record(dictionary::component_of(field)), element);
}

std::int64_t Window::value_of(const records::Snapshot& snapshot, const Reading& reading, std::size_t element) const
{
    const dictionary::Field& field = reading.field();
    return dictionary::integer(field, snapshot.record(dictionary::component_of(field)), element);
}

std::int64_t Window::value(const Reading& reading, std::size_t element) const
{
    note(reading);
    return value_of(now_, reading, element);
}

double Window::number(const Reading& reading) const
{
    note(reading);
    const dictionary::Field& field = reading.field();
    const dictionary::Value value = dictionary::value(field, now_.record(dictionary::component_of(field)));
    const float* number = std::get_if<float>(&value);
    return number != nullptr && std::isfinite(*number) ? static_cast<double>(*number) : 0;
}

std::int64_t Window::grown(const Reading& reading, std::size_t element) const
{
    note(reading);
    if (!whole()) return 0;
    const auto was = static_cast<std::uint64_t>(value_of(*before_, reading, element));
    const auto is = static_cast<std::uint64_t>(value_of(now_, reading, element));
    const auto difference = static_cast<std::int64_t>(is - was);
    return std::max<std::int64_t>(difference, 0);
}

std::int64_t Window::grown(const Reading& reading) const
{
    const std::size_t count = reading.field().count();
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) sum = std::max(sum, sum + std::min<std::int64_t>(grown(reading, i), INT64_MAX / 16));
    return sum;
}

bool Window::changed(const Reading& reading, std::size_t element) const
{
    note(reading);
    return whole() && value_of(now_, reading, element) != value_of(*before_, reading, element);
}

std::optional<std::int64_t> Window::difference(const Reading& reading) const
{
    note(reading);
    if (!whole()) return {};
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(value_of(now_, reading, 0)) -
                                     static_cast<std::uint64_t>(value_of(*before_, reading, 0)));
}

bool Window::happened(const Reading& time, std::size_t element) const
{
    note(time);
    if (!whole()) return false;
    const std::int64_t moment = value_of(now_, time, element);
    return moment != value_of(*before_, time, element) && moment <= now_seconds_ + 1 && moment >= seconds_of(before_->taken_at) - 1;
}

std::optional<std::int64_t> Window::age(const Reading& time, std::size_t element) const
{
    note(time);
    const std::int64_t moment = value_of(now_, time, element);
    if (moment <= 0 || moment > now_seconds_ + 1) return {};
    return std::max<std::int64_t>(now_seconds_ - moment, 0);
}

} // namespace diagnosis
