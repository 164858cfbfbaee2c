#include "Tool/Tool.h"
#include "Tool/OtsuInput.h"
#include "Tool/PointsBox.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

int TruncToInt(double value)
{
    if (!(value > -2147483649.0 && value < 2147483648.0))
        return INT_MIN;
    return static_cast<int>(value);
}

int RoundToInt(double value)
{
    if (!(value > -2147483649.0 && value < 2147483648.0))
        return INT_MIN;
    const double rounded = std::nearbyint(value); // default mode: nearest, ties to even
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0))
        return INT_MIN;
    return static_cast<int>(rounded);
}

namespace {

// Rows an outline may reach above the image before OpenCV's fill, which
// scans from the outline's top row, is replaced by the bounded one.
constexpr int kFarRows = 4096;

// OpenCV's scan costs a row for every row from the outline's top, wherever
// that lies; below the image it stops at the last row.
bool ReachesFarAbove(const std::vector<std::vector<cv::Point>>& contours, int thickness, int lineType,
                     cv::Point offset)
{
    if (thickness >= 0 || lineType == cv::LINE_AA)
        return false;
    for (const auto& c : contours)
        for (const cv::Point& p : c)
            if (WrapAdd(p.y, offset.y) < -kFarRows)
                return true;
    return false;
}

void DrawContoursBounded(cv::InputOutputArray image, const std::vector<std::vector<cv::Point>>& contours, int index,
                         const cv::Scalar& colour, int thickness, int lineType, int maxLevel, cv::Point offset)
{
    if (ReachesFarAbove(contours, thickness, lineType, offset)) {
        cv::Mat target = image.getMat();
        FillContoursBounded(target, contours, colour, lineType, offset);
        return;
    }
    cv::drawContours(image, contours, index, colour, thickness, lineType, cv::noArray(), maxLevel, offset);
}

} // namespace

void FillContoursBounded(cv::Mat& image, const std::vector<std::vector<cv::Point>>& contours,
                         const cv::Scalar& colour, int lineType, cv::Point offset)
{
    struct Edge {
        int y0, y1;    // rows from y0 up to, not including, y1
        int64_t x, dx; // 16.16 fixed point at row y0, and per row
    };
    constexpr int kShift = 16;
    std::vector<Edge> edges;
    for (const auto& c : contours) {
        if (c.empty())
            continue;
        // The outline is walked closed from its first point back to it,
        // beginning with the first point on itself, each side stroked.
        const auto at = [&](size_t i) {
            const cv::Point& p = c[i % c.size()];
            return cv::Point(WrapAdd(p.x, offset.x), WrapAdd(p.y, offset.y));
        };
        cv::Point from = at(0);
        for (size_t i = 0; i <= c.size(); ++i) {
            const cv::Point to = at(i);
            cv::line(image, from, to, colour, 1, lineType, 0);
            if (from.y != to.y) {
                const int64_t fx = int64_t(from.x) * (int64_t(1) << kShift);
                const int64_t tx = int64_t(to.x) * (int64_t(1) << kShift);
                Edge e;
                e.y0 = std::min(from.y, to.y);
                e.y1 = std::max(from.y, to.y);
                e.x = from.y < to.y ? fx : tx;
                e.dx = (tx - fx) / (int64_t(to.y) - int64_t(from.y));
                edges.push_back(e);
            }
            from = to;
        }
    }
    if (edges.size() < 2)
        return;

    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.y0 < b.y0; });
    int yMax = INT_MIN;
    for (const Edge& e : edges)
        yMax = std::max(yMax, e.y1);
    const int first = std::max(edges.front().y0, 0);
    const int last = std::min(yMax, image.rows);

    // Each row fills between the 1st and 2nd, 3rd and 4th, ... crossing in
    // x order: from the first pixel at or right of the left crossing to the
    // last at or left of the right one.
    std::vector<const Edge*> active;
    std::vector<int64_t> xs;
    size_t next = 0;
    for (int y = first; y < last; ++y) {
        while (next < edges.size() && edges[next].y0 <= y)
            active.push_back(&edges[next++]);
        active.erase(std::remove_if(active.begin(), active.end(), [y](const Edge* e) { return e->y1 <= y; }),
                     active.end());
        xs.clear();
        for (const Edge* e : active)
            xs.push_back(e->x + int64_t(y - int64_t(e->y0)) * e->dx);
        std::sort(xs.begin(), xs.end());
        for (size_t k = 0; k + 1 < xs.size(); k += 2) {
            int x1 = int(uint32_t((xs[k] + (int64_t(1) << kShift) - 1) >> kShift));
            int x2 = int(uint32_t(xs[k + 1] >> kShift));
            if (x1 < image.cols && x2 >= 0) {
                x1 = std::max(x1, 0);
                x2 = std::min(x2, image.cols - 1);
                if (x1 <= x2)
                    image.row(y).colRange(x1, x2 + 1).setTo(colour);
            }
        }
    }
}

