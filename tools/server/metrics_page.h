/**
 * @file metrics_page.h
 * /metrics: the metrics of all decoders, rendered once for everybody who asks at about the same time.
 */
#ifndef SERVER_METRICS_PAGE_H
#define SERVER_METRICS_PAGE_H

#include <array>
#include <chrono>
#include <mutex>
#include <optional>
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
    /** What is rendered of one moment in one format. */
    struct Rendering
    {
        std::shared_ptr<std::string> text; // kept for its memory, also when it is of an earlier moment
        bool is_written = false;
        Response plain;
        Response compressed;
    };

    /** A decoder at that moment. */
    struct Seen
    {
        SightPointer sight;
        std::optional<diagnosis::Result> findings; /**< nothing = nobody can tell */
    };

    void look();
    void write(std::string& text, views::MetricsFormat format);
    const std::shared_ptr<std::string>& text(views::MetricsFormat format);

    const Decoders& decoders_;
    std::mutex mutex_;
    std::chrono::steady_clock::time_point looked_at_ = {};
    std::vector<Seen> decoders_seen_;
    std::string findings_;                // written before the rest
    std::array<Rendering, 2> renderings_; // by MetricsFormat
};

} // namespace server

#endif
