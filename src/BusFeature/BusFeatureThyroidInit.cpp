// Thyroid initialiser: masks and outlines of the gland and the nodule, the
// nodule's ellipse, hull and size, and the grey levels of the thyroid tissue
// in a ring around the nodule.
#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "BusFeature/RunDilation.h"

void BUSFeature::InitiThroidPara(std::vector<cv::Point>& organContour, std::vector<cv::Point>& lesionRegionContour,
                                 std::vector<cv::Point>& lesionWholeContour)
{
    m_thyOrganMask = cv::Mat::zeros(m_fullHeight, m_fullWidth, CV_8U);
    if (!ConnectionMaskCv(organContour, m_thyCont1, m_thyOrganMask))
        return;
    m_lesionMask = cv::Mat::zeros(m_height, m_width, CV_8U);
    if (!ConnectionMaskCv(lesionRegionContour, m_lesionCont, m_lesionMask))
        return;
    cv::Mat wholeLesion = cv::Mat::zeros(m_fullHeight, m_fullWidth, CV_8U);
    if (!ConnectionMaskCv(lesionWholeContour, m_thyCont2, wholeLesion))
        return;

    m_label = m_lesionMask / 255;
    m_ellipse = cv::fitEllipse(m_lesionCont);
    m_lesionRect = cv::boundingRect(m_lesionCont);
    m_majorAxisLength = std::max(m_ellipse.size.width, m_ellipse.size.height);
    m_minorAxisLength = std::min(m_ellipse.size.width, m_ellipse.size.height);
    m_lesionArea = static_cast<float>(SafeContourArea(m_lesionCont, false));

    // Thyroid tissue within 12 pixels of the nodule.
    const cv::Mat disc = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(25, 25), cv::Point(-1, -1));
    const cv::Mat ring = rundilation::DilateAround(m_lesionMask, disc) - m_lesionMask;
    cv::Mat thyroidRing;
    cv::bitwise_and(ring, m_thyOrganMask(m_roi), thyroidRing);
    m_thyFloat1 = static_cast<float>(cv::mean(m_srcImg, thyroidRing)[0]);

    m_hull.clear();
    cv::convexHull(m_lesionCont, m_hull, false, true);
    cv::Mat hullMask = cv::Mat::zeros(m_height, m_width, CV_8U);
    DrawContour(hullMask, m_hull, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    std::vector<std::vector<cv::Point>> hullOutline;
    cv::findContours(hullMask, hullOutline, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    if (!hullOutline.empty())
        m_hullPts = hullOutline[0];

    m_lesionPerimeter = static_cast<float>(cv::arcLength(m_lesionCont, true));

    // The darker part of the ring: pixels at or below the histogram valley.
    cv::Mat ringImage;
    cv::bitwise_and(thyroidRing, m_srcImg.clone(), ringImage);
    const float valley = GetCalcificationHistMy(m_srcImg, thyroidRing);
    if (valley > 0.0f) {
        cv::Mat low;
        cv::threshold(ringImage, low, valley, 255, cv::THRESH_TOZERO_INV);
        m_thyFloat2 = static_cast<float>(cv::mean(m_srcImg, low)[0]);
    }
}
