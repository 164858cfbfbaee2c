// Axis measurement driver: brings the mask to a working size, runs both
// searches, scales back, and stretches each axis to the outline's crossings.
#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"

namespace {

// Masks this many columns wide are measured as they are; others at a width of 102.
constexpr int kBandLow = 60;
constexpr int kBandHigh = 139;
constexpr int kWorkingWidth = 102;

float AxisLength(const cv::Point* axis)
{
    const int dx = WrapSub(axis[0].x, axis[1].x);
    const int dy = WrapSub(axis[0].y, axis[1].y);
    return std::sqrt(static_cast<float>(WrapAdd(WrapMul(dx, dx), WrapMul(dy, dy))));
}

} // namespace

void LesionAxis::CalcLesionAxis(cv::Point* axisA, cv::Point* axisB, float& lengthA, float& lengthB)
{
    const int cols = m_mask.cols;
    const int rows = m_mask.rows;
    const bool resized = cols < kBandLow || cols > kBandHigh;

    cv::Mat workMask;
    cv::Mat canvas;
    std::vector<cv::Point> contour;
    cv::RotatedRect ellipse;
    int scaledRows = 0;
    if (!resized) {
        workMask = m_mask.clone();
        canvas = cv::Mat::zeros(m_size, CV_8UC3);
        contour = m_contour;
        ellipse = m_ellipse;
    } else {
        scaledRows = RoundToInt((102.0f / static_cast<float>(cols)) * static_cast<float>(rows));
        cv::resize(m_mask, workMask, cv::Size(kWorkingWidth, scaledRows), 0, 0, cv::INTER_LINEAR);
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

    cv::Point longAxis[2];
    GetLongAxisPts(canvas, contour, box, longAxis);
    cv::Point shortAxis[2] = {cv::Point(0, 0), cv::Point(0, 0)};
    GetShortAxisPts1(canvas, contour, ellipse, box, shortAxis);

    if (resized) {
        const float fx = static_cast<float>(cols) / 102.0f;
        const float fy = static_cast<float>(rows) / static_cast<float>(scaledRows);
        for (cv::Point* axis : {longAxis, shortAxis})
            for (int i = 0; i < 2; ++i)
                axis[i] = cv::Point(TruncToInt(static_cast<float>(axis[i].x) * fx),
                                    TruncToInt(static_cast<float>(axis[i].y) * fy));
    }

    OrderAxesByTilt(AxisTiltDegrees(longAxis[0], longAxis[1]), longAxis, shortAxis, axisA, axisB);
    lengthA = AxisLength(axisA);
    lengthB = AxisLength(axisB);
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
