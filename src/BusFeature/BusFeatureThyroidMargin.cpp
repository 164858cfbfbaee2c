// Thyroid shape (wider than tall or not) and margin: extension beyond the
// gland, the depth of the outline's concavities, and the grey step and edge
// content along the border.
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

int BUSFeature::ThyCalcuShape()
{
    cv::Point2f p[4];
    m_ellipse.points(p);
    const float dx1 = p[0].x - p[1].x;
    const float dy1 = p[0].y - p[1].y;
    const float dx2 = p[2].x - p[1].x;
    const float dy2 = p[2].y - p[1].y;
    const float side1 = static_cast<float>(static_cast<double>(dx1) * dx1 + static_cast<double>(dy1) * dy1);
    const float side2 = static_cast<float>(static_cast<double>(dx2) * dx2 + static_cast<double>(dy2) * dy2);

    // Squared ratio of the horizontal side to the vertical side.
    float ratio = side2 / side1;
    if (dx1 != 0.0f && dx2 != 0.0f) {
        const double slope = static_cast<double>(dy1 / dx1);
        if (slope >= -0.85 && slope <= 0.85)
            ratio = side1 / side2;
    }
    if (ratio < 1.2f)
        return 1;
    const float aspect = static_cast<float>(m_lesionRect.width) / static_cast<float>(m_lesionRect.height);
    return static_cast<double>(aspect) < 1.08 ? 1 : 0;
}

std::vector<float> BUSFeature::ThyGetDefinition(const cv::Mat& mask, const cv::Mat& image, int kernelSize)
{
    const cv::Mat kernel =
        cv::getStructuringElement(cv::MORPH_RECT, cv::Size(kernelSize, kernelSize), cv::Point(-1, -1));
    cv::Mat eroded, dilated;
    cv::erode(mask, eroded, kernel, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    cv::dilate(mask, dilated, kernel, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    const cv::Mat innerBand = mask - eroded;
    const cv::Mat outerBand = dilated - mask;

    cv::Mat edges = cv::Mat::zeros(mask.size(), CV_8U);
    cv::Canny(image, edges, 30, 180, 3, false);

    // The outline itself, 3 pixels wide, is the border that edges should cover.
    cv::Mat border = cv::Mat::zeros(image.size(), CV_8U);
    DrawContour(border, m_lesionCont, cv::Scalar(255), 3, cv::LINE_8);
    cv::Mat onBorder;
    cv::bitwise_and(edges, border, onBorder);
    const float edgeShare =
        static_cast<float>(cv::countNonZero(onBorder)) / static_cast<float>(cv::countNonZero(border));

    const float inner = static_cast<float>(cv::mean(image, innerBand)[0]);
    const float outer = static_cast<float>(cv::mean(image, outerBand)[0]);
    return {outer - inner, edgeShare};
}

int BUSFeature::ThyCalcuMargin()
{
    if (GetThyroidalExtensionMy())
        return 4;
    const std::vector<float> f = ThyGetMarginFeatureMy();
    if (f[0] > 0.1f || f[1] > 0.22f) {
        if (f[2] > 3.0f)
            return 2;
        return f[1] <= 0.45f ? 3 : 2;
    }
    const std::vector<float> d = ThyGetDefinition(m_label, m_srcImg, 15);
    if (std::fabs(d[0]) >= 18.0f)
        return 0;
    if (d[0] >= 10.0f)
        return 1;
    return static_cast<double>(d[1]) <= 0.13 ? 1 : 0;
}
