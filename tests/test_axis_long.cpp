// Setup of the axis object and the long-axis walk along the principal direction.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"

TEST(AxisSetup, SetParaDoublesTheOutlineAndDividesByItsArea)
{
    LesionAxis axis;
    axis.m_size = cv::Size(20, 20);
    axis.m_contour = {cv::Point(5, 5), cv::Point(14, 5), cv::Point(14, 14), cv::Point(5, 14)};
    axis.SetPara();
    // The filled 10 x 10 block has 36 outline pixels, each listed twice.
    ASSERT_EQ(axis.m_contour.size(), 72u);
    for (size_t i = 0; i < 72; i += 2)
        EXPECT_EQ(axis.m_contour[i], axis.m_contour[i + 1]);
    EXPECT_EQ(cv::countNonZero(axis.m_mask), 100);
    EXPECT_FLOAT_EQ(axis.m_area, 81.0f); // 9 x 9: repeated points add no area
    // Sum of x over the block: 10 * (5 + ... + 14) = 950; 950 / 81 = 11.7 -> 11; y alike.
    EXPECT_EQ(axis.m_centroid, cv::Point(11, 11));
}

namespace {

// A "U" opening upward: the row y = 12 meets it at x = 0, 10, 30 and 40.
// Vertex mean (20, 12.5): cvRound(12.5) = 12, ties to even. x spreads more
// than y and the two do not covary, so the principal line is the row y = 12.
const std::vector<cv::Point> kCup = {cv::Point(0, 0),   cv::Point(10, 0), cv::Point(10, 20), cv::Point(30, 20),
                                     cv::Point(30, 0),  cv::Point(40, 0), cv::Point(40, 30), cv::Point(0, 30)};

} // namespace

TEST(AxisLong, FourHitsGiveTheLastAndTheFirst)
{
    LesionAxis axis;
    const cv::Mat canvas = cv::Mat::zeros(40, 50, CV_8UC3);
    cv::Point out[2];
    // The walk from (0, 12) to (41, 12) is within 1 of the outline at x = 0, 10, 30, 40 only;
    // the inner pair (10, 30) is furthest apart, yet the answer is (last, first).
    axis.GetLongAxisPts(canvas, kCup, cv::boundingRect(kCup), out);
    EXPECT_EQ(out[0], cv::Point(40, 12));
    EXPECT_EQ(out[1], cv::Point(0, 12));
    EXPECT_EQ(axis.m_longAxisSlope, 0.0f);
}

TEST(AxisLong, TwoHitsGiveThemInWalkOrder)
{
    LesionAxis axis;
    const std::vector<cv::Point> bar = {cv::Point(0, 10), cv::Point(40, 10), cv::Point(40, 14), cv::Point(0, 14)};
    const cv::Mat canvas = cv::Mat::zeros(30, 50, CV_8UC3);
    cv::Point out[2];
    // Mean (20, 12), slope 0: the row 12 touches the short sides at x = 0 and x = 40.
    axis.GetLongAxisPts(canvas, bar, cv::boundingRect(bar), out);
    EXPECT_EQ(out[0], cv::Point(0, 12));
    EXPECT_EQ(out[1], cv::Point(40, 12));
}

TEST(AxisLong, LineOffTheImageGivesZeroPoints)
{
    LesionAxis axis;
    const cv::Mat canvas = cv::Mat::zeros(5, 5, CV_8UC3); // row 12 lies below it
    cv::Point out[2] = {cv::Point(7, 7), cv::Point(8, 8)};
    axis.GetLongAxisPts(canvas, kCup, cv::boundingRect(kCup), out);
    EXPECT_EQ(out[0], cv::Point(0, 0));
    EXPECT_EQ(out[1], cv::Point(0, 0));
}
