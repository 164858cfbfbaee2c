// Contrast between the band just inside a lesion's outline and the band
// just outside it.
#include <opencv2/imgproc.hpp>

#include "Tool/Tool.h"

float GrayAvgsep(const cv::Mat& mask, const cv::Mat& image, int size)
{
    const cv::Mat element = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(size, size), cv::Point(-1, -1));
    cv::Mat eroded, dilated;
    cv::erode(mask, eroded, element, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    cv::dilate(mask, dilated, element, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
               cv::morphologyDefaultBorderValue());
    cv::Mat inner, outer;
    cv::subtract(mask, eroded, inner);
    cv::subtract(dilated, mask, outer);

    const float innerCount = static_cast<float>(cv::sum(inner)[0]);
    const float outerCount = static_cast<float>(cv::sum(outer)[0]);
    const float outerMean = static_cast<float>(cv::mean(image, outer)[0]);
    const float innerMean = static_cast<float>(cv::mean(image, inner)[0]);
    const float overall = (innerCount * innerMean + outerCount * outerMean) / (innerCount + outerCount);

    // Differences in float, the variance in double.
    const double innerDiff = static_cast<double>(innerMean - overall);
    const double outerDiff = static_cast<double>(outerMean - overall);
    const float between = static_cast<float>(
        (static_cast<double>(innerCount) * (innerDiff * innerDiff) +
         static_cast<double>(outerCount) * (outerDiff * outerDiff)) /
        (static_cast<double>(innerCount) + static_cast<double>(outerCount)));

    cv::Mat bands;
    cv::add(inner, outer, bands);
    cv::Scalar mean, deviation;
    cv::meanStdDev(image, mean, deviation, bands);
    // A deviation, not a variance, in the divisor.
    return between / static_cast<float>(deviation[0]);
}
