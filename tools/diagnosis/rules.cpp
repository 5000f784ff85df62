#include <algorithm>
#include <array>
#include <cstdio>

#include "rule.h"

namespace diagnosis
{

std::string_view severity_id(Severity severity)
{
    constexpr std::string_view ids[] = {"critical", "warning", "note"};
    return ids[static_cast<std::size_t>(severity)];
}

std::string share_text(std::int64_t bad, std::int64_t all, std::string_view of)
{
    const double percent = static_cast<double>(bad) * 100 / static_cast<double>(std::max<std::int64_t>(all, 1));
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%.*f %% of the ",
                  percent >= 10      ? 0
                  : percent >= 0.95  ? 1
                  : percent >= 0.095 ? 2
                                     : 3,
                  std::min(percent, 100.0));
    return text.data() + std::string(of);
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
