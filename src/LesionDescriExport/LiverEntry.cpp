// LiverDescription: echo, shape, boundary and echo texture of a liver
// lesion. The liver outline stays in whole-image coordinates (its mask is
// drawn at whole-image size); the lesion outline moves into the region.
#include <cstring>
#include <stdexcept>

#include "BusFeature/BusFeature.h"
#include "FeatureDescription/Description.h"
#include "LesionDescriExport/EntryFrame.h"

extern "C" SONOLEX_API void LiverDescription(const unsigned char* image, int channels, int width, int height,
                                             RoiCoor roi, int organPointCount, const MyPoint* organPoints,
                                             int lesionPointCount, const MyPoint* lesionPoints, LiverResult* result)
{
    if (!IsValidImage(image, channels) || result == nullptr)
        return;
    std::memset(result, 0, sizeof(LiverResult));
    try {
        const cv::Mat wrapped = WrapImage(image, channels, width, height);
        const cv::Mat grey = MakeGrey(wrapped);
        const cv::Rect region(roi.x, roi.y, roi.width, roi.height);
        const cv::Mat regionImage = RegionView(grey, region);

        std::vector<cv::Point> organContour = CopyContour(organPoints, organPointCount);
        std::vector<cv::Point> lesionContour = ShiftContour(CopyContour(lesionPoints, lesionPointCount), roi.x, roi.y);

        BUSFeature feature(regionImage, width, height);
        feature.InitiLiverPara(organContour, lesionContour, region);

        // From here on the outlines are those re-extracted from the masks.
        organContour.clear();
        lesionContour.clear();
        organContour = feature.GetOrganCont(ORGAN_LIVER);
        lesionContour = feature.GetLesionCont();

        // The lesion's centroid is read by no verdict; it refuses only a label
        // smaller than the object's size, and that refusal is kept. The
        // verdict object reads none of its images, so it holds none.
        if (feature.m_label.rows < feature.m_height || feature.m_label.cols < feature.m_width)
            throw std::out_of_range("centroid mask smaller than the region");
        Description description(cv::Mat(), cv::Mat(), region);

        // Each verdict takes its own copy of the feature object.
        result->echo = description.LiverEcho(feature, organContour);
        result->shape = description.LiverShape(feature);
        result->boundary = description.LiverBoundary(feature);
        result->echoTexture = description.LiverEchotexture(feature);
    } catch (...) {
    }
}
