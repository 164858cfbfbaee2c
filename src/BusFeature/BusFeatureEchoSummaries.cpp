// Grey summaries of the lesion for the echo grades of the toolkit: the
// posterior band of a gall bladder lesion, the lesion's histogram against
// the liver, and the plain echo histogram of any image under a mask.
#include <cmath>
#include <stdexcept>

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

cv::Mat BUSFeature::CalcuEchoHist(cv::Mat image, cv::Mat mask)
{
    if (image.empty())
        throw std::invalid_argument("echo histogram of an empty image");
    if (image.depth() != CV_8U)
        throw std::invalid_argument("echo histogram needs 8-bit grey levels");
    // Colour frames are made grey as the other echo measures make them;
    // the caller's pixels are left alone.
    if (image.channels() == 3)
        cv::cvtColor(image, image, cv::COLOR_BGR2GRAY);
    else if (image.channels() == 4)
        cv::cvtColor(image, image, cv::COLOR_BGRA2GRAY);
    else if (image.channels() != 1)
        throw std::invalid_argument("echo histogram needs a grey or colour image");
    if (!mask.empty() && (mask.type() != CV_8UC1 || mask.size() != image.size()))
        throw std::invalid_argument("echo histogram mask must be 8-bit, one channel, the image's size");
    return GreyHistogram(image, mask);
}

cv::Mat BUSFeature::GetEchoHistMy(cv::Mat image, cv::Mat mask)
{
    return CalcuEchoHist(image, mask);
}
