// Outline measures of the lesion that no entry point uses: direction of the
// outline's steps, spread of its radial lengths, shape ratios, grey step.
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

double BUSFeature::GetPointsAngle(cv::Point a, cv::Point b)
{
    constexpr double kPi = 3.141592653589793;
    constexpr double kTwoPi = 6.283185307179586;
    const int dx = WrapSub(b.x, a.x);
    const int dy = WrapSub(b.y, a.y);
    if (dx == 0)
        return dy == 0 ? 0.0 : 1.5707963267948966;
    if (dy == 0)
        return 0.0;
    const double t = std::atan(static_cast<double>(std::fabs(static_cast<float>(dy) / static_cast<float>(dx))));
    if (dx > 0 && dy > 0)
        return kTwoPi - t;
    if (dx < 0 && dy > 0)
        return kTwoPi - (kPi - t);
    if (dx > 0)
        return t;
    return kPi - t;
}

double BUSFeature::CalAverageAngle(const std::vector<cv::Point>& contour)
{
    double sum = 0.0;
    for (size_t i = 0; i + 1 < contour.size(); ++i)
        sum += GetPointsAngle(contour[i], contour[i + 1]);
    return sum / static_cast<double>(contour.size());
}

double BUSFeature::NormRadialLength(const std::vector<cv::Point>& contour, cv::Point centre)
{
    return NormRadialSpread(contour, centre);
}

double NormRadialSpread(const std::vector<cv::Point>& contour, cv::Point centre)
{
    const int n = static_cast<int>(contour.size());
    std::vector<float> lengths;
    lengths.reserve(contour.size());
    float greatest = 0.0f;
    for (const cv::Point& p : contour) {
        const float dx = static_cast<float>(p.x) - static_cast<float>(centre.x);
        const float dy = static_cast<float>(p.y) - static_cast<float>(centre.y);
        const double squared = static_cast<double>(dx) * static_cast<double>(dx) +
                               static_cast<double>(dy) * static_cast<double>(dy);
        const float length = static_cast<float>(std::pow(squared, 0.5));
        lengths.push_back(length);
        if (length > greatest)
            greatest = length;
    }
    float sum = 0.0f;
    for (float& length : lengths) {
        length /= greatest;
        sum += length;
    }
    const float mean = sum / static_cast<float>(n);
    double spread = 0.0;
    for (const float length : lengths) {
        const double d = static_cast<double>(length - mean);
        spread += d * d;
    }
    if (n == 1)
        return std::pow(spread, 0.5);
    return std::pow(spread / static_cast<double>(n - 1), 0.5);
}

std::vector<float> BUSFeature::CalcuNrgs()
{
    m_nrg = static_cast<float>(NormRadialGradient(m_lesionCont, m_centroid, m_srcImg));
    m_nrg2 = static_cast<float>(NormRadialLength(m_lesionCont, m_centroid));
    m_nrg3 = static_cast<float>(CalAverageAngle(m_lesionCont));
    return {m_nrg, m_nrg2, m_nrg3};
}

std::vector<float> BUSFeature::GetShapeFeature2()
{
    FillShapeMeasures();
    return {m_hullPerimeter / m_lesionPerimeter, m_lesionArea / m_hullArea, m_circularity, m_ellipseRatio,
            m_fourierDist};
}

std::vector<float> BUSFeature::GetInnerEchoFeature()
{
    return {GrayDiff(m_label, m_srcImg, 20, true), static_cast<float>(m_innerPt1.y),
            static_cast<float>(m_innerPt1.x), static_cast<float>(m_innerPt2.y), static_cast<float>(m_innerPt2.x)};
}

float BUSFeature::GetGrayDiff(bool flag) { return GrayDiff(m_label, m_srcImg, 20, flag); }

void BUSFeature::findTrackPoints()
{
    std::vector<cv::Point2f> corners;
    cv::goodFeaturesToTrack(m_lesionMask.clone(), corners, 20, 0.2, 5.0, cv::noArray(), 3, false, 0.04);
}
