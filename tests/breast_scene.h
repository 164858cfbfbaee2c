// Small breast scenes whose every pixel is known: a flat background with a
// flat rectangular lesion, and the outlines and records that go with them.
#pragma once

#include <ostream>
#include <vector>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "sonolex.h"

namespace scene {

// Outline of the pixel rectangle [x0, x1] x [y0, y1]: its corners and a point
// every `step` pixels along each side, clockwise on screen. Filled, it covers
// exactly (x1 - x0 + 1) * (y1 - y0 + 1) pixels.
inline std::vector<cv::Point> Rectangle(int x0, int y0, int x1, int y1, int step = 10)
{
    std::vector<cv::Point> points;
    for (int x = x0; x < x1; x += step)
        points.emplace_back(x, y0);
    for (int y = y0; y < y1; y += step)
        points.emplace_back(x1, y);
    for (int x = x1; x > x0; x -= step)
        points.emplace_back(x, y1);
    for (int y = y1; y > y0; y -= step)
        points.emplace_back(x0, y);
    return points;
}

inline std::vector<MyPoint> ToMy(const std::vector<cv::Point>& points)
{
    std::vector<MyPoint> out;
    for (const cv::Point& p : points)
        out.push_back(MyPoint{p.x, p.y});
    return out;
}

// Grey image of `background` with the rectangle [x0, x1] x [y0, y1] at `lesion`.
inline cv::Mat Image(int width, int height, int background, int x0, int y0, int x1, int y1, int lesion)
{
    cv::Mat image(height, width, CV_8UC1, cv::Scalar(background));
    cv::rectangle(image, cv::Point(x0, y0), cv::Point(x1, y1), cv::Scalar(lesion), cv::FILLED, cv::LINE_8);
    return image;
}

inline BreastResult Filled(int value) { return BreastResult{value, value, value, value, value, value}; }

} // namespace scene

inline bool operator==(const BreastResult& a, const BreastResult& b)
{
    return a.shape == b.shape && a.orientation == b.orientation && a.echo == b.echo && a.boundary == b.boundary &&
           a.margin == b.margin && a.calcification == b.calcification;
}

inline void PrintTo(const BreastResult& r, std::ostream* os)
{
    *os << "{shape " << r.shape << ", orientation " << r.orientation << ", echo " << r.echo << ", boundary "
        << r.boundary << ", margin " << r.margin << ", calcification " << r.calcification << "}";
}
