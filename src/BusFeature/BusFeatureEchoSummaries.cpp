// Grey summaries of the lesion for the echo grades of the toolkit: the
// posterior band of a gall bladder lesion, and the lesion's histogram
// against the liver.
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

namespace {

// The lesion label, or an all-clear one where no initialiser drew it: an
// empty mask would make OpenCV count the whole image as lesion.
cv::Mat LesionLabel(const cv::Mat& label, const cv::Mat& image)
{
    return label.empty() ? cv::Mat::zeros(image.size(), CV_8UC1) : label;
}

} // namespace

std::vector<float> BUSFeature::GetGbPosterEchoFeature()
{
    const float lesion = static_cast<float>(cv::mean(m_srcImg, LesionLabel(m_label, m_srcImg))[0]);
    const cv::Rect box = cv::boundingRect(m_lesionCont);
    const cv::Rect below =
        cv::Rect(box.x, WrapAdd(box.y, box.height), box.width, 20) & cv::Rect(0, 0, m_srcImg.cols, m_srcImg.rows);
    const float posterior = below.area() > 0 ? static_cast<float>(cv::mean(m_srcImg(below))[0]) : 0.0f;
    return {lesion, posterior};
}

std::vector<float> BUSFeature::GetEchoFeatureUseHist()
{
    cv::Mat hist = GreyHistogram(m_srcImg, LesionLabel(m_label, m_srcImg));
    hist.at<float>(255) = 0.0f;
    float darker = 0.0f, brighter = 0.0f;
    int peak = 0;
    for (int g = 0; g < 256; ++g) {
        const float count = hist.at<float>(g);
        if (static_cast<float>(g) < m_liverAvgGray)
            darker += count;
        else if (g < 255)
            brighter += count;
        if (count > hist.at<float>(peak))
            peak = g;
    }
    return {darker, brighter, std::fabs(static_cast<float>(peak) - m_liverAvgGray)};
}
