// GallWallDescription: grades the gall bladder wall, the band between the
// organ's outer outline and the outline of its lumen.
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "LesionDescriExport/EntryFrame.h"
#include "LesionDescriExport/GallWallEntry.h"

namespace {

constexpr int kMargin = 8; // pixels added around the outer outline

} // namespace

cv::Rect GallWallRegion(const std::vector<cv::Point>& outer, int width, int height)
{
    const cv::Rect bounds = outer.empty() ? cv::Rect() : cv::boundingRect(outer);
    int x0 = WrapSub(bounds.x, kMargin);
    if (x0 < 1)
        x0 = 0;
    int y0 = WrapSub(bounds.y, kMargin);
    if (y0 < 1)
        y0 = 0;
    int w0 = WrapAdd(bounds.width, 2 * kMargin);
    if (width < WrapAdd(w0, x0))
        w0 = WrapSub(width, x0);
    int h0 = WrapAdd(bounds.height, 2 * kMargin);
    if (height < WrapAdd(h0, y0))
        h0 = WrapSub(height, y0);
    return cv::Rect(x0, y0, w0, h0);
}

namespace {

// The region must hold at least one pixel; OpenCV would accept an empty view.
void CheckNotEmpty(const cv::Rect& r)
{
    if (r.width <= 0 || r.height <= 0)
        throw std::out_of_range("gall wall region is empty");
}

} // namespace

extern "C" SONOLEX_API void GallWallDescription(const unsigned char* image, int channels, int width, int height,
                                                int outerPointCount, const MyPoint* outerPoints,
                                                int innerPointCount, const MyPoint* innerPoints,
                                                GallWallResult* result)
{
    if (!IsValidImage(image, channels) || result == nullptr)
        return;
    result->wallVerdict = 0; // thickenVerdict keeps the caller's value until it is graded
    try {
        const cv::Mat wrapped = WrapImage(image, channels, width, height);
        const cv::Mat grey = MakeGrey(wrapped);

        const std::vector<cv::Point> outer = CopyContour(outerPoints, outerPointCount);
        const cv::Rect roi = GallWallRegion(outer, width, height);
        CheckNotEmpty(roi);
        const cv::Mat regionImage = RegionView(grey, roi);

        std::vector<cv::Point> outerRegion = ShiftContour(outer, roi.x, roi.y);
        std::vector<cv::Point> innerRegion = ShiftContour(CopyContour(innerPoints, innerPointCount), roi.x, roi.y);

        BUSFeature feature(regionImage, width, height);
        feature.InitiGBOrganPara(outerRegion, innerRegion);
        // The organ's centroid is read by no verdict; it refuses only a label
        // smaller than the object's size, and that refusal is kept.
        if (feature.m_organLabel.rows < feature.m_height || feature.m_organLabel.cols < feature.m_width)
            throw std::out_of_range("centroid mask smaller than the region");

        // GetGBWall reads the two ratios GetGBThicken leaves, so this order is fixed.
        result->thickenVerdict = feature.GetGBThicken();
        result->wallVerdict = feature.GetGBWall();
    } catch (...) {
    }
}
