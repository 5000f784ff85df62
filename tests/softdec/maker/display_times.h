/**
 * @file display_times.h
 * Shows coded pictures at other times than those that they were coded for.
 */
#ifndef TESTS_SOFTDEC_MAKER_DISPLAY_TIMES_H
#define TESTS_SOFTDEC_MAKER_DISPLAY_TIMES_H

#include <functional>

#include "encoder.h"

namespace softdec_tests
{

/**
 * The same pictures at other times, in the same order.
 * @param time_of time of the picture with a number in the order in which they are shown; those before the first are asked for too
 */
std::vector<CodedUnit> shown_at(const std::vector<CodedUnit>& units, const std::function<softdec::Ticks(int)>& time_of);

/** Pictures of MPEG-2 coded for 30000/1001 a second, shown for three fields and two in turn, which their headers tell (repeat_first_field). */
std::vector<CodedUnit> telecined_mpeg2(std::vector<CodedUnit> units);

/** The same of H.264, whose picture timing, without delays, tells it (pic_struct). */
std::vector<CodedUnit> telecined_h264(std::vector<CodedUnit> units);

} // namespace softdec_tests

#endif
