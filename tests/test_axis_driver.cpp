// Working size, tilt rule and the stretching of both axes to the outline.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <algorithm>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"

namespace {

// An axis object whose mask has `cols` columns and holds nothing: at full size
// the search runs on m_contour; a resized mask has no outline and is refused.
LesionAxis EmptyMaskAxis(int cols)
{
    LesionAxis axis;
    axis.m_size = cv::Size(cols, 50);
    axis.m_mask = cv::Mat::zeros(50, cols, CV_8UC1);
    axis.m_contour = {cv::Point(10, 20), cv::Point(40, 20), cv::Point(40, 30), cv::Point(10, 30)};
    axis.m_ellipse = cv::RotatedRect(cv::Point2f(25.0f, 25.0f), cv::Size2f(30.0f, 10.0f), 0.0f);
    return axis;
}

} // namespace

TEST(AxisBand, From60To139ColumnsTheOutlineIsMeasuredAsItIs)
{
    for (int cols : {60, 139}) {
        LesionAxis axis = EmptyMaskAxis(cols);
        cv::Point a[2], b[2];
        float la = 0.0f, lb = 0.0f;
        ASSERT_NO_THROW(axis.CalcLesionAxis(a, b, la, lb)) << cols;
        // Corner mean (25, 25), slope 0: the row 25 from x 10 to 40 touches the sides at 10 and 40.
        EXPECT_EQ(a[0], cv::Point(10, 25)) << cols;
        EXPECT_EQ(a[1], cv::Point(40, 25)) << cols;
        EXPECT_FLOAT_EQ(la, 30.0f) << cols;
    }
}

TEST(AxisBand, Below60AndFrom140TheMaskIsResized)
{
    // The empty mask resized to a width of 102 has no outline to measure.
    for (int cols : {59, 140}) {
        LesionAxis axis = EmptyMaskAxis(cols);
        cv::Point a[2], b[2];
        float la = 0.0f, lb = 0.0f;
        EXPECT_ANY_THROW(axis.CalcLesionAxis(a, b, la, lb)) << cols;
    }
}

TEST(AxisBand, ResizedAxesAreScaledBackByTruncation)
{
    LesionAxis axis;
    axis.m_size = cv::Size(140, 70);
    axis.m_mask = cv::Mat(70, 140, CV_8UC1, cv::Scalar(255));
    // Rows: cvRound(102 / 140 * 70) = 51. The 102 x 51 mask is full, its outline
    // is the image border; vertex mean (50.5, 25): the row 25 meets x = 0 and 101.
    // Back: 101 * (140 / 102) = 138.6 -> 138; 25 * (70 / 51) = 34.3 -> 34.
    cv::Point a[2], b[2];
    float la = 0.0f, lb = 0.0f;
    axis.CalcLesionAxis(a, b, la, lb);
    EXPECT_EQ(a[0], cv::Point(0, 34));
    EXPECT_EQ(a[1], cv::Point(138, 34));
    EXPECT_FLOAT_EQ(la, 138.0f);
}

TEST(AxisTilt, DegreesAgainstTheRows)
{
    EXPECT_EQ(AxisTiltDegrees(cv::Point(0, 0), cv::Point(3, 0)), 0.0);
    EXPECT_NEAR(AxisTiltDegrees(cv::Point(0, 0), cv::Point(5, 5)), 45.0, 1e-9);
    EXPECT_NEAR(AxisTiltDegrees(cv::Point(2, 9), cv::Point(2, 1)), 90.0, 1e-9);
    EXPECT_TRUE(std::isnan(AxisTiltDegrees(cv::Point(4, 4), cv::Point(4, 4))));
}

TEST(AxisTilt, LongAxisStaysFirstUpTo55DegreesInclusive)
{
    const cv::Point longAxis[2] = {cv::Point(0, 0), cv::Point(9, 9)};
    const cv::Point shortAxis[2] = {cv::Point(1, 2), cv::Point(3, 4)};
    cv::Point a[2], b[2];
    OrderAxesByTilt(55.0, longAxis, shortAxis, a, b);
    EXPECT_EQ(a[1], longAxis[1]);
    EXPECT_EQ(b[1], shortAxis[1]);
    OrderAxesByTilt(std::nextafter(55.0, 90.0), longAxis, shortAxis, a, b);
    EXPECT_EQ(a[1], shortAxis[1]);
    EXPECT_EQ(b[1], longAxis[1]);
    OrderAxesByTilt(-55.0, longAxis, shortAxis, a, b); // the magnitude counts
    EXPECT_EQ(a[1], longAxis[1]);
}

