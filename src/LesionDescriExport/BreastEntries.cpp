// The two breast entry points: wrap, grey, region, feature object,
// initialiser, verdicts in order, each stored as soon as it is known.
#include <cstring>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "FeatureDescription/Description.h"
#include "LesionDescriExport/EntryFrame.h"

namespace {

// With a zero width or height the region is the lesion's bounding box
// widened by 10 a side, clipped, then widened by 10 a side again unclipped.
cv::Rect BreastRegion(const RoiCoor& roi, const cv::Rect& bounds, int width, int height)
{
    if (roi.width != 0 && roi.height != 0)
        return cv::Rect(roi.x, roi.y, roi.width, roi.height);
    cv::Rect widened(WrapSub(bounds.x, 10), WrapSub(bounds.y, 10), WrapAdd(bounds.width, 20),
                     WrapAdd(bounds.height, 20));
    JudgeRoi(widened, width, height);
    return cv::Rect(WrapSub(widened.x, 10), WrapSub(widened.y, 10), WrapAdd(widened.width, 20),
                    WrapAdd(widened.height, 20));
}

// The centroid and the radial gradient are kept in the object for hosts
// that read them, and no breast verdict does: the centroid cannot fail on
// the label the initialiser drew, and the gradient fails only on a region
// without two rows and two columns, which is refused as it would refuse it.
void RequireGradientRegion(const cv::Mat& region)
{
    if (region.cols < 2 || region.rows < 2)
        throw std::invalid_argument("the radial gradient needs two rows and two columns");
}

// Echo, boundary and margin, stored one by one.
void StoreImageVerdicts(BUSFeature& feature, Description& description, BreastResult* result)
{
    result->echo = feature.GetEchoFeature();
    result->boundary = description.BoundaryDescription2(feature.GetBoundaryVal());
    result->margin = feature.GetMarginFeatureMy();
}

// Orientation from the host's axes, then shape, which reads the margin's figures.
void StoreAxisVerdicts(BUSFeature& feature, const lesionAxisPointEnd& axis, BreastResult* result)
{
    const cv::Point longAxis[2] = {cv::Point(axis.longStart.x, axis.longStart.y),
                                   cv::Point(axis.longEnd.x, axis.longEnd.y)};
    const cv::Point shortAxis[2] = {cv::Point(axis.shortStart.x, axis.shortStart.y),
                                    cv::Point(axis.shortEnd.x, axis.shortEnd.y)};
    float longLength = 0.0f;
    float shortLength = 0.0f;
    result->orientation = feature.CalcLesionAxis(longAxis, shortAxis, longLength, shortLength);
    result->shape = feature.GetBreatShape(longLength, shortLength);
}

} // namespace

extern "C" SONOLEX_API void BreastDescription(const unsigned char* image, int32_t channels, int32_t width,
                                              int32_t height, RoiCoor roi, int32_t lesionPointCount,
                                              const MyPoint* lesionPoints, lesionAxisPointEnd axis,
                                              BreastResult* result)
{
    if (!IsValidImage(image, channels) || result == nullptr)
        return;
    std::memset(result, 0, sizeof(BreastResult));
    try {
        const cv::Mat wrapped = WrapImage(image, channels, width, height);
        const cv::Mat grey = MakeGrey(wrapped);
        const std::vector<cv::Point> contour = CopyContour(lesionPoints, lesionPointCount);
        const cv::Rect bounds = cv::boundingRect(contour);
        const cv::Rect region = BreastRegion(roi, bounds, width, height);
        const cv::Mat regionImage = RegionView(grey, region);
        const std::vector<cv::Point> regionContour = ShiftContour(contour, region.x, region.y);

        BUSFeature feature(regionImage, region);
        feature.IntiBreastPara(regionContour);
        RequireGradientRegion(regionImage);
        feature.SetMask(feature.GetLesionMask());

        // Only the boundary grade is read from the verdict object, so it
        // holds no images.
        Description description(cv::Mat(), cv::Mat(), region);

        StoreImageVerdicts(feature, description, result);
        result->calcification = feature.BreastCalcification();
        StoreAxisVerdicts(feature, axis, result);
    } catch (...) {
    }
}

extern "C" SONOLEX_API void BreastDescriptionHaveModelProcess(const unsigned char* image, int32_t channels,
                                                              int32_t width, int32_t height, RoiCoor roi,
                                                              int32_t lesionPointCount, const MyPoint* lesionPoints,
                                                              int32_t modelContourCount,
                                                              const int32_t* modelContourSizes,
                                                              const MyPoint* modelPoints, lesionAxisPointEnd axis,
                                                              BreastResult* result)
{
    if (!IsValidImage(image, channels) || roi.width == 0 || roi.height == 0 || result == nullptr)
        return;
    std::memset(result, 0, sizeof(BreastResult));
    try {
        // The model's regions are checked before anything else, so that a bad
        // size ends the call before any verdict is stored.
        RequireModelContours(roi, cv::Size(width, height), modelContourCount, modelContourSizes, modelPoints);

        const cv::Mat wrapped = WrapImage(image, channels, width, height);
        const cv::Mat grey = MakeGrey(wrapped);
        const std::vector<cv::Point> contour = CopyContour(lesionPoints, lesionPointCount);
        (void)cv::boundingRect(contour); // taken and unused: the region is the host's
        const cv::Rect region(roi.x, roi.y, roi.width, roi.height);
        const cv::Mat regionImage = RegionView(grey, region);
        const std::vector<cv::Point> regionContour = ShiftContour(contour, region.x, region.y);

        BUSFeature feature(regionImage, region);
        feature.IntiBreastPara(regionContour);
        RequireGradientRegion(regionImage);
        // The shape measures are not read by any verdict; what can refuse
        // them still ends the call: the convexity defects of an outline that
        // touches itself, and Fourier descriptors of 10 harmonics on an
        // outline or hull outline of 10 points or fewer.
        (void)DeepDefects(feature.m_lesionCont, 3.0);
        if (feature.m_lesionCont.size() <= 10 || feature.m_hullPts.size() <= 10)
            throw std::out_of_range("outline too short for its Fourier descriptors");
        feature.SetMask(feature.GetLesionMask());

        Description description(cv::Mat(), cv::Mat(), region);

        StoreImageVerdicts(feature, description, result);
        result->calcification =
            feature.CalcuCalcificationUseModelResult(roi, modelContourCount, modelContourSizes, modelPoints);
        StoreAxisVerdicts(feature, axis, result);
    } catch (...) {
    }
}
