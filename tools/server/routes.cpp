#include "routes.h"

#include "bounds.h"
#include "decoder_json.h"
#include "decoder_list.h"
#include "gzip.h"
#include "moment.h"
#include "negotiation.h"
#include "page.h"
#include "parameters.h"
#include "past.h"
#include "refusal.h"

namespace server
{

namespace
{

constexpr std::size_t worth_compressing = 1024; // [bytes]

/** An answer of this moment. */
Answer made(const Request& request, std::string body, std::string_view content_type)
{
    const bool is_compressed = body.size() >= worth_compressing && accepts_gzip(request.accept_encoding);
    return {200, make_response(is_compressed ? gzip(body) : std::move(body), content_type, is_compressed)};
}

Answer made_json(const Request& request, std::string json)
{
    return made(request, std::move(json) + "\n", json_content_type);
}

[[noreturn]] void refuse_path(const Request& request)
{
    throw Refusal(404, std::string(request.path) + ": there is nothing under this path");
}

/** What the fields mean: the same for as long as the program runs. */
Answer answer_fields(const Request& request)
{
    static const std::string plain = fields_json() + "\n";
    static const std::string compressed = gzip(plain);
    static const Answer plain_answer = {200, make_static_response(plain, json_content_type)};
    static const Answer compressed_answer = {200, make_static_response(compressed, json_content_type, true)};
    require_known(request, {});
    return accepts_gzip(request.accept_encoding) ? compressed_answer : plain_answer;
}

} // namespace

std::string Routes::list_json(const Request& request) const
{
    require_known(request, {});
    const std::string problem = decoders_.problem();
    if (!problem.empty()) throw Refusal(503, problem);
    std::vector<SightPointer> sights;
    std::vector<views::NamedDecoder> named;
    for (const auto& decoder : decoders_.all())
    {
        SightPointer sight = decoder->sight();
        if (!sight->is_listed) continue;
        named.push_back({&sight->listed, sight->state});
        const auto findings = sight->snapshot.is_up.value_or(false) ? decoder->diagnosis() : std::nullopt;
        if (findings) named.back().verdict = {diagnosis::state_id(findings->verdict.state), findings->verdict.headline};
        sights.push_back(std::move(sight));
    }
    return views::decoders_json(named, decoders_.directory(), sources::present_moment());
}

Answer Routes::answer_decoder(std::string_view path, const Request& request) const
{
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string_view name = path.substr(0, end);
    const std::string_view what = path.substr(end);
    if (what != "" && what != "/report" && what != "/findings" && what != "/history") refuse_path(request);
    const auto decoder = decoders_.find(name);
    if (!decoder) throw Refusal(404, "no decoder of the name " + std::string(name) + " is here");

    if (what == "/history") return made_json(request, past_json(*decoder, request));
    const SightPointer sight = decoder->sight();
    if (what == "/report") return made(request, reports_.text(*sight, request), text_content_type);
    if (what == "/findings")
    {
        require_known(request, {});
        return made_json(request, findings_json(*decoder, *sight));
    }
    require_known(request, {"raw"});
    return made_json(request, decoder_json(*sight, flag(request, "raw")));
}

Answer Routes::answer_api(std::string_view path, const Request& request) const
{
    constexpr std::string_view one = "decoders/";
    if (path == "decoders") return made_json(request, list_json(request));
    if (path == "fields") return answer_fields(request);
    if (path.starts_with(one)) return answer_decoder(path.substr(one.size()), request);
    refuse_path(request);
}

Answer Routes::route(const Request& request) const
{
    constexpr std::string_view api = "/api/v1/";
    if (request.path == health_path) return {200, make_response("healthy\n", text_content_type)};
    if (request.path == "/metrics") return metrics_.answer(request);
    if (request.path.starts_with(api)) return answer_api(request.path.substr(api.size()), request);
    Answer file = page_file(request);
    if (!file.response) refuse_path(request);
    return file;
}

Answer Routes::answer(const Request& request) const
{
    try
    {
        return route(request);
    }
    catch (const Refusal& refusal)
    {
        return refuse(refusal.status(), refusal.what());
    }
    catch (const std::exception& error)
    {
        return refuse(500, error.what());
    }
}

} // namespace server