void SafeDrawContours(cv::InputOutputArray image, const std::vector<std::vector<cv::Point>>& contours, int index,
                      const cv::Scalar& colour, int thickness, int lineType, int maxLevel, cv::Point offset)
{
    if (index >= 0 && static_cast<size_t>(index) < contours.size()) {
        if (contours[index].empty())
            return;
        std::vector<std::vector<cv::Point>> one(1, contours[index]);
        DrawContoursBounded(image, one, 0, colour, thickness, lineType, maxLevel, offset);
        return;
    }
    if (index >= 0) { // an index past the list: let OpenCV raise as it does
        cv::drawContours(image, contours, index, colour, thickness, lineType, cv::noArray(), maxLevel, offset);
        return;
    }
    bool anyEmpty = false;
    for (const auto& c : contours)
        anyEmpty = anyEmpty || c.empty();
    if (!anyEmpty) {
        if (!contours.empty())
            DrawContoursBounded(image, contours, -1, colour, thickness, lineType, maxLevel, offset);
        return;
    }
    std::vector<std::vector<cv::Point>> drawn;
    for (const auto& c : contours)
        if (!c.empty())
            drawn.push_back(c);
    if (!drawn.empty())
        DrawContoursBounded(image, drawn, -1, colour, thickness, lineType, maxLevel, offset);
}

void DrawContour(cv::InputOutputArray image, const std::vector<cv::Point>& contour, const cv::Scalar& colour,
                 int thickness, int lineType)
{
    if (contour.empty())
        return;
    const std::vector<std::vector<cv::Point>> one(1, contour);
    DrawContoursBounded(image, one, 0, colour, thickness, lineType, INT_MAX, cv::Point(0, 0));
}

namespace {

// Where the outlines of a mask that held nothing before `contour` was
// filled into it can lie: the points' box grown by one pixel of background,
// cut to the mask. Outside it the mask is 0, and tracing the cut finds the
// same outlines, from the same first pixels, as tracing the whole mask.
// The whole mask when it held something already or is not one 8-bit plane.
cv::Rect TracedBox(const std::vector<cv::Point>& contour, const cv::Mat& mask, bool heldNothing)
{
    if (!heldNothing || contour.empty())
        return cv::Rect(0, 0, mask.cols, mask.rows);
    return PointsBox(contour, mask.size(), 1);
}

} // namespace

