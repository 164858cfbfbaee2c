// Per-image feature object: the grey region, the masks and contours drawn
// from the host's outlines, and the scalars one measurement leaves for the
// next. An entry point builds one on its region image, runs exactly one
// organ initialiser, and then asks it for measures in a fixed order.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "sonolex.h"
#include "sonolex/Tool.h"

// Convexity defects of an outline deeper than `floor` pixels: their number
// and the sum of their depths, both in float, and the greatest depth (0 when
// there is none). Depths come from OpenCV's 1/256-pixel fixed point.
struct DefectDepths {
    float count = 0.0f;
    float sum = 0.0f;
    float greatest = 0.0f;
};
SONOLEX_EXPORT DefectDepths DeepDefects(const std::vector<cv::Point>& contour, double floor);
// Sample standard deviation of the radial lengths from `centre`, each over
// the greatest: float lengths, float mean, double spread over n - 1 (not
// divided for one point; 0 for none).
SONOLEX_EXPORT double NormRadialSpread(const std::vector<cv::Point>& contour, cv::Point centre);
// Four pi times area over perimeter squared, in double, as float; 1 for a zero perimeter.
SONOLEX_EXPORT float Circularity(float area, float perimeter);

// Which organ's fields GetOrganMask and GetOrganCont return.
enum Organ { ORGAN_NONE = 0, ORGAN_LIVER = 2, ORGAN_GALLBLADDER = 3 };

class SONOLEX_EXPORT BUSFeature {
public:
    BUSFeature(cv::Mat image, cv::Rect roi);                          // breast
    BUSFeature(cv::Mat image, int fullWidth, int fullHeight);           // liver, gall bladder
    BUSFeature(cv::Mat image, cv::Rect roi, int fullWidth, int fullHeight); // thyroid, carotid

    // ---- accessors ----
    void SetMask(cv::Mat mask);
    void SetSrcImg(cv::Mat image);
    cv::Mat GetLabel();
    cv::Mat GetLesionMask();
    cv::Mat GetOrganMask(Organ organ);
    std::vector<cv::Point> GetLesionCont();
    std::vector<cv::Point> GetOrganCont(Organ organ);
    float GetDepth();
    float GetLesionArea();
    std::vector<int> GetPixNum();
    float GetMajorAxisLength();
    float GetMinorAxisLength();
    float GetLesionPerimeter();
    float GetLesionAvgGray();
    float GetLesionHighGray();
    float GetLiverAvgGray();
    float GetBrightAvgGray();
    float GetLesionStdGray();
    cv::RotatedRect GetEllipse();
    std::vector<cv::Point> GetHull();
    std::vector<cv::Point> GetHullPts();
    float GetFourierDist();
    float GetEchoHist();

    // ---- shared measures ----
    // Centroid of m_label (or m_organLabel) over the contour's area; stored in m_centroid.
    cv::Point CalcCentroid(bool useOrgan);
    // Centroid of a 0/255 mask over the area of `contour`; stored in m_centroid.
    cv::Point CalcCentroid(cv::Mat mask, std::vector<cv::Point> contour);
    // Fills `contour` into `mask` and replaces both vectors by the outline of the result.
    bool ConnectionMaskCv(std::vector<cv::Point>& contour, std::vector<cv::Point>& copy, cv::Mat mask);
    // Draws `contour` into `mask` point by point, closing gaps between neighbours.
    void ConectionMask(const std::vector<cv::Point>& contour, std::vector<cv::Point>& closed, cv::Mat& mask);
    // Mean radial component of the grey gradient along the contour, normalised by its magnitude.
    double NormRadialGradient(const std::vector<cv::Point>& contour, cv::Point centre, cv::Mat image);
    void CalcuNrg();

    // Grey level of the valley between the two highest histogram peaks under
    // `mask`, or 0 when there is none.
    float GetCalcificationHistMy(cv::Mat image, cv::Mat mask);
    float ThyGetCalcificationHist(cv::Mat image, cv::Mat mask);

    // Convexity defects deeper than 5 pixels: {mean depth, greatest depth,
    // count}, depths relative to half the minor axis when that is known.
    std::vector<float> GetShapeFeatureMy();
    std::vector<float> ThyGetMarginFeatureMy();

