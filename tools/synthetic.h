// Synthetic B-mode images and outlines for the demo, tests and benchmarks.
// Everything is drawn in code from a seed, so runs are repeatable.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "sonolex.h"

namespace synth {

// Grey speckle around `mean`: multiplicative noise smoothed to grains of a few pixels.
inline cv::Mat Speckle(int width, int height, uint64_t seed, double mean = 110.0, double spread = 30.0)
{
    cv::RNG rng(seed);
    cv::Mat noise(height, width, CV_32F);
    rng.fill(noise, cv::RNG::NORMAL, cv::Scalar(0.0), cv::Scalar(1.0));
    cv::GaussianBlur(noise, noise, cv::Size(5, 3), 1.2, 0.8, cv::BORDER_REFLECT);
    cv::Mat grey;
    noise.convertTo(grey, CV_8U, spread * 2.0, mean);
    return grey;
}

// Closed polygon of `count` points on an ellipse with half-axes (a, b),
// its radius modulated by `lobes` bumps of relative `depth` (0 for a smooth ellipse).
inline std::vector<cv::Point> Outline(cv::Point centre, double a, double b, int count, int lobes = 0,
                                      double depth = 0.0)
{
    std::vector<cv::Point> points;
    const double twoPi = 6.283185307179586;
    for (int i = 0; i < count; ++i) {
        const double t = twoPi * i / count;
        const double scale = 1.0 + depth * std::cos(lobes * t);
        const cv::Point p(centre.x + static_cast<int>(std::lround(a * scale * std::cos(t))),
                          centre.y + static_cast<int>(std::lround(b * scale * std::sin(t))));
        if (points.empty() || points.back() != p)
            points.push_back(p);
    }
    return points;
}

// Paints the inside of `outline` with speckle around `mean`.
inline void PaintRegion(cv::Mat& image, const std::vector<cv::Point>& outline, double mean, uint64_t seed,
                        double spread = 30.0)
{
    cv::Mat mask = cv::Mat::zeros(image.size(), CV_8U);
    cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{outline}, cv::Scalar(255), cv::LINE_8);
    Speckle(image.cols, image.rows, seed, mean, spread).copyTo(image, mask);
}

// Small bright specks (calcification-like) of radius r at the given centres.
inline void PaintSpecks(cv::Mat& image, const std::vector<cv::Point>& centres, int radius = 1, int grey = 250)
{
    for (const cv::Point& c : centres)
        cv::circle(image, c, radius, cv::Scalar(grey), cv::FILLED, cv::LINE_8);
}

inline std::vector<MyPoint> ToMyPoints(const std::vector<cv::Point>& points)
{
    std::vector<MyPoint> out;
    out.reserve(points.size());
    for (const cv::Point& p : points)
        out.push_back(MyPoint{p.x, p.y});
    return out;
}

} // namespace synth
