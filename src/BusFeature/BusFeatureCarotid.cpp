// Carotid plaque: vessel and plaque masks, the plaque's echo, its position
// in the vessel, and the vessel's inner diameter.
#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"
#include "BusFeature/BusFeature.h"

namespace {

std::vector<cv::Point> ToRegion(const std::vector<cv::Point>& contour, const cv::Rect& roi)
{
    std::vector<cv::Point> shifted(contour.size());
    for (size_t i = 0; i < contour.size(); ++i)
        shifted[i] = cv::Point(WrapSub(contour[i].x, roi.x), WrapSub(contour[i].y, roi.y));
    return shifted;
}

cv::Point RoundPoint(cv::Point2f p) { return cv::Point(RoundToInt(p.x), RoundToInt(p.y)); }

} // namespace

void BUSFeature::InitiPlaquePara(std::vector<cv::Point> organContour, std::vector<cv::Point> lesionContour)
{
    m_plaqueOrganMask = cv::Mat::zeros(m_fullHeight, m_fullWidth, CV_8UC1);
    if (!ConnectionMaskCv(organContour, m_plaqueCont, m_plaqueOrganMask))
        return;
    m_lesionMask = cv::Mat::zeros(m_height, m_width, CV_8UC1);
    if (!ConnectionMaskCv(lesionContour, m_lesionCont, m_lesionMask))
        return;
    m_label = m_lesionMask / 255.0;
    m_plaqueRoiMask = m_plaqueOrganMask(m_roi);
    m_lesionPixNum = cv::countNonZero(m_label);
    m_lesionArea = static_cast<float>(SafeContourArea(m_lesionCont, false));
    m_lesionRect = cv::boundingRect(m_lesionCont);
}

int BUSFeature::GetCarotidPlaqueEcho()
{
    const int otsu = OtsuAlgThreshold(m_srcImg, m_label);
    ThyGetCalcificationHist(m_srcImg, m_label); // its valley is not used for the plaque

    // Plaque pixels above the Otsu boundary.
    cv::Mat brightImage = m_srcImg.clone().mul(m_label);
    cv::threshold(brightImage, brightImage, otsu - 1, 1.0, cv::THRESH_BINARY);
    const int brightCount = cv::countNonZero(brightImage);
    m_hypoCount = brightCount;
    m_hyperCount = WrapSub(m_lesionPixNum, brightCount);
    const float brightFraction = static_cast<float>(brightCount) / static_cast<float>(m_lesionPixNum);

    cv::Scalar meanValue, deviationValue;
    cv::meanStdDev(m_srcImg, meanValue, deviationValue, m_label.clone());
    const double mean = meanValue[0];
    const double deviation = deviationValue[0];

    // Very bright plaque pixels: above mean + 2.2 standard deviations.
    constexpr double kSpread = 2.200000047683716; // 2.2f
    const int limit = TruncToInt(deviation * kSpread + mean);
    const int clamped = limit > 255 ? 255 : limit;
    cv::Mat topImage = m_srcImg.clone().mul(m_label);
    cv::threshold(topImage, topImage, clamped, 255.0, cv::THRESH_BINARY);
    const float topFraction = static_cast<float>(cv::countNonZero(topImage)) / static_cast<float>(m_lesionPixNum);

    const double bright = brightFraction;
    const double top = topFraction;
    if (mean > 60.0 && bright > 0.65)
        return 2;
    if (mean > 65.0 && bright > 0.35)
        return 3;
    if (mean <= 65.0 && mean > 40.0 && bright > 0.35 && top > 0.04)
        return 3;
    if (limit <= 119)
        return 1;
    if (top > 0.03)
        return 3;
    return 1;
}

