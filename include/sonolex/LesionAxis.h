// Long and short axis of a closed outline. The long axis runs along the
// outline's principal direction; the short axis is the longest chord in a
// band of lines roughly across it. Callers copy an outline and an image size
// into the object and leave every other field zero.
#pragma once

#include <utility>
#include <vector>

#include <opencv2/core.hpp>

#include "sonolex.h"
#include "sonolex/Tool.h"

// Masks 60 to 139 columns wide are measured as they are; the others at a
// width of 102. The gall bladder wall entry picks its working scale by the
// same band, so both read it from here.
constexpr int kAxisBandLow = 60;
constexpr int kAxisBandHigh = 139;
constexpr int kAxisWorkingWidth = 102;
inline bool IsAxisWorkingWidth(int cols) { return cols >= kAxisBandLow && cols <= kAxisBandHigh; }
// Rows at the working width: 102 / cols * rows in float, rounded half to even.
inline int AxisWorkingRows(int cols, int rows)
{
    return RoundToInt((102.0f / static_cast<float>(cols)) * static_cast<float>(rows));
}

class SONOLEX_EXPORT LesionAxis {
public:
    void SetCentroid(cv::Point centroid);
    void SetNewSize(cv::Size size);
    void SetMask(cv::Mat mask);

    // Mask, ellipse, area and centroid of m_contour. m_contour comes back
    // with every point of the mask's outline listed twice in a row.
    void SetPara();
    // Centre of mass of m_mask over the outline's area; also kept in m_centroid.
    cv::Point CalcCentroid();
    // Fills `contour` into `mask`; on success both vectors become the outline
    // of the filled mask (appended point by point to each in turn).
    bool ConnectionMaskCv(std::vector<cv::Point>& contour, cv::Mat& mask, std::vector<cv::Point>& out);
    // Pixels where the line through line[0], line[1], drawn across the image at
    // 50, meets a mask drawn at 50. False when the line does not cross exactly
    // two image borders.
    bool CalcIntersection(cv::Mat mask, cv::Point* line, int maxX, int maxY, std::vector<cv::Point>& out);
    // Ends of the outline's principal-direction line inside the outline; sets m_longAxisSlope.
    void GetLongAxisPts(cv::Mat image, std::vector<cv::Point> contour, cv::Rect box, cv::Point* out);
    // Longest chord across the long axis, searched at three angles 3 degrees apart.
    void GetShortAxisPts1(cv::Mat image, std::vector<cv::Point> contour, cv::RotatedRect ellipse, cv::Rect box,
                          cv::Point* out);
    // Both axes at a working width of 102 (or full size for 60 to 139
    // columns); axisA is the more horizontal one.
    void CalcLesionAxis(cv::Point* axisA, cv::Point* axisB, float& lengthA, float& lengthB);
    // Stretches each axis to the full crossing of its line with the outline.
    bool CalcLesionAxisCorrect(cv::Point* axisA, cv::Point* axisB);
    // ---- older forms, no entry point uses them ----
    // As GetLongAxisPts (and it sets m_longAxisSlope the same way), over five
    // lines at atanf(k) - 0.1, -0.05, 0, +0.05 and +0.1 radians; `out` takes
    // the longest pair of outline crossings.
    void GetLongAxisPts1(cv::Mat image, std::vector<cv::Point> contour, cv::Rect box, cv::Point* out);
    // As GetShortAxisPts1 at the perpendicular angle only, the outline test
    // being a distance below 1.0 in double.
    void GetShortAxisPts(cv::Mat image, std::vector<cv::Point> contour, cv::RotatedRect ellipse, cv::Rect box,
                         cv::Point* out);
    // Whole-axis forms on the frame of CalcLesionAxis: within the band of 60
    // to 139 columns m_contour and `ellipse` serve as they are; otherwise the
    // mask's first outline at a width of 102 and its fitted ellipse, with the
    // axes scaled back, truncated. Both end as CalcLesionAxis does: the more
    // horizontal axis first (long axis tilted 55 degrees or less), lengths
    // sqrtf(dx*dx + dy*dy). Ends come left first (smaller x, then smaller y)
    // where a form finds them itself. Thrown as by CalcLesionAxis.
    //
    // CalcLesionAxis2 reads the axes off the sides of the rotated rectangle
    // `ellipse` (its corners rounded half to even; in a fitted ellipse's box
    // the sides touch the outline at the ellipse's axis ends). A contour
    // point lies on a side when its float slopes to the side's two corners
    // are each within 0.04f of the side's slope (the corners themselves lie
    // on none). Long axis: from the mean point of the points on one of the
    // two shorter sides to that on the other (mean x and y in double, rounded
    // half to even); short axis: likewise between the two longer sides.
    // When some side's corners differ by less than 5 in x or in y (a nearly
    // upright rectangle, where side slopes mean nothing), or a side holds no
    // point, it gives what CalcLesionAxis gives with `ellipse`. Writes
    // m_longAxisSlope only then.
    void CalcLesionAxis2(cv::RotatedRect ellipse, cv::Point* axisA, cv::Point* axisB, float& lengthA, float& lengthB);
    // CalcLesionAxis3: the long axis and k = m_longAxisSlope come from
    // GetLongAxisPts. Two contour points pair across it when the float slope
    // s between them gives |1 - double(s) * double(k)| < 10000.0; so points in
    // one column (s infinite) never pair, nor does anything with an infinite
    // k. The short axis is the paired pair of greatest extent across the long
    // axis, |dy - k dx|, the one of least extent along it, |dx + k dy|, among
    // equals (doubles), the first in contour order after that: the lesion's
    // breadth across its long axis. With no pair, GetShortAxisPts1 gives it,
    // as in CalcLesionAxis. Cost grows with the square of the outline's
    // points (a point repeated right after itself counts once).
    void CalcLesionAxis3(cv::RotatedRect ellipse, cv::Point* axisA, cv::Point* axisB, float& lengthA, float& lengthB);
    // Reconciles two measurements of the same lesion: the crossing of the two
    // long axes (GetCrossPoint2) serves when it lies within 0.15 of the
    // image's smaller side of the crossing of the two short axes, else the
    // latter does; `out` takes the long and short axis of `first`, each
    // re-laid through that point across `box` to the outline's crossings.
    void CorrectLesionAxis(lesionAxisPointEnd first, lesionAxisPointEnd second, cv::Mat image,
                           std::vector<cv::Point> contour, cv::Rect box, lesionAxisPointEnd& out);

