// Per-image verdict object: holds private copies of the images and the
// lesion geometry, and turns measures into report categories.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "sonolex/BusFeature.h"
#include "sonolex/Tool.h"

// The SVM verdicts take a model trained by the host; declared here only, so
// that this header needs no more of OpenCV than core. Include
// <opencv2/ml.hpp> to build or load one.
namespace cv {
namespace ml {
class SVM;
}
} // namespace cv

// Grey thresholds from the crests of a 256-bin histogram (as GreyHistogram
// gives it, any 256-value CV_32F vector). A crest is a non-empty bin above its left
// neighbour (bin 0 counts as above nothing) and not below its right one
// (bin 255 likewise), so a plateau crests at its first bin; crests are ranked
// by height, lower grey first among equals. A threshold is the grey of the
// lowest bin between two crests, the first of equal ones.
// The valley between the two highest crests; -1 with fewer than two crests.
SONOLEX_EXPORT int GetThreshold2Crest(const cv::Mat& hist);
// The valleys between the three highest crests, taken in grey order: `low`
// between the darkest two, `high` between the brightest two. False, and both
// left alone, with fewer than three crests.
SONOLEX_EXPORT bool GetThreshold3Crest(const cv::Mat& hist, int& low, int& high);

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
    // Boundary of a contour (region coordinates) on the region image: the
    // float form on GrayAvgsep of its filled label with 15-pixel bands.
    int BoundaryDescription2(const std::vector<cv::Point>& contour);
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

    // ---- metric family begin ----
    // Contour metrics and the verdicts on them; no entry point uses them.
    // Contours in region coordinates. m_contourArea and m_contourPerimeter are
    // set by nothing and stay 0 unless the host assigns them.
    // 4 pi area / perimeter^2 (double), no guard: 0 / 0 gives NaN.
    double CalcuCircularity(const std::vector<cv::Point>& contour);
    // 4 pi area / perimeter^2, 0 for a zero perimeter.
    double RoundnessMetric();
    // perimeter^2 / area, 0 for a zero area.
    double TightMetric();
    // m_contourArea over the area of the contour's convex hull.
    double ConvexHullMetric(const std::vector<cv::Point>& contour);
    // cv::matchShapes (Hu moments, method 1) of the contour against the
    // polygon of m_ellipse; also copies the ellipse's angle to m_ellipseAngle.
    double MatchContoursHu(const std::vector<cv::Point>& contour);
    // Sum of |a_k - b_k| over the 21 Fourier descriptors (10 harmonics, as
    // CalcuFourierDescriptors gives them) of the contour (a) and of the
    // polygon of `ellipse` (b): 0 for the ellipse itself. Both need more than
    // 10 points.
    double FourierDescriptors(const std::vector<cv::Point>& contour, cv::RotatedRect ellipse);
    // Sample standard deviation of the radial lengths from m_centroid, each
    // over the greatest (as BUSFeature::NormRadialLength).
    double NormRadialLength(const std::vector<cv::Point>& contour);
    // Sum of the radial part of the grey gradient along the contour over the
    // sum of sqrt(2) times its magnitude: sqrt(1/2) where every gradient points
    // away from `centre`. Points outside `image` are left out.
    double NormRadialGradient(const std::vector<cv::Point>& contour, cv::Point centre, cv::Mat image);
    // Shape-context distance (chi-square cost, thin-plate-spline transformer)
    // between the contour's outline pixels, in circular order and thinned as
    // PreprocessContours::GetOriginalSamplePts does, and as many pixels of the
    // outline of m_ellipse's polygon (GetEllipseSamplePts). The ellipse's
    // sampling shuffles with cv::theRNG(), and the circular order writes the
    // global `reference`: not thread-safe, and fixed only with a seeded
    // generator. Throws std::invalid_argument when the contour draws nothing.
    double MatchContoursSC(const std::vector<cv::Point>& contour);
    // Contour area over the area of m_ellipse (pi / 4 times width times height).
    double EllipticMetric(const std::vector<cv::Point>& contour);
    // Boundary against a limit the caller chooses: 1 (abrupt) when value >
    // limit, compared in float, or when either is NaN; 2 otherwise.
    // BoundaryDescription(value, 8.0f) is BoundaryDescription2(value).
    int BoundaryDescription(float value, float limit);
    // Margin: 2 (not circumscribed) when a * 10 + b, in float, is above 3.4, else 1.
    int MarginDescription(float a, float b);
    // MarginDescription of the first two values.
    int MarginDescription2(const std::vector<float>& values);
    // Echo from the grey histogram of `image` (bin 255 cleared): peakRatio is
    // the highest bin over the mean of the other bins 1..255 above 2 counts
    // (the highest bin itself when that mean is 0, NaN when no bin is above
    // 2); 2 when peakRatio < limit (a spread histogram), else 1 (one sharp peak).
    int JudgeEchoType(cv::Mat image, float limit, float& peakRatio);
    // Regularity from m = ((1 - roundness) + (1 - hull metric) + tight / 100) / 3
    // and m_regularity = FourierDescriptors(contour, m_ellipse): 3 irregular
    // when m_regularity >= 0.38 and m >= 0.3; otherwise 2 when the ellipse's
    // longer side over its shorter is below 1.5 (roundish), else 1 (oval).
    int ContourRegularity(const std::vector<cv::Point>& contour);
    // As ContourRegularity, also setting m_regularity2 to NormRadialGradient
    // about m_centroid on the region image: 3 when m_regularity2 <= 0.35, m >=
    // 0.3 or m_regularity >= 0.4, else the aspect test; 0 when m or
    // m_regularity is NaN.
    int ContourRegularity1(const std::vector<cv::Point>& contour);
    // m_regularity = MatchContoursSC(contour): 3 when above `limit`, else the aspect test.
    int ContourRegularity2(const std::vector<cv::Point>& contour, double limit);
    // `regularity` = ContourRegularity(contour); 2 (not parallel) when the
    // m_ellipseAngle is more than 19 degrees off 90, else 1.
    int ShapeDescriptionOld(const std::vector<cv::Point>& contour, int& regularity);
    // ShapeDescriptionOld without the regularity.
    int ShapeDescription(const std::vector<cv::Point>& contour);
    // SVM verdicts: the features go in one CV_32F row to svm->predict. The
    // shape verdict also takes two lengths and `skip`: a prediction of -1 gives
    // 3 (irregular); 1, or `skip` (no prediction), gives 1 when the longer
    // length over the shorter is below 1.2 and otherwise 2; anything else 0.
    // The echo, boundary and margin verdicts return the predicted label
    // truncated to int. cv::Exception when the model does not fit the row.
    int ShapeDescriptionSVM(const cv::Ptr<cv::ml::SVM>& svm, const std::vector<float>& features, float first,
                            float second, bool skip);
    int EchoDescriptionSVM(const cv::Ptr<cv::ml::SVM>& svm, const std::vector<float>& features);
    int BoundaryDescriptionSVM(const cv::Ptr<cv::ml::SVM>& svm, const std::vector<float>& features);
    int MarginDescriptionSVM(const cv::Ptr<cv::ml::SVM>& svm, const std::vector<float>& features);
    // Echo of a gall bladder lesion from the feature's grey levels (high,
    // bright, liver and, in the second form, the lesion mean avg) and
    // GetGbPosterEchoFeature (p0, p1). First rule that holds:
    // GallBladderEcho: 4 (strong) when high >= bright - 26 or p0 - p1 > 50;
    // 3 (hyperechoic) when high > liver + 20; 2 (hypoechoic) when
    // high < liver - 15; else 6 (isoechoic).
    // GallBladderEcho2: with avg <= 80, 2 below liver - 15, 6 up to liver + 20,
    // else 3; with avg > 80, 4 when high >= bright - 26 or p0 - p1 > 50, else 3.
    int GallBladderEcho(BUSFeature feature);
    int GallBladderEcho2(BUSFeature feature);
    // Liver lesion echo from GetEchoFeatureUseHist (f): when the lesion's mean
    // grey over the liver's is above 1.1, 4 when the lesion area is at most
    // 0.01 of the organ outline's area (whole-image coordinates), else 3;
    // otherwise 1 (hypoechoic) when f[0] / f[1] > 2, 2 (isoechoic) when
    // f[2] <= 10, else 1.
    int LiverEchoUseHist(BUSFeature feature, std::vector<cv::Point> organContour);
    // ---- metric family end ----

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
