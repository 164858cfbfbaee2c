// Free numeric helpers shared by every organ, and the guards that keep
// OpenCV calls and float-to-int conversions defined on every input.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#define SONOLEX_EXPORT __attribute__((visibility("default")))

// ---- 32-bit integer arithmetic that wraps as the hardware does ----
// Products and sums of caller coordinates are taken in 32-bit ints without
// widening; these keep the wrapped result and stay defined.
inline int WrapAdd(int a, int b) { return int(uint32_t(a) + uint32_t(b)); }
inline int WrapSub(int a, int b) { return int(uint32_t(a) - uint32_t(b)); }
inline int WrapMul(int a, int b) { return int(uint32_t(a) * uint32_t(b)); }
inline int WrapAbs(int a) { return a < 0 ? WrapSub(0, a) : a; }

// `box` widened by `margin` on every side, then cut to an image of `size`.
// Taken in 64 bits: a caller's outline may lie near the int limits.
inline cv::Rect GrowWithin(const cv::Rect& box, int margin, const cv::Size& size)
{
    const int64_t x0 = std::max<int64_t>(int64_t(box.x) - margin, 0);
    const int64_t y0 = std::max<int64_t>(int64_t(box.y) - margin, 0);
    const int64_t x1 = std::min<int64_t>(int64_t(box.x) + box.width + margin, size.width);
    const int64_t y1 = std::min<int64_t>(int64_t(box.y) + box.height + margin, size.height);
    if (x1 <= x0 || y1 <= y0)
        return cv::Rect();
    return cv::Rect(int(x0), int(y0), int(x1 - x0), int(y1 - y0));
}

// Float to int, truncated toward zero. NaN, infinity and values outside the
// int range give INT_MIN, as the x86 conversion instruction does.
SONOLEX_EXPORT int TruncToInt(double value);
// Float to int, rounded to nearest with ties to even (cvRound). Invalid or
// out-of-range values give INT_MIN, as on x86.
SONOLEX_EXPORT int RoundToInt(double value);

// ---- contour guards ----
// cv::drawContours with empty contours skipped: an empty contour draws
// nothing. With `index` >= 0 only that contour is drawn.
SONOLEX_EXPORT void SafeDrawContours(cv::InputOutputArray image, const std::vector<std::vector<cv::Point>>& contours,
                                     int index, const cv::Scalar& colour, int thickness, int lineType,
                                     int maxLevel = INT_MAX, cv::Point offset = cv::Point());
// One contour, drawn as a one-element list at index 0 with no hierarchy.
SONOLEX_EXPORT void DrawContour(cv::InputOutputArray image, const std::vector<cv::Point>& contour,
                                const cv::Scalar& colour, int thickness, int lineType = 8);
// Fills `contour` into `mask` (255) and replaces `contour` and `copy` by the
// first external outline of the result (twice over when they are one
// vector); false, vectors untouched, if there is none.
SONOLEX_EXPORT bool FillAndTakeOutline(std::vector<cv::Point>& contour, std::vector<cv::Point>& copy, cv::Mat mask);
// cv::drawContours filled (no hierarchy), for outlines that reach far
// above the image: the same pixels, with the scan bounded by the image's
// rows. OpenCV's own scan walks every row from the outline's top, which
// takes seconds for a point near the int limits. Outline strokes first,
// then the even-odd fill of 16.16 fixed-point edges, as OpenCV does.
SONOLEX_EXPORT void FillContoursBounded(cv::Mat& image, const std::vector<std::vector<cv::Point>>& contours,
                                        const cv::Scalar& colour, int lineType, cv::Point offset);
// cv::contourArea, with 0 for an empty contour.
SONOLEX_EXPORT double SafeContourArea(const std::vector<cv::Point>& contour, bool oriented = false);
SONOLEX_EXPORT double SafeContourArea(const std::vector<cv::Point2f>& contour, bool oriented = false);

// ---- region of interest ----
// Clips `r` to a width x height image, never reaching its last row or column.
SONOLEX_EXPORT bool JudgeRoi(cv::Rect& r, int width, int height);

// ---- geometry ----
// Distance from p to the infinite line through a and b (NaN or infinity when a == b).
SONOLEX_EXPORT float getDist_P2L(cv::Point p, cv::Point a, cv::Point b);
SONOLEX_EXPORT float distance(cv::Point a, cv::Point b);
SONOLEX_EXPORT float distance(cv::Point2f a, cv::Point2f b);
// Distance with the int differences squared in double, so no coordinate
// span overflows; root in double, narrowed to float.
SONOLEX_EXPORT float DoubleDistance(cv::Point a, cv::Point b);
SONOLEX_EXPORT bool compX(const cv::Point& a, const cv::Point& b);
SONOLEX_EXPORT bool compY(const cv::Point& a, const cv::Point& b);
SONOLEX_EXPORT bool descendSort(const std::vector<cv::Point>& a, const std::vector<cv::Point>& b);

// Centroid of an int mask over its first rows x cols: the column and row
// sums of mask value times position, in wrapping 32-bit ints, each over
// `divisor` in float, truncated. A mask smaller than rows x cols is refused.
SONOLEX_EXPORT cv::Point WeightedCentroid(const cv::Mat& mask32, int rows, int cols, float divisor);

// ---- grey statistics ----
// |mean of the ring outside a 0/1 mask - mean inside it (or of its inner ring)|.
SONOLEX_EXPORT float GrayDiff(const cv::Mat& mask, const cv::Mat& image, int k, bool wholeMask);
// 256-bin histogram of an 8-bit grey image under `mask` (any non-zero
// pixel), bins of one grey level, as a 256 x 1 CV_32F matrix. Saturated
// white (bin 255) still counts; the callers that leave it out zero it.
SONOLEX_EXPORT cv::Mat GreyHistogram(const cv::Mat& image, const cv::Mat& mask);
// Masked Otsu threshold over bins 0..254, returned as the class boundary less one.
SONOLEX_EXPORT int OtsuAlgThreshold(cv::Mat image, cv::Mat mask);
// Least-squares polynomial of y on x; row i of `coefficients` belongs to x^i.
SONOLEX_EXPORT void FitPolynomialCurve(const std::vector<cv::Point>& points, int n, cv::Mat& coefficients);

// ---- breast begin ----
// Between-class variance of the bands just inside and just outside a 0/1
// mask (`size` by `size` rectangle), over the grey deviation of both bands.
SONOLEX_EXPORT float GrayAvgsep(const cv::Mat& mask, const cv::Mat& image, int size);
// ---- breast end ----

// ---- thyroid begin ----
// ---- thyroid end ----

// ---- liver begin ----
// ---- liver end ----

// ---- carotid begin ----
// Picks, from vessel outlines packed one after another (contourSizes[i]
// points each), the first whose filled area overlaps more than a quarter of
// the filled plaque, and appends its points to `chosen`. All points in
// whole-image coordinates of a width x height image. False when none does.
SONOLEX_EXPORT bool ChooseOneOrgan(std::vector<cv::Point> lesionContour, std::vector<cv::Point> organPoints,
                                   std::vector<int> contourSizes, int width, int height,
                                   std::vector<cv::Point>& chosen);
// ---- carotid end ----

// ---- gallwall begin ----
// Equality of one coordinate, to drop repeated line end candidates.
SONOLEX_EXPORT bool equalX(const cv::Point& a, const cv::Point& b);
SONOLEX_EXPORT bool equalY(const cv::Point& a, const cv::Point& b);
// ---- gallwall end ----
