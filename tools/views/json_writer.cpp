#include "json_writer.h"

#include "json.h"
#include "number_text.h"
#include "utf8.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>

namespace views
{

namespace
{

constexpr std::int64_t safe = (std::int64_t{1} << 53) - 1;

} // namespace

void JsonWriter::words_member(std::string_view name, std::span<const std::string_view> words)
{
    key(name);
    start_array();
    for (const std::string_view word : words) text(word);
    end_array();
}

void JsonWriter::digits_member(std::string_view name, std::string_view digits)
{
    key(std::string(name) + "_s");
    text(digits);
}

void JsonWriter::integer_member(std::string_view name, std::int64_t value)
{
    key(name);
    integer(value);
    if (value >= -safe && value <= safe) return;
    std::string digits;
    append_integer(digits, value);
    digits_member(name, digits);
}

void JsonWriter::integer_member(std::string_view name, std::uint64_t value)
{
    key(name);
    integer(value);
    if (value <= static_cast<std::uint64_t>(safe)) return;
    std::string digits;
    append_integer(digits, value);
    digits_member(name, digits);
}

void JsonWriter::envelope(std::string_view schema, const records::Snapshot& snapshot)
{
    member("schema", schema);
    moment_of(snapshot);
}

void JsonWriter::moment_of(const records::Snapshot& snapshot)
{
    const auto moment = [this](std::string_view name, std::int64_t value)
    {
        std::string written;
        append_rfc3339(written, value);
        member(name, written);
    };
    key("decoder");
    if (snapshot.decoder.empty())
        null();
    else
        text(valid_utf8(snapshot.decoder));
    key("instance");
    if (!snapshot.instance)
        null();
    else
    {
        std::string id;
        append_hex(id, std::as_bytes(std::span(snapshot.instance->id)));
        start_object();
        member("id", id);
        moment("started_at", snapshot.instance->started_at);
        end_object();
    }
    moment("taken_at", snapshot.taken_at);
}

namespace
{

/** Copies JSON as it is read, numbers digit by digit. */
class Indenter : public rapidjson::PrettyWriter<rapidjson::StringBuffer>
{
public:
    using PrettyWriter::PrettyWriter;

    // The library's own would put the digits in quotes.
    bool RawNumber(const char* digits, rapidjson::SizeType length, bool /*copy*/)
    {
        return RawValue(digits, length, rapidjson::kNumberType);
    }
};

} // namespace

std::string indented(const std::string& json)
{
    rapidjson::StringBuffer buffer;
    Indenter indenter(buffer);
    indenter.SetIndent(' ', 2);
    rapidjson::Reader reader;
    rapidjson::StringStream stream(json.c_str());
    reader.Parse<rapidjson::kParseNumbersAsStringsFlag>(stream, indenter);
    return {buffer.GetString(), buffer.GetSize()};
}

} // namespace views
