#include <algorithm>

#include "rule.h"

namespace diagnosis
{

std::string_view severity_id(Severity severity)
{
    constexpr std::string_view ids[] = {"critical", "warning", "note"};
    return ids[static_cast<std::size_t>(severity)];
}

const std::vector<const Rule*>& rules()
{
    static const std::vector<const Rule*> all = []
    {
        std::vector<const Rule*> gathered;
        for (const Rules* stage : {&host_rules(), &network_rules(), &link_rules(), &ts_rules(), &clock_rules(), &buffering_rules(),
                                   &framer_rules(), &vdecoder_rules(), &output_rules(), &audio_rules(), &metadata_rules()})
            for (const Rule& rule : *stage) gathered.push_back(&rule);
        return gathered;
    }();
    return all;
}

const Rule* find_rule(std::string_view id)
{
    const auto found = std::ranges::find(rules(), id, [](const Rule* rule) { return rule->id; });
    return found == rules().end() ? nullptr : *found;
}

} // namespace diagnosis
