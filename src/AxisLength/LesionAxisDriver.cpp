// Axis measurement driver: brings the mask to a working size, runs both
// searches, scales back, and stretches each axis to the outline's crossings.
#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"

namespace {

float AxisLength(const cv::Point* axis)
{
    const int dx = WrapSub(axis[0].x, axis[1].x);
    const int dy = WrapSub(axis[0].y, axis[1].y);
    return std::sqrt(static_cast<float>(WrapAdd(WrapMul(dx, dx), WrapMul(dy, dy))));
}

// Long and short axis of the mask in its own frame. Within the band the
// outline and `ellipse` are used as they are; otherwise the mask is measured
// at a width of 102 and the four points are scaled back, truncated.
void MeasureAxes(LesionAxis& axis, const cv::RotatedRect& ellipseAtFullSize, cv::Point* longAxis, cv::Point* shortAxis)
{
    const int cols = axis.m_mask.cols;
    const int rows = axis.m_mask.rows;
    const bool resized = !IsAxisWorkingWidth(cols);

    cv::Mat workMask;
    cv::Mat canvas;
    std::vector<cv::Point> contour;
    cv::RotatedRect ellipse;
    int scaledRows = 0;
    if (!resized) {
        workMask = axis.m_mask.clone();
        canvas = cv::Mat::zeros(axis.m_size, CV_8UC3);
        contour = axis.m_contour;
        ellipse = ellipseAtFullSize;
    } else {
        scaledRows = AxisWorkingRows(cols, rows);
        cv::resize(axis.m_mask, workMask, cv::Size(kAxisWorkingWidth, scaledRows), 0, 0, cv::INTER_LINEAR);
        canvas = cv::Mat::zeros(workMask.size(), CV_8UC3);
        std::vector<std::vector<cv::Point>> found;
        cv::findContours(workMask, found, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
        // An outline lost in the shrinking leaves nothing to measure.
        if (found.empty())
            throw std::runtime_error("no outline in the working mask");
        contour = found[0];
        ellipse = cv::fitEllipse(contour);
    }
    const cv::Rect box = cv::boundingRect(contour);

    axis.GetLongAxisPts(canvas, contour, box, longAxis);
    shortAxis[0] = cv::Point(0, 0);
    shortAxis[1] = cv::Point(0, 0);
    axis.GetShortAxisPts1(canvas, contour, ellipse, box, shortAxis);

    if (resized) {
        const float fx = static_cast<float>(cols) / 102.0f;
        const float fy = static_cast<float>(rows) / static_cast<float>(scaledRows);
        for (cv::Point* ends : {longAxis, shortAxis})
            for (int i = 0; i < 2; ++i)
                ends[i] = cv::Point(TruncToInt(static_cast<float>(ends[i].x) * fx),
                                    TruncToInt(static_cast<float>(ends[i].y) * fy));
    }
}

} // namespace

void LesionAxis::CalcLesionAxis(cv::Point* axisA, cv::Point* axisB, float& lengthA, float& lengthB)
{
    CalcLesionAxis2(m_ellipse, axisA, axisB, lengthA, lengthB);
}

void LesionAxis::CalcLesionAxis2(cv::RotatedRect ellipse, cv::Point* axisA, cv::Point* axisB, float& lengthA,
                                 float& lengthB)
{
    cv::Point longAxis[2];
    cv::Point shortAxis[2];
    MeasureAxes(*this, ellipse, longAxis, shortAxis);
    OrderAxesByTilt(AxisTiltDegrees(longAxis[0], longAxis[1]), longAxis, shortAxis, axisA, axisB);
    lengthA = AxisLength(axisA);
    lengthB = AxisLength(axisB);
}

void LesionAxis::CalcLesionAxis3(cv::RotatedRect ellipse, cv::Point* axisA, cv::Point* axisB, float& lengthA,
                                 float& lengthB)
{
    CalcLesionAxis2(ellipse, axisA, axisB, lengthA, lengthB);
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
