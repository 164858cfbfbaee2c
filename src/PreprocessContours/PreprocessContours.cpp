// Outline pixels of two frames reduced to ordered, thinned point lists.
#include "PreprocessContours/PreprocessContours.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <forward_list>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

namespace {

// A frame index other than 0 or 1 names no frame.
int CheckedFrame(int which)
{
    if (which < 0 || which > 1)
        throw std::out_of_range("PreprocessContours: frame index must be 0 or 1");
    return which;
}

// Fails as assert() does, in every build type: message on stderr, then abort.
[[noreturn]] void FailAssertion(const char* expression, const char* function, int line)
{
    std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", __FILE__, line, function, expression);
    std::fflush(stderr);
    std::abort();
}

#define SONOLEX_ALWAYS_ASSERT(expr) ((expr) ? void(0) : FailAssertion(#expr, __PRETTY_FUNCTION__, __LINE__))

cv::Point RoundedCorner(const cv::Point2f& corner)
{
    return cv::Point(TruncToInt(double(corner.x) + 0.5), TruncToInt(double(corner.y) + 0.5));
}

std::vector<cv::Point> RoundedCorners(const std::vector<cv::Point2f>& corners)
{
    std::vector<cv::Point> out;
    out.reserve(corners.size());
    for (const cv::Point2f& c : corners)
        out.push_back(RoundedCorner(c));
    return out;
}

// The pixels pushed one by one onto the front of a list, in circular order.
std::vector<cv::Point> CircularOrder(const std::vector<cv::Point>& pixels)
{
    std::forward_list<Point2D> list;
    for (const cv::Point& p : pixels)
        list.push_front(Point2D(p.x, p.y));
    OrdenamientoCircular(list);
    std::vector<cv::Point> ordered;
    for (const Point2D& p : list)
        ordered.emplace_back(p.GetX(), p.GetY());
    return ordered;
}

void AppendEvery(const std::vector<cv::Point>& points, size_t stride, std::vector<cv::Point>& out)
{
    for (size_t i = 0; i < points.size(); i += stride)
        out.push_back(points[i]);
}

// Brings `samples` to `n` points: missing ones from a shuffle of `ordered`
// (only when it has n when `testSize`), surplus ones shuffled away.
void BringToCount(std::vector<cv::Point>& samples, std::vector<cv::Point>& ordered, size_t n, bool testSize)
{
    if (samples.size() < n && (!testSize || ordered.size() >= n)) {
        cv::randShuffle(ordered, 1.0, nullptr);
        for (size_t i = samples.size(); i < n; ++i)
            samples.push_back(ordered.at(i)); // fewer pixels than wanted reads past the list
    } else if (samples.size() > n) {
        cv::randShuffle(samples, 1.0, nullptr);
        samples.resize(n);
    }
}

} // namespace

int PreprocessContours::GetContoursPixels(int which)
{
    const cv::Mat& frame = _frame[CheckedFrame(which)];
    std::vector<cv::Point>& pixels = _pixels[which];
    const uchar* data = frame.data;
    for (int r = 0; r < frame.rows; ++r) {
        for (int c = 0; c < frame.cols; ++c) {
            if (data[c] == 255)
                pixels.emplace_back(c, r);
        }
        data += frame.cols;
    }
    return static_cast<int>(pixels.size());
}

bool PreprocessContours::OnBorder(int which, int row, int column)
{
    const cv::Mat& frame = _frame[CheckedFrame(which)];
    SONOLEX_ALWAYS_ASSERT(0 <= row && row < _frame[which].rows);
    SONOLEX_ALWAYS_ASSERT(0 <= column && column < _frame[which].cols);
    return frame.ptr<uchar>(row)[column] == 0;
}

void PreprocessContours::SortContourPts(const std::vector<cv::Point>& points, std::vector<cv::Point>& out)
{
    const size_t n = points.size();
    out.reserve(n);
    if (n == 0)
        return;
    cv::Point current = points[0];
    cv::Point previous;
    bool hasPrevious = false;
    cv::Point next = points[0]; // nothing within reach in the first round repeats the start
    for (size_t round = 0; round < n; ++round) {
        double best = 1000000.0;
        for (const cv::Point& p : points) {
            if (hasPrevious && p == previous)
                continue;
            const double dx = double(p.x) - double(current.x);
            const double dy = double(p.y) - double(current.y);
            const double d = dx * dx + dy * dy;
            if (d <= best && d > 0.0) {
                next = p;
                best = d;
            }
        }
        out.push_back(next);
        previous = current;
        hasPrevious = true;
        current = next;
    }
}

