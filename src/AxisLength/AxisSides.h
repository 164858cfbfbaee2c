// The two geometric rules of the older whole-axis forms: contour points on
// the sides of a rotated rectangle, and contour points paired across a long
// axis.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

// A slope at most this far, in float, from a side's own marks a point on the side.
constexpr float kSideSlopeTolerance = 0.04f;
// Corners closer than this in x or in y make the slopes meaningless.
constexpr int kSideMinSpread = 5;
// Paired points: |1 - slope * k| below this.
constexpr double kPairProductLimit = 10000.0;

// Contour points sorted onto the sides of a rotated rectangle. Corners are
// the rectangle's points() rounded half to even; side i runs from corner i
// to corner i + 1 (mod 4). `sorted` is false, and every side empty, when some
// side's corners differ by less than 5 in x or in y.
struct RectSides {
    cv::Point corners[4];
    std::vector<cv::Point> side[4];
    bool sorted = false;
};
RectSides SortOntoRectSides(const std::vector<cv::Point>& contour, const cv::RotatedRect& rect);

// Whether `p` lies on the line of the side c0-c1: the float slopes p-c0 and
// p-c1 each within 0.04f of the side's slope. A corner itself (0 / 0) and a
// vertical side never hold.
bool OnRectSide(cv::Point p, cv::Point c0, cv::Point c1);

// Whether a and b pair across an axis of slope k: the float slope s of a-b
// gives |1 - double(s) * double(k)| < 10000.0. Points in one column (s
// infinite) pair with no axis, and with an infinite or NaN k nothing pairs.
bool PairedAcross(cv::Point a, cv::Point b, float k);

// Among the contour's paired points (i < j), the pair of greatest extent
// across the axis, |dy - k dx|, and among equals the least along it,
// |dx + k dy| (doubles), the first in contour order after that. False, and
// `pair` untouched, when no two points pair.
bool WidestPairAcross(const std::vector<cv::Point>& contour, float k, cv::Point* pair);
