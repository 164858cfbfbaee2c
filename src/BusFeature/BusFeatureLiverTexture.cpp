// Border definition and inner texture of a liver lesion: the grey step and
// edge content along the outline, the grey entropy, and the share of very
// bright pixels inside the lesion away from its outline.
#include <cmath>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

namespace {

constexpr double kHighDeviations = 1.7999999523162842; // 1.8f
constexpr double kLn2 = 0.6931471805599453;

} // namespace

std::vector<float> BUSFeature::GetDefinition(int kernelSize)
{
    const cv::Mat label = m_label.clone();
    const cv::Mat image = m_srcImg.clone();
    const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(kernelSize, kernelSize), cv::Point(-1, -1));
    cv::Mat eroded, dilated;
    cv::erode(label, eroded, kernel, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    cv::dilate(label, dilated, kernel, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    const cv::Mat innerRing = label - eroded;
    const cv::Mat outerRing = dilated - label;

    cv::Mat edges;
    cv::Canny(image, edges, 30, 180, 3, false);

    // A 3-pixel band along the outline.
    cv::Mat band = cv::Mat::zeros(m_height, m_width, CV_8UC1);
    DrawContour(band, m_lesionCont, cv::Scalar(255), 3, cv::LINE_8);
    const int bandCount = cv::countNonZero(band);
    cv::Mat edgesOnBand;
    cv::bitwise_and(edges, band, edgesOnBand);
    const int edgeCount = cv::countNonZero(edgesOnBand);
    const float edgeRatio = static_cast<float>(edgeCount) / static_cast<float>(bandCount);

    const float innerMean = static_cast<float>(cv::mean(image, innerRing)[0]);
    const float outerMean = static_cast<float>(cv::mean(image, outerRing)[0]);
    return {outerMean - innerMean, edgeRatio};
}

float BUSFeature::GetEntropy(cv::Mat image, cv::Mat mask)
{
    // Pixels are read pairwise; a mask of another size would be read out of bounds.
    if (image.type() != CV_8UC1 || mask.type() != CV_8UC1 || image.size() != mask.size())
        throw std::invalid_argument("entropy needs a grey image and a mask of its size");
    float hist[256] = {};
    int n = 0;
    for (int r = 0; r < image.rows; ++r) {
        const uchar* grey = image.ptr<uchar>(r);
        const uchar* inside = mask.ptr<uchar>(r);
        for (int c = 0; c < image.cols; ++c) {
            if (inside[c] != 0) {
                hist[grey[c]] += 1.0f;
                ++n;
            }
        }
    }
    for (float& bin : hist)
        bin = bin / static_cast<float>(n);
    float entropy = 0.0f;
    for (const float p : hist) {
        if (p != 0.0f) // an empty mask leaves every bin not-a-number, and the entropy with it
            entropy = static_cast<float>(static_cast<double>(entropy) -
                                         static_cast<double>(p) * (static_cast<double>(std::log(p)) / kLn2));
    }
    return entropy;
}

std::vector<float> BUSFeature::GetEchotexture()
{
    const cv::Mat lesionMask = m_lesionMask.clone();
    const float lesionCount = static_cast<float>(cv::countNonZero(lesionMask));
    const int organCount = cv::countNonZero(m_organMaskA);
    const float areaRatio = lesionCount / static_cast<float>(organCount);

    cv::Mat equalised;
    cv::equalizeHist(m_srcImg.clone(), equalised);
    const int otsuPlain = OtsuAlgThreshold(m_srcImg, m_label);
    const int otsuEqualised = OtsuAlgThreshold(equalised, m_label);

    cv::Mat lesionImage = m_srcImg.clone();
    lesionImage = lesionImage.mul(m_label);

    // Its valley is not used here; the call is kept for what it may raise.
    GetCalcificationHistMy(m_srcImg, m_label);

    cv::threshold(lesionImage, lesionImage, (otsuPlain + otsuEqualised) / 2 - 1, 1.0, cv::THRESH_BINARY);
    const float brightFraction = static_cast<float>(cv::countNonZero(lesionImage)) / lesionCount;

    const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(5, 5), cv::Point(-1, -1));
    cv::Mat innerEdges;
    cv::Canny(m_srcImg.mul(m_label, 1.0), innerEdges, 40, 200, 3, false);

    // Everything away from the lesion's outline.
    cv::Mat contourBand;
    cv::Canny(lesionMask, contourBand, 40, 200, 3, false);
    cv::dilate(contourBand, contourBand, kernel, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
               cv::morphologyDefaultBorderValue());
    cv::bitwise_not(contourBand, contourBand);

    cv::Mat innerAway;
    cv::bitwise_and(innerEdges, contourBand, innerAway);
    const float edgeFraction = static_cast<float>(cv::countNonZero(innerAway)) / lesionCount;

    const float entropy = GetEntropy(m_srcImg, m_label);

    cv::Scalar mean, deviation;
    cv::meanStdDev(m_srcImg, mean, deviation, m_label);
    int limit = TruncToInt(deviation[0] * kHighDeviations + mean[0]);
    if (limit >= 256)
        limit = 255;
    cv::Mat highImage = m_srcImg.clone();
    highImage = highImage.mul(m_label);
    cv::threshold(highImage, highImage, WrapSub(limit, 1), 255.0, cv::THRESH_BINARY);
    cv::Mat highAway;
    cv::bitwise_and(highImage, contourBand, highAway);
    const float highFraction = static_cast<float>(cv::countNonZero(highAway)) / lesionCount;

    return {brightFraction, edgeFraction, areaRatio, highFraction, entropy, static_cast<float>(m_width),
            static_cast<float>(m_height)};
}
