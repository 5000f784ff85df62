/**
 * @file json_writer.h
 * Writes JSON, piece by piece.
 */
#ifndef VIEWS_JSON_WRITER_H
#define VIEWS_JSON_WRITER_H

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "dictionary.h"
#include "snapshot.h"

namespace views
{

/** A JSON text as it grows. Values and the names of members come in the order in which they stand. */
class JsonWriter
{
public:
    JsonWriter() : writer_(buffer_) {}

    void start_object() { writer_.StartObject(); }
    void end_object() { writer_.EndObject(); }
    void start_array() { writer_.StartArray(); }
    void end_array() { writer_.EndArray(); }
    void key(std::string_view name) { writer_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size())); }
    void null() { writer_.Null(); }
    void boolean(bool value) { writer_.Bool(value); }
    void integer(std::int64_t value) { writer_.Int64(value); }
    void integer(std::uint64_t value) { writer_.Uint64(value); }

    /** @param text valid UTF-8 */
    void text(std::string_view text) { writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size())); }

    /** A number that is already written. */
    void number(const std::string& digits) { writer_.RawValue(digits.data(), digits.size(), rapidjson::kNumberType); }

    void member(std::string_view name, std::string_view value)
    {
        key(name);
        text(value);
    }
    void member(std::string_view name, std::uint64_t value)
    {
        key(name);
        integer(value);
    }

    /** A member that is an object. @param content writes its members */
    template <typename Content> void object_member(std::string_view name, const Content& content)
    {
        key(name);
        start_object();
        content();
        end_object();
    }
    void words_member(std::string_view name, std::span<const std::string_view> words);
    void words_member(std::string_view name, std::initializer_list<std::string_view> words) { words_member(name, std::span(words)); }

    /**
     * An integer member, with its digits in a text beside it where many readers would round it: beyond 2^53 - 1 either way
     * (RFC 8259, section 6).
     */
    void integer_member(std::string_view name, std::int64_t value);
    void integer_member(std::string_view name, std::uint64_t value);

    /** The member NAME_s, which holds the digits of a number exactly. */
    void digits_member(std::string_view name, std::string_view digits);

    /** The members that every Snapshot starts with. */
    void envelope(std::string_view schema, const records::Snapshot& snapshot);

    /** Those of them that tell whose it is and of when: decoder, instance and taken_at. */
    void moment_of(const records::Snapshot& snapshot);

    std::string str() const { return {buffer_.GetString(), buffer_.GetSize()}; }

private:
    rapidjson::StringBuffer buffer_;
    rapidjson::Writer<rapidjson::StringBuffer> writer_;
};

} // namespace views

#endif
