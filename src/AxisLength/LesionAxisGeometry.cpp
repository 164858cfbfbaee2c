// Line crossings and orderings used by the axis searches.
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"

cv::Point2f GetCrossPoint2(cv::Vec4f a, cv::Vec4f b)
{
    float x = 0.0f, y = 0.0f;
    if (a[0] == a[2]) {
        x = a[0];
        y = b[1] == b[3] ? b[1] : b[1] + ((x - b[0]) * (b[1] - b[3])) / (b[0] - b[2]);
    } else if (b[0] == b[2]) {
        x = b[0];
        y = a[1] == a[3] ? a[1] : a[1] + ((x - a[0]) * (a[1] - a[3])) / (a[0] - a[2]);
    } else {
        const float ka = (a[3] - a[1]) / (a[2] - a[0]);
        const float kb = (b[3] - b[1]) / (b[2] - b[0]);
        if (ka == kb)
            return cv::Point2f(-1.0f, -1.0f);
        const float c = a[1] - a[0] * ka;
        x = ((b[1] - b[0] * kb) - c) / (ka - kb);
        y = c + x * ka;
    }
    return cv::Point2f(x, y);
}

cv::Point2f GetCrossPoint(cv::Vec4f a, cv::Vec4f b)
{
    const float adx = a[2] - a[0], ady = a[3] - a[1];
    const float bdx = b[2] - b[0], bdy = b[3] - b[1];
    const float ka = adx != 0.0f ? ady / adx : ady;
    const float kb = bdx != 0.0f ? bdy / bdx : bdy;
    const float x = (((a[0] * ka - a[1]) - b[0] * kb) + b[1]) / (ka - kb);
    const float y = ((ka * kb * (a[0] - b[0]) + ka * b[1]) - kb * a[1]) / (ka - kb);
    return cv::Point2f(x, y);
}

bool compXX(const cv::Point& a, const cv::Point& b) { return a.x < b.x; }
bool compYY(const cv::Point& a, const cv::Point& b) { return a.y < b.y; }

bool cmp1(const std::pair<float, std::vector<cv::Point>>& a, const std::pair<float, std::vector<cv::Point>>& b)
{
    return a.first > b.first;
}

bool LesionAxis::CalcIntersection(cv::Mat mask, cv::Point* line, int maxX, int maxY, std::vector<cv::Point>& out)
{
    const int x0 = line[0].x, y0 = line[0].y;
    const int x1 = line[1].x, y1 = line[1].y;
    const float k = static_cast<float>(WrapSub(y0, y1)) / static_cast<float>(WrapSub(x0, x1));

    // A flat line never meets the top or bottom border; its marker x lies beyond maxX.
    const int kNoCrossing = 12345678;
    const cv::Point right(maxX, TruncToInt(static_cast<float>(WrapSub(maxX, x0)) * k + static_cast<float>(y0)));
    const cv::Point left(0, TruncToInt(static_cast<float>(WrapSub(0, x0)) * k + static_cast<float>(y0)));
    const cv::Point bottom(k == 0.0f ? kNoCrossing
                                     : TruncToInt(static_cast<float>(WrapSub(maxY, y0)) / k + static_cast<float>(x0)),
                           maxY);
    const cv::Point top(k == 0.0f ? kNoCrossing : TruncToInt(static_cast<float>(WrapSub(0, y0)) / k + static_cast<float>(x0)),
                        0);

    std::vector<cv::Point> ends;
    for (const cv::Point& c : {right, bottom, left, top})
        if (c.x >= 0 && c.x <= maxX && c.y >= 0 && c.y <= maxY)
            ends.push_back(c);
    if (ends.size() != 2)
        return false;

    cv::Mat canvas = cv::Mat::zeros(m_size.height, m_size.width, CV_8UC1);
    cv::line(canvas, ends[0], ends[1], cv::Scalar(50), 1, cv::LINE_8, 0);
    cv::Mat sum = mask + canvas;
    cv::threshold(sum, sum, 51, 255, cv::THRESH_BINARY);
    cv::findNonZero(sum, out);
    return true;
}

double AxisTiltDegrees(cv::Point a, cv::Point b)
{
    const int dy = WrapSub(a.y, b.y);
    const int dx = WrapSub(a.x, b.x);
    return std::asin(std::sqrt(static_cast<double>(dy) * dy + 0.0) /
                     std::sqrt(static_cast<double>(dy) * dy + static_cast<double>(dx) * dx)) *
           57.29577951308232;
}

void OrderAxesByTilt(double tilt, const cv::Point* longAxis, const cv::Point* shortAxis, cv::Point* axisA,
                     cv::Point* axisB)
{
    if (std::fabs(tilt) <= 55.0) {
        axisA[0] = longAxis[0];
        axisA[1] = longAxis[1];
        axisB[0] = shortAxis[0];
        axisB[1] = shortAxis[1];
    } else if (std::fabs(tilt) > 55.0) {
        axisA[0] = shortAxis[0];
        axisA[1] = shortAxis[1];
        axisB[0] = longAxis[0];
        axisB[1] = longAxis[1];
    }
    // NaN (a long axis of zero length): neither comparison holds, nothing is assigned.
}
