// Per-image verdict object: holds private copies of the images and the
// lesion geometry, and turns measures into report categories.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "sonolex/BusFeature.h"
#include "sonolex/Tool.h"

// The wall measures of the gall bladder, returned together.
struct WallSize {
    float max;
    float mean;
    cv::Point first;
    cv::Point second;
};

class SONOLEX_EXPORT Description {
public:
    // `image` and `region` are cloned; `roi` is the region in whole-image coordinates.
    Description(cv::Mat image, cv::Mat region, cv::Rect roi);

    void SetNewSize(cv::Mat image);
    void SetCentroid(cv::Point point);
    // Keeps the two ends of an axis; null keeps (0, 0) and (1, 0).
    void SetAxisPts(const cv::Point* points);
    void SetEllipse(cv::RotatedRect ellipse);
    void SetLesionContour(const std::vector<cv::Point>& contour);
    void SetOrganContour(const std::vector<cv::Point>& contour);
    WallSize GetGBWallSize();

    // ---- breast begin ----
    // Boundary from the band contrast: 1 abrupt (above 8.0, or NaN), 2 otherwise.
    int BoundaryDescription2(float value);
    // ---- breast end ----

    // ---- liver begin ----
    // Echo of a liver lesion against the surrounding liver, from the ratio
    // of their mean greys: 1 clearly darker (hypoechoic), 2 about as bright
    // or a little darker, 3 brighter (hyperechoic), 4 brighter and small
    // against the liver, bright in absolute grey or rich in bright pixels.
    // `organContour` is the liver outline in whole-image coordinates.
    int LiverEcho(BUSFeature feature, std::vector<cv::Point> organContour);
    // 1 smooth outline, 2 outline with deep concavities (irregular).
    int LiverShape(BUSFeature feature);
    // 1 clear border (a grey step or edges along the outline), 2 unclear
    // border (small grey step and few edges).
    int LiverBoundary(BUSFeature feature);
    // 1 homogeneous, 2 heterogeneous (many very bright pixels inside the
    // lesion away from its outline).
    int LiverEchotexture(BUSFeature feature);
    // ---- liver end ----

    // ---- gallwall begin ----
    // Gall bladder wall against the organ axis: segments the lumen inside
    // the organ mask with the level set (at the working scale when `resized`),
    // closes shallow gaps in its outline, and compares the lumen outline with
    // the organ outline on one side of the axis. Leaves the Hausdorff figures
    // for GetGBWallSize. 1 the inner outline keeps close to the organ's
    // (largest gap at most a quarter of the organ's mean distance from the
    // axis), 2 it does not, or one side has nothing left to compare.
    // SetAxisPts, and SetNewSize when `resized`, must have run.
    int CalcGallBladderWall(BUSFeature feature, bool resized);
    // ---- gallwall end ----

    // Members in their fixed order of declaration.
    cv::Mat m_image;       // private copy of the whole grey image
    cv::Rect m_roi;        // the region, whole-image coordinates
    cv::Mat m_regionImage; // private copy of the region image
    cv::Mat m_sizedImage;  // set by SetNewSize
    int m_newWidth = 0;
    int m_newHeight = 0;
    double m_regularity = 0.0;
    cv::Point m_centroid; // region coordinates
    cv::Point m_axisPts[2];
    cv::RotatedRect m_ellipse{cv::Point2f(0.0f, 0.0f), cv::Size2f(0.0f, 0.0f), 0.0f};
    float m_ellipseAngle = 0.0f;
    double m_regularity2 = 0.0;
    std::vector<cv::Point> m_lesionContour; // region coordinates
    std::vector<cv::Point> m_organContour;
    float m_wallMax = 0.0f;
    float m_wallMean = 0.0f;
    cv::Point m_wallFirst;
    cv::Point m_wallSecond;
    float m_contourArea = 0.0f;
    float m_contourPerimeter = 0.0f;
};
