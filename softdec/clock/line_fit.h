/**
 * @file line_fit.h
 * A straight line through measurements that have outliers.
 */
#ifndef SOFTDEC_CLOCK_LINE_FIT_H
#define SOFTDEC_CLOCK_LINE_FIT_H

#include <span>

namespace softdec
{

struct Point
{
    double x = 0;
    double y = 0;
};

/** y = offset + slope * x. */
struct Line
{
    double offset = 0;
    double slope = 0;
    double slope_error = 0; /**< standard error of the slope */

    double at(double x) const { return offset + slope * x; }
};

/** Fits a line by least squares, then again without the points that lie further away than three times the median does. */
Line fit_line(std::span<const Point> points);

/** The median; the mean of the middle two of an even number. @param values not empty; their order changes */
double median(std::span<double> values);

} // namespace softdec

#endif
