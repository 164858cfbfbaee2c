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

// Ends of the line of slope `k` through (x1, y1) on the image edges; false
// unless exactly two distinct edge points are found.
bool LineEnds(float k, int x1, int y1, int lastX, int lastY, std::vector<cv::Point>& ends)
{
    const float fx1 = static_cast<float>(x1);
    const float fy1 = static_cast<float>(y1);
    // Each candidate is computed in float and truncated; a horizontal line
    // divides by zero and its infinite candidates fall outside the edges.
    const cv::Point candidates[4] = {
        {lastX, TruncToInt(static_cast<float>(WrapSub(lastX, x1)) * k + fy1)}, // right edge
        {TruncToInt(static_cast<float>(WrapSub(lastY, y1)) / k + fx1), lastY}, // bottom edge
        {0, TruncToInt(static_cast<float>(WrapSub(0, x1)) * k + fy1)},         // left edge
        {TruncToInt(static_cast<float>(WrapSub(0, y1)) / k + fx1), 0},         // top edge
    };
    ends.clear();
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
    return ends.size() == 2;
}

// Pixels where a 50-valued line from p0 to p1, drawn on a zero matrix of
// `lineSize`, lifts `drawing` above 51, in row-major order.
void LineOverlap(const cv::Mat& drawing, cv::Point p0, cv::Point p1, cv::Size lineSize, std::vector<cv::Point>& out)
{
    cv::Mat line = cv::Mat::zeros(lineSize, CV_8UC1);
    cv::line(line, p0, p1, cv::Scalar(50), 1, cv::LINE_8, 0);
    // The sum goes to a matrix of its own, so the caller's drawing stays as it was.
    cv::Mat sum;
    cv::add(drawing, line, sum);
    cv::threshold(sum, sum, 51, 255, cv::THRESH_BINARY);
    cv::findNonZero(sum, out);
}

// LineOverlap for a drawing that holds only 0 and 50, such as the outer
// outline: only line pixels can pass 51, and they pass wherever the drawing
// is set. The line is walked with the iterator cv::line itself uses, so the
// pixels are the same without drawing, adding and scanning whole matrices.
void OutlineOverlap(const cv::Mat& outline, cv::Point p0, cv::Point p1, std::vector<cv::Point>& out)
{
    cv::LineIterator it(outline, p0, p1, 8, true);
    out.clear();
    for (int i = 0; i < it.count; ++i, ++it)
        if (**it > 1)
            out.push_back(it.pos());
    std::sort(out.begin(), out.end(),
              [](const cv::Point& a, const cv::Point& b) { return a.y != b.y ? a.y < b.y : a.x < b.x; });
}

float SlopeOf(const cv::Point* pts)
{
    return static_cast<float>(WrapSub(pts[0].y, pts[1].y)) / static_cast<float>(WrapSub(pts[0].x, pts[1].x));
}

} // namespace

bool BUSFeature::CalcIntersection(cv::Mat drawing, cv::Point* pts, int lastX, int lastY, std::vector<cv::Point>& out)
{
    std::vector<cv::Point> ends;
    if (!LineEnds(SlopeOf(pts), pts[0].x, pts[0].y, lastX, lastY, ends))
        return false;
    LineOverlap(drawing, ends[0], ends[1], cv::Size(m_srcImg.cols, m_srcImg.rows), out);
    return true;
}

bool BUSFeature::CalcIntersection2(cv::Mat drawing, cv::Point* pts, cv::Point through, int lastX, int lastY,
                                   std::vector<cv::Point>& out)
{
    std::vector<cv::Point> ends;
    if (!LineEnds(SlopeOf(pts), through.x, through.y, lastX, lastY, ends))
        return false;
    LineOverlap(drawing, ends[0], ends[1], cv::Size(drawing.cols, drawing.rows), out);
    return true;
}

cv::Mat BUSFeature::DrawGBOuterOutline()
{
    cv::Mat outline = cv::Mat::zeros(m_srcImg.rows, m_srcImg.cols, CV_8UC1);
    DrawContour(outline, m_gbCont1, cv::Scalar(50), 2, cv::LINE_8);
    return outline;
}

namespace {

// Distance from `to` to the nearer end of the crossings of the ray's line
// with the outline; `vertical` crossings come sorted by row already.
float NearerEnd(std::vector<cv::Point>& crossings, bool vertical, cv::Point to)
{
    cv::Point a, b;
    if (vertical) {
        std::sort(crossings.begin(), crossings.end(), compY);
        if (crossings.size() < 2)
            return 0.0f;
        a = crossings.front();
        b = crossings.back();
    } else {
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

} // namespace

float BUSFeature::CalcLineIntersection(cv::Point from, cv::Point to)
{
    const cv::Mat outline = DrawGBOuterOutline();
    std::vector<cv::Point> crossings;
    if (from.x == to.x) {
        LineOverlap(outline, cv::Point(to.x, 0), cv::Point(to.x, outline.rows - 1), outline.size(), crossings);
        return NearerEnd(crossings, true, to);
    }
    cv::Point pair[2] = {from, to};
    CalcIntersection(outline, pair, outline.cols - 1, outline.rows - 1, crossings);
    return NearerEnd(crossings, false, to);
}

float BUSFeature::CalcLineIntersectionOn(const cv::Mat& outline, cv::Point from, cv::Point to)
{
    std::vector<cv::Point> crossings;
    if (from.x == to.x) {
        OutlineOverlap(outline, cv::Point(to.x, 0), cv::Point(to.x, outline.rows - 1), crossings);
        return NearerEnd(crossings, true, to);
    }
    cv::Point pair[2] = {from, to};
    std::vector<cv::Point> ends;
    if (LineEnds(SlopeOf(pair), from.x, from.y, outline.cols - 1, outline.rows - 1, ends))
        OutlineOverlap(outline, ends[0], ends[1], crossings);
    return NearerEnd(crossings, false, to);
}
