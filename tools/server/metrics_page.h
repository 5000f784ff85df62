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
    explicit MetricsPage(const Decoders& decoders) : decoders_(decoders) { spare_->texts.reserve(renderings_.size()); }

    /** The metrics as they are now, at most `freshness` old, in the format and encoding that a request asks for. */
    Answer answer(const Request& request);

    /** Gives memory back if nobody has asked for a while. */
    void rest();

private:
    /** What is rendered of one moment in one format. */
    struct Rendering
    {
        std::shared_ptr<const std::string> text;
        Response plain;
        Response compressed;
    };

    /** A decoder at that moment. */
    struct Seen
    {
        SightPointer sight;
        std::optional<diagnosis::Result> findings; /**< nothing = nobody can tell */
    };

    /** Texts that nobody sends any more. Writing into their memory saves a third of the time. */
    struct Spare
    {
        std::mutex mutex;
        std::vector<std::string> texts;
    };

    void look();
    std::shared_ptr<const std::string> written(views::MetricsFormat format);
    void write(std::string& text, views::MetricsFormat format);
    const std::shared_ptr<const std::string>& text(views::MetricsFormat format);

    const Decoders& decoders_;
    std::mutex mutex_;
    std::chrono::steady_clock::time_point looked_at_ = {};
    std::vector<Seen> decoders_seen_;
    std::string findings_;                                     // written before the rest
    std::shared_ptr<Spare> spare_ = std::make_shared<Spare>(); // what is being sent may outlive the page
    std::array<Rendering, 2> renderings_;                      // by MetricsFormat
};

} // namespace server

#endif