void PreprocessContours::SimpleContour(const std::vector<cv::Point>& points, int /*which*/)
{
    for (std::vector<cv::Point>& samples : _samples) {
        AppendEvery(points, 5, samples);
        _sampleCount = static_cast<int>(samples.size());
    }
}

void PreprocessContours::CornerDectect(const cv::Mat& image, std::vector<cv::Point2f>& corners, cv::Size /*size*/)
{
    cv::goodFeaturesToTrack(image, corners, static_cast<int>(_pixels[1].size()), 0.01, 10.0, cv::noArray(), 3, false,
                            0.04);
}

void PreprocessContours::FindCorner(std::vector<cv::Point>& out)
{
    GetContoursPixels(1);
    std::vector<cv::Point2f> corners;
    CornerDectect(_frame[1], corners, _frame[1].size());
    out = RoundedCorners(corners);
}

void PreprocessContours::GetOriginalCornerPts(std::vector<cv::Point>& out)
{
    const size_t n = static_cast<size_t>(GetContoursPixels(1));
    if (n >= 200) {
        std::vector<cv::Point2f> corners;
        CornerDectect(_frame[1], corners, _frame[1].size());
        _samples[1] = RoundedCorners(corners);
    } else {
        AppendEvery(CircularOrder(_pixels[1]), n < 101 ? 1 : 2, _samples[1]);
    }
    _sampleCount = static_cast<int>(_samples[1].size());
    out = _samples[1];
}

void PreprocessContours::GetOriginalSamplePts(std::vector<cv::Point>& out)
{
    const size_t n = static_cast<size_t>(GetContoursPixels(1));
    const size_t stride = n < 101 ? 1 : (n < 500 ? 2 : 6);
    AppendEvery(CircularOrder(_pixels[1]), stride, _samples[1]);
    _sampleCount = static_cast<int>(_samples[1].size());
    out = _samples[1];
}

void PreprocessContours::GetEllipseSamplePts0(std::vector<cv::Point>& out, int n)
{
    if (n <= 0) // a count of 0 divides by zero; a negative one never ends
        throw std::invalid_argument("GetEllipseSamplePts0 needs a positive point count");
    GetContoursPixels(0);
    std::vector<cv::Point> ordered;
    SortContourPts(_pixels[0], ordered);
    AppendEvery(ordered, ordered.size() / static_cast<size_t>(n) + 1, _samples[0]);
    BringToCount(_samples[0], ordered, static_cast<size_t>(n), true);
    out = _samples[0];
}

void PreprocessContours::GetEllipseSamplePts(std::vector<cv::Point>& out, int n)
{
    if (n <= 0) // a count of 0 divides by zero; a negative one never ends
        throw std::invalid_argument("GetEllipseSamplePts needs a positive point count");
    GetContoursPixels(0);
    std::vector<cv::Point> ordered = CircularOrder(_pixels[0]);
    AppendEvery(ordered, ordered.size() / static_cast<size_t>(n) + 1, _samples[0]);
    BringToCount(_samples[0], ordered, static_cast<size_t>(n), true);
    out = _samples[0];
}

void PreprocessContours::GetSamplePts(std::vector<cv::Point>& first, std::vector<cv::Point>& second)
{
    GetContoursPixels(1);
    std::vector<cv::Point2f> corners;
    CornerDectect(_frame[1], corners, _frame[1].size());
    const size_t c = corners.size();
    _samples[1] = RoundedCorners(corners);
    second = _samples[1];
    _sampleCount = static_cast<int>(c);

    GetContoursPixels(0);
    std::vector<cv::Point> ordered;
    SortContourPts(_pixels[0], ordered);
    // No corner gives an infinite stride.
    if (c == 0)
        throw std::invalid_argument("GetSamplePts: frame 1 has no corner");
    const size_t stride = static_cast<size_t>(std::ceil(double(ordered.size()) / double(c)));
    if (stride > 0)
        AppendEvery(ordered, stride, _samples[0]);
    BringToCount(_samples[0], ordered, c, false);
    first = _samples[0];
}

void PreprocessContours::GetSamplePts2(std::vector<cv::Point>& first, std::vector<cv::Point>& second)
{
    for (int which = 0; which < 2; ++which) {
        GetContoursPixels(which);
        std::vector<cv::Point> ordered;
        SortContourPts(_pixels[which], ordered);
        SimpleContour(ordered, which);
    }
    first = _samples[0];
    second = _samples[1];
}
