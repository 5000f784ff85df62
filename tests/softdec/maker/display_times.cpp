#include "display_times.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace softdec_tests
{

namespace
{

using softdec::Ticks;

/** Places of the pictures in the order in which they are shown. */
std::vector<int> places(const std::vector<CodedUnit>& units)
{
    std::vector<Ticks> times;
    for (const CodedUnit& unit : units) times.push_back(unit.pts);
    std::ranges::sort(times);
    std::vector<int> places;
    for (const CodedUnit& unit : units) places.push_back(static_cast<int>(std::ranges::lower_bound(times, unit.pts) - times.begin()));
    return places;
}

/** Three fields and two in turn, 1001/60000 s each. */
Ticks telecine_time(int number)
{
    return (Ticks{number} * 5 + (number & 1)) * 1001 * softdec::ticks_per_second / 2 / 60'000;
}

/** What comes behind a pattern, with so many bytes at least. */
std::uint8_t* behind(Bytes& data, const std::function<bool(const std::uint8_t*)>& is_pattern, std::size_t pattern, std::size_t size)
{
    for (std::size_t at = 0; at + pattern + size <= data.size(); ++at)
        if (is_pattern(&data[at])) return &data[at + pattern];
    throw std::runtime_error("a coded picture lacks what a test changes in it");
}

bool is_picture_coding_extension(const std::uint8_t* bytes)
{
    return bytes[0] == 0 && bytes[1] == 0 && bytes[2] == 1 && bytes[3] == 0xb5 && bytes[4] >> 4 == 8;
}

bool is_picture_timing(const std::uint8_t* bytes)
{
    return bytes[0] == 0 && bytes[1] == 0 && bytes[2] == 1 && bytes[3] == 6 && bytes[4] == 1 && bytes[5] == 1;
}

} // namespace

std::vector<CodedUnit> shown_at(const std::vector<CodedUnit>& units, const std::function<Ticks(int)>& time_of)
{
    const std::vector<int> place = places(units);
    int delay = 0;
    for (std::size_t i = 0; i < units.size(); ++i) delay = std::max(delay, static_cast<int>(i) - place[i]);
    std::vector<CodedUnit> shown = units;
    for (std::size_t i = 0; i < units.size(); ++i)
    {
        shown[i].pts = time_of(place[i]);
        shown[i].dts = time_of(static_cast<int>(i) - delay);
    }
    return shown;
}

std::vector<CodedUnit> telecined_mpeg2(std::vector<CodedUnit> units)
{
    const std::vector<int> place = places(units);
    for (std::size_t i = 0; i < units.size(); ++i)
    {
        // Picture coding extension, from top_field_first on (ISO/IEC 13818-2, 6.2.3.1): with the last bits, film.
        std::uint8_t* const flags = behind(units[i].data, is_picture_coding_extension, 7, 2);
        constexpr std::array<std::uint8_t, 4> top_first_and_repeated = {0x82, 0x00, 0x02, 0x80};
        *flags = static_cast<std::uint8_t>((*flags & 0x7d) | top_first_and_repeated.at(static_cast<std::size_t>(place[i] % 4)) | 0x01);
        flags[1] |= 0x80;
    }
    return shown_at(units, telecine_time);
}

std::vector<CodedUnit> telecined_h264(std::vector<CodedUnit> units)
{
    const std::vector<int> place = places(units);
    for (std::size_t i = 0; i < units.size(); ++i)
    {
        // Picture timing of one byte: the structure, no time stamps for its fields, and the stop bit.
        constexpr std::array<std::uint8_t, 4> structures = {0x51, 0x42, 0x61, 0x32};
        *behind(units[i].data, is_picture_timing, 6, 1) = structures.at(static_cast<std::size_t>(place[i] % 4));
    }
    return shown_at(units, telecine_time);
}

} // namespace softdec_tests
