#include "running_diagnosis.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>

#include "captured.h"
#include "diagnosis.h"

using server::RunningDiagnosis;

namespace
{

/** A decoder in which something goes wrong, looked at each second. */
class Watched
{
public:
    explicit Watched(std::string_view scenario) : simulation_(scenario, 1, samples::Simulation::Moment(std::chrono::nanoseconds(noon))) {}

    void inject(std::string_view fault) { simulation_.inject(fault); }

    /** Goes on for so many seconds. */
    void watch(int seconds)
    {
        for (int i = 0; i < seconds; ++i)
        {
            simulation_.advance(std::chrono::seconds(1));
            records::Snapshot snapshot;
            snapshot.decoder = "alpha";
            snapshot.instance = records::Instance{.id = {1}, .started_at = noon};
            snapshot.taken_at = simulation_.now().time_since_epoch().count();
            std::memcpy(&snapshot.records, &simulation_.records(), sizeof snapshot.records);
            snapshot.present.set();
            running_.take(snapshot);
            long_.take(snapshot);
        }
    }

    diagnosis::Result result() const { return running_.result().value_or(diagnosis::Result()); }

    /** What windows of ten seconds have found. */
    const diagnosis::Result& long_result() const { return long_.result(); }

private:
    samples::Simulation simulation_;
    RunningDiagnosis running_;
    diagnosis::Diagnosis long_;
};

std::set<std::string_view> found(const diagnosis::Result& result)
{
    std::set<std::string_view> ids;
    for (const diagnosis::Finding& finding : result.findings) ids.insert(finding.rule->id);
    return ids;
}

TEST(RunningDiagnosis, SaysNothingAboutNothing)
{
    const RunningDiagnosis running;
    EXPECT_FALSE(running.result());
    EXPECT_EQ(running.json(true), "");
}

TEST(RunningDiagnosis, FindsNothingInHealth)
{
    for (const char* scenario : {"live-srt-1080i", "rtp-fec-2160p", "idle"})
    {
        Watched decoder(scenario);
        for (int i = 0; i < 120; ++i)
        {
            decoder.watch(1);
            EXPECT_EQ(found(decoder.result()), std::set<std::string_view>()) << scenario << " after " << i;
        }
    }
}

TEST(RunningDiagnosis, FindsInTheEndWhatALongWindowFinds)
{
    for (const samples::Fault& fault : samples::faults())
    {
        Watched decoder(fault.scenario);
        decoder.watch(15);
        decoder.inject(fault.name);
        decoder.watch(60);
        EXPECT_FALSE(found(decoder.long_result()).empty()) << fault.name;
        if (diagnosis::exit_status(decoder.long_result()) == 0) continue; // a note outweighs nothing
        EXPECT_EQ(found(decoder.result()), found(decoder.long_result())) << fault.name;
    }
}

TEST(RunningDiagnosis, TellsWithinTwoSecondsThatSomethingHasStopped)
{
    for (const char* fault : {"decoder-stalled", "framer-stalled", "ts-stopped"})
    {
        Watched decoder("live-srt-1080i");
        decoder.watch(15);
        decoder.inject(fault);
        int seconds = 0;
        for (; seconds < 10 && diagnosis::exit_status(decoder.result()) != 2; ++seconds) decoder.watch(1);
        EXPECT_LE(seconds, 2) << fault;
    }
}

TEST(RunningDiagnosis, RatesAreThoseOfTheLastSecond)
{
    Watched decoder("live-srt-1080i");
    decoder.watch(15);
    decoder.inject("srt-loss");
    decoder.watch(31);
    const double before = decoder.result().stages[0].in.value_or(0);
    decoder.watch(1);
    EXPECT_NE(decoder.result().stages[0].in.value_or(0), before);
    EXPECT_EQ(decoder.result().seconds, 10);
}

} // namespace
