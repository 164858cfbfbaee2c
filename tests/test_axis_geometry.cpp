// Line crossings, border intersections and segment pixels of the axis object.
#include <gtest/gtest.h>

#include <cmath>

#include "AxisLength/LesionAxis.h"
#include "AxisLength/LineSteps.h"
#include "AxisLength/OutlineProximity.h"

TEST(AxisCrossPoint, SlantedLinesMeetWhereTheirEquationsAgree)
{
    // y = x and y = 4 - x: c = 0, x = (4 - 0) / (1 - (-1)) = 2, y = 2.
    const cv::Point2f p = GetCrossPoint2(cv::Vec4f(0, 0, 4, 4), cv::Vec4f(0, 4, 4, 0));
    EXPECT_FLOAT_EQ(p.x, 2.0f);
    EXPECT_FLOAT_EQ(p.y, 2.0f);
}

TEST(AxisCrossPoint, ParallelSlantedLinesGiveMinusOne)
{
    // Both slopes 2 / 4 = 0.5.
    const cv::Point2f p = GetCrossPoint2(cv::Vec4f(0, 0, 4, 2), cv::Vec4f(0, 1, 4, 3));
    EXPECT_EQ(p, cv::Point2f(-1.0f, -1.0f));
}

TEST(AxisCrossPoint, VerticalLineTakesItsXAndTheOtherLinesY)
{
    // x = 3 against the flat y = 7.
    EXPECT_EQ(GetCrossPoint2(cv::Vec4f(3, 0, 3, 10), cv::Vec4f(0, 7, 10, 7)), cv::Point2f(3.0f, 7.0f));
    // x = 3 against (0,0)-(4,2): y = 0 + (3 * (0 - 2)) / (0 - 4) = 1.5; either argument may be the vertical one.
    EXPECT_EQ(GetCrossPoint2(cv::Vec4f(3, 0, 3, 10), cv::Vec4f(0, 0, 4, 2)), cv::Point2f(3.0f, 1.5f));
    EXPECT_EQ(GetCrossPoint2(cv::Vec4f(0, 0, 4, 2), cv::Vec4f(3, 0, 3, 10)), cv::Point2f(3.0f, 1.5f));
}

TEST(AxisCrossPoint, TwoVerticalLinesDivideByZero)
{
    // x = 1; y = 0 + ((1 - 2) * (0 - 5)) / (2 - 2) = 5 / 0.
    const cv::Point2f p = GetCrossPoint2(cv::Vec4f(1, 0, 1, 5), cv::Vec4f(2, 0, 2, 5));
    EXPECT_EQ(p.x, 1.0f);
    EXPECT_TRUE(std::isinf(p.y));
}

TEST(AxisCrossPoint, OlderFormAgreesOnSlantedLines)
{
    // ka = 1, kb = -1: x = ((0 - 0) - 0 + 4) / 2 = 2, y = ((-1 * 0 + 1 * 4) - 0) / 2 = 2.
    EXPECT_EQ(GetCrossPoint(cv::Vec4f(0, 0, 4, 4), cv::Vec4f(0, 4, 4, 0)), cv::Point2f(2.0f, 2.0f));
}

TEST(AxisIntersection, FlatLineCrossesOnlyLeftAndRightBorders)
{
    LesionAxis axis;
    axis.m_size = cv::Size(20, 10);
    cv::Mat mask = cv::Mat::zeros(10, 20, CV_8UC1);
    mask.at<uchar>(5, 7) = 50;  // on the line's row
    mask.at<uchar>(5, 12) = 50; // on the line's row
    mask.at<uchar>(6, 7) = 50;  // off the line: 50 alone does not pass 51
    // k = (5 - 5) / (2 - 8) = 0: top and bottom take the marker x 12345678 > maxX,
    // right (19, 5) and left (0, 5) remain, so the line covers row 5.
    cv::Point line[2] = {cv::Point(2, 5), cv::Point(8, 5)};
    std::vector<cv::Point> out;
    ASSERT_TRUE(axis.CalcIntersection(mask, line, 19, 9, out));
    EXPECT_EQ(out, (std::vector<cv::Point>{cv::Point(7, 5), cv::Point(12, 5)}));
}

TEST(AxisIntersection, LineThroughACornerFailsAndLeavesOutputAlone)
{
    LesionAxis axis;
    axis.m_size = cv::Size(20, 10);
    const cv::Mat mask = cv::Mat::zeros(10, 20, CV_8UC1);
    // k = 1 through (0, 0): right (19, 19) leaves, bottom (9, 9), left (0, 0) and top (0, 0) stay: three.
    cv::Point line[2] = {cv::Point(0, 0), cv::Point(9, 9)};
    std::vector<cv::Point> out = {cv::Point(1, 1)};
    EXPECT_FALSE(axis.CalcIntersection(mask, line, 19, 9, out));
    EXPECT_EQ(out, std::vector<cv::Point>{cv::Point(1, 1)});
}

