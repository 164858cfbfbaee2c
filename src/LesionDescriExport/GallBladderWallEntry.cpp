// GallBladderWallDescription: the gall bladder wall measured against the
// organ axis. The region is used as the caller gave it, no organ initialiser
// runs, and the pair of points goes back to whole-image coordinates.
#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"
#include "BusFeature/BusFeature.h"
#include "FeatureDescription/Description.h"
#include "LesionDescriExport/EntryFrame.h"

extern "C" SONOLEX_API void GallBladderWallDescription(const unsigned char* image, int channels, int width,
                                                       int height, RoiCoor roi, int organPointCount,
                                                       const MyPoint* organPoints, GallBladderWallResult* result)
{
    if (!IsValidImage(image, channels) || result == nullptr)
        return;
    result->wallVerdict = 0; // the other fields keep the caller's values until the end
    try {
        const cv::Mat wrapped = WrapImage(image, channels, width, height);
        const cv::Mat grey = MakeGrey(wrapped);
        const cv::Rect region(roi.x, roi.y, roi.width, roi.height);
        const cv::Mat regionImage = RegionView(grey, region);

        std::vector<cv::Point> organContour = ShiftContour(CopyContour(organPoints, organPointCount), roi.x, roi.y);

        BUSFeature feature(regionImage, width, height);
        // No organ initialiser runs: the caller's points are dropped here
        // and the organ outline and mask stay empty.
        organContour = feature.GetOrganCont(ORGAN_GALLBLADDER);

        // With the organ label empty this refuses the region, and the call ends here.
        const cv::Point centroid = feature.CalcCentroid(true);
        const cv::RotatedRect ellipse = feature.GetEllipse();
        const cv::Mat organMask = feature.GetOrganMask(ORGAN_GALLBLADDER);

        // Working scale, by the same band of widths as the organ axis.
        const bool resized = !IsAxisWorkingWidth(regionImage.cols);
        cv::Mat sized;
        if (resized)
            cv::resize(regionImage, sized,
                       cv::Size(kAxisWorkingWidth, AxisWorkingRows(regionImage.cols, regionImage.rows)), 0, 0,
                       cv::INTER_LINEAR);
        else
            sized = regionImage.clone();

        LesionAxis axis;
        axis.m_contour = organContour;
        axis.m_size = cv::Size(regionImage.cols, regionImage.rows);
        axis.SetCentroid(centroid);
        axis.SetMask(organMask);
        cv::Point longAxis[2] = {cv::Point(0, 0), cv::Point(0, 0)};
        cv::Point shortAxis[2] = {cv::Point(0, 0), cv::Point(0, 0)};
        float longLength = 0.0f;
        float shortLength = 0.0f;
        axis.CalcOrganAxis(ellipse, longAxis, shortAxis, longLength, shortLength);

        Description description(grey, regionImage, region);
        if (resized)
            description.SetNewSize(sized);
        description.SetEllipse(ellipse);
        description.SetCentroid(centroid);
        description.SetAxisPts(longAxis);

        result->wallVerdict = description.CalcGallBladderWall(feature, resized);
        const WallSize wall = description.GetGBWallSize();
        result->maxDistance = wall.max;
        result->meanDistance = wall.mean;
        result->firstX = WrapAdd(wall.first.x, roi.x);
        result->firstY = WrapAdd(wall.first.y, roi.y);
        result->secondX = WrapAdd(wall.second.x, roi.x);
        result->secondY = WrapAdd(wall.second.y, roi.y);
    } catch (...) {
    }
}
