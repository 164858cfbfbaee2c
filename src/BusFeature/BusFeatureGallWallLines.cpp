// Where a straight line crosses the drawn gall bladder outline or wall band:
// the line is extended to the image edges, drawn at 50 over a drawing that
// holds 50 or 51, and the pixels whose sum passes 51 are the crossings.
#include <algorithm>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

namespace {

// True when p lies in the image whose last column and row are given.
bool InsideEdges(const cv::Point& p, int lastX, int lastY)
{
    return p.x >= 0 && p.x <= lastX && p.y >= 0 && p.y <= lastY;
}

// Line of slope `k` through (x1, y1), cut at the image edges; its overlap with
// `drawing` goes to `out`. The line is drawn on a zero matrix of `lineSize`.
bool IntersectAtEdges(const cv::Mat& drawing, float k, int x1, int y1, int lastX, int lastY, cv::Size lineSize,
                      std::vector<cv::Point>& out)
{
    const float fx1 = static_cast<float>(x1);
    const float fy1 = static_cast<float>(y1);
    // Each candidate is computed in float and truncated; a horizontal line
    // divides by zero and its infinite candidates fall outside the edges.
    const cv::Point candidates[4] = {
        {lastX, TruncToInt(static_cast<float>(WrapSub(lastX, x1)) * k + fy1)},  // right edge
        {TruncToInt(static_cast<float>(WrapSub(lastY, y1)) / k + fx1), lastY},  // bottom edge
        {0, TruncToInt(static_cast<float>(WrapSub(0, x1)) * k + fy1)},          // left edge
        {TruncToInt(static_cast<float>(WrapSub(0, y1)) / k + fx1), 0},          // top edge
    };
    std::vector<cv::Point> ends;
    for (const cv::Point& c : candidates)
        if (InsideEdges(c, lastX, lastY))
            ends.push_back(c);

    // A line through a corner meets two edges in the same point.
    if (ends.size() >= 3) {
        std::sort(ends.begin(), ends.end(), compX);
        ends.erase(std::unique(ends.begin(), ends.end(), equalX), ends.end());
        std::sort(ends.begin(), ends.end(), compY);
        ends.erase(std::unique(ends.begin(), ends.end(), equalY), ends.end());
    }
    if (ends.size() != 2)
        return false;

    cv::Mat line = cv::Mat::zeros(lineSize, CV_8UC1);
    cv::line(line, ends[0], ends[1], cv::Scalar(50), 1, cv::LINE_8, 0);
    // The sum goes to a matrix of its own, so the caller's drawing stays as it was.
    cv::Mat sum;
    cv::add(drawing, line, sum);
    cv::threshold(sum, sum, 51, 255, cv::THRESH_BINARY);
    cv::findNonZero(sum, out);
    return true;
}

float SlopeOf(const cv::Point* pts)
{
    return static_cast<float>(WrapSub(pts[0].y, pts[1].y)) / static_cast<float>(WrapSub(pts[0].x, pts[1].x));
}

// Crossings of the vertical line at column x with `drawing`, sorted by row.
std::vector<cv::Point> VerticalCrossings(const cv::Mat& drawing, int x)
{
    cv::Mat line = cv::Mat::zeros(drawing.rows, drawing.cols, CV_8UC1);
    cv::line(line, cv::Point(x, 0), cv::Point(x, drawing.rows - 1), cv::Scalar(50), 1, cv::LINE_8, 0);
    cv::Mat sum;
    cv::add(drawing, line, sum);
    cv::threshold(sum, sum, 51, 255, cv::THRESH_BINARY);
    std::vector<cv::Point> crossings;
    cv::findNonZero(sum, crossings);
    std::sort(crossings.begin(), crossings.end(), compY);
    return crossings;
}

} // namespace

bool BUSFeature::CalcIntersection(cv::Mat drawing, cv::Point* pts, int lastX, int lastY, std::vector<cv::Point>& out)
{
    return IntersectAtEdges(drawing, SlopeOf(pts), pts[0].x, pts[0].y, lastX, lastY,
                            cv::Size(m_srcImg.cols, m_srcImg.rows), out);
}

bool BUSFeature::CalcIntersection2(cv::Mat drawing, cv::Point* pts, cv::Point through, int lastX, int lastY,
                                   std::vector<cv::Point>& out)
{
    return IntersectAtEdges(drawing, SlopeOf(pts), through.x, through.y, lastX, lastY,
                            cv::Size(drawing.cols, drawing.rows), out);
}

cv::Mat BUSFeature::DrawGBOuterOutline()
{
    cv::Mat outline = cv::Mat::zeros(m_srcImg.rows, m_srcImg.cols, CV_8UC1);
    DrawContour(outline, m_gbCont1, cv::Scalar(50), 2, cv::LINE_8);
    return outline;
}

float BUSFeature::CalcLineIntersection(cv::Point from, cv::Point to)
{
    return CalcLineIntersectionOn(DrawGBOuterOutline(), from, to);
}

float BUSFeature::CalcLineIntersectionOn(const cv::Mat& outline, cv::Point from, cv::Point to)
{
    cv::Point a, b;
    if (from.x == to.x) {
        const std::vector<cv::Point> crossings = VerticalCrossings(outline, to.x);
        if (crossings.size() < 2)
            return 0.0f;
        a = crossings.front();
        b = crossings.back();
    } else {
        cv::Point pair[2] = {from, to};
        std::vector<cv::Point> crossings;
        CalcIntersection(outline, pair, outline.cols - 1, outline.rows - 1, crossings);
        std::sort(crossings.begin(), crossings.end(), compX);
        if (crossings.size() < 2)
            return 0.0f;
        const cv::Point a1 = crossings.front();
        const cv::Point b1 = crossings.back();
        const float span1 = distance(a1, b1);
        // The same crossings, now taken in row order.
        std::sort(crossings.begin(), crossings.end(), compY);
        const cv::Point a2 = crossings.front();
        const cv::Point b2 = crossings.back();
        const float span2 = distance(a2, b2);
        if (span1 > span2) {
            a = a1;
            b = b1;
        } else {
            a = a2;
            b = b2;
        }
    }
    return std::min(distance(a, to), distance(b, to));
}
