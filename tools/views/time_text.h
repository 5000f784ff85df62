/**
 * @file time_text.h
 * Moments and times as people read them.
 */
#ifndef VIEWS_TIME_TEXT_H
#define VIEWS_TIME_TEXT_H

#include <cstdint>
#include <string>

namespace views
{

/** An age as people read it: 0.4s, 59.9s, 7m 03s, 5h 12m, 3d 04h. The clock may have been set back. @param age [ns] */
std::string age_text(std::int64_t age);

/** A moment of a clock that has tenths, to the second: 2022-06-14T12:14:00Z. @param moment [ns since the epoch, UTC] */
std::string to_the_second(std::int64_t moment);

} // namespace views

#endif
