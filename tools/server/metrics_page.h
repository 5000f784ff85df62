/**
 * @file metrics_page.h
 * /metrics: the metrics of all decoders, rendered once for everybody who asks at about the same time.
 */
#ifndef SERVER_METRICS_PAGE_H
#define SERVER_METRICS_PAGE_H

#include <array>
#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "decoders.h"
#include "metrics.h"
#include "request.h"
#include "response.h"

namespace server
{

/** The metrics of all decoders. Thread-safe. */
class MetricsPage
{
public:
    explicit MetricsPage(const Decoders& decoders) : decoders_(decoders) {}

    /** The metrics as they are now, at most `freshness` old, in the format and encoding that a request asks for. */
    Answer answer(const Request& request);

    /** Gives memory back if nobody has asked for a while. */
    void rest();

private:
    void look();
    void forget();
    const std::shared_ptr<const std::string>& text(views::MetricsFormat format);

    /** What is rendered of one moment in one format. */
    struct Rendering
    {
        std::shared_ptr<const std::string> text;
        Response plain;
        Response compressed;
    };

    const Decoders& decoders_;
    std::mutex mutex_;
    std::chrono::steady_clock::time_point looked_at_ = {};
    std::vector<SightPointer> sights_;
    std::array<Rendering, 2> renderings_; // by MetricsFormat
};

} // namespace server

#endif
