#include "chain/capture.h"

#include <algorithm>
#include <bit>

#include "chain/chain_snapshot.h"
#include "release.h"

namespace softdec
{

namespace
{

/** Nothing changes in a longer silence, and the clock of a broken input may leap by years: there are no snapshots of the rest. */
constexpr Nanoseconds longest_silence = 60 * second;

Nanoseconds next_second(Nanoseconds moment)
{
    return moment - moment % second + second;
}

} // namespace

Capture::Capture(const std::string& path, const std::string& decoder, const Abilities& abilities)
    : writer_(path), decoder_(decoder), abilities_(abilities)
{
}

void Capture::reach(Chain& chain, Nanoseconds moment)
{
    const Nanoseconds now = chain.clock().now();
    if (now == 0) return;
    if (began_ == 0)
    {
        began_ = now;
        due_ = next_second(now);
    }
    while (due_ <= std::min(moment, now + longest_silence))
    {
        chain.run_to(due_);
        append(chain);
        due_ = next_second(chain.clock().now());
    }
    if (due_ > moment) return;
    writer_.mark_gap(capture::GapCause::clock_changed, "nothing was received for " + std::to_string((moment - now) / second) + " s");
    due_ = next_second(moment);
}

void Capture::append(Chain& chain)
{
    records::Snapshot snapshot = snapshot_of(chain, abilities_);
    snapshot.decoder = decoder_;
    snapshot.host = "softdec " RELEASE_VERSION;
    // A run is known by the moment at which it began, not by chance: the same input gives the same file.
    records::Instance instance{.started_at = began_};
    const auto bytes = std::bit_cast<std::array<std::uint8_t, sizeof began_>>(began_);
    std::ranges::copy(bytes, instance.id.begin());
    snapshot.instance = instance;
    writer_.append(snapshot);
}

void Capture::finish(Chain& chain)
{
    if (began_ != 0 && writer_.last_moment() != chain.clock().now()) append(chain);
    writer_.finish();
}

} // namespace softdec
