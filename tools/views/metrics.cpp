#include "metrics.h"

#include <cmath>
#include <charconv>

#include "metric_families.h"
#include "number_text.h"
#include "value_text.h"

namespace views
{

namespace
{

using dictionary::Field;
using dictionary::MetricType;
using Record = std::span<const std::byte>;

/** A value as the text of a label. */
std::string label_value(const Field& field, Record record, std::size_t element)
{
    if (field.kind == dictionary::Kind::state)
    {
        std::string identifier = dictionary::identifier(field, dictionary::integer(field, record, element));
        if (!identifier.empty()) return identifier;
    }
    const dictionary::Value value = dictionary::value(field, record, element);
    if (const auto* text = std::get_if<std::string_view>(&value)) return std::string(*text);
    if (std::holds_alternative<Record>(value)) return bytes_text(field, record);
    std::string digits;
    if (const auto* natural = std::get_if<std::uint64_t>(&value))
        append_integer(digits, *natural);
    else
        append_integer(digits, dictionary::integer(field, record, element));
    return digits;
}

/** A decoder while its metrics are written. */
class Decoder
{
public:
    explicit Decoder(const ExposedDecoder& exposed) : snapshot_(*exposed.snapshot), is_up_(exposed.is_up)
    {
        append_label(labels_, "decoder", snapshot_.decoder);
        if (!is_up_) return;
        for (const records::Component& component : records::components())
            if (const dictionary::Array* array = dictionary::array_of(component); array != nullptr && snapshot_.has(component))
                add_elements(component, *array);
    }

    const std::string& labels() const { return labels_; }
    bool is_up() const { return is_up_; }
    std::int64_t taken_at() const { return snapshot_.taken_at; }

    /** Appends a family's samples, each with its line. */
    void append_samples(std::string& text, const MetricFamily& family) const
    {
        const Field& first = *family.members.front().field;
        const records::Component& component = dictionary::component_of(first);
        if (!is_up_ || !snapshot_.has(component)) return;
        const Record record = snapshot_.record(component);
        if (first.array == nullptr) return append_samples(text, family, record, 0, labels_);
        const std::vector<std::string>& elements = element_labels_.at(component.index);
        for (std::size_t i = 0; i < elements.size(); ++i)
            if (!elements[i].empty()) append_samples(text, family, record, i, elements[i]);
    }

private:
    /** The labels of an array's elements: the number, and what makes it readable. Those of elements not in use stay empty. */
    void add_elements(const records::Component& component, const dictionary::Array& array)
    {
        const Record record = snapshot_.record(component);
        std::vector<std::string>& elements = element_labels_.at(component.index);
        elements.resize(array.count);
        for (std::size_t i = 0; i < array.count; ++i)
        {
            if (!dictionary::in_use(array, record, i)) continue;
            elements[i] = labels_ + ',';
            append_label(elements[i], array.label, std::to_string(i + array.first_number));
            for (const Field& field : dictionary::fields().subspan(array.first_field, array.field_count))
            {
                if (!field.is_label || !has_value(field, record, i)) continue;
                elements[i] += ',';
                append_label(elements[i], field.label_name, label_value(field, record, i));
            }
        }
    }

    bool has_value(const Field& field, Record record, std::size_t element) const
    {
        return !snapshot_.not_measured[field.index] && dictionary::applies(field, record, element) &&
               !dictionary::is_absent(field, record, element);
    }

    void append_samples(std::string& text, const MetricFamily& family, Record record, std::size_t element, const std::string& labels) const
    {
        if (family.type == MetricType::info) return append_info(text, family, record, element, labels);
        for (const FamilyMember& member : family.members)
        {
            if (!has_value(*member.field, record, element)) continue;
            if (family.type == MetricType::state_set)
                append_states(text, family, member, dictionary::integer(*member.field, record, element), labels);
            else
                append_number(text, family, member, dictionary::value(*member.field, record, element), labels);
        }
    }