    // ---- toolkit begin ----
    // Measures no entry point uses; each writes only the members it names.
    // Direction of b - a in radians, 0 to 2 pi, with the image's y axis
    // pointing down: t = atan(|float(dy) / float(dx)|); dx > 0, dy < 0 gives
    // t, dx < 0, dy < 0 gives pi - t, dx < 0, dy > 0 gives pi + t, dx > 0,
    // dy > 0 gives 2 pi - t; dx == 0 gives pi / 2 (0 when dy is 0 too), dy == 0 gives 0.
    double GetPointsAngle(cv::Point a, cv::Point b);
    // Sum of GetPointsAngle over neighbouring points (first to last, not
    // closed) over the number of points; NaN for no points.
    double CalAverageAngle(const std::vector<cv::Point>& contour);
    // Sample standard deviation of the radial lengths from `centre`, each over
    // the greatest: 0 for a circle about `centre`, larger for lobed outlines.
    // One point gives 0, none gives 0; NaN when every point is `centre`.
    double NormRadialLength(const std::vector<cv::Point>& contour, cv::Point centre);
    // {m_nrg, m_nrg2, m_nrg3}: NormRadialGradient, NormRadialLength and
    // CalAverageAngle of the lesion outline about m_centroid, as floats.
    std::vector<float> CalcuNrgs();
    // {hull perimeter / lesion perimeter, lesion area / hull area,
    // m_circularity, m_ellipseRatio, m_fourierDist}, after FillShapeMeasures.
    std::vector<float> GetShapeFeature2();
    // {GrayDiff(m_label, m_srcImg, 20, true), m_innerPt1.y, m_innerPt1.x,
    // m_innerPt2.y, m_innerPt2.x}; no measure writes the two points, so the
    // last four are 0.
    std::vector<float> GetInnerEchoFeature();
    // GrayDiff(m_label, m_srcImg, 20, flag).
    float GetGrayDiff(bool flag);
    // Corner search on the lesion mask (20 corners, quality 0.2, 5 pixels
    // apart) on a clone; the corners are dropped, so it changes nothing.
    void findTrackPoints();
    // Posterior echo of a lesion, {p0, p1} in grey levels of m_srcImg:
    //   p0 = mean grey under m_label (0 when no pixel is set, and when
    //        m_label is empty because no initialiser ran),
    //   p1 = mean grey of the band right below the bounding box (x, y, w, h)
    //        of m_lesionCont: columns x..x+w-1, rows y+h..y+h+19, cut to the
    //        image; 0 when nothing of it is left (or m_lesionCont is empty).
    // A bright lesion over a dark band (p0 - p1 large) is a strong echo with
    // an acoustic shadow. cv::Exception when m_label is set but not CV_8UC1
    // of m_srcImg's size.
    std::vector<float> GetGbPosterEchoFeature();
    // Lesion histogram against the liver, {f0, f1, f2} as floats, from the
    // 256-bin histogram h of m_srcImg under m_label with h[255] (saturated
    // white) cleared, L = m_liverAvgGray:
    //   f0 = sum of h[g] for g < L (the lesion pixels darker than the liver),
    //   f1 = sum of h[g] for L <= g <= 254 (those as bright or brighter),
    //   f2 = |p - L|, p the grey of the highest bin, the darkest among equals.
    // An empty or all-clear m_label gives {0, 0, |L|} (p = 0); a NaN L puts
    // every pixel in f1 and gives f2 NaN. cv::Exception when m_label is set
    // but not CV_8UC1 of m_srcImg's size.
    std::vector<float> GetEchoFeatureUseHist();
    // Echo histogram: the number of pixels of `image` at each grey level 0..255
    // under `mask` (any non-zero pixel; an empty mask takes the whole image),
    // as a 256 x 1 CV_32F matrix of raw counts, bin g holding grey g.
    // Saturated white (bin 255) counts. `image` is 8-bit grey; a 3- or
    // 4-channel 8-bit image is taken as BGR(A) and made grey first (the
    // caller's pixels are not changed). Throws std::invalid_argument on an
    // empty image, a depth other than 8 bits, 2 or more than 4 channels, and a
    // mask that is not CV_8UC1 of the image's size. Reads and writes no member.
    cv::Mat CalcuEchoHist(cv::Mat image, cv::Mat mask);
    // CalcuEchoHist(image, mask).
    cv::Mat GetEchoHistMy(cv::Mat image, cv::Mat mask);
    // ---- toolkit end ----

