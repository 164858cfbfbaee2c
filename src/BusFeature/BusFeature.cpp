// Construction and accessors of the feature object.
#include "BusFeature/BusFeature.h"

BUSFeature::BUSFeature(cv::Mat image, cv::Rect roi)
    : m_width(image.cols), m_height(image.rows), m_srcImg(image), m_roi(roi)
{
}

BUSFeature::BUSFeature(cv::Mat image, int fullWidth, int fullHeight)
    : m_width(image.cols), m_height(image.rows), m_fullWidth(fullWidth), m_fullHeight(fullHeight), m_srcImg(image)
{
}

BUSFeature::BUSFeature(cv::Mat image, cv::Rect roi, int fullWidth, int fullHeight)
    : m_width(roi.width), m_height(roi.height), m_fullWidth(fullWidth), m_fullHeight(fullHeight), m_srcImg(image),
      m_roi(roi)
{
}

void BUSFeature::SetMask(cv::Mat mask) { m_mask = mask; }
void BUSFeature::SetSrcImg(cv::Mat image) { m_fullSrcImg = image; }
cv::Mat BUSFeature::GetLabel() { return m_label; }
cv::Mat BUSFeature::GetLesionMask() { return m_lesionMask; }

cv::Mat BUSFeature::GetOrganMask(Organ organ)
{
    if (organ == ORGAN_LIVER)
        return m_organMaskA;
    if (organ == ORGAN_GALLBLADDER)
        return m_organMaskB;
    return cv::Mat();
}

std::vector<cv::Point> BUSFeature::GetLesionCont() { return m_lesionCont; }

std::vector<cv::Point> BUSFeature::GetOrganCont(Organ organ)
{
    if (organ == ORGAN_LIVER)
        return m_organCont2;
    if (organ == ORGAN_GALLBLADDER)
        return m_organCont3;
    return std::vector<cv::Point>();
}

float BUSFeature::GetDepth() { return m_depth; }
float BUSFeature::GetLesionArea() { return m_lesionArea; }
std::vector<int> BUSFeature::GetPixNum() { return {m_lesionPixNum, m_organPixNum}; }
float BUSFeature::GetMajorAxisLength() { return m_majorAxisLength; }
float BUSFeature::GetMinorAxisLength() { return m_minorAxisLength; }
float BUSFeature::GetLesionPerimeter() { return m_lesionPerimeter; }
float BUSFeature::GetLesionAvgGray() { return m_lesionAvgGray; }
float BUSFeature::GetLesionHighGray() { return m_lesionHighGray; }
float BUSFeature::GetLiverAvgGray() { return m_liverAvgGray; }
float BUSFeature::GetBrightAvgGray() { return m_brightAvgGray; }
float BUSFeature::GetLesionStdGray() { return m_lesionStdGray; }
cv::RotatedRect BUSFeature::GetEllipse() { return m_ellipse; }
std::vector<cv::Point> BUSFeature::GetHull() { return m_hull; }
std::vector<cv::Point> BUSFeature::GetHullPts() { return m_hullPts; }
float BUSFeature::GetFourierDist() { return m_fourierDist; }
float BUSFeature::GetEchoHist() { return m_echoHist; }
