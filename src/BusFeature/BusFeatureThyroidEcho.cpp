// Thyroid echo: the nodule's grey level against the thyroid tissue around
// it and against the strap muscle above the gland, with a refinement for
// very dark nodules of mixed content.
#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "Tool/OtsuInput.h"

namespace {

constexpr double kBrightSpotSpread = 1.2000000476837158; // 1.2f

} // namespace

int BUSFeature::ThyCalcuEchoMy2()
{
    // The Otsu level is needed only when the histogram has no valley; its
    // refusals come first all the same.
    (void)OtsuInput(m_srcImg, m_label);
    float valley = ThyGetCalcificationHist(m_srcImg, m_label);
    if (valley > 200.0f)
        valley = 1.0f;
    const int split =
        (valley <= 1.0f) ? OtsuAlgThreshold(m_srcImg, m_label) - 1 : TruncToInt(static_cast<double>(valley) - 1.0);

    // Lesion pixels above the split level.
    cv::Mat high = m_srcImg.mul(m_label);
    cv::threshold(high, high, split, 1, cv::THRESH_BINARY);
    const int highCount = cv::countNonZero(high);
    high = high * 255;
    m_hypoCount = highCount;
    const int lowCount = m_lesionPixNum - highCount;
    m_hyperCount = lowCount;

    const cv::Mat lesion255 = m_label.clone() * 255;
    cv::Mat low;
    cv::bitwise_xor(lesion255, high, low);

    // The larger part, without the calcified pixels, sets the lesion's grey.
    cv::Mat dominant, minor;
    if (lowCount < highCount) {
        dominant = high - m_calcMask;
        minor = low - m_calcMask;
    } else {
        dominant = low - m_calcMask;
        minor = high - m_calcMask;
    }
    cv::Scalar mean, std;
    cv::meanStdDev(m_srcImg, mean, std, dominant);

    // Too fragmented to trust either part: take the whole lesion instead.
    cv::Mat dominantEdges = cv::Mat::zeros(m_srcImg.size(), CV_8U);
    cv::Mat minorEdges = cv::Mat::zeros(m_srcImg.size(), CV_8U);
    cv::Canny(dominant, dominantEdges, 40, 220, 3, false);
    cv::Canny(minor, minorEdges, 40, 220, 3, false);
    const float density = static_cast<float>(cv::countNonZero(dominantEdges) + cv::countNonZero(minorEdges)) /
                          static_cast<float>(m_srcImg.rows * m_srcImg.cols);
    const cv::Mat lesionNoCalc = m_label * 255 - m_calcMask;
    if (static_cast<double>(density) > 0.16)
        cv::meanStdDev(m_srcImg, mean, std, lesionNoCalc);

    m_lesionAvgGray = static_cast<float>(mean[0]);
    m_lesionStdGray = static_cast<float>(std[0]);
    const float m = m_lesionAvgGray;
    float ring = m_thyFloat1;
    if (ring == 0.0f)
        ring += 1e-05f;

    const float muscle = ThyEchoEdgeFindMuscle();
    if (static_cast<double>(m_calcRatio) > 0.3 || m_calcFlag)
        return 3;

    const float r = m / ring;
    const float d = std::fabs(muscle - m);
    const double rd = static_cast<double>(r);
    const bool nearMuscle = d < 10.0 && rd < 0.48 && rd > 0.38;

    bool refine = false;
    if (rd > 1.4) {
        if (!nearMuscle)
            return 1;
        refine = true;
    } else if (rd > 0.96) {
        if (!nearMuscle)
            return 2;
        refine = true;
    } else if (rd > 0.45) {
        if (!nearMuscle)
            return 3;
        refine = true;
    } else if (rd >= 0.41) {
        refine = true;
    } else if (m > 35.0) {
        if (!nearMuscle)
            return 3;
        refine = true;
    } else {
        if (!nearMuscle)
            return 0;
        refine = true;
    }
    (void)refine;

    // Refinement: a dark nodule is graded 4 unless bright content or a
    // lighter grey says it is mixed.
    cv::Scalar fullMean, fullStd;
    cv::meanStdDev(m_srcImg, fullMean, fullStd, m_label);
    const int level = std::min(TruncToInt(kBrightSpotSpread * fullStd[0] + fullMean[0]), 255);
    const cv::Mat box = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(5, 5), cv::Point(-1, -1));
    cv::Mat core;
    cv::erode(lesion255, core, box, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    cv::Mat bright = m_srcImg.mul(m_label);
    cv::threshold(bright, bright, level - 1, 255, cv::THRESH_BINARY);
    cv::Mat spots;
    cv::bitwise_and(bright, core, spots);
    const int spotCount = cv::countNonZero(spots);
    cv::Scalar m2, s2;
    cv::meanStdDev(m_srcImg, m2, s2, lesionNoCalc);

    int verdict =
        static_cast<double>(static_cast<float>(spotCount) / static_cast<float>(m_lesionPixNum)) <= 0.099 ? 4 : 3;
    if (static_cast<double>(static_cast<float>(m2[0]) / ring) > 0.6)
        verdict = 3;
    if (valley > 0.0f)
        verdict = 3;
    if (m > 39.0f)
        verdict = 3;
    if (m_thyFloat2 > 0.0f && static_cast<double>(m / m_thyFloat2) > 0.6)
        verdict = 3;
    return verdict;
}

bool BUSFeature::JudgeLesion(cv::Mat a, cv::Mat b)
{
    cv::Mat sum = a / 255 + b / 255;
    cv::threshold(sum, sum, 1.5, 255, cv::THRESH_BINARY);
    return static_cast<double>(static_cast<float>(cv::countNonZero(sum)) / static_cast<float>(m_lesionPixNum)) >=
           0.9;
}
