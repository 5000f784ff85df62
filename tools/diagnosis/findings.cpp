#include "findings.h"

#include <algorithm>

namespace diagnosis
{

namespace
{

/** A rule that has found something. */
struct Candidate
{
    std::size_t place; /**< among rules() */
    Hit hit;
    std::size_t root; /**< the candidate that explains it, by its place among the candidates; its own = none */
};

/** The first field that a rule misses, or NULL. What means nothing in these records is not missed. */
const Reading* missing(const Rule& rule, const Window& window)
{
    for (const Reading* reading : rule.reads)
    {
        if (window.measured(*reading)) continue;
        const dictionary::Field& field = reading->field();
        if (!window.snapshot().present[field.component]) return reading;
        for (std::size_t i = 0; i < field.count(); ++i)
            if (window.applies(*reading, i)) return reading;
    }
    return nullptr;
}

bool any_cleared(const Rule& rule, const Window& window)
{
    return std::ranges::any_of(rule.reads, [&](const Reading* reading) { return window.cleared(*reading); });
}

Finding finding_of(const Candidate& candidate, const Window& window)
{
    const Rule& rule = *rules()[candidate.place];
    Finding finding{.rule = &rule,
                    .severity = candidate.hit.severity.value_or(rule.severity),
                    .detail = candidate.hit.detail,
                    .since = {},
                    .evidence = {},
                    .explains = {}};
    if (candidate.hit.began_ago) finding.since = window.now() - *candidate.hit.began_ago;
    for (const Evidence& evidence : candidate.hit.evidence)
    {
        const dictionary::Field& field = evidence.reading->field();
        const auto record = window.snapshot().record(dictionary::component_of(field));
        Proof proof{.field = &field, .element = evidence.element, .value = dictionary::value(field, record, evidence.element), .grown = {}};
        if (field.kind == dictionary::Kind::counter && window.whole()) proof.grown = window.grown(*evidence.reading, evidence.element);
        finding.evidence.push_back(proof);
    }
    return finding;
}

std::vector<Candidate> ask(const Window& window, Found& found)
{
    found.asked.resize(rules().size());
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < rules().size(); ++i)
    {
        const Rule& rule = *rules()[i];
        if (const Reading* reading = missing(rule, window); reading != nullptr)
        {
            found.unseen.push_back({&rule, reading->name(), !window.snapshot().present[reading->field().component]});
            continue;
        }
        if (rule.needs_window && (!window.whole() || window.seconds() < rule.shortest_window)) continue;
        if (any_cleared(rule, window)) continue;
        found.asked[i] = true;
        Hit hit;
        if (rule.test(window, hit)) candidates.push_back({i, std::move(hit), candidates.size()});
    }
    return candidates;
}

} // namespace

bool explains(const Rule& cause, const Rule& effect)
{
    if ((cause.causes & effect.follows) == 0) return false;
    if (cause.stage != effect.stage) return reaches(cause.stage, effect.stage);
    return &cause < &effect; // the rules of a stage stand in one vector, in their order
}

Found find(const Window& window, const std::vector<bool>& recent)
{
    Found found;
    std::vector<Candidate> candidates = ask(window, found);
    if (!candidates.empty() && rules()[candidates.front().place]->stage == Stage::host)
    {
        candidates.resize(1); // all else is old
        for (std::size_t i = 0; i < found.asked.size(); ++i) found.asked[i] = found.asked[i] && rules()[i]->stage == Stage::host;
    }

    constexpr std::size_t earlier = SIZE_MAX; // something that has passed
    for (std::size_t i = 0; i < candidates.size(); ++i)
    {
        for (std::size_t j = i; j-- > 0 && candidates[i].root == i;) // the nearest cause, and what that follows from
            if (explains(*rules()[candidates[j].place], *rules()[candidates[i].place]))
                candidates[i].root = candidates[j].root == earlier ? j : candidates[j].root;
        for (std::size_t cause = 0; cause < recent.size() && candidates[i].root == i; ++cause)
            if (recent[cause] && cause != candidates[i].place && explains(*rules()[cause], *rules()[candidates[i].place]))
                candidates[i].root = earlier;
    }

    std::vector<std::size_t> places(candidates.size());
    for (std::size_t i = 0; i < candidates.size(); ++i)
    {
        if (candidates[i].root != i) continue;
        places[i] = found.findings.size();
        found.findings.push_back(finding_of(candidates[i], window));
    }
    for (std::size_t i = 0; i < candidates.size(); ++i)
    {
        if (candidates[i].root == i) continue;
        const Rule* rule = rules()[candidates[i].place];
        found.follow.push_back(rule);
        const std::size_t root = candidates[i].root;
        if (root != earlier && candidates[root].root == root) found.findings[places[root]].explains.push_back(rule);
    }
    std::ranges::stable_sort(found.findings, {}, &Finding::severity);
    return found;
}

} // namespace diagnosis
