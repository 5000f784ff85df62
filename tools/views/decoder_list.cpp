#include "decoder_list.h"

#include <algorithm>
#include <span>

#include "component.h"
#include "failure.h"
#include "json_writer.h"
#include "number_text.h"
#include "time_text.h"
#include "utf8.h"
#include "value_text.h"

namespace views
{

namespace
{

using published::RecordState;

std::string record_text(const published::RecordStatus& record, std::int64_t now)
{
    switch (record.state)
    {
    case RecordState::whole: return age_text(now - record.published_at);
    case RecordState::never: return "never";
    case RecordState::busy: return "busy";
    case RecordState::cut_off: break;
    }
    return "cut off";
}

std::string_view record_state_name(RecordState state)
{
    constexpr std::string_view names[] = {"whole", "never", "busy", "cut_off"};
    return names[static_cast<std::size_t>(state)];
}

void decoder_object(JsonWriter& writer, const NamedDecoder& named, std::int64_t now)
{
    const published::Listed& decoder = *named.decoder;
    const published::Status& status = decoder.status;
    const bool is_known = published::has_records(status.state);
    const auto text_or_null = [&](std::string_view name, const std::string& text)
    {
        writer.key(name);
        if (text.empty())
            writer.null();
        else
            writer.text(valid_utf8(text));
    };
    writer.start_object();
    writer.member("decoder", decoder.name);
    writer.member("path", valid_utf8(decoder.path));
    writer.member("state", named.state);
    text_or_null("problem", status.text);
    if (named.verdict)
        writer.object_member("verdict",
                             [&]
                             {
                                 writer.member("state", named.verdict->state);
                                 writer.member("headline", named.verdict->headline);
                             });
    text_or_null("host", status.host);
    writer.key("instance");
    if (!is_known) writer.null();
    if (is_known)
    {
        writer.start_object();
        writer.member("id", instance_text(status.instance));
        writer.member("started_at", moment_text(status.instance.started_at));
        writer.end_object();
    }
    writer.object_member("records",
                         [&]
                         {
                             for (const records::Component& component : records::components())
                             {
                                 const published::RecordStatus& record = status.records[component.index];
                                 if (!is_known) continue;
                                 writer.key(component.key);
                                 writer.start_object();
                                 writer.member("state", record_state_name(record.state));
                                 const bool is_whole = record.state == RecordState::whole;
                                 text_or_null("published_at", is_whole ? moment_text(record.published_at) : "");
                                 writer.key("age");
                                 std::string age;
                                 append_moment(age, {.nanoseconds = std::max<std::int64_t>(now - record.published_at, 0)});
                                 if (is_whole)
                                     writer.number(age);
                                 else
                                     writer.null();
                                 writer.end_object();
                             }
                         });
    writer.end_object();
}

} // namespace

std::string decoder_lines(const published::Listing& listing, std::int64_t now)
{
    std::size_t width = 0;
    for (const published::Listed& decoder : listing.decoders) width = std::max(width, decoder.name.size());
    std::string text;
    for (const auto& [name, path, status] : listing.decoders)
    {
        text.append(name).append(width - name.size() + 2, ' ').append(published::state_name(status.state));
        const bool is_known = published::has_records(status.state);
        if (is_known) text.append(" since ").append(to_the_second(status.instance.started_at));
        if (is_known) text.append(", instance ").append(instance_text(status.instance));
        if (is_known && !status.host.empty()) text.append(", host ").append(files::printable(status.host));
        text += '\n';
        const std::string indent(width + 2, ' ');
        if (!status.text.empty()) text.append(indent).append(files::printable(status.text)).append("\n");
        if (!is_known) continue;
        text += indent;
        for (const records::Component& component : records::components())
            text.append(component.index == 0 ? "" : ", ")
                .append(component.name)
                .append(" ")
                .append(record_text(status.records[component.index], now));
        text += '\n';
    }
    return text;
}

std::string decoders_json(const published::Listing& listing, const std::string& directory, std::int64_t now)
{
    std::vector<NamedDecoder> named;
    for (const published::Listed& decoder : listing.decoders) named.push_back({&decoder, published::state_name(decoder.status.state)});
    return decoders_json(named, directory, now);
}

std::string decoders_json(std::span<const NamedDecoder> decoders, const std::string& directory, std::int64_t now)
{
    JsonWriter writer;
    writer.start_object();
    writer.member("schema", "decstats-list/1");
    writer.member("directory", valid_utf8(directory));
    writer.member("taken_at", moment_text(now));
    writer.key("decoders");
    writer.start_array();
    for (const NamedDecoder& decoder : decoders) decoder_object(writer, decoder, now);
    writer.end_array();
    writer.end_object();
    return writer.str();
}

} // namespace views
