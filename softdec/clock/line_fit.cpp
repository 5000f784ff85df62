#include "clock/line_fit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace softdec
{

namespace
{

Line least_squares(std::span<const Point> points)
{
    const auto count = static_cast<double>(points.size());
    double mean_x = 0;
    double mean_y = 0;
    for (const Point& point : points)
    {
        mean_x += point.x / count;
        mean_y += point.y / count;
    }
    double xx = 0;
    double xy = 0;
    for (const Point& point : points)
    {
        xx += (point.x - mean_x) * (point.x - mean_x);
        xy += (point.x - mean_x) * (point.y - mean_y);
    }
    Line line = {.offset = mean_y, .slope = 0, .slope_error = std::numeric_limits<double>::infinity()};
    if (points.size() < 3 || xx == 0) return line;
    line.slope = xy / xx;
    line.offset = mean_y - line.slope * mean_x;
    double residual = 0;
    for (const Point& point : points) residual += std::pow(point.y - line.at(point.x), 2);
    line.slope_error = std::sqrt(residual / (count - 2) / xx);
    return line;
}

} // namespace

double median(std::span<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1) return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

Line fit_line(std::span<const Point> points)
{
    const Line first = least_squares(points);
    std::vector<double> distances;
    for (const Point& point : points) distances.push_back(std::abs(point.y - first.at(point.x)));
    if (distances.empty()) return first;
    const double limit = 3 * median(distances);
    std::vector<Point> kept;
    for (const Point& point : points)
        if (std::abs(point.y - first.at(point.x)) <= limit) kept.push_back(point);
    return kept.size() < 3 ? first : least_squares(kept);
}

} // namespace softdec
