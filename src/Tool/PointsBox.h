// The box of a point set grown by `grow` pixels and cut to an image of
// `size`, reckoned in 64 bits so that far-away points cannot wrap; empty
// when nothing of it falls on the image. Whatever a filled or stroked
// one-pixel drawing of the points sets lies in the ungrown box.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

inline cv::Rect PointsBox(const std::vector<cv::Point>& points, cv::Size size, int grow)
{
    if (points.empty())
        return cv::Rect();
    int64_t x0 = points[0].x, x1 = x0, y0 = points[0].y, y1 = y0;
    for (const cv::Point& p : points) {
        x0 = std::min<int64_t>(x0, p.x);
        x1 = std::max<int64_t>(x1, p.x);
        y0 = std::min<int64_t>(y0, p.y);
        y1 = std::max<int64_t>(y1, p.y);
    }
    x0 = std::max<int64_t>(x0 - grow, 0);
    y0 = std::max<int64_t>(y0 - grow, 0);
    x1 = std::min<int64_t>(x1 + grow, int64_t(size.width) - 1);
    y1 = std::min<int64_t>(y1 + grow, int64_t(size.height) - 1);
    if (x0 > x1 || y0 > y1)
        return cv::Rect();
    return cv::Rect(int(x0), int(y0), int(x1 - x0 + 1), int(y1 - y0 + 1));
}
