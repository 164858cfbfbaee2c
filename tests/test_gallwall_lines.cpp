// Where a straight line crosses a drawn outline or wall band.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "synthetic.h"

namespace {

BUSFeature FeatureOfSize(int cols, int rows) { return BUSFeature(cv::Mat::zeros(rows, cols, CV_8UC1), cols, rows); }

} // namespace

// Line through (0,0) and (2,1) in a 10x10 image: k = (0-1)/(0-2) = 0.5.
// right (9, trunc(9*0.5)) = (9,4); bottom (trunc(9/0.5), 9) = (18,9) is out;
// left (0,0); top (trunc(-0/0.5), 0) = (0,0). Three remain; by x (0,0),(0,0),
// (9,4), the repeated x goes: two ends (0,0)-(9,4). On a drawing set
// everywhere the crossing is the whole line, one pixel a column, y =
// round(4x/9): 0,0,1,1,2,2,3,3,4,4, in row-major order.
TEST(GallWallLines, LineThroughACornerKeepsTwoEnds)
{
    BUSFeature feature = FeatureOfSize(10, 10);
    const cv::Mat drawing(10, 10, CV_8UC1, cv::Scalar(50));
    cv::Point pts[2] = {{0, 0}, {2, 1}};
    std::vector<cv::Point> out;
    ASSERT_TRUE(feature.CalcIntersection(drawing, pts, 9, 9, out));
    const std::vector<cv::Point> expected = {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2},
                                             {5, 2}, {6, 3}, {7, 3}, {8, 4}, {9, 4}};
    EXPECT_EQ(out, expected);
    // The caller's drawing is read, not changed.
    EXPECT_EQ(cv::countNonZero(drawing != 50), 0);
}

// The diagonal (0,9)-(9,0): k = (9-0)/(0-9) = -1, all four candidates in:
// right (9,0), bottom (0,9), left (0,9), top (9,0); after the repeats go,
// (9,0) and (0,9) remain. Row-major: (9,0), (8,1), ..., (0,9).
TEST(GallWallLines, DiagonalThroughTwoCornersDropsRepeatedEnds)
{
    BUSFeature feature = FeatureOfSize(10, 10);
    const cv::Mat drawing(10, 10, CV_8UC1, cv::Scalar(50));
    cv::Point pts[2] = {{0, 9}, {9, 0}};
    std::vector<cv::Point> out;
    ASSERT_TRUE(feature.CalcIntersection(drawing, pts, 9, 9, out));
    ASSERT_EQ(out.size(), 10u);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(out[static_cast<size_t>(i)], cv::Point(9 - i, i));
}

// Horizontal line through (2,5) and (7,5): k = 0/(-5) = -0. The bottom and
// top candidates divide by zero, become infinite and leave the image; left
// (0,5) and right (9,5) stand. Only line pixels over a drawing value of 2 or
// more pass 51: 50+1 = 51 does not, 50+2 = 52 and 50+51 = 101 do; a drawing
// pixel of 50 off the line sums to 50 and is no crossing.
TEST(GallWallLines, HorizontalLineCrossesOnlyWhereTheSumPassesFiftyOne)
{
    BUSFeature feature = FeatureOfSize(10, 10);
    cv::Mat drawing = cv::Mat::zeros(10, 10, CV_8UC1);
    drawing.at<uchar>(5, 3) = 50;
    drawing.at<uchar>(5, 4) = 1;
    drawing.at<uchar>(5, 5) = 2;
    drawing.at<uchar>(5, 8) = 51;
    drawing.at<uchar>(2, 2) = 50; // off the line: 50 alone stays at or below 51
    cv::Point pts[2] = {{2, 5}, {7, 5}};
    std::vector<cv::Point> out;
    ASSERT_TRUE(feature.CalcIntersection(drawing, pts, 9, 9, out));
    const std::vector<cv::Point> expected = {{3, 5}, {5, 5}, {8, 5}};
    EXPECT_EQ(out, expected);
}

// Line through (0,20) and (1,21) never enters a 10x10 image: k = 1, right
// (9,29), bottom (-11,9), left (0,20), top (-20,0) are all out.
TEST(GallWallLines, LineMissingTheImageLeavesTheOutputAlone)
{
    BUSFeature feature = FeatureOfSize(10, 10);
    const cv::Mat drawing(10, 10, CV_8UC1, cv::Scalar(50));
    cv::Point pts[2] = {{0, 20}, {1, 21}};
    std::vector<cv::Point> out = {{7, 7}};
    EXPECT_FALSE(feature.CalcIntersection(drawing, pts, 9, 9, out));
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0], cv::Point(7, 7));
}

