#include "metrics_page.h"

#include "bounds.h"
#include "gzip.h"
#include "negotiation.h"

namespace server
{

using std::chrono::steady_clock;

void MetricsPage::forget()
{
    sights_.clear();
    renderings_ = {};
}

void MetricsPage::look()
{
    const steady_clock::time_point now = steady_clock::now();
    if (now - looked_at_ < freshness) return;
    forget();
    for (const auto& decoder : decoders_.all())
    {
        SightPointer sight = decoder->sight();
        // Of a decoder that nobody has seen records of, there is nothing to tell.
        if (sight->is_listed && sight->snapshot.present.any()) sights_.push_back(std::move(sight));
    }
    looked_at_ = now;
}

const std::shared_ptr<const std::string>& MetricsPage::text(views::MetricsFormat format)
{
    std::shared_ptr<const std::string>& text = renderings_.at(static_cast<std::size_t>(format)).text;
    if (text) return text;
    std::vector<const records::Snapshot*> snapshots;
    for (const SightPointer& sight : sights_) snapshots.push_back(&sight->snapshot);
    std::string written;
    views::write_metrics(written, snapshots, format);
    text = std::make_shared<const std::string>(std::move(written));
    return text;
}

Answer MetricsPage::answer(const Request& request)
{
    const views::MetricsFormat format = preferred_format(request.accept);
    const std::string_view type =
        format == views::MetricsFormat::openmetrics ? views::openmetrics_content_type : views::prometheus_content_type;
    const std::scoped_lock lock(mutex_);
    look();
    Rendering& rendering = renderings_.at(static_cast<std::size_t>(format));
    if (accepts_gzip(request.accept_encoding))
    {
        if (!rendering.compressed) rendering.compressed = make_response(gzip(*text(format)), type, true);
        return {200, rendering.compressed};
    }
    if (!rendering.plain) rendering.plain = make_response(text(format), type);
    return {200, rendering.plain};
}

void MetricsPage::rest()
{
    const std::scoped_lock lock(mutex_);
    if (steady_clock::now() - looked_at_ > look_interval) forget();
}

} // namespace server
