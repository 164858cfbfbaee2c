// Breast initialiser and the orientation verdict.
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "BusFeature/RunDilation.h"

void BUSFeature::IntiBreastPara(const std::vector<cv::Point>& contour)
{
    m_lesionMask = cv::Mat::zeros(m_height, m_width, CV_8UC1);
    m_lesionCont = contour;
    DrawContour(m_lesionMask, m_lesionCont, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    m_label = m_lesionMask / 255.0;

    // Needs five points; fewer ends the call here.
    m_ellipse = cv::fitEllipse(m_lesionCont);
    if (m_ellipse.size.height < m_ellipse.size.width) {
        m_majorAxisLength = m_ellipse.size.width;
        m_minorAxisLength = m_ellipse.size.height;
    } else {
        m_majorAxisLength = m_ellipse.size.height;
        m_minorAxisLength = m_ellipse.size.width;
    }
    m_lesionArea = static_cast<float>(SafeContourArea(m_lesionCont, false));

    cv::Scalar mean, deviation;
    cv::meanStdDev(m_srcImg, mean, deviation, m_label);
    m_lesionAvgGray = static_cast<float>(mean[0]);
    m_lesionStdGray = static_cast<float>(deviation[0]);

    m_hull.clear();
    cv::convexHull(m_lesionCont, m_hull, false, true);
    cv::Mat hullMask = cv::Mat::zeros(m_height, m_width, CV_8UC1);
    DrawContour(hullMask, m_hull, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    std::vector<std::vector<cv::Point>> hullOutlines;
    cv::findContours(hullMask, hullOutlines, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    if (!hullOutlines.empty())
        m_hullPts = hullOutlines[0];
    m_hullArea = static_cast<float>(SafeContourArea(m_hull, false));
    m_lesionPerimeter = static_cast<float>(cv::arcLength(m_lesionCont, true));

    // Otsu level of the whole region, not only of the lesion.
    cv::Mat scratch;
    m_otsuThresh = static_cast<float>(cv::threshold(m_srcImg, scratch, 0, 255, cv::THRESH_OTSU));

    m_lesionPixNum = cv::countNonZero(m_label);

    // Ring of tissue about seven pixels wide around the lesion. The filled
    // lesion lies within the outline's bounding box, so the dilated mask, and
    // the ring, lie within that box widened by the element's half size.
    const cv::Mat element = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(15, 15), cv::Point(-1, -1));
    const cv::Rect bounds = cv::boundingRect(m_lesionCont);
    const cv::Rect box = GrowWithin(bounds, 7, cv::Size(m_width, m_height));
    const cv::Mat boxMask = m_lesionMask(box).clone();
    cv::Mat ring;
    cv::subtract(rundilation::DilateCentred(boxMask, element), boxMask, ring);
    m_ringAvgGray = static_cast<float>(cv::mean(m_srcImg(box), ring)[0]);
}

int BUSFeature::CalcLesionAxis(const cv::Point* longAxis, const cv::Point* shortAxis, float& longLength,
                               float& shortLength)
{
    constexpr float kRoundRatio = 0.8f;
    constexpr double kDegreesPerRadian = 57.29577951308232;

    const double dx = static_cast<double>(longAxis[0].x) - static_cast<double>(longAxis[1].x);
    const double dy = static_cast<double>(longAxis[0].y) - static_cast<double>(longAxis[1].y);
    const double rise = std::fabs(dy);
    const double length = std::sqrt(dx * dx + dy * dy);
    const double angle = std::asin(rise / length);

    longLength = distance(longAxis[0], longAxis[1]);
    shortLength = distance(shortAxis[0], shortAxis[1]);
    const float ratio = shortLength / longLength;
    if (ratio >= kRoundRatio)
        return 2;

    const double degrees = std::fabs(angle) * kDegreesPerRadian;
    if (degrees <= 30.0)
        return 1;
    if (degrees > 30.0)
        return 2;
    return 0; // both axes degenerate: the angle is NaN
}
