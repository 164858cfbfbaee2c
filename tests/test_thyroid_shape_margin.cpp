// Thyroid shape (wider than tall) and margin (concavities, border contrast).
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

namespace {

int Shape(const cv::RotatedRect& ellipse, cv::Rect box)
{
    BUSFeature f(cv::Mat::zeros(10, 10, CV_8U), cv::Rect(0, 0, 10, 10), 10, 10);
    f.m_ellipse = ellipse;
    f.m_lesionRect = box;
    return f.ThyCalcuShape();
}

} // namespace

TEST(ThyroidShape, RoundOrNarrowEllipseIsOne)
{
    // A 20 x 20 ellipse: ratio 1 < 1.2.
    EXPECT_EQ(Shape(cv::RotatedRect({50, 50}, {20, 20}, 0), cv::Rect(0, 0, 200, 100)), 1);
    // Upright 30 wide, 20 high: corners p0 (35, 60), p1 (35, 40), p2 (65, 40);
    // dx1 = 0, so ratio = side2 / side1 = 900 / 400 = 2.25 and the box decides.
    const cv::RotatedRect wide({50, 50}, {30, 20}, 0);
    EXPECT_EQ(Shape(wide, cv::Rect(0, 0, 107, 100)), 1); // 1.07 < 1.08
    EXPECT_EQ(Shape(wide, cv::Rect(0, 0, 109, 100)), 0); // 1.09
    // Upright 20 wide, 27 high: (20 / 27)^2 = 0.55 < 1.2.
    EXPECT_EQ(Shape(cv::RotatedRect({50, 50}, {20, 27}, 0), cv::Rect(0, 0, 200, 100)), 1);
}

TEST(ThyroidShape, ZeroSideTestComesBeforeTheSlope)
{
    // Turned by 90 degrees: p0 -> p1 is the horizontal side (dx1 = -20,
    // dy1 = 0) but dx2 = 0, so ratio stays side2 / side1 = 30^2 / 20^2 = 2.25
    // although the box is 20 wide and 30 high; the box then decides.
    const cv::RotatedRect turned({50, 50}, {30, 20}, 90);
    EXPECT_EQ(Shape(turned, cv::Rect(0, 0, 109, 100)), 0);
    EXPECT_EQ(Shape(turned, cv::Rect(0, 0, 100, 100)), 1);
}

TEST(ThyroidShape, TiltedSideCountsAsHorizontal)
{
    // Tilted by 20 degrees, 30 x 20: p0 -> p1 runs along the 20 side at slope
    // tan(70 deg) = 2.7, outside +-0.85: ratio = side2 / side1 = 900 / 400.
    // Tilted by 80 degrees the 20 side lies at slope -tan(10 deg) = -0.18:
    // ratio = side1 / side2 = 400 / 900 < 1.2.
    EXPECT_EQ(Shape(cv::RotatedRect({50, 50}, {30, 20}, 20), cv::Rect(0, 0, 109, 100)), 0);
    EXPECT_EQ(Shape(cv::RotatedRect({50, 50}, {30, 20}, 80), cv::Rect(0, 0, 109, 100)), 1);
}

namespace {

// A feature object of a 120 x 120 region on a 120-column image (too narrow
// for the extension test), lesion drawn from `outline`.
BUSFeature MarginFeature(const cv::Mat& region, const std::vector<cv::Point>& outline, float minorAxis)
{
    BUSFeature f(region, cv::Rect(0, 0, region.cols, region.rows), region.cols, region.rows);
    f.m_thyOrganMask = cv::Mat::zeros(region.size(), CV_8U);
    cv::Mat mask = cv::Mat::zeros(region.size(), CV_8U);
    cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{outline}, cv::Scalar(255), cv::LINE_8);
    std::vector<std::vector<cv::Point>> found;
    cv::findContours(mask, found, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
    f.m_lesionCont = found[0];
    f.m_label = mask / 255;
    f.m_lesionPixNum = cv::countNonZero(mask);
    f.m_majorAxisLength = 200.0f;
    f.m_minorAxisLength = minorAxis;
    return f;
}

// Step of `outer` - `inner` grey across the border of the 40 x 40 square at (40, 40).
int SquareMargin(int inner, int outer)
{
    cv::Mat region(120, 120, CV_8U, cv::Scalar(outer));
    region(cv::Rect(40, 40, 40, 40)).setTo(inner);
    const std::vector<cv::Point> square = {{40, 40}, {79, 40}, {79, 79}, {40, 79}};
    return MarginFeature(region, square, 40.0f).ThyCalcuMargin();
}

} // namespace

