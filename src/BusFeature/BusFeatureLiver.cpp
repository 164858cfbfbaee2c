// Liver initialiser and the echo measures of a liver lesion: masks drawn
// from the liver and lesion outlines, the lesion's grey statistics, the
// mean grey of the liver tissue around it, and the histogram features.
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "BusFeature/RunDilation.h"

namespace {

// Lesion masks, ellipse, area and grey statistics: the steps both liver
// initialisers share before the ring is taken.
void DrawLiverAndLesion(BUSFeature& f, std::vector<cv::Point>& organContour, std::vector<cv::Point>& lesionContour)
{
    f.m_organMaskA = cv::Mat::zeros(f.m_fullHeight, f.m_fullWidth, CV_8UC1);
    f.ConnectionMaskCv(organContour, f.m_organCont2, f.m_organMaskA);
    f.m_lesionMask = cv::Mat::zeros(f.m_height, f.m_width, CV_8UC1);
    f.ConnectionMaskCv(lesionContour, f.m_lesionCont, f.m_lesionMask);
    f.m_label = f.m_lesionMask / 255.0;
    f.m_ellipse = cv::fitEllipse(f.m_lesionCont);
    f.m_lesionArea = static_cast<float>(SafeContourArea(f.m_lesionCont, false));
    cv::Scalar mean, deviation;
    cv::meanStdDev(f.m_srcImg, mean, deviation, f.m_label);
    f.m_lesionAvgGray = static_cast<float>(mean[0]);
    f.m_lesionStdGray = static_cast<float>(deviation[0]);
}

// The lesion label grown by a 20 x 20 disc, less the lesion: a ring of
// about ten pixels of surrounding tissue.
cv::Mat RingAroundLesion(const cv::Mat& label)
{
    const cv::Mat disc = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(20, 20), cv::Point(-1, -1));
    return rundilation::DilateAround(label, disc) - label;
}

// Otsu threshold of the whole region raised by half the lesion's deviation,
// and the lesion and non-lesion pixel counts of the region.
void ThresholdAndCounts(BUSFeature& f)
{
    cv::Mat scratch;
    f.m_otsuThresh =
        static_cast<float>(cv::threshold(f.m_srcImg, scratch, 0, 255, cv::THRESH_BINARY | cv::THRESH_OTSU));
    f.m_lesionPixNum = 0;
    f.m_organPixNum = 0;
    f.m_otsuThresh = 0.5f * f.m_lesionStdGray + f.m_otsuThresh;
    // The count runs over the object's own size; a smaller label would be read past its end.
    if (f.m_label.rows < f.m_height || f.m_label.cols < f.m_width)
        throw std::out_of_range("lesion label smaller than the region");
    for (int r = 0; r < f.m_height; ++r) {
        const uchar* row = f.m_label.ptr<uchar>(r);
        for (int c = 0; c < f.m_width; ++c) {
            if (row[c] == 1)
                ++f.m_lesionPixNum;
            else
                ++f.m_organPixNum;
        }
    }
}

} // namespace

void BUSFeature::InitiLiverPara(std::vector<cv::Point>& organContour, std::vector<cv::Point>& lesionContour,
                                cv::Rect roi)
{
    DrawLiverAndLesion(*this, organContour, lesionContour);

    // OpenCV's own check of a region adds in 32 bits and can wrap; a region
    // outside the liver mask is refused here.
    const long long right = static_cast<long long>(roi.x) + roi.width;
    const long long bottom = static_cast<long long>(roi.y) + roi.height;
    if (roi.x < 0 || roi.y < 0 || roi.width < 0 || roi.height < 0 || right > m_organMaskA.cols ||
        bottom > m_organMaskA.rows)
        throw std::out_of_range("region outside the liver mask");
    // The liver label is taken at whole-image size and cut to the region;
    // dividing only the cut gives the same pixels.
    const cv::Mat liverLabel = m_organMaskA(roi) / 255.0;
    const cv::Mat ring = RingAroundLesion(m_label);
    const cv::Mat liverRing = ring.mul(liverLabel, 1.0);
    cv::Scalar mean, deviation;
    cv::meanStdDev(m_srcImg, mean, deviation, liverRing);
    m_liverAvgGray = static_cast<float>(mean[0]);

    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(m_lesionMask, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    std::vector<cv::Rect> bounds;
    for (const auto& c : contours)
        bounds.push_back(cv::boundingRect(c));
    // The ellipse fit above already needed a contour; an empty list cannot reach here.
    if (bounds.empty())
        throw std::logic_error("lesion mask without an outline");
    m_lesionBoundRect = bounds[0];

    ThresholdAndCounts(*this);
}

void BUSFeature::InitiLiverPara(std::vector<cv::Point>& organContour, std::vector<cv::Point>& lesionContour)
{
    DrawLiverAndLesion(*this, organContour, lesionContour);
    const cv::Mat ring = RingAroundLesion(m_label);
    m_liverAvgGray = static_cast<float>(cv::mean(m_srcImg, ring)[0]);
    ThresholdAndCounts(*this);
}

std::vector<float> BUSFeature::CalcuEcho(cv::Mat image, cv::Mat mask)
{
    if (image.channels() > 1)
        cv::cvtColor(image, image, cv::COLOR_BGR2GRAY);
    cv::Mat hist = GreyHistogram(image, mask);
    hist.at<float>(255) = 0.0f; // white takes no part

    float weightedSum = 0.0f;
    for (int i = 0; i < 256; ++i)
        weightedSum += static_cast<float>(i * i) * hist.at<float>(i);

    // The bright share reads the object's whole lesion, not the arguments.
    const int labelCount = cv::countNonZero(m_label);
    const cv::Mat masked = m_srcImg.mul(m_label, 1.0);
    if (masked.rows < m_height || masked.cols < m_width)
        throw std::out_of_range("lesion image smaller than the region");
    int brightCount = 0;
    for (int r = 0; r < m_height; ++r) {
        const uchar* row = masked.ptr<uchar>(r);
        for (int c = 0; c < m_width; ++c)
            if (row[c] >= 200)
                ++brightCount;
    }
    const float brightFraction = static_cast<float>(brightCount) / static_cast<float>(labelCount);
    return {weightedSum, brightFraction};
}

std::vector<float> BUSFeature::GetEchoCysticFeature()
{
    const std::vector<float> echo = CalcuEcho(m_srcImg(m_lesionBoundRect), m_label(m_lesionBoundRect));
    return std::vector<float>(echo.begin(), echo.begin() + 2);
}