TEST(AxisTilt, ZeroLengthLongAxisKeepsTheCallersArrays)
{
    // Full size (60 columns) but a 5 x 5 canvas: the long-axis row 25 is off it,
    // the long axis is (0, 0)-(0, 0), its tilt NaN, and nothing is assigned.
    LesionAxis axis = EmptyMaskAxis(60);
    axis.m_size = cv::Size(5, 5);
    cv::Point a[2] = {cv::Point(1, 2), cv::Point(4, 6)};
    cv::Point b[2] = {cv::Point(0, 0), cv::Point(0, 3)};
    float la = 0.0f, lb = 0.0f;
    axis.CalcLesionAxis(a, b, la, lb);
    EXPECT_EQ(a[0], cv::Point(1, 2));
    EXPECT_EQ(a[1], cv::Point(4, 6));
    EXPECT_EQ(b[1], cv::Point(0, 3));
    EXPECT_FLOAT_EQ(la, 5.0f); // sqrt(3 * 3 + 4 * 4), from the caller's points
    EXPECT_FLOAT_EQ(lb, 3.0f);
}

namespace {

// A 30 x 20 working image holding the rectangle (5, 5)-(24, 14); minSpan = 20 / 3 = 6.
LesionAxis RectangleAxis()
{
    LesionAxis axis;
    axis.m_size = cv::Size(30, 20);
    axis.m_contour = {cv::Point(5, 5), cv::Point(24, 5), cv::Point(24, 14), cv::Point(5, 14)};
    return axis;
}

} // namespace

TEST(AxisCorrect, AxesStretchToTheOutlineAlongXAndAlongY)
{
    LesionAxis axis = RectangleAxis();
    cv::Point a[2] = {cv::Point(10, 9), cv::Point(20, 9)};
    cv::Point b[2] = {cv::Point(15, 8), cv::Point(15, 12)};
    ASSERT_TRUE(axis.CalcLesionAxisCorrect(a, b));
    // Row 9 meets the two-pixel outline at the sides x = 5 and x = 24 (a pixel either way).
    EXPECT_EQ(a[0].y, 9);
    EXPECT_EQ(a[1].y, 9);
    EXPECT_GE(a[0].x, 4);
    EXPECT_LE(a[0].x, 5);
    EXPECT_GE(a[1].x, 24);
    EXPECT_LE(a[1].x, 25);
    // The vertical axis is drawn over the whole column 15 and meets the top and bottom.
    EXPECT_EQ(b[0].x, 15);
    EXPECT_EQ(b[1].x, 15);
    EXPECT_GE(b[0].y, 4);
    EXPECT_LE(b[0].y, 5);
    EXPECT_GE(b[1].y, 14);
    EXPECT_LE(b[1].y, 15);
}

TEST(AxisCorrect, VerticalFirstAxisHasNoSpanAlongX)
{
    LesionAxis axis = RectangleAxis();
    cv::Point a[2] = {cv::Point(15, 8), cv::Point(15, 12)};
    cv::Point b[2] = {cv::Point(10, 9), cv::Point(20, 9)};
    // All its crossings share x = 15: span 0 < 6.
    EXPECT_FALSE(axis.CalcLesionAxisCorrect(a, b));
    EXPECT_EQ(a[0], cv::Point(15, 8));
    EXPECT_EQ(b[0], cv::Point(10, 9));
}

TEST(AxisCorrect, SecondAxisThroughACornerFailsAfterTheFirstIsReplaced)
{
    LesionAxis axis = RectangleAxis();
    cv::Point a[2] = {cv::Point(10, 9), cv::Point(20, 9)};
    // Slope 1 through (0, 0) on a 30 x 20 image: left, bottom and top all qualify.
    cv::Point b[2] = {cv::Point(0, 0), cv::Point(1, 1)};
    EXPECT_FALSE(axis.CalcLesionAxisCorrect(a, b));
    EXPECT_NE(a[0], cv::Point(10, 9));
    EXPECT_EQ(b[0], cv::Point(0, 0));
    EXPECT_EQ(b[1], cv::Point(1, 1));
}