    static void append_number(std::string& text, const MetricFamily& family, const FamilyMember& member, const dictionary::Value& value,
                              const std::string& labels)
    {
        const dictionary::Metric& metric = member.field->metric;
        const auto* whole = std::get_if<std::int64_t>(&value);
        if (family.type == MetricType::counter && whole != nullptr && *whole < 0) return;

        text += family.start;
        text += labels;
        text += member.sample;
        if (whole != nullptr)
            append_scaled(text, *whole, metric.multiply, metric.divide);
        else if (const auto* natural = std::get_if<std::uint64_t>(&value))
            append_scaled(text, *natural, metric.multiply, metric.divide);
        else if (const auto* moment = std::get_if<dictionary::Moment>(&value))
            append_moment(text, *moment);
        else
            append_real(text, std::get<float>(value));
        text += '\n';
    }

    /** Fields that are floats have the base unit already. */
    static void append_real(std::string& text, float value)
    {
        if (std::isfinite(value)) return append_float(text, value);
        text += std::isnan(value) ? "NaN" : value > 0 ? "+Inf" : "-Inf";
    }

    static void append_states(std::string& text, const MetricFamily& family, const FamilyMember& member, std::int64_t code,
                              const std::string& labels)
    {
        const auto states = member.field->states->values;
        bool is_known = false;
        for (std::size_t i = 0; i <= states.size(); ++i)
        {
            const bool is_true = i < states.size() ? states[i].value == code : !is_known;
            is_known = is_known || is_true;
            text += family.start;
            text += labels;
            text += member.samples[i];
            text += is_true ? "1\n" : "0\n";
        }
    }

    void append_info(std::string& text, const MetricFamily& family, Record record, std::size_t element, const std::string& labels) const
    {
        const std::size_t before = text.size();
        text += family.start;
        text += labels;
        bool has_any = false;
        for (const FamilyMember& member : family.members)
        {
            const Field& field = *member.field;
            if (!has_value(field, record, element)) continue;
            has_any = true;
            if (field.is_label) continue; // among the labels already
            text += ',';
            append_label(text, field.metric.label, label_value(field, record, element));
        }
        if (has_any)
            text += "} 1\n";
        else
            text.resize(before);
    }

    const records::Snapshot& snapshot_;
    bool is_up_;
    std::string labels_;
    std::array<std::vector<std::string>, records::component_count> element_labels_;
};

/** Which decoders there are, and how old what is known of them is. */
void append_presence(std::string& text, const std::vector<Decoder>& decoders, MetricsFormat format)
{
    text += family_metadata(format, "decoder_up", "gauge", "", "1 = the decoder's records are being updated, 0 = they no longer are");
    for (const Decoder& decoder : decoders) text += "decoder_up{" + decoder.labels() + (decoder.is_up() ? "} 1\n" : "} 0\n");
    text += family_metadata(format, "decoder_last_update_timestamp_seconds", "gauge", "seconds", "when the decoder's records were last taken");
    for (const Decoder& decoder : decoders)
    {
        text += "decoder_last_update_timestamp_seconds{" + decoder.labels() + "} ";
        append_moment(text, {.seconds = 0, .nanoseconds = decoder.taken_at()});
        text += '\n';
    }
}

} // namespace

std::string metrics(std::span<const ExposedDecoder> decoders, MetricsFormat format)
{
    const std::vector<Decoder> all(decoders.begin(), decoders.end());
    std::string text;
    text.reserve(std::size_t{192} * 1024 * std::max<std::size_t>(1, all.size()));
    append_presence(text, all, format);
    for (const MetricFamily& family : metric_families())
    {
        const std::size_t before = text.size();
        text += family.metadata.at(static_cast<std::size_t>(format));
        const std::size_t metadata_end = text.size();
        for (const Decoder& decoder : all) decoder.append_samples(text, family);
        if (text.size() == metadata_end) text.resize(before);
    }
    if (format == MetricsFormat::openmetrics) text += "# EOF\n";
    return text;
}

} // namespace views
