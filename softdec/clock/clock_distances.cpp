#include <algorithm>

#include "clock/clock_recovery.h"

namespace softdec
{

namespace
{

constexpr Nanoseconds distance_window = 2 * second;

} // namespace

void ClockRecovery::take_distance(SMGR_TDEMUX_DATA_TYPE type, int audio_pair, Ticks distance)
{
    const auto follow = [distance](long average) { return average == 0 ? distance : average + (distance - average) / 8; };
    if (type == SMGR_TDEMUX_DATA_TYPE_KLV)
    {
        record_.pcrTsDeltaKlv = follow(record_.pcrTsDeltaKlv);
    }
    else if (type == SMGR_TDEMUX_DATA_TYPE_AUDIO)
    {
        switch (audio_pair)
        {
        case 1: record_.pcrTsDeltaAud0 = follow(record_.pcrTsDeltaAud0); break;
        case 2: record_.pcrTsDeltaAud1 = follow(record_.pcrTsDeltaAud1); break;
        case 3: record_.pcrTsDeltaAud2 = follow(record_.pcrTsDeltaAud2); break;
        case 4: record_.pcrTsDeltaAud3 = follow(record_.pcrTsDeltaAud3); break;
        case 5: record_.pcrTsDeltaAud4 = follow(record_.pcrTsDeltaAud4); break;
        case 6: record_.pcrTsDeltaAud5 = follow(record_.pcrTsDeltaAud5); break;
        case 7: record_.pcrTsDeltaAud6 = follow(record_.pcrTsDeltaAud6); break;
        case 8: record_.pcrTsDeltaAud7 = follow(record_.pcrTsDeltaAud7); break;
        default: break;
        }
    }
    else if (type == SMGR_TDEMUX_DATA_TYPE_VIDEO)
    {
        const Ticks average = follow(record_.pcrTsDelta);
        record_.pcrTsDelta = average;
        distances_.emplace_back(clock_.now(), average);
        while (distances_.front().first < clock_.now() - distance_window) distances_.pop_front();
        const auto [first_least, first_greatest] = std::ranges::minmax_element(distances_, {}, &std::pair<Nanoseconds, Ticks>::second);
        const Ticks least = first_least->second;
        const Ticks greatest = first_greatest->second;
        record_.pcrTsDeltaMinMaxDlyMS = distance_window / millisecond;
        record_.pcrTsDeltaMinValue = least;
        record_.pcrTsDeltaMaxValue = greatest;
        const long min = record_.pcrTsDeltaMinExtValue;
        const long max = record_.pcrTsDeltaMaxExtValue;
        const bool first = min == 0 && max == 0;
        record_.pcrTsDeltaMinExtValue = first ? least : std::min(min, least);
        record_.pcrTsDeltaMaxExtValue = first ? greatest : std::max(max, greatest);
    }
}

} // namespace softdec
