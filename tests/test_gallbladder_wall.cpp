// Description::CalcGallBladderWall on crafted organ masks, outlines and axes.
// The level set leaves NaN everywhere, so the lumen starts as the whole frame
// and, cut by the organ mask, is the organ mask itself; the outlines below are
// those of the masks, in OpenCV's order (from the top-left corner down the
// left side, along the bottom, up the right side and back along the top).
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "FeatureDescription/Description.h"

namespace {

constexpr int kCols = 40;
constexpr int kRows = 30;

struct WallRun {
    int verdict;
    WallSize wall;
};

WallRun RunWall(const cv::Mat& organMask, const std::vector<cv::Point>& organOutline, cv::Point p0, cv::Point p1,
                bool resized = false)
{
    const cv::Mat grey(kRows, kCols, CV_8UC1, cv::Scalar(100));
    BUSFeature feature(grey, kCols, kRows);
    feature.m_organMaskB = organMask;
    feature.m_organCont3 = organOutline;
    Description description(grey, grey, cv::Rect(0, 0, kCols, kRows));
    if (resized)
        description.SetNewSize(cv::Mat(kRows / 2, kCols / 2, CV_8UC1, cv::Scalar(100)));
    const cv::Point axis[2] = {p0, p1};
    description.SetAxisPts(axis);
    WallRun run;
    run.verdict = description.CalcGallBladderWall(feature, resized);
    run.wall = description.GetGBWallSize();
    return run;
}

// The 3 x 3 square at (10..12, 10..12). Its outline: (10,10) (10,11) (10,12)
// (11,12) (12,12) (12,11) (12,10) (11,10). With every point on the side, the
// trims leave (10,11) (10,12) (11,12) (12,12): 8 / 2.5 -> 3 off the back,
// then 5 / 5 = 1 off the front.
cv::Mat SquareMask()
{
    cv::Mat mask = cv::Mat::zeros(kRows, kCols, CV_8UC1);
    cv::rectangle(mask, cv::Rect(10, 10, 3, 3), cv::Scalar(255), cv::FILLED);
    return mask;
}

cv::Point Top(int x) { return cv::Point(x, 0); }
cv::Point Bottom(int x) { return cv::Point(x, kRows - 1); }

struct SquareRow {
    std::vector<cv::Point> organ;
    int axisX; // vertical axis from (axisX, 0) to (axisX, 29); the side is x < axisX
    int verdict;
    float max;
    float mean;
    cv::Point first;
    cv::Point second;
    const char* why;
    bool resized = false;
};

// An organ list of three selected points trims to its middle one: 3 / 2.5 -> 1
// off the back, then 2 / 3.5 -> 0, so one at least, off the front.
const cv::Point kB(11, 13);

} // namespace

TEST(GallBladderWall, TrimsAlignmentAndRatioOnAVerticalAxis)
{
    const float sqrt2 = float(std::sqrt(2.0));
    const float sqrt5 = float(std::sqrt(5.0));
    const std::vector<SquareRow> rows = {
        {{{0, 0}, kB, {1, 0}}, 15, 1, 1.0f, 1.0f, {11, 12}, {11, 13},
         "organ -> [B]; front gap |(10,11)-B| = 2.24 -> 2 off the inner front, back gap "
         "|(12,12)-B| = 1.41 -> 1 off its back: [(11,12)], 1 from B. Axis mean 15 - 11 = 4: "
         "1 / 4 = 0.25, not above -> 1"},
        {{{0, 0}, kB, {1, 0}}, 14, 2, 1.0f, 1.0f, {11, 12}, {11, 13}, "axis mean 3: 1 / 3 > 0.25 -> 2"},
        {{{14, 0}, kB, {1, 0}}, 15, 1, 1.0f, 1.0f, {11, 12}, {11, 13}, "x 14 < 15 is on the side: as the first row"},
        {{{15, 0}, kB, {1, 0}}, 15, 2, 0.0f, 0.0f, {0, 0}, {0, 0},
         "x 15 is on the axis and left out: [B, (1,0)] trims 1 off the back and 1 off the front, "
         "nothing is left -> 2, wall untouched"},
        {{kB}, 15, 2, 0.0f, 0.0f, {0, 0}, {0, 0}, "one point survives the back trim and not the front one"},
        {{{20, 5}}, 15, 2, 0.0f, 0.0f, {0, 0}, {0, 0}, "no organ point left of the axis"},
        {{{0, 0}, kB, {1, 0}}, 10, 2, 0.0f, 0.0f, {0, 0}, {0, 0}, "no square point left of x 10"},
        {{{0, 0}, {11, 20}, {1, 0}}, 15, 2, 0.0f, 0.0f, {0, 0}, {0, 0},
         "front gap |(10,11)-(11,20)| = 9.06 -> 9 off the 4 inner points: empty -> 2"},
        {{{0, 0}, {11, 12}, {10, 11}, {0, 1}, {0, 2}}, 15, 1, 1.0f, 0.5f, {10, 12}, {10, 11},
         "5 points: 2 off the back, 1 off the front: [(11,12), (10,11)]. The inner front (10,11) is "
         "nearest the second, so gap 1.41 -> 1 off the organ front: [(10,11)]; it is also the last, "
         "so back gap |(12,12)-(10,11)| = 2.24 -> 2 off the inner back: [(10,11), (10,12)] at 0 and 1, "
         "mean 0.5. Axis mean 5: 0.2 -> 1"},
        {{{0, 0}, {10, 11}, {12, 12}, {11, 14}, {12, 15}, {0, 1}, {0, 2}}, 15, 2, sqrt5,
         (1.0f + sqrt2 + sqrt5) / 3.0f, {12, 12}, {10, 11},
         "7 points: 2 off the back, 1 off the front: [(10,11), (12,12), (11,14), (12,15)]. Front gap 0 "
         "-> still 1 off the inner front (nearest is the first). The inner back (12,12) is nearest the "
         "second, not the last: back gap |(12,12)-(12,15)| = 3 -> 3 off the organ back: [(10,11)]. "
         "Inner (10,12) (11,12) (12,12) at 1, 1.41, 2.24. Axis mean 5: 0.45 -> 2"},
        {{{0, 0}, kB, {1, 0}}, 50, 2, 1.0f, 1.0f, {11, 12}, {11, 13},
         "the axis x 50 misses the 40-wide region: no axis pixel -> 2, the wall figures stand"},
        {{{0, 0}, kB, {1, 0}}, 15, 1, 1.0f, 1.0f, {11, 12}, {11, 13},
         "working scale 20 x 15: the level set covers that frame too, back at 40 x 30 every pixel "
         "is 255 > 50, and the organ mask cuts the same square: as the first row", true},
    };
    for (const SquareRow& row : rows) {
        const WallRun run = RunWall(SquareMask(), row.organ, Top(row.axisX), Bottom(row.axisX), row.resized);
        EXPECT_EQ(run.verdict, row.verdict) << row.why;
        EXPECT_EQ(run.wall.max, row.max) << row.why;
        EXPECT_EQ(run.wall.mean, row.mean) << row.why;
        EXPECT_EQ(run.wall.first, row.first) << row.why;
        EXPECT_EQ(run.wall.second, row.second) << row.why;
    }
}

