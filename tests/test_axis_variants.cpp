// Older forms of the axis searches, on a 40 x 10 rectangle outline and on
// tilted rectangles whose sides hold every lattice point.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "AxisLength/AxisSides.h"
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

// Lattice points of the closed polygon through `corners`, each side from
// its first corner up to the next one; `skipSide` leaves one side's
// interior out (the corner stays).
std::vector<cv::Point> LatticeOutline(const std::vector<cv::Point>& corners, int skipSide = -1)
{
    std::vector<cv::Point> out;
    for (size_t i = 0; i < corners.size(); ++i) {
        const cv::Point a = corners[i];
        const cv::Point b = corners[(i + 1) % corners.size()];
        int dx = b.x - a.x, dy = b.y - a.y;
        int g = std::abs(dx), h = std::abs(dy);
        while (h != 0) { const int t = g % h; g = h; h = t; }
        for (int t = 0; t < g; ++t)
            if (t == 0 || int(i) != skipSide)
                out.emplace_back(a.x + t * dx / g, a.y + t * dy / g);
    }
    return out;
}

// An axis object on an 80 x 80 mask (in the band: measured as it is).
LesionAxis AxisOn(const std::vector<cv::Point>& outline, const std::vector<cv::Point>& corners,
                  cv::RotatedRect ellipse)
{
    LesionAxis axis;
    axis.m_size = cv::Size(80, 80);
    axis.m_contour = outline;
    axis.m_ellipse = ellipse;
    cv::Mat mask = cv::Mat::zeros(80, 80, CV_8UC1);
    cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{corners}, cv::Scalar(255), cv::LINE_8);
    axis.SetMask(mask);
    return axis;
}

struct Axes {
    cv::Point a[2], b[2];
    float lengthA = -1.0f, lengthB = -1.0f;
};

// 45 degree diamond: sides of 20 sqrt 2 from (20,40) and (70,50), of 30 sqrt 2 from (40,20) and (50,70).
const std::vector<cv::Point> kDiamond = {{20, 40}, {40, 20}, {70, 50}, {50, 70}};
// Steep rectangle: long sides of slope 2 (20 by 40), short sides of slope -1/2 (20 by 10).
const std::vector<cv::Point> kSteep = {{30, 10}, {50, 50}, {30, 60}, {10, 20}};