TEST(AxisSegment, StraightSegmentsExcludeTheirEnd)
{
    LesionAxis axis;
    std::vector<cv::Point> out;
    axis.getStraightLineAllPoint(2, 3, 5, 3, out);
    EXPECT_EQ(out, (std::vector<cv::Point>{cv::Point(2, 3), cv::Point(3, 3), cv::Point(4, 3)}));
    out.clear();
    axis.getStraightLineAllPoint(1, 4, 1, 1, out);
    EXPECT_EQ(out, (std::vector<cv::Point>{cv::Point(1, 4), cv::Point(1, 3), cv::Point(1, 2)}));
    out.clear();
    axis.getStraightLineAllPoint(0, 0, 3, 3, out); // slanted
    axis.getStraightLineAllPoint(2, 2, 2, 2, out); // one point
    EXPECT_TRUE(out.empty());
}

TEST(AxisOrdering, ComparatorsAreStrict)
{
    EXPECT_TRUE(compXX(cv::Point(1, 9), cv::Point(2, 0)));
    EXPECT_FALSE(compXX(cv::Point(2, 0), cv::Point(2, 9)));
    EXPECT_TRUE(compYY(cv::Point(9, 1), cv::Point(0, 2)));
    EXPECT_FALSE(compYY(cv::Point(0, 2), cv::Point(9, 2)));
    const std::pair<float, std::vector<cv::Point>> longer(5.0f, {}), shorter(4.0f, {});
    EXPECT_TRUE(cmp1(longer, shorter));
    EXPECT_FALSE(cmp1(shorter, longer));
    EXPECT_FALSE(cmp1(longer, longer));
}

// A walk's pixels by step number agree with stepping the walk, and the run
// inside a box is exactly the steps a stepped walk finds there.
TEST(AxisLineSteps, ClosedFormAgreesWithTheSteppedWalk)
{
    cv::RNG rng(20261123);
    for (int trial = 0; trial < 100000; ++trial) {
        const int span = trial % 3 == 0 ? 4000 : 60;
        const cv::Rect area(0, 0, rng.uniform(1, span), rng.uniform(1, span));
        const cv::Point a(rng.uniform(-span / 4, span * 5 / 4), rng.uniform(-span / 4, span * 5 / 4));
        const cv::Point b(rng.uniform(-span / 4, span * 5 / 4), rng.uniform(-span / 4, span * 5 / 4));
        cv::LineIterator walk(area, a, b, 8, trial % 2 == 0);
        const LineSteps steps(walk);
        const cv::Rect box(rng.uniform(-5, span), rng.uniform(-5, span), rng.uniform(0, span / 3),
                           rng.uniform(0, span / 3));
        int first = -1, last = -2;
        for (int k = 0; k < walk.count; ++k, ++walk) {
            ASSERT_EQ(steps.At(k), walk.pos()) << "trial " << trial << " step " << k;
            if (box.contains(walk.pos())) {
                if (first < 0)
                    first = k;
                last = k;
            }
        }
        int from = -1, to = -2;
        const bool found = steps.Within(box, from, to);
        ASSERT_EQ(found, first >= 0) << "trial " << trial;
        if (found) {
            EXPECT_EQ(from, first) << "trial " << trial;
            EXPECT_EQ(to, last) << "trial " << trial;
        }
    }
}

// The outline test by edges in the pixel's row agrees with the library's
// measured distance, in double and rounded to float, on traced-like
// outlines, polygons with long, repeated and collinear edges, and outlines
// too wide for the exact test.
TEST(AxisOutlineProximity, WithinOneAgreesWithTheMeasuredDistance)
{
    cv::RNG rng(20261124);
    int within = 0;
    for (int trial = 0; trial < 100000; ++trial) {
        const int span = trial % 50 == 0 ? 5000 : trial % 50 == 1 ? 3000 : (trial % 2 ? 12 : 300);
        const cv::Point base(rng.uniform(-50, 50), rng.uniform(-50, 50));
        std::vector<cv::Point> outline;
        const int kind = trial % 3;
        const int count = rng.uniform(1, kind == 0 ? 40 : 8);
        cv::Point p = base;
        for (int i = 0; i < count; ++i) {
            if (kind == 0) // one 8-connected step or a repeat
                p += cv::Point(rng.uniform(-1, 2), rng.uniform(-1, 2));
            else if (kind == 1) // anywhere in the span
                p = base + cv::Point(rng.uniform(0, span + 1), rng.uniform(0, span + 1));
            else // along one line, repeats included
                p = base + cv::Point(3, 2) * rng.uniform(-span / 4, span / 4 + 1);
            outline.push_back(p);
        }
        const OutlineProximity near(outline);
        for (int k = 0; k < 8; ++k) {
            const cv::Point q = outline[size_t(rng.uniform(0, count))] + cv::Point(rng.uniform(-3, 4), rng.uniform(-3, 4));
            const cv::Point r = base + cv::Point(rng.uniform(-4, span + 5), rng.uniform(-4, span + 5));
            for (const cv::Point& at : {q, r}) {
                const double d = std::fabs(cv::pointPolygonTest(outline, at, true));
                ASSERT_EQ(near.WithinOne(at), d < 1.0) << "trial " << trial;
                ASSERT_EQ(near.WithinOne(at, true), static_cast<float>(d) < 1.0f) << "trial " << trial;
                within += d < 1.0;
            }
        }
    }
    EXPECT_GT(within, 100000); // many pixels are near, not only far ones
}