// The parallel to (0,0)-(2,1) (k = 0.5) through (0,4): right (9, trunc(4.5+4))
// = (9,8); bottom (trunc(5/0.5), 9) = (10,9) is past column 9; left (0,4);
// top (trunc(-4/0.5), 0) = (-8,0) out. The line (9,8)-(0,4) rises 4 over 9
// columns: rows of the pixels x=0..9 are 4 + round(4x/9) = 4,4,5,5,6,6,7,7,8,8.
// The line's matrix takes the drawing's size, not the feature image's.
TEST(GallWallLines, ParallelThroughAPointUsesTheDrawingsSize)
{
    BUSFeature feature = FeatureOfSize(5, 5);
    const cv::Mat drawing(10, 10, CV_8UC1, cv::Scalar(51));
    cv::Point pts[2] = {{0, 0}, {2, 1}};
    std::vector<cv::Point> out;
    ASSERT_TRUE(feature.CalcIntersection2(drawing, pts, cv::Point(0, 4), 9, 9, out));
    const std::vector<cv::Point> expected = {{0, 4}, {1, 4}, {2, 5}, {3, 5}, {4, 6},
                                             {5, 6}, {6, 7}, {7, 7}, {8, 8}, {9, 8}};
    EXPECT_EQ(out, expected);
    // CalcIntersection draws its line at the feature image's 5x5, which cannot
    // be added to a 10x10 drawing.
    EXPECT_THROW(feature.CalcIntersection(drawing, pts, 9, 9, out), cv::Exception);
}

// Outer outline: the square (3,3)-(8,8) drawn two pixels wide covers, in row
// 5 and in column 5, the pixels 2..4 and 7..9 (one each side of the edge).
class GallWallRay : public ::testing::Test {
protected:
    BUSFeature feature = FeatureOfSize(12, 12);
    void SetUp() override { feature.m_gbCont1 = {{3, 3}, {8, 3}, {8, 8}, {3, 8}}; }
};

// Ray (5,5)->(6,5) runs along row 5: crossings x 2,3,4,7,8,9. The ends by x
// and by y are (2,5) and (9,5), both spans 7, the tie takes the row order's
// ends: the same pixels. Distances from (6,5): 4 and 3 -> 3.
TEST_F(GallWallRay, HorizontalRayMeasuresToTheNearerEnd)
{
    EXPECT_EQ(feature.CalcLineIntersection(cv::Point(5, 5), cv::Point(6, 5)), 3.0f);
}

// Ray (5,5)->(5,6) is vertical: column 5 crosses at rows 2,3,4,7,8,9; ends
// (5,2) and (5,9), 4 and 3 from (5,6) -> 3.
TEST_F(GallWallRay, VerticalRayMeasuresToTheNearerEnd)
{
    EXPECT_EQ(feature.CalcLineIntersection(cv::Point(5, 5), cv::Point(5, 6)), 3.0f);
}

// Ray (5,5)->(6,6) runs along the diagonal: of (i,i) the outline covers
// i = 3,4,7,8 (its corners are rounded off at 2 and 9). Ends (3,3), (8,8);
// from (6,6): sqrt(18) and sqrt(8) -> sqrt(8) as a float.
TEST_F(GallWallRay, DiagonalRayMeasuresToTheNearerEnd)
{
    EXPECT_EQ(feature.CalcLineIntersection(cv::Point(5, 5), cv::Point(6, 6)), static_cast<float>(std::sqrt(8.0)));
}

TEST_F(GallWallRay, RayMeetingNoOutlineMeasuresZero)
{
    feature.m_gbCont1.clear();
    EXPECT_EQ(feature.CalcLineIntersection(cv::Point(5, 5), cv::Point(6, 6)), 0.0f);
    EXPECT_EQ(feature.CalcLineIntersection(cv::Point(5, 5), cv::Point(5, 6)), 0.0f);
}

// Grading draws the outer outline once and walks each ray over it; every ray,
// vertical ones included, must measure exactly what the full drawing gives.
TEST(GallWallLines, OutlineDrawnOnceMeasuresEveryRayAlike)
{
    const std::vector<std::vector<cv::Point>> outlines = {
        synth::Outline(cv::Point(160, 110), 150.0, 100.0, 360),
        synth::Outline(cv::Point(100, 90), 80.0, 60.0, 200, 5, 0.2),
        {{10, 10}, {200, 30}, {150, 190}, {20, 150}},
    };
    for (const auto& outer : outlines) {
        BUSFeature feature = FeatureOfSize(320, 220);
        feature.m_gbCont1 = outer;
        const cv::Mat outline = feature.DrawGBOuterOutline();
        const cv::Point centre(130, 105);
        for (int y = 0; y < 220; y += 7)
            for (int x = 0; x < 320; x += 11) {
                const cv::Point to(x, y);
                ASSERT_EQ(feature.CalcLineIntersectionOn(outline, centre, to),
                          feature.CalcLineIntersection(centre, to))
                    << to;
                const cv::Point above(x, 3); // same column: a vertical ray
                ASSERT_EQ(feature.CalcLineIntersectionOn(outline, above, to),
                          feature.CalcLineIntersection(above, to))
                    << to;
            }
    }
}

TEST(GallWallLines, CoordinateComparators)
{
    EXPECT_TRUE(equalX(cv::Point(3, 1), cv::Point(3, 9)));
    EXPECT_FALSE(equalX(cv::Point(3, 1), cv::Point(4, 1)));
    EXPECT_TRUE(equalY(cv::Point(0, 2), cv::Point(8, 2)));
    EXPECT_FALSE(equalY(cv::Point(0, 2), cv::Point(0, 3)));
}