    // ---- breast begin ----
    // Breast initialiser: lesion masks, ellipse, area, grey statistics,
    // hull, perimeter, Otsu level of the region and the mean of the ring
    // about seven pixels wide around the lesion.
    void IntiBreastPara(const std::vector<cv::Point>& contour);
    // Orientation from the host's axes: 1 parallel, 2 not parallel or
    // roundish, 0 degenerate. Fills both lengths.
    int CalcLesionAxis(const cv::Point* longAxis, const cv::Point* shortAxis, float& longLength,
                       float& shortLength);
    // Echo: 1 dominated by dark pixels or one sharp histogram peak, 2 otherwise.
    int GetEchoFeature();
    // Contrast of the bands inside and outside the outline (15 pixels).
    float GetBoundaryVal();
    std::vector<float> GetBoundaryFeature();
    // Margin: 2 with enough deep convexity defects for the polygon's vertices.
    // Leaves {mean depth, greatest depth, defect count, vertices} in m_marginVals.
    int GetMarginFeatureMy();
    std::vector<float> GetMarginFeature();
    // Calcification from bright holes in the lesion: 1 none, 2 coarse, 3 micro.
    int BreastCalcification();
    // Calcification from the host model's regions (whole-image outlines).
    int CalcuCalcificationUseModelResult(RoiCoor roi, int modelContourCount, const int* modelContourSizes,
                                         const MyPoint* modelPoints);
    // Calcification from a ready mask of the model's regions.
    int BreastCalcificationModel(cv::Mat mask, RoiCoor roi);
    // Shape: 3 irregular, 2 round without defects, 1 the rest.
    int GetBreatShape(float firstLength, float secondLength);
    // {hull over lesion perimeter, lesion over hull area, mean defect depth,
    // Fourier distance}; fills circularity, ellipse ratio, hull perimeter
    // and Fourier distance.
    std::vector<float> GetShapeFeature();
    // Fills m_circularity (4 pi area / perimeter^2), m_ellipseRatio (pi a b
    // / (4 perimeter)), both 1 for a zero perimeter, m_hullPerimeter (1 with
    // no hull) and m_fourierDist (lesion outline against the filled hull's).
    void FillShapeMeasures();
    // Distance between the Fourier descriptors (10 harmonics) of two outlines.
    double FourierDescriptors2(const std::vector<cv::Point>& first, const std::vector<cv::Point>& second);
    // ---- breast end ----

    // ---- thyroid begin ----
    // Masks, contours, ellipse, hull and the two grey levels of the thyroid
    // ring around the nodule. Stops quietly when an outline fills to nothing.
    void InitiThroidPara(std::vector<cv::Point>& organContour, std::vector<cv::Point>& lesionRegionContour,
                         std::vector<cv::Point>& lesionWholeContour);
    // Calcification from the detection model's mask (0 none, 1 few or
    // large deposits, 2 many small deposits).
    int ThyCalcificationUseModelResult(cv::Mat modelMask, RoiCoor roi);
    int ThyCalcificationModel(cv::Mat modelMask, RoiCoor roi);
    // 1 when a large dark area below the model's deposits merges with them.
    int FindSoundShadowWithModel(cv::Mat modelMask, RoiCoor roi, int& modelBlobCount);
    // Very bright spots fully enclosed by the nodule.
    int ThyCalcuCalcification();
    // Echo against the thyroid ring and the neck muscle (0 to 4).
    int ThyCalcuEchoMy2();
    // True when at least 0.9 of the lesion's pixels lie in both masks.
    bool JudgeLesion(cv::Mat a, cv::Mat b);
    // Mean grey of the darker strap muscle above the gland, 0 when not found.
    float ThyEchoEdgeFindMuscle();
    // 1 when the nodule is not clearly wider than tall, 0 when it is.
    int ThyCalcuShape();
    // 4 extension beyond the gland, else by concavities and border contrast.
    int ThyCalcuMargin();
    // {outer band mean - inner band mean, share of the outline on edges}.
    std::vector<float> ThyGetDefinition(const cv::Mat& mask, const cv::Mat& image, int kernelSize);
    // Whether the nodule runs along the gland's outline (extrathyroidal extension).
    bool GetThyroidalExtensionMy();
    // ---- thyroid end ----

