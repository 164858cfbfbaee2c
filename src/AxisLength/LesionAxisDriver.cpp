// Axis measurement driver: brings the mask to a working size, runs both
// searches, scales back, and stretches each axis to the outline's crossings.
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "AxisLength/AxisSides.h"
#include "AxisLength/LesionAxis.h"

namespace {

float AxisLength(const cv::Point* axis)
{
    const int dx = WrapSub(axis[0].x, axis[1].x);
    const int dy = WrapSub(axis[0].y, axis[1].y);
    return std::sqrt(static_cast<float>(WrapAdd(WrapMul(dx, dx), WrapMul(dy, dy))));
}

// The frame the searches work in. Within the band the outline and the
// given ellipse are used as they are; otherwise the mask is brought to a
// width of 102 and its first outline and that outline's ellipse serve.
struct WorkingFrame {
    cv::Mat canvas;
    std::vector<cv::Point> contour;
    cv::RotatedRect ellipse;
    cv::Rect box;
    bool resized = false;
    int cols = 0;
    int rows = 0;
    int scaledRows = 0;
};

WorkingFrame MakeWorkingFrame(const LesionAxis& axis, const cv::RotatedRect& ellipseAtFullSize)
{
    WorkingFrame frame;
    frame.cols = axis.m_mask.cols;
    frame.rows = axis.m_mask.rows;
    frame.resized = !IsAxisWorkingWidth(frame.cols);
    if (!frame.resized) {
        frame.canvas = cv::Mat::zeros(axis.m_size, CV_8UC3);
        frame.contour = axis.m_contour;
        frame.ellipse = ellipseAtFullSize;
    } else {
        frame.scaledRows = AxisWorkingRows(frame.cols, frame.rows);
        cv::Mat workMask;
        cv::resize(axis.m_mask, workMask, cv::Size(kAxisWorkingWidth, frame.scaledRows), 0, 0, cv::INTER_LINEAR);
        frame.canvas = cv::Mat::zeros(workMask.size(), CV_8UC3);
        std::vector<std::vector<cv::Point>> found;
        cv::findContours(workMask, found, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
        // An outline lost in the shrinking leaves nothing to measure.
        if (found.empty())
            throw std::runtime_error("no outline in the working mask");
        frame.contour = found[0];
        frame.ellipse = cv::fitEllipse(frame.contour);
    }
    frame.box = cv::boundingRect(frame.contour);
    return frame;
}

// Both ends of an axis back in the mask's frame, truncated.
void ScaleBack(const WorkingFrame& frame, cv::Point* ends)
{
    if (!frame.resized)
        return;
    const float fx = static_cast<float>(frame.cols) / 102.0f;
    const float fy = static_cast<float>(frame.rows) / static_cast<float>(frame.scaledRows);
    for (int i = 0; i < 2; ++i)
        ends[i] = cv::Point(TruncToInt(static_cast<float>(ends[i].x) * fx),
                            TruncToInt(static_cast<float>(ends[i].y) * fy));
}

// The ordinary searches in the working frame, not yet scaled back.
void SearchAxes(LesionAxis& axis, const WorkingFrame& frame, cv::Point* longAxis, cv::Point* shortAxis)
{
    axis.GetLongAxisPts(frame.canvas, frame.contour, frame.box, longAxis);
    shortAxis[0] = cv::Point(0, 0);
    shortAxis[1] = cv::Point(0, 0);
    axis.GetShortAxisPts1(frame.canvas, frame.contour, frame.ellipse, frame.box, shortAxis);
}

// Long and short axis of the mask in its own frame.
void MeasureAxes(LesionAxis& axis, const cv::RotatedRect& ellipseAtFullSize, cv::Point* longAxis, cv::Point* shortAxis)
{
    const WorkingFrame frame = MakeWorkingFrame(axis, ellipseAtFullSize);
    SearchAxes(axis, frame, longAxis, shortAxis);
    ScaleBack(frame, longAxis);
    ScaleBack(frame, shortAxis);
}

// The more horizontal axis first (55 degree tilt test) and both lengths.
void FinishAxes(const cv::Point* longAxis, const cv::Point* shortAxis, cv::Point* axisA, cv::Point* axisB,
                float& lengthA, float& lengthB)
{
    OrderAxesByTilt(AxisTiltDegrees(longAxis[0], longAxis[1]), longAxis, shortAxis, axisA, axisB);
    lengthA = AxisLength(axisA);
    lengthB = AxisLength(axisB);
}

// Smaller x first, smaller y on equal x.
void LeftEndFirst(cv::Point* ends)
{
    if (ends[1].x < ends[0].x || (ends[1].x == ends[0].x && ends[1].y < ends[0].y))
        std::swap(ends[0], ends[1]);
}

// Mean point of a side's points, each coordinate's sum over the count in
// double, rounded half to even.
cv::Point MeanPoint(const std::vector<cv::Point>& points)
{
    double x = 0.0, y = 0.0;
    for (const cv::Point& p : points) {
        x += static_cast<double>(p.x);
        y += static_cast<double>(p.y);
    }
    const double n = static_cast<double>(points.size());
    return cv::Point(RoundToInt(x / n), RoundToInt(y / n));
}

double SideLengthSquared(const cv::Point& a, const cv::Point& b)
{
    const double dx = static_cast<double>(b.x) - static_cast<double>(a.x);
    const double dy = static_cast<double>(b.y) - static_cast<double>(a.y);
    return dx * dx + dy * dy;
}

} // namespace

void LesionAxis::CalcLesionAxis(cv::Point* axisA, cv::Point* axisB, float& lengthA, float& lengthB)
{
    cv::Point longAxis[2];
    cv::Point shortAxis[2];
    MeasureAxes(*this, m_ellipse, longAxis, shortAxis);
    FinishAxes(longAxis, shortAxis, axisA, axisB, lengthA, lengthB);
}

void LesionAxis::CalcLesionAxis2(cv::RotatedRect ellipse, cv::Point* axisA, cv::Point* axisB, float& lengthA,
                                 float& lengthB)
{
    const WorkingFrame frame = MakeWorkingFrame(*this, ellipse);
    const RectSides sides = SortOntoRectSides(frame.contour, frame.ellipse);
    cv::Point longAxis[2];
    cv::Point shortAxis[2];
    bool everySide = sides.sorted;
    for (const std::vector<cv::Point>& side : sides.side)
        everySide = everySide && !side.empty();
    if (!everySide) {
        SearchAxes(*this, frame, longAxis, shortAxis);
    } else {
        // Sides 0 and 2 face each other, as do 1 and 3; the long axis runs
        // between the shorter pair.
        const bool evenShorter = SideLengthSquared(sides.corners[0], sides.corners[1]) <=
                                 SideLengthSquared(sides.corners[1], sides.corners[2]);
        const int across = evenShorter ? 0 : 1;
        const int along = evenShorter ? 1 : 0;
        longAxis[0] = MeanPoint(sides.side[across]);
        longAxis[1] = MeanPoint(sides.side[across + 2]);
        shortAxis[0] = MeanPoint(sides.side[along]);
        shortAxis[1] = MeanPoint(sides.side[along + 2]);
        LeftEndFirst(longAxis);
        LeftEndFirst(shortAxis);
    }
    ScaleBack(frame, longAxis);
    ScaleBack(frame, shortAxis);
    FinishAxes(longAxis, shortAxis, axisA, axisB, lengthA, lengthB);
}

void LesionAxis::CalcLesionAxis3(cv::RotatedRect ellipse, cv::Point* axisA, cv::Point* axisB, float& lengthA,
                                 float& lengthB)
{
    const WorkingFrame frame = MakeWorkingFrame(*this, ellipse);
    cv::Point longAxis[2];
    cv::Point shortAxis[2];
    GetLongAxisPts(frame.canvas, frame.contour, frame.box, longAxis);
    if (WidestPairAcross(frame.contour, m_longAxisSlope, shortAxis)) {
        LeftEndFirst(shortAxis);
    } else {
        shortAxis[0] = cv::Point(0, 0);
        shortAxis[1] = cv::Point(0, 0);
        GetShortAxisPts1(frame.canvas, frame.contour, frame.ellipse, frame.box, shortAxis);
    }
    ScaleBack(frame, longAxis);
    ScaleBack(frame, shortAxis);
    FinishAxes(longAxis, shortAxis, axisA, axisB, lengthA, lengthB);
}

void LesionAxis::CalcOrganAxis(cv::RotatedRect ellipse, cv::Point* longAxis, cv::Point* shortAxis, float& longLength,
                               float& shortLength)
{
    // No tilt test: the long axis stays first, and the short one is copied
    // through even where the search left its zero pre-set.
    cv::Point measuredLong[2];
    cv::Point measuredShort[2];
    MeasureAxes(*this, ellipse, measuredLong, measuredShort);
    for (int i = 0; i < 2; ++i) {
        longAxis[i] = measuredLong[i];
        shortAxis[i] = measuredShort[i];
    }
    longLength = AxisLength(longAxis);
    shortLength = AxisLength(shortAxis);
}

namespace {

// Crossings of the infinite line through axis[0], axis[1] with a 50-valued outline.
std::vector<cv::Point> LineCrossings(LesionAxis& self, const cv::Mat& outline, cv::Point* axis, int W, int H)
{
    std::vector<cv::Point> crossings;
    if (axis[0].x == axis[1].x) {
        cv::Mat line = cv::Mat::zeros(H, W, CV_8UC1);
        cv::line(line, cv::Point(axis[0].x, 0), cv::Point(axis[1].x, H - 1), cv::Scalar(50), 1, cv::LINE_8, 0);
        cv::Mat sum = line + outline;
        cv::threshold(sum, sum, 51, 255, cv::THRESH_BINARY);
        cv::findNonZero(sum, crossings);
    } else {
        self.CalcIntersection(outline, axis, W - 1, H - 1, crossings);
    }
    return crossings;
}

} // namespace

bool LesionAxis::CalcLesionAxisCorrect(cv::Point* axisA, cv::Point* axisB)
{
    const int W = m_size.width;
    const int H = m_size.height;
    const int minSpan = std::min(W, H) / 3;
    cv::Mat outline = cv::Mat::zeros(H, W, CV_8UC1);
    DrawContour(outline, m_contour, cv::Scalar(50), 2, cv::LINE_8);

    std::vector<cv::Point> crossings = LineCrossings(*this, outline, axisA, W, H);
    std::sort(crossings.begin(), crossings.end(), compXX);
    if (crossings.size() < 2)
        return false;
    if (WrapAbs(WrapSub(crossings.front().x, crossings.back().x)) < minSpan)
        return false;
    axisA[0] = crossings.front();
    axisA[1] = crossings.back();

    crossings = LineCrossings(*this, outline, axisB, W, H);
    std::sort(crossings.begin(), crossings.end(), compYY);
    if (crossings.size() < 2)
        return false;
    if (WrapAbs(WrapSub(crossings.back().y, crossings.front().y)) < minSpan)
        return false;
    axisB[0] = crossings.front();
    axisB[1] = crossings.back();
    return true;
}
