// Breast echo (grey histogram inside the lesion), boundary (band contrast)
// and margin (convexity defects against the polygon approximation).
#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

int BUSFeature::GetEchoFeature()
{
    const cv::Mat mask = m_lesionMask.clone();
    const cv::Mat image = m_srcImg.clone();
    cv::Mat hist = GreyHistogram(image, mask);

    // Saturated white is left out altogether.
    hist.at<float>(255) = 0.0f;
    double peakCount = 0.0;
    cv::Point peakLoc;
    cv::minMaxLoc(hist, nullptr, &peakCount, nullptr, &peakLoc);
    const int peakBin = peakLoc.y;

    float darkSum = 0.0f;
    float otherSum = 0.0f;
    int count = 0;
    int secondCount = 0;
    int secondBin = 0;
    for (int bin = 1; bin < 256; ++bin) {
        const float v = hist.at<float>(bin);
        if (v > 2.0 && bin != peakBin) {
            if (v > secondCount) {
                secondCount = TruncToInt(v);
                secondBin = bin;
            }
            otherSum += v;
            ++count;
        }
        if (bin <= 25)
            darkSum = std::trunc(darkSum + v);
    }
    const int total = TruncToInt(static_cast<double>(otherSum) + peakCount);

    // A second peak right beside the main one counts with it.
    double peakValue = peakCount;
    const int gap = secondBin - peakBin;
    if (gap >= -3 && gap <= 3) {
        otherSum -= static_cast<float>(secondCount);
        peakValue = static_cast<double>(secondCount) + peakCount;
    }
    if (count != 0)
        otherSum /= static_cast<float>(count);
    float sharpness = static_cast<float>(peakValue);
    if (otherSum != 0.0f)
        sharpness /= otherSum;
    const float darkShare = darkSum / static_cast<float>(total + 1);

    if (darkShare > 0.75f)
        return 1;
    return sharpness >= 20.0f ? 1 : 2;
}

float BUSFeature::GetBoundaryVal() { return GrayAvgsep(m_label, m_srcImg, 15); }

std::vector<float> BUSFeature::GetBoundaryFeature() { return {GrayAvgsep(m_label, m_srcImg, 15)}; }

int BUSFeature::GetMarginFeatureMy()
{
    m_lesionRect = cv::boundingRect(m_lesionCont);
    std::vector<cv::Point> polygon;
    cv::approxPolyDP(m_lesionCont, polygon, 10.0, true);

    // Defects count only when deeper than 2 % of the bounding box's width plus height.
    const float minimum =
        static_cast<float>(static_cast<double>(WrapAdd(m_lesionRect.height, m_lesionRect.width)) * 0.02);
    const DefectDepths deep = DeepDefects(m_lesionCont, minimum);
    const float count = deep.count;
    float meanDepth = count > 0.0f ? deep.sum / count : 0.0f;
    float maxDepth = deep.greatest;
    const double half = 0.5 * std::min(m_majorAxisLength, m_minorAxisLength);
    if (half > 0.0) {
        maxDepth = static_cast<float>(maxDepth / half);
        meanDepth = static_cast<float>(meanDepth / half);
    }
    m_circularity = Circularity(m_lesionArea, m_lesionPerimeter);

    const int vertices = static_cast<int>(polygon.size());
    m_marginVals = {meanDepth, maxDepth, count, static_cast<float>(vertices)};

    if (vertices <= 8)
        return 1;
    if (vertices <= 12)
        return count >= 4.0f ? 2 : 1;
    if (count < 3.0f)
        return 1;
    if (count == 3.0f)
        return static_cast<double>(meanDepth) >= 0.3 ? 2 : 1;
    return 2;
}

std::vector<float> BUSFeature::GetMarginFeature() { return {m_nrg, m_nrg2, m_nrg3}; }