TEST(ThyroidMargin, BorderStepDecidesASmoothOutline)
{
    // A square has no concavity: f = {0, 0, 0}. The bands are 7 pixels on
    // either side of the mask, so d[0] = outer - inner exactly.
    EXPECT_EQ(SquareMargin(100, 118), 0); // |18| >= 18
    EXPECT_EQ(SquareMargin(118, 100), 0); // |-18| >= 18
    EXPECT_EQ(SquareMargin(100, 112), 1); // 12 >= 10
    // A step of 9 or 17 has a Sobel response of 36 or 68, under the upper
    // Canny threshold 180: no edge on the border, share 0 <= 0.13: 1.
    EXPECT_EQ(SquareMargin(100, 109), 1);
    EXPECT_EQ(SquareMargin(117, 100), 1);
}

TEST(ThyroidMargin, WeakStepWithEdgesOnTheBorderIsZero)
{
    // Steps of 9 grey across the border, and a 1-pixel line of 255 drawn
    // along the border inside both bands' reach: the line is a strong edge
    // on the outline (share well above 0.13). The inner band (7 wide, 40 x 40
    // less 26 x 26 = 924 pixels) holds the 156-pixel line:
    // inner = (768 * 100 + 156 * 255) / 924 = 126.2, outer = 109: d[0] = -17.2.
    cv::Mat region(120, 120, CV_8U, cv::Scalar(109));
    region(cv::Rect(40, 40, 40, 40)).setTo(100);
    cv::rectangle(region, cv::Point(40, 40), cv::Point(79, 79), cv::Scalar(255), 1, cv::LINE_8);
    const std::vector<cv::Point> square = {{40, 40}, {79, 40}, {79, 79}, {40, 79}};
    EXPECT_EQ(MarginFeature(region, square, 40.0f).ThyCalcuMargin(), 0);
}

namespace {

// A T: bar x 20..79, y 20..39 and stem x 40..59, y 40..79. Its two inner
// corners lie 40 / sqrt(5) = 17.9 from the hull edge joining the bar's end
// to the stem's foot.
const std::vector<cv::Point> kTee = {{20, 20}, {79, 20}, {79, 39}, {59, 39}, {59, 79}, {40, 79}, {40, 39}, {20, 39}};
// A cross: arms 20 wide, 60 across; four inner corners 20 / sqrt(2) = 14.1 deep.
const std::vector<cv::Point> kCross = {{40, 20}, {59, 20}, {59, 40}, {79, 40}, {79, 59}, {59, 59},
                                       {59, 79}, {40, 79}, {40, 59}, {20, 59}, {20, 40}, {40, 40}};

} // namespace

TEST(ThyroidMargin, ConcavitiesGradeLobulatedOrIrregular)
{
    const cv::Mat region(120, 120, CV_8U, cv::Scalar(100));
    // Two concavities of 17.9 over half the minor axis 50: 0.36 <= 0.45: 3.
    EXPECT_EQ(MarginFeature(region, kTee, 100.0f).ThyCalcuMargin(), 3);
    // Over half of 60: 0.60 > 0.45: 2.
    EXPECT_EQ(MarginFeature(region, kTee, 60.0f).ThyCalcuMargin(), 2);
    // Four concavities (more than three) of 14.1 / 50 = 0.28: 2.
    EXPECT_EQ(MarginFeature(region, kCross, 100.0f).ThyCalcuMargin(), 2);
}