cv::RotatedRect RectOf(const std::vector<cv::Point>& c)
{
    return cv::RotatedRect(cv::Point2f(c[0]), cv::Point2f(c[1]), cv::Point2f(c[2]));
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

TEST(AxisVariants, PointOnARectangleSideBySlopes)
{
    // Side (0,0)-(100,50), slope 0.5.
    const struct {
        cv::Point p;
        bool on;
        const char* why;
    } rows[] = {
        {{50, 25}, true, "25/50 and 25/50: 0.5 both"},
        {{50, 26}, true, "26/50 = 0.52, 24/50 = 0.48: 0.02 off"},
        {{50, 27}, false, "27/50 = 0.54f is 0.5 + 0.04000002, past 0.04f"},
        {{2, 2}, false, "near a corner: 2/2 = 1"},
        {{0, 0}, false, "the corner itself: 0/0"},
        {{120, 60}, true, "on the side's line beyond its corner: 60/120, -10/-20"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(OnRectSide(row.p, {0, 0}, {100, 50}), row.on) << row.why;
    EXPECT_FALSE(OnRectSide({0, 5}, {0, 0}, {0, 50})) << "a vertical side: inf - inf";
}

TEST(AxisVariants, NearlyUprightRectangleSortsNothing)
{
    // Rectangles from (30,10) along (d, 40) and then (-40, d): the first side's corners differ by d in x.
    const struct {
        int d;
        bool sorted;
        const char* why;
    } rows[] = {
        {4, false, "4 < 5"},
        {5, true, "5 is not below 5"},
    };
    for (const auto& row : rows) {
        const cv::Point2f p1(30, 10), p2(30.0f + row.d, 50), p3(-10.0f + row.d, 50.0f + row.d);
        const RectSides sides =
            SortOntoRectSides(LatticeOutline({{30, 10}, {30 + row.d, 50}}), cv::RotatedRect(p1, p2, p3));
        EXPECT_EQ(sides.sorted, row.sorted) << row.why;
        if (!row.sorted) {
            for (const auto& side : sides.side)
                EXPECT_TRUE(side.empty()) << row.why;
        }
    }
}

TEST(AxisVariants, LongAxisJoinsTheMeanPointsOfTheShorterSides)
{
    const struct {
        std::vector<cv::Point> corners;
        Axes expected;
        const char* why;
    } rows[] = {
        // Corners fall on no side (0/0). Shorter sides (20+t, 40-t) and (70-t, 50+t), t 1..19:
        // means (30,30) and (60,60). Longer ones (40+t, 20+t), (50-t, 70-t), t 1..29: (55,35), (35,55).
        // Long axis 45 degrees <= 55 stays first: sqrt(30^2 + 30^2), sqrt(20^2 + 20^2).
        {kDiamond, {{{30, 30}, {60, 60}}, {{35, 55}, {55, 35}}, std::sqrt(1800.0f), std::sqrt(800.0f)},
         "diamond"},
        // Shorter sides (50-2t, 50+t) and (10+2t, 20-t), t 1..9: (40,55) and (20,15); longer ones
        // (30+t, 10+2t) and (30-t, 60-2t), t 1..19: (40,30) and (20,40). Long axis tilt
        // asin(40 / sqrt(2000)) = 63.4 > 55: the short axis goes first.
        {kSteep, {{{20, 40}, {40, 30}}, {{20, 15}, {40, 55}}, std::sqrt(500.0f), std::sqrt(2000.0f)},
         "steep"},
    };
    for (const auto& row : rows) {
        LesionAxis axis = AxisOn(LatticeOutline(row.corners), row.corners, RectOf(row.corners));
        Axes got;
        axis.CalcLesionAxis2(RectOf(row.corners), got.a, got.b, got.lengthA, got.lengthB);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(got.a[i], row.expected.a[i]) << row.why;
            EXPECT_EQ(got.b[i], row.expected.b[i]) << row.why;
        }
        EXPECT_EQ(got.lengthA, row.expected.lengthA) << row.why;
        EXPECT_EQ(got.lengthB, row.expected.lengthB) << row.why;
    }
}

TEST(AxisVariants, WholeAxisFormsFallBackToTheOrdinaryMeasurement)
{
    const std::vector<cv::Point> upright = {{10, 20}, {50, 20}, {50, 30}, {10, 30}};
    const std::vector<cv::Point> tall = {{20, 10}, {30, 10}, {30, 50}, {20, 50}};
    const cv::RotatedRect uprightRect(cv::Point2f(30, 25), cv::Size2f(40, 10), 0.0f);
    const struct {
        int form; // 2 or 3
        std::vector<cv::Point> outline, corners;
        cv::RotatedRect rect;
        const char* why;
    } rows[] = {
        {2, Outline(), upright, uprightRect, "upright rectangle: corners 0 apart in y, nothing sorted"},
        {2, LatticeOutline(kDiamond, 1), kDiamond, RectOf(kDiamond), "one longer side without a point"},
        {3, LatticeOutline(tall), tall, RectOf(tall),
         "vertical principal direction: k infinite, no two points pair"},
    };
    for (const auto& row : rows) {
        LesionAxis axis = AxisOn(row.outline, row.corners, row.rect);
        LesionAxis ordinary = axis;
        Axes got, want;
        if (row.form == 2)
            axis.CalcLesionAxis2(row.rect, got.a, got.b, got.lengthA, got.lengthB);
        else
            axis.CalcLesionAxis3(row.rect, got.a, got.b, got.lengthA, got.lengthB);
        ordinary.CalcLesionAxis(want.a, want.b, want.lengthA, want.lengthB);
        if (row.form == 3) {
            EXPECT_TRUE(std::isinf(axis.m_longAxisSlope)) << row.why;
        }
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(got.a[i], want.a[i]) << row.why;
            EXPECT_EQ(got.b[i], want.b[i]) << row.why;
        }
        EXPECT_EQ(got.lengthA, want.lengthA) << row.why;
        EXPECT_EQ(got.lengthB, want.lengthB) << row.why;
    }
}

TEST(AxisVariants, PointsPairAcrossTheLongAxis)
{
    const float inf = std::numeric_limits<float>::infinity();
    const struct {
        cv::Point b;
        float k;
        bool paired;
        const char* why;
    } rows[] = {
        {{1, 0}, 5.0f, true, "slope 0: |1 - 0| = 1"},
        {{1, 1}, 10000.5f, true, "|1 - 10000.5| = 9999.5"},
        {{1, 1}, 10001.0f, false, "|1 - 10001| = 10000, not below"},
        {{1, 1}, -9999.0f, false, "|1 + 9999| = 10000"},
        {{0, 3}, 0.0f, false, "one column: inf * 0 is NaN"},
        {{1, 0}, inf, false, "k infinite: 0 * inf is NaN"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(PairedAcross({0, 0}, row.b, row.k), row.paired) << row.why;
}

TEST(AxisVariants, ShortAxisIsTheWidestPairAcross)
{
    // The 40 x 10 outline has principal slope 0: across is |dy|, along |dx|.
    // Top and bottom are 10 apart; a pair in one column has no slope, so the
    // best has |dx| 1: from (10,20), the first point, to (11,30). Tilt 0.
    LesionAxis axis = AxisOn(Outline(), {{10, 20}, {50, 20}, {50, 30}, {10, 30}},
                             cv::RotatedRect(cv::Point2f(30, 25), cv::Size2f(40, 10), 0.0f));
    LesionAxis ordinary = axis;
    Axes got, want;
    axis.CalcLesionAxis3(axis.m_ellipse, got.a, got.b, got.lengthA, got.lengthB);
    ordinary.CalcLesionAxis(want.a, want.b, want.lengthA, want.lengthB);
    EXPECT_EQ(axis.m_longAxisSlope, 0.0f);
    EXPECT_EQ(got.b[0], cv::Point(10, 20));
    EXPECT_EQ(got.b[1], cv::Point(11, 30));
    EXPECT_EQ(got.lengthB, std::sqrt(101.0f)) << "1 + 100";
    EXPECT_EQ(got.a[0], want.a[0]) << "the ordinary long axis";
    EXPECT_EQ(got.a[1], want.a[1]);
}
