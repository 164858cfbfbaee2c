// Older forms of the axis searches, on a 40 x 10 rectangle outline.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "AxisLength/LesionAxis.h"

namespace {

// Corners of the rectangle x 10..50, y 20..30; centre (30, 25).
const std::vector<cv::Point> kBox = {{10, 20}, {50, 20}, {50, 30}, {10, 30}};
const cv::Rect kBounds(10, 20, 40, 10);

// Every pixel of the same outline, for the principal direction.
std::vector<cv::Point> Outline()
{
    std::vector<cv::Point> out;
    for (int x = 10; x < 50; ++x) out.emplace_back(x, 20);
    for (int y = 20; y < 30; ++y) out.emplace_back(50, y);
    for (int x = 50; x > 10; --x) out.emplace_back(x, 30);
    for (int y = 30; y > 20; --y) out.emplace_back(10, y);
    return out;
}

} // namespace

TEST(AxisVariants, LineThroughAPointMeetsTheOutline)
{
    const cv::Mat canvas = cv::Mat::zeros(60, 60, CV_8UC1);
    const struct {
        float slope, angle;
        cv::Point2f through;
        cv::Point a, b;
        const char* why;
    } rows[] = {
        {0.0f, 0.0f, {30.0f, 25.0f}, {10, 25}, {50, 25}, "left to right of the box at y 25; (11,25) is 1 away"},
        {0.0f, 1.5707964f, {15.0f, 25.0f}, {15, 20}, {15, 30}, "angle pi/2 in float: vertical at x 15"},
        {200.0f, 0.0f, {30.0f, 25.0f}, {30, 20}, {30, 30}, "|200| > 100: x = 30 -+ 5/200 rounds to 30"},
        {0.5f, 0.0f, {30.0f, 25.0f}, {41, 30}, {20, 20},
         "ends (10,15), (50,35): the 8-connected walk holds each row for two columns, so it lies on "
         "the top at x 20, 21 and on the bottom at x 40, 41; four hits give (last, first)"},
    };
    for (const auto& row : rows) {
        cv::Point out[2];
        CalcLineAndContourCrossPoint(canvas, kBox, kBounds, row.slope, row.angle, row.through, out);
        EXPECT_EQ(out[0], row.a) << row.why;
        EXPECT_EQ(out[1], row.b) << row.why;
    }
}

TEST(AxisVariants, FanOfLongAxesKeepsTheLongestChord)
{
    // Principal slope 0. At +-0.1 rad the line (slope tanf(0.1) = 0.1003) runs
    // from y 25 -+ 2.007 -> 23 to 27 across x 10..50: 40 by 4, longer than 40.
    LesionAxis axis;
    const cv::Mat canvas = cv::Mat::zeros(60, 60, CV_8UC1);
    cv::Point out[2];
    axis.GetLongAxisPts1(canvas, Outline(), kBounds, out);
    EXPECT_EQ(axis.m_longAxisSlope, 0.0f);
    EXPECT_EQ(std::abs(out[0].x - out[1].x), 40);
    EXPECT_EQ(std::abs(out[0].y - out[1].y), 4);
}

TEST(AxisVariants, SinglePassShortAxisIsTheVerticalChord)
{
    LesionAxis axis;
    axis.m_size = cv::Size(60, 60);
    axis.m_longAxisSlope = 0.0f; // perpendicular: atan(-1/0) = -90 degrees
    const cv::RotatedRect ellipse(cv::Point2f(30.0f, 25.0f), cv::Size2f(40.0f, 10.0f), 0.0f);
    cv::Point out[2] = {{-1, -1}, {-1, -1}};
    axis.GetShortAxisPts(cv::Mat(), Outline(), ellipse, kBounds, out);
    EXPECT_EQ(out[0].x, out[1].x) << "every chord is vertical";
    EXPECT_EQ(std::abs(out[0].y - out[1].y), 10) << "from y 20 to y 30";
}

TEST(AxisVariants, CorrectedAxesPassThroughTheCrossing)
{
    // Both measurements cross at (30, 25): distance 0 < 0.15 * 60 = 9.
    const lesionAxisPointEnd m = {{10, 25}, {50, 25}, {30, 20}, {30, 30}};
    const lesionAxisPointEnd shifted = {{12, 26}, {48, 24}, {29, 20}, {31, 30}};
    LesionAxis axis;
    lesionAxisPointEnd out{};
    axis.CorrectLesionAxis(m, shifted, cv::Mat::zeros(60, 60, CV_8UC1), kBox, kBounds, out);
    EXPECT_EQ(out.longStart.x, 10);
    EXPECT_EQ(out.longStart.y, 25);
    EXPECT_EQ(out.longEnd.x, 50);
    EXPECT_EQ(out.longEnd.y, 25);
    EXPECT_EQ(out.shortStart.x, 30) << "first's short axis: equal x, vertical";
    EXPECT_EQ(out.shortStart.y, 20);
    EXPECT_EQ(out.shortEnd.y, 30);
}
