// Carotid plaque entry: choose the vessel, cut the region around it, then
// echo, position and the vessel's inner diameter.
#include <stdexcept>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "LesionDescriExport/EntryFrame.h"
#include "Tool/Tool.h"

namespace {

// The host's point counts, one per packed outline, read only for two or more outlines.
std::vector<int> CopySizes(const int* sizes, int count)
{
    if (count > 0 && sizes == nullptr)
        throw std::invalid_argument("null size array with a positive count");
    return std::vector<int>(sizes, sizes + count);
}

} // namespace

extern "C" SONOLEX_API void CarotidPlaqueDescription(const unsigned char* image, int channels, int width, int height,
                                                     RoiCoor /*roi: the region comes from the vessel*/,
                                                     int organContourCount, const int* organContourSizes,
                                                     int organPointCount, const MyPoint* organPoints,
                                                     int lesionPointCount, const MyPoint* lesionPoints,
                                                     PlaqueResult* result)
{
    if (!IsValidImage(image, channels) || result == nullptr)
        return;
    try {
        // The vessel: all packed points, or the first outline that holds the plaque.
        std::vector<cv::Point> organ;
        if (organContourCount < 2) {
            organ = CopyContour(organPoints, organPointCount);
        } else {
            const std::vector<int> sizes = CopySizes(organContourSizes, organContourCount);
            const std::vector<cv::Point> allPoints = CopyContour(organPoints, organPointCount);
            const std::vector<cv::Point> lesion = CopyContour(lesionPoints, lesionPointCount);
            if (!ChooseOneOrgan(lesion, allPoints, sizes, width, height, organ))
                organ = allPoints;
        }

        const cv::Mat grey = MakeGrey(WrapImage(image, channels, width, height));

        cv::Rect region = cv::boundingRect(organ);
        region.x = WrapSub(region.x, 10);
        region.y = WrapSub(region.y, 10);
        region.width = WrapAdd(region.width, 20);
        region.height = WrapAdd(region.height, 20);
        JudgeRoi(region, width, height);
        const cv::Mat regionImage = RegionView(grey, region);

        const std::vector<cv::Point> lesionCopy =
            ShiftContour(CopyContour(lesionPoints, lesionPointCount), region.x, region.y);
        const std::vector<cv::Point> organCopy = organ; // the vessel stays in whole-image coordinates

        result->position = 0;
        result->echo = 0;

        BUSFeature feature(regionImage, region, width, height);
        feature.InitiPlaquePara(organCopy, lesionCopy);
        feature.CalcCentroid(false);
        feature.SetSrcImg(grey);

        result->echo = feature.GetCarotidPlaqueEcho();
        result->position = feature.GetCarotidPlaquePosition();
        int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
        feature.GetCarotidShortAxisInnerDiameter(x1, y1, x2, y2);
        result->firstX = WrapAdd(x1, region.x);
        result->firstY = WrapAdd(y1, region.y);
        result->secondX = WrapAdd(x2, region.x);
        result->secondY = WrapAdd(y2, region.y);
    } catch (...) {
    }
}
