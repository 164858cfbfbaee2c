// Thyroid nodule entry: model mask, brightest plane as grey, clipped gland
// outline, feature object, then calcification, echo, shape and margin.
#include <stdexcept>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "LesionDescriExport/EntryFrame.h"

namespace {

// Grey image: one channel as it is, otherwise the plane of the greatest sum
// among the first three (no colour conversion).
cv::Mat BrightestPlane(const cv::Mat& wrapped)
{
    if (wrapped.channels() == 1)
        return wrapped.clone();
    // An empty image splits into no planes at all; end the call as the grey path does.
    if (wrapped.empty())
        throw std::invalid_argument("empty colour image");
    std::vector<cv::Mat> planes;
    cv::split(wrapped, planes);
    size_t best = 0;
    double bestSum = 0.0;
    for (size_t i = 0; i < 3; ++i) {
        const double sum = cv::sum(planes[i])[0];
        if (sum > bestSum) {
            bestSum = sum;
            best = i;
        }
    }
    return planes[best];
}

// The gland outline clipped to the image; clipped coordinates go back to the caller.
std::vector<cv::Point> ClippedOrgan(MyPoint* points, int count, int width, int height)
{
    if (count > 0 && points == nullptr)
        throw std::invalid_argument("null organ point array with a positive count");
    std::vector<cv::Point> contour(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        MyPoint& p = points[i];
        if (p.x < 0)
            p.x = 0;
        if (p.x >= width)
            p.x = width - 1;
        if (p.y < 0)
            p.y = 0;
        if (p.y >= height)
            p.y = height - 1;
        contour[static_cast<size_t>(i)] = cv::Point(p.x, p.y);
    }
    return contour;
}

} // namespace

extern "C" SONOLEX_API void ThyroidDescriptionModelAfterProcess(const unsigned char* image, int channels, int width,
                                                                int height, int organPointCount, MyPoint* organPoints,
                                                                int lesionPointCount, const MyPoint* lesionPoints,
                                                                int modelContourCount, const int* modelContourSizes,
                                                                const MyPoint* modelPoints, RoiCoor roi,
                                                                ThyroidResult* result)
{
    if (result == nullptr || !IsValidImage(image, channels) || organPointCount == 0 || lesionPointCount == 0)
        return;
    result->shape = 0;
    result->echo = 3;
    result->margin = 0;
    result->calcification = 0;
    try {
        const cv::Mat modelMask = ModelMask(roi, cv::Size(width, height), modelContourCount, modelContourSizes, modelPoints);
        const cv::Mat grey = BrightestPlane(WrapImage(image, channels, width, height));
        const cv::Rect region(roi.x, roi.y, roi.width, roi.height);
        const cv::Mat regionImage = RegionView(grey, region);

        std::vector<cv::Point> organ = ClippedOrgan(organPoints, organPointCount, width, height);
        std::vector<cv::Point> lesionWhole = CopyContour(lesionPoints, lesionPointCount);
        std::vector<cv::Point> lesionRegion = ShiftContour(lesionWhole, roi.x, roi.y);

        BUSFeature feature(regionImage, region, width, height);
        feature.InitiThroidPara(organ, lesionRegion, lesionWhole);
        feature.SetSrcImg(grey);

        result->calcification = feature.ThyCalcificationUseModelResult(modelMask, roi);
        result->echo = feature.ThyCalcuEchoMy2();
        result->shape = feature.ThyCalcuShape();
        result->margin = feature.ThyCalcuMargin();
        if (result->echo == 1)
            result->calcification = 0;
    } catch (...) {
    }
}
