#include "metrics_page.h"

#include "bounds.h"
#include "diagnosis_metrics.h"
#include "gzip.h"
#include "negotiation.h"

namespace server
{

using std::chrono::steady_clock;

void MetricsPage::look()
{
    const steady_clock::time_point now = steady_clock::now();
    if (now - looked_at_ < freshness) return;
    looked_at_ = now;
    for (Rendering& rendering : renderings_)
    {
        rendering.plain.reset();
        rendering.compressed.reset();
        rendering.text.reset();
    }
    decoders_seen_.clear();
    for (const auto& decoder : decoders_.all())
    {
        SightPointer sight = decoder->sight();
        // Of a decoder that nobody has seen records of, there is nothing to tell, and what was captured is not of now.
        if (!sight->is_listed || sight->state == captured_state || sight->snapshot.present.none()) continue;
        const bool is_up = sight->snapshot.is_up.value_or(false);
        decoders_seen_.push_back({std::move(sight), is_up ? decoder->diagnosis() : std::nullopt});
    }
}

void MetricsPage::write(std::string& text, views::MetricsFormat format)
{
    std::vector<const records::Snapshot*> snapshots;
    std::vector<diagnosis::Diagnosed> diagnosed;
    for (const Seen& seen : decoders_seen_)
    {
        snapshots.push_back(&seen.sight->snapshot);
        if (seen.findings) diagnosed.push_back({seen.sight->listed.name, &*seen.findings});
    }
    diagnosis::write_metrics(findings_, diagnosed, format);
    views::write_metrics(text, snapshots, format, findings_);
}

std::shared_ptr<const std::string> MetricsPage::written(views::MetricsFormat format)
{
    auto text = std::make_unique<std::string>();
    {
        const std::scoped_lock lock(spare_->mutex);
        if (!spare_->texts.empty())
        {
            *text = std::move(spare_->texts.back());
            spare_->texts.pop_back();
        }
    }
    write(*text, format);
    // The lock also tells the next writer that the last reader is done.
    const auto give_back = [spare = spare_](std::string* sent)
    {
        const std::unique_ptr<std::string> owner(sent);
        const std::scoped_lock lock(spare->mutex);
        if (spare->texts.size() < spare->texts.capacity()) spare->texts.push_back(std::move(*sent));
    };
    return {text.release(), give_back};
}

const std::shared_ptr<const std::string>& MetricsPage::text(views::MetricsFormat format)
{
    Rendering& rendering = renderings_.at(static_cast<std::size_t>(format));
    if (!rendering.text) rendering.text = written(format);
    return rendering.text;
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
    if (steady_clock::now() - looked_at_ < metrics_memory) return;
    decoders_seen_.clear();
    findings_ = {};
    renderings_ = {};
    const std::scoped_lock spare_lock(spare_->mutex);
    spare_->texts.clear();
}

} // namespace server
