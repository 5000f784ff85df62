/**
 * @file routes.h
 * What is found under which path.
 */
#ifndef SERVER_ROUTES_H
#define SERVER_ROUTES_H

#include <string>
#include <string_view>

#include "decoders.h"
#include "metrics_page.h"
#include "report_page.h"
#include "request.h"
#include "response.h"

namespace server
{

/** Who watches a server whether it is there asks for this, and needs no token. */
inline constexpr std::string_view health_path = "/-/healthy";

/** Answers requests. They change nothing. Thread-safe. */
class Routes
{
public:
    /** All of them outlive it. */
    Routes(Decoders& decoders, MetricsPage& metrics, ReportPage& reports) : decoders_(decoders), metrics_(metrics), reports_(reports) {}

    /** Answers a request, also one that is refused. Does not throw but for lack of memory. */
    Answer answer(const Request& request) const;

private:
    Answer route(const Request& request) const;
    Answer answer_api(std::string_view path, const Request& request) const;
    Answer answer_decoder(std::string_view path, const Request& request) const;
    std::string list_json(const Request& request) const;

    Decoders& decoders_;
    MetricsPage& metrics_;
    ReportPage& reports_;
};

} // namespace server

#endif
