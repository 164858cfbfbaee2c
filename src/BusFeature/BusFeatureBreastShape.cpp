// Breast shape verdict and the shape measures of the model-assisted entry.
#include <algorithm>
#include <cmath>
#include <complex>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "FourierDescriptors/FourierDescriptors.h"

int BUSFeature::GetBreatShape(float firstLength, float secondLength)
{
    float longer = firstLength;
    float shorter = secondLength;
    if (secondLength > firstLength) {
        longer = secondLength;
        shorter = firstLength;
    }
    // Left by the margin measure, which must have run.
    const float mean = m_marginVals.at(0);
    const float max = m_marginVals.at(1);
    const float count = m_marginVals.at(2);

    if (count > 3.0f || static_cast<double>(mean) > 0.45 ||
        (count == 3.0f && static_cast<double>(mean) > 0.4 && static_cast<double>(max) > 0.55))
        return 3;
    const float ratio = longer / shorter;
    if (ratio >= 1.2f || std::isnan(ratio))
        return 1;
    return count < 1.0f ? 2 : 1;
}

std::vector<float> BUSFeature::GetShapeFeature()
{
    const DefectDepths deep = DeepDefects(m_lesionCont, 3.0);
    float sum = deep.sum;
    if (deep.count > 0.0f)
        sum /= deep.count;
    const double half = 0.5 * std::min(m_majorAxisLength, m_minorAxisLength);
    if (half > 0.0)
        sum = static_cast<float>(sum / half);

    FillShapeMeasures();
    return {m_hullPerimeter / m_lesionPerimeter, m_lesionArea / m_hullArea, sum, m_fourierDist};
}

void BUSFeature::FillShapeMeasures()
{
    constexpr double kPi = 3.141592653589793;

    m_circularity = Circularity(m_lesionArea, m_lesionPerimeter);
    if (m_lesionPerimeter == 0.0f) {
        m_ellipseRatio = 1.0f;
    } else {
        m_ellipseRatio = static_cast<float>(static_cast<double>(m_majorAxisLength) * kPi *
                                            static_cast<double>(m_minorAxisLength) /
                                            static_cast<double>(4.0f * m_lesionPerimeter));
    }
    m_hullPerimeter = m_hull.empty() ? 1.0f : static_cast<float>(cv::arcLength(m_hull, true));
    m_fourierDist = static_cast<float>(FourierDescriptors2(m_lesionCont, m_hullPts));
}

double BUSFeature::FourierDescriptors2(const std::vector<cv::Point>& first, const std::vector<cv::Point>& second)
{
    std::vector<std::complex<double>> a, b;
    CalcuFourierDescriptors(a, first, 10, m_srcImg.cols, m_srcImg.rows);
    CalcuFourierDescriptors(b, second, 10, m_srcImg.cols, m_srcImg.rows);
    double total = 0.0;
    for (size_t i = 0; i < b.size(); ++i)
        total += std::abs(a[i] - b[i]);
    return total;
}
