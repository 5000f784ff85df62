#include "report_page.h"

#include "parameters.h"
#include "refusal.h"
#include "reports.h"

namespace server
{

std::string ReportPage::text(const Sight& sight, const Request& request)
{
    require_known(request, {"level", "component"});
    const STATS_LEVEL wanted_level = level(request);
    std::bitset<records::component_count> components;
    if (const records::Component* wanted = component(request))
    {
        if (!sight.snapshot.has(*wanted))
            throw Refusal(404, sight.listed.name + " has no record of component " + std::string(wanted->name));
        components.set(wanted->index);
    }
    if (sight.snapshot.present.none()) throw Refusal(404, sight.listed.name + " has no records, its state is " + std::string(sight.state));
    records::Snapshot snapshot = sight.snapshot;
    snapshot.taken_at = sight.looked_at;
    const std::scoped_lock lock(mutex_);
    return views::report_text(snapshot, library_file_, components, wanted_level);
}

} // namespace server
