#include "decoder_json.h"

#include <vector>

#include "description.h"
#include "json.h"
#include "json_writer.h"
#include "moment.h"
#include "number_text.h"
#include "refusal.h"
#include "utf8.h"

namespace server
{

namespace
{

/** Adds how a decoder stands to an object. */
std::string with_state(std::string object, const Sight& sight)
{
    views::JsonWriter writer;
    writer.start_object();
    writer.member("state", sight.state);
    writer.key("problem");
    if (sight.listed.status.text.empty())
        writer.null();
    else
        writer.text(views::valid_utf8(sight.listed.status.text));
    writer.member("now", views::moment_text(sources::present_moment()));
    writer.end_object();
    object.back() = ',';
    return object + writer.str().substr(1);
}

} // namespace

std::string decoder_json(const Sight& sight, bool raw)
{
    return with_state(raw ? views::raw_json(sight.snapshot) : views::json(sight.snapshot), sight);
}

std::string findings_json(const WatchedDecoder& decoder, const Sight& sight)
{
    std::string findings = decoder.findings();
    if (findings.empty()) throw Refusal(404, sight.listed.name + " has no records to judge, its state is " + std::string(sight.state));
    return with_state(std::move(findings), sight);
}

std::string fields_json()
{
    std::vector<const dictionary::Field*> all;
    for (const dictionary::Field& field : dictionary::fields()) all.push_back(&field);
    return views::descriptions_json(all);
}

} // namespace server
