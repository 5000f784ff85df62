#include "clean.h"

#include "chain/chain_snapshot.h"
#include "diagnosis.h"

namespace softdec_tests
{

namespace
{

std::string findings_of(const diagnosis::Result& result)
{
    std::string text;
    for (const auto& finding : result.findings) text += " " + std::string(finding.rule->id);
    return text;
}

/** Looks as watchers do, one of whom takes each finding at once. */
class Watcher
{
public:
    explicit Watcher(bool decode) : abilities_{.has_arrivals = true, .decode = decode, .live = false} {}

    void look(softdec::Chain& chain, std::string& found)
    {
        for (diagnosis::Diagnosis* diagnosis : {&hasty_, &usual_})
            if (diagnosis->take(softdec::snapshot_of(chain, abilities_)))
                if (const std::string findings = findings_of(diagnosis->result()); !findings.empty()) found += "\n" + findings;
    }

private:
    softdec::Abilities abilities_;
    diagnosis::Diagnosis hasty_{{.window = 2, .confirm = false}};
    diagnosis::Diagnosis usual_;
};

} // namespace

Faults faults_in(softdec::Chain& chain)
{
    Faults faults = faults_of(chain.records());
    faults.erase("tdemux.timestamp_rollovers");
    return faults;
}

Seen watch(const std::vector<Arrival>& arrivals, bool decode)
{
    Seen seen;
    seen.chain =
        std::make_unique<softdec::Chain>(softdec::Chain::Settings{.has_arrivals = true, .decode = decode, .live = false, .start = 0});
    Watcher watcher(decode);
    softdec::Nanoseconds due = arrivals.front().moment;
    for (const Arrival& arrival : arrivals)
    {
        for (; arrival.moment > due; due += softdec::second)
        {
            seen.chain->run_to(due);
            watcher.look(*seen.chain, seen.findings);
        }
        seen.chain->take({.channel = arrival.channel, .arrival = arrival.moment, .bytes = arrival.bytes}, {});
    }
    seen.chain->finish();
    watcher.look(*seen.chain, seen.findings);
    seen.faults = faults_in(*seen.chain);
    return seen;
}

} // namespace softdec_tests
