#include "metrics.h"

#include <algorithm>
#include <array>

#include "metric_families.h"
#include "metric_value.h"
#include "number_text.h"
#include "presence.h"
#include "text_buffer.h"
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
    explicit Decoder(const records::Snapshot* snapshot) : snapshot_(*snapshot)
    {
        append_label(labels_, "decoder", snapshot_.decoder);
        if (is_over()) return;
        for (const records::Component& component : records::components())
            if (const dictionary::Array* array = dictionary::array_of(component); array != nullptr && snapshot_.has(component))
                add_elements(component, *array);
    }

    const std::string& labels() const { return labels_; }
    const std::optional<bool>& is_up() const { return snapshot_.is_up; }
    std::int64_t taken_at() const { return snapshot_.taken_at; }

    /** Appends a family's samples, each with its line. */
    void append_samples(TextBuffer& text, const MetricFamily& family) const
    {
        const Field& first = *family.members.front().field;
        const records::Component& component = dictionary::component_of(first);
        if (is_over() || !snapshot_.has(component)) return;
        const Record record = snapshot_.record(component);
        if (first.array == nullptr) return append_samples(text, family, record, 0, labels_);
        const std::vector<std::string>& elements = element_labels_.at(component.index);
        for (std::size_t i = 0; i < elements.size(); ++i)
            if (!elements[i].empty()) append_samples(text, family, record, i, elements[i]);
    }

private:
    /** Whether its records are no longer updated, so that they are the metrics of nothing. */
    bool is_over() const { return snapshot_.is_up == false; }

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
                if (!field.is_label || !is_shown(field, record, i)) continue;
                elements[i] += ',';
                append_label(elements[i], field.label_name, label_value(field, record, i));
            }
        }
    }

    bool is_shown(const Field& field, Record record, std::size_t element) const
    {
        return applies_in_use(field, record, element) && has_value(snapshot_, field, record, element);
    }

    void append_samples(TextBuffer& text, const MetricFamily& family, Record record, std::size_t element, const std::string& labels) const
    {
        if (family.type == MetricType::info) return append_info(text, family, record, element, labels);
        for (const FamilyMember& member : family.members)
        {
            if (member.is_plain ? snapshot_.not_measured[member.index] : !is_shown(*member.field, record, element)) continue;
            if (family.type == MetricType::state_set)
                append_states(text, family, dictionary::integer(*member.field, record, element), labels);
            else
                append_number(text, family, member, record.data() + member.offset + element * member.stride, labels);
        }
    }

    /** @param bytes where the value stands */
    static void append_number(TextBuffer& text, const MetricFamily& family, const FamilyMember& member, const std::byte* bytes,
                              const std::string& labels)
    {
        char* to = text.room(family.start.size() + labels.size() + member.labels.size() + number_size + 1);
        to = TextBuffer::put(to, family.start);
        to = TextBuffer::put(to, labels);
        to = TextBuffer::put(to, member.labels);
        const char* const value = to;
        to = write_metric_value(to, member, bytes);
        if (family.type == MetricType::counter && *value == '-') return; // no counter is below 0: nothing has been written
        *to++ = '\n';
        text.written_to(to);
    }

    static void append_states(TextBuffer& text, const MetricFamily& family, std::int64_t code, const std::string& labels)
    {
        const auto states = family.members.front().field->states->values;
        bool is_known = false;
        for (std::size_t i = 0; i <= states.size(); ++i)
        {
            const bool is_true = i < states.size() ? states[i].value == code : !is_known;
            is_known = is_known || is_true;
            char* to = text.room(family.start.size() + labels.size() + family.states[i].size() + 2);
            to = TextBuffer::put(to, family.start);
            to = TextBuffer::put(to, labels);
            to = TextBuffer::put(to, family.states[i]);
            text.written_to(TextBuffer::put(to, is_true ? "1\n" : "0\n"));
        }
    }

    void append_info(TextBuffer& text, const MetricFamily& family, Record record, std::size_t element, const std::string& labels) const
    {
        std::string sample = std::string(family.start) + labels;
        bool has_any = false;
        for (const FamilyMember& member : family.members)
        {
            const Field& field = *member.field;
            if (!is_shown(field, record, element)) continue;
            has_any = true;
            if (field.is_label) continue; // among the labels already
            sample += ',';
            append_label(sample, field.metric.label, label_value(field, record, element));
        }
        if (has_any) text.append(sample + "} 1\n");
    }

    const records::Snapshot& snapshot_;
    std::string labels_;
    std::array<std::vector<std::string>, records::component_count> element_labels_;
};

/** Which decoders there are, and how old what is known of them is. */
std::string presence(const std::vector<Decoder>& decoders, MetricsFormat format)
{
    std::string text;
    if (std::ranges::any_of(decoders, [](const Decoder& decoder) { return decoder.is_up().has_value(); }))
        text = family_metadata(format, up_family.name, up_family.type, up_family.unit, up_family.help);
    for (const Decoder& decoder : decoders)
        if (decoder.is_up()) text += "decoder_up{" + decoder.labels() + (*decoder.is_up() ? "} 1\n" : "} 0\n");
    text += family_metadata(format, last_update_family.name, last_update_family.type, last_update_family.unit, last_update_family.help);
    for (const Decoder& decoder : decoders)
    {
        text += "decoder_last_update_timestamp_seconds{" + decoder.labels() + "} ";
        append_moment(text, {.seconds = 0, .nanoseconds = decoder.taken_at()});
        text += '\n';
    }
    return text;
}

/**
 * What an exposition rarely exceeds [bytes]. With a string that doubles its way there, the memory goes back to the kernel each time and
 * comes from it again, page by page, which takes three times as long as all that is written.
 */
std::size_t usual_size(std::size_t decoders)
{
    constexpr std::size_t metadata = std::size_t{112} * 1024;
    constexpr std::size_t samples = std::size_t{80} * 1024;
    return metadata + decoders * samples;
}

} // namespace

void write_metrics(std::string& text, std::span<const records::Snapshot* const> decoders, MetricsFormat format, std::string_view further)
{
    const std::vector<Decoder> all(decoders.begin(), decoders.end());
    text.reserve(usual_size(decoders.size()));
    TextBuffer buffer(text);
    buffer.append(presence(all, format));
    for (const MetricFamily& family : metric_families(format))
    {
        const std::size_t before = buffer.size();
        buffer.append(family.metadata);
        const std::size_t metadata_end = buffer.size();
        for (const Decoder& decoder : all) decoder.append_samples(buffer, family);
        if (buffer.size() == metadata_end) buffer.cut(before);
    }
    buffer.append(further);
    buffer.append(end_of_metrics(format));
}

std::string_view end_of_metrics(MetricsFormat format)
{
    return format == MetricsFormat::openmetrics ? "# EOF\n" : "";
}

} // namespace views