    // ---- liver begin ----
    // Liver initialiser: fills the liver outline (whole-image coordinates)
    // and the lesion outline (region coordinates) into masks, replaces both
    // outlines by the outer contour of their filled masks, fits the ellipse,
    // takes the lesion's grey mean and deviation, and the mean grey of the
    // liver tissue in a ring around the lesion (0 when no liver is there).
    void InitiLiverPara(std::vector<cv::Point>& organContour, std::vector<cv::Point>& lesionContour, cv::Rect roi);
    // The same without a region: the ring around the lesion is not restricted
    // to the liver and the lesion's bounding rectangle is not taken.
    void InitiLiverPara(std::vector<cv::Point>& organContour, std::vector<cv::Point>& lesionContour);
    // {sum of grey squared times count over the histogram of `image` under
    // `mask` (white excluded), share of lesion pixels at grey 200 or more}.
    std::vector<float> CalcuEcho(cv::Mat image, cv::Mat mask);
    // CalcuEcho on the lesion's bounding rectangle.
    std::vector<float> GetEchoCysticFeature();
    // {mean grey of the band outside the lesion - mean grey of the band
    // inside it, share of a 3-pixel band along the outline that is edge}.
    std::vector<float> GetDefinition(int kernelSize);
    // Shannon entropy, in bits, of the grey levels of `image` under `mask`.
    float GetEntropy(cv::Mat image, cv::Mat mask);
    // Inner texture of the lesion: {bright share, inner edge share, lesion
    // to liver pixel ratio, share of very bright pixels away from the
    // outline, entropy, region width, region height}.
    std::vector<float> GetEchotexture();
    // ---- liver end ----

    // ---- carotid begin ----
    // Vessel mask at whole-image size and plaque mask at region size, with the
    // outlines re-extracted from them; stops early when a mask has no outline.
    void InitiPlaquePara(std::vector<cv::Point> organContour, std::vector<cv::Point> lesionContour);
    // 1 low echo, 2 uniformly bright, 3 mixed.
    int GetCarotidPlaqueEcho();
    // 1 plaque nearer the vessel's upper side, 2 nearer its lower side, 3 a
    // nearly square vessel section with the plaque off to the side.
    int GetCarotidPlaquePosition();
    // Ends of the longer of the vessel's two axes, region coordinates.
    void GetCarotidShortAxisInnerDiameter(int& x1, int& y1, int& x2, int& y2);
    // ---- carotid end ----

    // ---- gallwall begin ----
    // Outer outline and lumen outline (region coordinates) to the organ and
    // lumen masks, the wall band between them, the ellipse and the organ area.
    // Both vectors are replaced by the outlines of their filled masks.
    void InitiGBOrganPara(std::vector<cv::Point>& first, std::vector<cv::Point>& second);
    // Thickening grade, 1 none, 2 diffuse, 3 focal; leaves the erosion ratio
    // and the chord density in m_gbThickRatio1 and m_gbThickRatio2.
    int GetGBThicken();
    // Wall grade, 1 normal, 2 abnormal; reads what GetGBThicken left.
    int GetGBWall();
    // Mean grey of the masked pixels on the main diagonal over all masked pixels.
    float GetHomogeneity(cv::Mat image, cv::Mat mask);
    // Pixels of `drawing` (50 or 51 where set) crossed by the line through
    // pts[0] and pts[1], drawn from image edge to image edge; false when the
    // line does not give two edge points.
    bool CalcIntersection(cv::Mat drawing, cv::Point* pts, int lastX, int lastY, std::vector<cv::Point>& out);
    // The same for the parallel to pts[0]-pts[1] through `through`.
    bool CalcIntersection2(cv::Mat drawing, cv::Point* pts, cv::Point through, int lastX, int lastY,
                           std::vector<cv::Point>& out);
    // Distance from `to` to the nearer crossing of the outer outline along the
    // line from `from` through `to`; 0 when fewer than two crossings are found.
    float CalcLineIntersection(cv::Point from, cv::Point to);
    // CalcLineIntersection on the outer outline drawn beforehand by
    // DrawGBOuterOutline (0 and 50 only), so many rays share one drawing.
    float CalcLineIntersectionOn(const cv::Mat& outline, cv::Point from, cv::Point to);
    // The outer outline drawn as CalcLineIntersection sees it: 50 on zero, 2 px wide.
    cv::Mat DrawGBOuterOutline();
    // ---- gallwall end ----