TEST(AxisShort, EmptyOutlineLeavesTheOutputAlone)
{
    LesionAxis axis = RectangleAxis();
    axis.m_longAxisSlope = 0.0f;
    cv::Point out[2] = {cv::Point(3, 3), cv::Point(4, 4)};
    axis.GetShortAxisPts1(cv::Mat(), {}, cv::RotatedRect(), cv::Rect(), out);
    EXPECT_EQ(out[0], cv::Point(3, 3));
    EXPECT_EQ(out[1], cv::Point(4, 4));
}

TEST(AxisShort, FlatRectangleGetsAChordAcrossItsHeight)
{
    LesionAxis axis = RectangleAxis();
    axis.m_longAxisSlope = 0.0f; // perpendicular at -90 degrees: chords run up and down
    const std::vector<cv::Point> outline = axis.m_contour;
    cv::Point out[2] = {cv::Point(0, 0), cv::Point(0, 0)};
    axis.GetShortAxisPts1(cv::Mat(), outline, cv::RotatedRect(cv::Point2f(14.5f, 9.5f), cv::Size2f(16.0f, 10.0f), 0.0f),
                          cv::boundingRect(outline), out);
    // The working rectangle stands 16 high about row 9.5 (rows 1.5 to 17.5, on the canvas) and
    // 10 wide; its chords cross the box from its top (y = 5) to its bottom (y = 15), and are
    // within 1 of the outline first on row 5 and last on row 14.
    EXPECT_EQ(std::min(out[0].y, out[1].y), 5);
    EXPECT_EQ(std::max(out[0].y, out[1].y), 14);
    EXPECT_GE(std::min(out[0].x, out[1].x), 5);
    EXPECT_LE(std::max(out[0].x, out[1].x), 24);
}

TEST(OrganAxis, KeepsTheLongAxisFirstWhereTheLesionAxisWouldSwap)
{
    // A full-size organ tilted 80 degrees: CalcLesionAxis puts the short axis
    // first; CalcOrganAxis has no tilt test and gives the long axis as long.
    // Its ellipse comes from the argument, so m_ellipse may hold anything.
    std::vector<cv::Point> outline;
    cv::ellipse2Poly(cv::Point(30, 25), cv::Size(20, 8), 80, 0, 360, 1, outline);
    const cv::RotatedRect ellipse = cv::fitEllipse(outline);
    LesionAxis lesion;
    lesion.m_size = cv::Size(60, 50);
    lesion.m_mask = cv::Mat::zeros(50, 60, CV_8UC1);
    lesion.m_contour = outline;
    lesion.m_ellipse = ellipse;
    LesionAxis organ = lesion;
    organ.m_ellipse = cv::RotatedRect(cv::Point2f(1.0f, 1.0f), cv::Size2f(2.0f, 1.0f), 0.0f);

    cv::Point a[2], b[2], longAxis[2], shortAxis[2];
    float la = 0.0f, lb = 0.0f, longLength = 0.0f, shortLength = 0.0f;
    lesion.CalcLesionAxis(a, b, la, lb);
    organ.CalcOrganAxis(ellipse, longAxis, shortAxis, longLength, shortLength);
    ASSERT_GT(std::fabs(AxisTiltDegrees(longAxis[0], longAxis[1])), 55.0); // so the lesion order swaps
    EXPECT_EQ(longAxis[0], b[0]);
    EXPECT_EQ(longAxis[1], b[1]);
    EXPECT_EQ(shortAxis[0], a[0]);
    EXPECT_EQ(shortAxis[1], a[1]);
    EXPECT_EQ(longLength, lb);
    EXPECT_EQ(shortLength, la);
}

TEST(OrganAxis, AnOrganWithoutOutlineIsRefused)
{
    cv::Point longAxis[2], shortAxis[2];
    float longLength = 0.0f, shortLength = 0.0f;
    // At full size the long-axis search takes the principal direction of no
    // points, which OpenCV refuses before the short-axis search is reached.
    LesionAxis fullSize = EmptyMaskAxis(60);
    fullSize.m_contour.clear();
    EXPECT_ANY_THROW(fullSize.CalcOrganAxis(fullSize.m_ellipse, longAxis, shortAxis, longLength, shortLength));
    // A mask of no columns falls below the band, and resizing it is refused.
    LesionAxis empty;
    EXPECT_ANY_THROW(empty.CalcOrganAxis(cv::RotatedRect(), longAxis, shortAxis, longLength, shortLength));
}