    // Pixels of a horizontal or vertical segment, end excluded.
    void getStraightLineAllPoint(int x0, int y0, int x1, int y1, std::vector<cv::Point>& out);

    // ---- gallwall begin ----
    // Long and short axis of an organ: as CalcLesionAxis, with `ellipse` in
    // place of m_ellipse at full size, and without ordering by tilt.
    void CalcOrganAxis(cv::RotatedRect ellipse, cv::Point* longAxis, cv::Point* shortAxis, float& longLength,
                       float& shortLength);
    // ---- gallwall end ----

    std::vector<cv::Point> m_contour; // outline to measure, in the frame of m_size
    cv::Mat m_mask;                   // filled outline, 0/255
    cv::Point m_centroid;
    cv::Size m_size;                  // columns and rows of the working image
    cv::Size m_newSize;
    float m_longAxisSlope = 0.0f;     // dy/dx of the principal direction
    cv::RotatedRect m_ellipse{cv::Point2f(0.0f, 0.0f), cv::Size2f(0.0f, 0.0f), 0.0f};
    float m_area = 0.0f;
};

// Crossings with the outline of the line of `slope` through `through`,
// drawn across `box`: vertical when `angle` is +-1.5707964f, from the box's
// top to its bottom when |slope| > 100, else from its left to its right.
// `out` gets two points as GetLongAxisPts gives them: (0,0) for none, the
// last and the first of three or more.
SONOLEX_EXPORT void CalcLineAndContourCrossPoint(cv::Mat image, std::vector<cv::Point> contour, cv::Rect box,
                                                 float slope, float angle, cv::Point2f through, cv::Point* out);
// Crossing of two lines given as (x1, y1, x2, y2); (-1, -1) for parallel slanted lines.
SONOLEX_EXPORT cv::Point2f GetCrossPoint2(cv::Vec4f a, cv::Vec4f b);
// Older crossing formula; a vertical line takes its dy as slope.
SONOLEX_EXPORT cv::Point2f GetCrossPoint(cv::Vec4f a, cv::Vec4f b);
SONOLEX_EXPORT bool compXX(const cv::Point& a, const cv::Point& b);
SONOLEX_EXPORT bool compYY(const cv::Point& a, const cv::Point& b);
// Longer chord first.
SONOLEX_EXPORT bool cmp1(const std::pair<float, std::vector<cv::Point>>& a,
                         const std::pair<float, std::vector<cv::Point>>& b);

// Tilt of the line a-b against the image rows, in degrees, 0 to 90; NaN when a equals b.
SONOLEX_EXPORT double AxisTiltDegrees(cv::Point a, cv::Point b);
// Puts the more horizontal axis first: the long axis, tilted by `tilt`
// degrees, stays first up to 55 degrees inclusive. A NaN tilt (a long axis of
// zero length) assigns nothing.
SONOLEX_EXPORT void OrderAxesByTilt(double tilt, const cv::Point* longAxis, const cv::Point* shortAxis, cv::Point* axisA,
                                    cv::Point* axisB);