bool FillAndTakeOutline(std::vector<cv::Point>& contour, std::vector<cv::Point>& copy, cv::Mat mask)
{
    const bool heldNothing = mask.type() == CV_8UC1 && !mask.empty() && cv::countNonZero(mask) == 0;
    const cv::Rect traced = TracedBox(contour, mask, heldNothing);
    DrawContour(mask, contour, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    std::vector<std::vector<cv::Point>> found;
    std::vector<cv::Vec4i> hierarchy;
    if (heldNothing && traced.empty())
        return false; // nothing was drawn on the mask
    cv::findContours(traced.width == mask.cols && traced.height == mask.rows ? mask : mask(traced), found,
                     hierarchy, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, traced.tl());
    if (found.empty())
        return false;
    // Both cleared, then every point pushed onto both: when the two are one
    // vector, each point comes back twice.
    contour.clear();
    copy.clear();
    for (const cv::Point& p : found[0]) {
        contour.push_back(p);
        copy.push_back(p);
    }
    return true;
}

double SafeContourArea(const std::vector<cv::Point>& contour, bool oriented)
{
    return contour.empty() ? 0.0 : cv::contourArea(contour, oriented);
}

double SafeContourArea(const std::vector<cv::Point2f>& contour, bool oriented)
{
    return contour.empty() ? 0.0 : cv::contourArea(contour, oriented);
}

bool JudgeRoi(cv::Rect& r, int width, int height)
{
    if (r.x < 0)
        r.x = 0;
    if (r.y < 0)
        r.y = 0;
    if (WrapAdd(r.width, r.x) >= width - 1)
        r.width = width - 1 - r.x;
    if (WrapAdd(r.height, r.y) >= height - 1)
        r.height = height - 1 - r.y;
    return true;
}

float getDist_P2L(cv::Point p, cv::Point a, cv::Point b)
{
    const int A = WrapSub(a.y, b.y);
    const int B = WrapSub(b.x, a.x);
    const int C = WrapSub(WrapMul(a.x, b.y), WrapMul(a.y, b.x));
    const float numerator = static_cast<float>(WrapAbs(WrapAdd(WrapAdd(WrapMul(A, p.x), WrapMul(B, p.y)), C)));
    const float denominator = std::sqrt(static_cast<float>(WrapAdd(WrapMul(A, A), WrapMul(B, B))));
    return numerator / denominator;
}

float distance(cv::Point a, cv::Point b)
{
    const int dx = WrapSub(a.x, b.x);
    const int dy = WrapSub(a.y, b.y);
    return static_cast<float>(std::sqrt(static_cast<double>(WrapAdd(WrapMul(dx, dx), WrapMul(dy, dy)))));
}

float DoubleDistance(cv::Point a, cv::Point b)
{
    const double dx = static_cast<double>(WrapSub(a.x, b.x));
    const double dy = static_cast<double>(WrapSub(a.y, b.y));
    return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

float distance(cv::Point2f a, cv::Point2f b)
{
    const float dx = a.x - b.x;
    const float dy = a.y - b.y;
    return std::sqrt(dx * dx + dy * dy);
}

bool compX(const cv::Point& a, const cv::Point& b) { return a.x < b.x; }
bool compY(const cv::Point& a, const cv::Point& b) { return a.y < b.y; }
bool descendSort(const std::vector<cv::Point>& a, const std::vector<cv::Point>& b) { return a.size() > b.size(); }

cv::Point WeightedCentroid(const cv::Mat& mask32, int rows, int cols, float divisor)
{
    // The sums run over the caller's size; a smaller mask would be read past its end.
    if (mask32.rows < rows || mask32.cols < cols)
        throw std::out_of_range("centroid mask smaller than the region");
    int sumX = 0, sumY = 0;
    for (int r = 0; r < rows; ++r) {
        const int* row = mask32.ptr<int>(r);
        for (int c = 0; c < cols; ++c) {
            sumX = WrapAdd(sumX, WrapMul(row[c], c));
            sumY = WrapAdd(sumY, WrapMul(row[c], r));
        }
    }
    return cv::Point(TruncToInt(static_cast<float>(sumX) / divisor), TruncToInt(static_cast<float>(sumY) / divisor));
}

float GrayDiff(const cv::Mat& mask, const cv::Mat& image, int k, bool wholeMask)
{
    const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(k, k), cv::Point(-1, -1));
    cv::Mat dilated;
    cv::dilate(mask, dilated, kernel);
    const cv::Mat outerRing = dilated - mask;
    const double outerMean = cv::mean(image, outerRing)[0];
    double innerMean = 0.0;
    if (wholeMask) {
        innerMean = cv::mean(image, mask)[0];
    } else {
        cv::Mat eroded;
        cv::erode(mask, eroded, kernel);
        const cv::Mat innerRing = mask - eroded;
        innerMean = cv::mean(image, innerRing)[0];
    }
    return static_cast<float>(std::fabs(outerMean - innerMean));
}

cv::Mat GreyHistogram(const cv::Mat& image, const cv::Mat& mask)
{
    const int channels[] = {0};
    const int histSize[] = {256};
    const float range[] = {0.0f, 256.0f};
    const float* ranges[] = {range};
    cv::Mat hist;
    cv::calcHist(&image, 1, channels, mask, hist, 1, histSize, ranges, true, false);
    return hist;
}

int OtsuAlgThreshold(cv::Mat image, cv::Mat mask)
{
    image = OtsuInput(image, mask);
    const int channels = image.channels();
    const int rows = image.rows;
    const int cols = image.cols;

    double bins[256] = {};
    double total = 0.0;
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < cols; ++c) {
            const size_t offset = static_cast<size_t>(channels) * r * cols + c;
            if (mask.data[offset] != 0) {
                total += 1.0;
                bins[image.data[offset]] += 1.0;
            }
        }
    }

    double best = 0.0;
    int threshold = 0;
    for (int i = 1;; ++i) {
        double count0 = 0.0, sum0 = 0.0;
        for (int k = 0; k < i; ++k) {
            count0 += bins[k];
            sum0 += k * bins[k];
        }
        if (i == 255)
            break;
        if (count0 == 0.0)
            continue;
        double count1 = 0.0, sum1 = 0.0;
        for (int k = i; k < 255; ++k) {
            count1 += bins[k];
            sum1 += k * bins[k];
        }
        if (count1 == 0.0)
            continue;
        const double d = sum0 / count0 - sum1 / count1;
        const double v = (count0 / total) * (count1 / total) * d * d;
        if (v > best) {
            best = v;
            threshold = i - 1;
        }
    }
    return threshold;
}

void FitPolynomialCurve(const std::vector<cv::Point>& points, int n, cv::Mat& coefficients)
{
    cv::Mat A = cv::Mat::zeros(n + 1, n + 1, CV_64F);
    cv::Mat B = cv::Mat::zeros(n + 1, 1, CV_64F);
    for (int i = 0; i <= n; ++i)
        for (int j = 0; j <= n; ++j)
            for (const cv::Point& p : points)
                A.at<double>(i, j) += std::pow(static_cast<double>(p.x), i + j);
    for (int i = 0; i <= n; ++i)
        for (const cv::Point& p : points)
            B.at<double>(i) += std::pow(static_cast<double>(p.x), i) * static_cast<double>(p.y);
    coefficients = cv::Mat::zeros(n + 1, 1, CV_64F);
    cv::solve(A, B, coefficients, cv::DECOMP_LU);
}