namespace {

// A 16 x 10 organ at (10..25, 10..19) with a notch 10 wide and `depth` rows
// deep cut from the top at columns 13..22. The closing with the 5 x 5 disc
// rounds the notch's lower corners but keeps its middle, so the convexity
// defect between the top corners (25,10) and (10,10), 15 apart, is `depth`
// deep. On the horizontal axis y = 11 the side is y < 11, the top row only.
cv::Mat NotchedMask(int depth)
{
    cv::Mat mask = cv::Mat::zeros(kRows, kCols, CV_8UC1);
    cv::rectangle(mask, cv::Rect(10, 10, 16, 10), cv::Scalar(255), cv::FILLED);
    cv::rectangle(mask, cv::Rect(13, 10, 10, depth), cv::Scalar(0), cv::FILLED);
    return mask;
}

struct NotchRow {
    int depth;
    int axisLength; // from (0, 11) to (axisLength, 11)
    cv::Point first;
    float max;
    const char* why;
};

} // namespace

TEST(GallBladderWall, NotchClosesWhenDeeperThan3AndNarrowerThanAThirdOfTheAxis)
{
    // Open notch: top row (10,10) (25,10) (24,10) (23,10) (12,10) (11,10);
    // 6 / 2.5 -> 2 off the back, 4 / 5 = 0 -> 1 off the front: (25..23,10).
    // Organ [B = (24,9)]: gaps 1.41 -> 1 off each end of the inner side:
    // (24,10), 1 from B.
    // Closed notch: the full top row, (10,10) then (25..11,10): 16 / 2.5 -> 6
    // off the back, 10 / 5 = 2 off the front: (24..17,10). Front gap 1 -> 1 off:
    // (23..17,10); back gap |(17,10)-B| = 7.07 -> 6 off (one must stay):
    // (23,10), 1.41 from B.
    const float sqrt2 = float(std::sqrt(2.0));
    const std::vector<NotchRow> rows = {
        {3, 60, {24, 10}, 1.0f, "depth 768 / 256 = 3.0, not above 3: open"},
        {4, 60, {23, 10}, sqrt2, "depth 4, gap 15 < 60 * 0.3 = 18: closed"},
        {4, 50, {24, 10}, 1.0f, "gap 15 not below 50 * 0.3 = 15.0 in double: open"},
        {4, 51, {23, 10}, sqrt2, "gap 15 < 51 * 0.3 = 15.3: closed"},
    };
    for (const NotchRow& row : rows) {
        const WallRun run =
            RunWall(NotchedMask(row.depth), {{0, 0}, {24, 9}, {1, 0}}, {0, 11}, {row.axisLength, 11});
        EXPECT_EQ(run.wall.first, row.first) << row.why;
        EXPECT_EQ(run.wall.second, cv::Point(24, 9)) << row.why;
        EXPECT_EQ(run.wall.max, row.max) << row.why;
        // B is 2 rows above the axis pixels (0..39, 11): ratio max / 2 > 0.25.
        EXPECT_EQ(run.verdict, 2) << row.why;
    }
}