    // Members in their fixed order of declaration. Every scalar starts at zero.
    int m_width = 0;
    int m_height = 0;
    int m_fullWidth = 0;
    int m_fullHeight = 0;
    cv::Mat m_srcImg;          // grey region image
    cv::Mat m_label;           // lesion, 0/1
    cv::Mat m_lesionMask;      // lesion, 0/255
    cv::Mat m_gbLesionLabel;   // gall bladder lesion
    cv::Mat m_reservedMat190;  // only the gall bladder lesion initialiser fills it
    cv::Mat m_organLabel;      // outer organ, 0/1
    cv::Mat m_organMaskB;      // organ, 0/255, returned for ORGAN_GALLBLADDER
    cv::Mat m_gbWallLabel;     // inner gall bladder, 0/1
    cv::Mat m_gbOrganMask;     // inner gall bladder, 0/255
    cv::Mat m_organMaskA;      // organ, 0/255, returned for ORGAN_LIVER
    cv::Mat m_gbWallMask;      // gall bladder wall band
    cv::Mat m_thyOrganMask;    // thyroid
    cv::Mat m_plaqueOrganMask; // carotid, whole image
    cv::Mat m_plaqueRoiMask;   // carotid, cut to the region
    std::vector<cv::Point> m_lesionCont; // region coordinates
    std::vector<cv::Point> m_organCont2; // returned for ORGAN_LIVER
    std::vector<cv::Point> m_organCont3; // returned for ORGAN_GALLBLADDER
    std::vector<cv::Point> m_gbCont1;    // outer gall bladder
    std::vector<cv::Point> m_gbCont2;    // inner gall bladder
    std::vector<cv::Point> m_thyCont1;   // thyroid
    std::vector<cv::Point> m_plaqueCont; // carotid
    std::vector<cv::Point> m_thyCont2;   // second thyroid contour
    cv::Point m_centroid;
    cv::Point m_innerPt1;
    cv::Point m_innerPt2;
    std::vector<cv::Point> m_hull;    // convex hull of the lesion contour
    std::vector<cv::Point> m_hullPts; // outline of the filled hull
    float m_fourierDist = 0.0f;
    float m_depth = 0.0f;
    float m_brightAvgGray = 0.0f;
    float m_lesionAvgGray = 0.0f;
    float m_lesionHighGray = 0.0f;
    float m_lesionStdGray = 0.0f;
    float m_reservedFloat670 = 0.0f;
    float m_liverAvgGray = 0.0f;
    cv::RotatedRect m_ellipse{cv::Point2f(0.0f, 0.0f), cv::Size2f(0.0f, 0.0f), 0.0f};
    float m_majorAxisLength = 0.0f;
    float m_minorAxisLength = 0.0f;
    float m_lesionArea = 0.0f;
    float m_organArea = 0.0f;
    float m_lesionPerimeter = 0.0f;
    float m_otsuThresh = 0.0f;
    float m_echoHist = 0.0f;
    int m_lesionPixNum = 0;
    int m_organPixNum = 0;
    float m_hullArea = 0.0f;
    float m_hullPerimeter = 0.0f;
    float m_circularity = 0.0f;
    float m_ellipseRatio = 0.0f;
    float m_nrg = 0.0f;
    float m_nrg2 = 0.0f;
    float m_nrg3 = 0.0f;
    cv::Rect m_lesionBoundRect;
    cv::Mat m_calcMask;  // calcification candidates, 0/255
    cv::Mat m_modelMask; // the host model's regions at region size
    cv::Mat m_fullSrcImg;
    cv::Mat m_mask;
    cv::Rect m_roi; // the region in whole-image coordinates
    float m_calcRatio = 0.0f;
    bool m_calcFlag = false; // only ever set to true
    cv::Rect m_lesionRect;
    int m_hyperCount = 0;
    int m_hypoCount = 0;
    float m_ringAvgGray = 0.0f;
    float m_gbThickRatio1 = 0.0f;
    float m_gbThickRatio2 = 0.0f;
    std::vector<float> m_marginVals; // four values left by the breast margin measure
    float m_thyFloat1 = 0.0f;
    float m_thyFloat2 = 0.0f;
};