int BUSFeature::GetCarotidPlaquePosition()
{
    const int cx = WrapAdd(m_lesionRect.x, m_lesionRect.width / 2);
    const int cy = WrapAdd(m_lesionRect.y, m_lesionRect.height / 2);
    const cv::Point centre(cx, cy);

    const std::vector<cv::Point> vessel = ToRegion(m_plaqueCont, m_roi);
    const cv::Rect box = cv::boundingRect(vessel);
    cv::Point2f p[4];
    cv::minAreaRect(vessel).points(p);

    // The second terms take the box's top for x and its left for y: the
    // vessel's sides are compared with crossed coordinates, as the verdict has it.
    const float sideX = std::min(std::fabs(static_cast<float>(WrapSub(cx, WrapAdd(box.x, box.width)))),
                                 std::fabs(static_cast<float>(WrapSub(cx, box.y))));
    const float sideY = std::min(std::fabs(static_cast<float>(WrapSub(cy, WrapAdd(box.y, box.height)))),
                                 std::fabs(static_cast<float>(WrapSub(cy, box.x))));

    float ratio = 0.0f;
    float upper = 0.0f;
    float lower = 0.0f;
    if (p[0].x == p[3].x || p[0].x == p[1].x) {
        // Upright rectangle: the box's proportions; the upper distance is taken, crossed, from its left.
        ratio = static_cast<float>(box.width) / static_cast<float>(box.height);
        upper = static_cast<float>(WrapAbs(WrapSub(cy, box.x)));
        lower = static_cast<float>(WrapAbs(WrapSub(cy, WrapAdd(box.y, box.height))));
    } else {
        const float s1 = std::fabs((p[0].y - p[1].y) / (p[0].x - p[1].x));
        const float s3 = std::fabs((p[0].y - p[3].y) / (p[0].x - p[3].x));
        cv::Point2f sideA[2], sideB[2]; // the two flatter, opposite sides
        if (s1 > s3) {
            sideA[0] = p[0], sideA[1] = p[3], sideB[0] = p[1], sideB[1] = p[2];
            ratio = distance(p[0], p[3]) / distance(p[0], p[1]);
        } else {
            sideA[0] = p[0], sideA[1] = p[1], sideB[0] = p[2], sideB[1] = p[3];
            ratio = distance(p[0], p[1]) / distance(p[0], p[3]);
        }
        const int heightA = TruncToInt((sideA[0].y + sideA[1].y) * 0.5f);
        const int heightB = TruncToInt((sideB[0].y + sideB[1].y) * 0.5f);
        cv::Point upperSide[2] = {cv::Point(0, 0), cv::Point(0, 0)};
        cv::Point lowerSide[2] = {cv::Point(0, 0), cv::Point(0, 0)};
        if (heightA < heightB) {
            upperSide[0] = RoundPoint(sideA[0]), upperSide[1] = RoundPoint(sideA[1]);
            lowerSide[0] = RoundPoint(sideB[0]), lowerSide[1] = RoundPoint(sideB[1]);
        } else if (heightB < heightA) {
            upperSide[0] = RoundPoint(sideB[0]), upperSide[1] = RoundPoint(sideB[1]);
            lowerSide[0] = RoundPoint(sideA[0]), lowerSide[1] = RoundPoint(sideA[1]);
        } // at one height both sides stay the degenerate line (0, 0)-(0, 0)
        upper = getDist_P2L(centre, upperSide[0], upperSide[1]);
        lower = getDist_P2L(centre, lowerSide[0], lowerSide[1]);
    }

    if (0.5f < ratio && static_cast<double>(ratio) < 1.8 && sideY > sideX)
        return 3;
    return upper > lower ? 2 : 1;
}

void BUSFeature::GetCarotidShortAxisInnerDiameter(int& x1, int& y1, int& x2, int& y2)
{
    LesionAxis axis;
    axis.m_contour = ToRegion(m_plaqueCont, m_roi);
    axis.m_size = cv::Size(m_srcImg.cols, m_srcImg.rows);
    axis.SetPara();
    cv::Point axisA[2] = {cv::Point(0, 0), cv::Point(0, 0)};
    cv::Point axisB[2] = {cv::Point(0, 0), cv::Point(0, 0)};
    float lengthA = 0.0f;
    float lengthB = 0.0f;
    axis.CalcLesionAxis(axisA, axisB, lengthA, lengthB);
    axis.CalcLesionAxisCorrect(axisA, axisB); // the lengths stay those measured before
    const cv::Point* longer = lengthA > lengthB ? axisA : axisB;
    x1 = longer[0].x;
    y1 = longer[0].y;
    x2 = longer[1].x;
    y2 = longer[1].y;
}
