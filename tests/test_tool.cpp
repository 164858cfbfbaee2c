// Shared numeric helpers: region clipping, conversions, distances, Otsu,
// polynomial fit, ring contrast and the contour guards.
#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "Tool/Tool.h"

TEST(JudgeRoi, ClipsLeftAndTopToZeroAndRightAndBottomShortOfTheLastPixel)
{
    struct Row {
        cv::Rect in;
        int width, height;
        cv::Rect out;
    };
    const Row rows[] = {
        {{0, 0, 100, 100}, 100, 100, {0, 0, 99, 99}},  // 100 + 0 >= 99: width 99 - 0, the edge pixel lost
        {{-5, 0, 50, 50}, 100, 100, {0, 0, 50, 50}},   // x to 0; 50 + 0 < 99 keeps the width
        {{60, 70, 40, 40}, 100, 90, {60, 70, 39, 19}}, // 99 - 60 and 89 - 70, origin kept
    };
    for (const Row& row : rows) {
        cv::Rect r = row.in;
        EXPECT_TRUE(JudgeRoi(r, row.width, row.height));
        EXPECT_EQ(r, row.out) << row.in;
    }
}

TEST(Conversions, InvalidFloatsBecomeIntMin)
{
    EXPECT_EQ(TruncToInt(std::numeric_limits<double>::quiet_NaN()), INT_MIN);
    EXPECT_EQ(TruncToInt(std::numeric_limits<double>::infinity()), INT_MIN);
    EXPECT_EQ(TruncToInt(-std::numeric_limits<double>::infinity()), INT_MIN);
    EXPECT_EQ(TruncToInt(3.0e9), INT_MIN);
    EXPECT_EQ(RoundToInt(std::numeric_limits<double>::quiet_NaN()), INT_MIN);
    EXPECT_EQ(RoundToInt(2147483647.6), INT_MIN); // rounds past INT_MAX
}

TEST(Conversions, TruncationGoesTowardZeroAndRoundingTiesToEven)
{
    EXPECT_EQ(TruncToInt(2.9), 2);
    EXPECT_EQ(TruncToInt(-2.9), -2);
    EXPECT_EQ(TruncToInt(2147483647.0), INT_MAX);
    EXPECT_EQ(TruncToInt(-2147483648.9), INT_MIN); // truncates to -2^31, still representable
    EXPECT_EQ(RoundToInt(2.5), 2);
    EXPECT_EQ(RoundToInt(3.5), 4);
    EXPECT_EQ(RoundToInt(-2.5), -2);
    EXPECT_EQ(RoundToInt(-2.6), -3);
}

TEST(Geometry, PointToLineDistance)
{
    EXPECT_EQ(getDist_P2L(cv::Point(5, 0), cv::Point(0, 0), cv::Point(10, 0)), 0.0f);
    // A = 0, B = 10, C = 0: |10 * 5| / sqrt(100) = 5
    EXPECT_EQ(getDist_P2L(cv::Point(3, 5), cv::Point(0, 0), cv::Point(10, 0)), 5.0f);
    // Line x = y through the origin: |A*x + B*y| / sqrt(2) with A = -4, B = 4
    EXPECT_FLOAT_EQ(getDist_P2L(cv::Point(2, 0), cv::Point(0, 0), cv::Point(4, 4)), 8.0f / std::sqrt(32.0f));
}

TEST(Geometry, CoincidentLineEndsGiveNoNumber)
{
    EXPECT_TRUE(std::isnan(getDist_P2L(cv::Point(1, 1), cv::Point(3, 3), cv::Point(3, 3)) * 0.0f));
}

TEST(Geometry, DistancesAndOrderings)
{
    EXPECT_EQ(distance(cv::Point(0, 0), cv::Point(3, 4)), 5.0f);
    EXPECT_EQ(distance(cv::Point2f(1.5f, 0.0f), cv::Point2f(1.5f, -2.0f)), 2.0f);
    EXPECT_TRUE(compX(cv::Point(1, 9), cv::Point(2, 0)));
    EXPECT_FALSE(compX(cv::Point(2, 0), cv::Point(2, 9)));
    EXPECT_TRUE(compY(cv::Point(9, 1), cv::Point(0, 2)));
    EXPECT_TRUE(descendSort(std::vector<cv::Point>(3), std::vector<cv::Point>(2)));
    EXPECT_FALSE(descendSort(std::vector<cv::Point>(2), std::vector<cv::Point>(2)));
}

namespace {

cv::Mat Grey(int rows, int cols, std::initializer_list<uchar> values)
{
    cv::Mat m(rows, cols, CV_8U);
    std::copy(values.begin(), values.end(), m.begin<uchar>());
    return m;
}

} // namespace

TEST(Otsu, LevelIsTheFirstBestBoundaryLessOne)
{
    struct Row {
        cv::Mat image, mask;
        int level;
        const char* why;
    };
    const Row rows[] = {
        {Grey(2, 2, {10, 20, 30, 40}), cv::Mat::zeros(2, 2, CV_8U), 0, "empty mask"},
        {cv::Mat(3, 3, CV_8U, cv::Scalar(77)), cv::Mat::ones(3, 3, CV_8U), 0, "one grey"},
        // Every boundary 51..150 splits 50s from 150s equally well; the first, 51, less one.
        {Grey(2, 2, {50, 150, 150, 50}), cv::Mat::ones(2, 2, CV_8U), 50, "two greys"},
        // Bin 255 never enters the upper class, which stays empty.
        {Grey(2, 2, {100, 255, 100, 255}), cv::Mat::ones(2, 2, CV_8U), 0, "white with grey"},
        {Grey(1, 2, {0, 255}), cv::Mat::ones(1, 2, CV_8U), 0, "black and white"},
        // Unmasked 200s are ignored: the masked pixels are one grey.
        {Grey(1, 4, {50, 50, 200, 200}), Grey(1, 4, {1, 1, 0, 0}), 0, "masked"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(OtsuAlgThreshold(row.image, row.mask), row.level) << row.why;
}

TEST(Otsu, ViewIsReadWithoutItsRowStep)
{
    // Parent rows: 50 50 50 50 / 150 150 9 9. The 2x2 view holds 50 50 / 150 150,
    // which would split at 50, but the raw offsets r * 2 + c read the first
    // four bytes of the parent: four 50s, a single grey, so 0.
    const cv::Mat parent = Grey(2, 4, {50, 50, 50, 50, 150, 150, 9, 9});
    const cv::Mat view = parent(cv::Rect(0, 0, 2, 2));
    EXPECT_EQ(OtsuAlgThreshold(view, cv::Mat::ones(2, 2, CV_8U)), 0);
    EXPECT_EQ(OtsuAlgThreshold(view.clone(), cv::Mat::ones(2, 2, CV_8U)), 50);
}

TEST(Otsu, MaskSmallerThanImageIsRefused)
{
    EXPECT_ANY_THROW(OtsuAlgThreshold(cv::Mat::ones(4, 4, CV_8U), cv::Mat::ones(2, 2, CV_8U)));
}

TEST(FitPolynomialCurve, LineThroughThreePoints)
{
    // y = 1 + 2x: normal equations [3 3; 3 5] c = [9; 13] give c = (1, 2).
    cv::Mat c;
    FitPolynomialCurve({{0, 1}, {1, 3}, {2, 5}}, 1, c);
    ASSERT_EQ(c.rows, 2);
    EXPECT_NEAR(c.at<double>(0), 1.0, 1e-12);
    EXPECT_NEAR(c.at<double>(1), 2.0, 1e-12);
}

TEST(FitPolynomialCurve, ParabolaCoefficientsByPower)
{
    // y = x^2 at x = -1, 0, 1, 2: exact fit, c = (0, 0, 1).
    cv::Mat c;
    FitPolynomialCurve({{-1, 1}, {0, 0}, {1, 1}, {2, 4}}, 2, c);
    EXPECT_NEAR(c.at<double>(0), 0.0, 1e-12);
    EXPECT_NEAR(c.at<double>(1), 0.0, 1e-12);
    EXPECT_NEAR(c.at<double>(2), 1.0, 1e-12);
}

TEST(GrayDiff, OuterRingAgainstWholeMaskOrInnerRing)
{
    // 6x6 square of 1s in a 20x20 mask; inside grey 100 with a 70 border
    // ring, outside 40. k = 3 gives one-pixel rings.
    cv::Mat mask = cv::Mat::zeros(20, 20, CV_8U);
    mask(cv::Rect(7, 7, 6, 6)).setTo(1);
    cv::Mat image(20, 20, CV_8U, cv::Scalar(40));
    image(cv::Rect(7, 7, 6, 6)).setTo(70);
    image(cv::Rect(8, 8, 4, 4)).setTo(100);
    // inner ring is the 20 border pixels at 70: |40 - 70| = 30
    EXPECT_FLOAT_EQ(GrayDiff(mask, image, 3, false), 30.0f);
    // whole mask: (20 * 70 + 16 * 100) / 36 = 83.333..., |40 - 83.33| = 43.33
    EXPECT_FLOAT_EQ(GrayDiff(mask, image, 3, true), static_cast<float>(3000.0 / 36.0 - 40.0));
}

TEST(ContourGuards, EmptyContourDrawsNothingAndMeasuresZero)
{
    // OpenCV itself refuses an empty contour; the guards make it a no-op.
    const std::vector<cv::Point> empty;
    EXPECT_ANY_THROW(cv::contourArea(empty));
    EXPECT_EQ(SafeContourArea(empty), 0.0);
    EXPECT_EQ(SafeContourArea(std::vector<cv::Point2f>()), 0.0);

    cv::Mat image = cv::Mat::zeros(10, 10, CV_8U);
    DrawContour(image, empty, cv::Scalar(255), cv::FILLED);
    SafeDrawContours(image, {empty}, 0, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    SafeDrawContours(image, {empty, empty}, -1, cv::Scalar(255), 1, cv::LINE_8);
    EXPECT_EQ(cv::countNonZero(image), 0);
}

TEST(ContourGuards, EmptyContourBesideRealOnesIsSkipped)
{
    const std::vector<cv::Point> square{{1, 1}, {3, 1}, {3, 3}, {1, 3}};
    cv::Mat image = cv::Mat::zeros(10, 10, CV_8U);
    SafeDrawContours(image, {{}, square}, -1, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    EXPECT_EQ(cv::countNonZero(image), 9); // the 3x3 square, outline included
    EXPECT_EQ(SafeContourArea(square), 4.0);
}

TEST(ContourGuards, BoundedFillDrawsTheSamePixelsAsOpenCV)
{
    // Random outlines, some reaching tens of thousands of rows above the
    // image (where OpenCV's own scan is still quick enough to compare),
    // drawn filled both ways with an offset: every pixel agrees.
    cv::RNG rng(15);
    for (int trial = 0; trial < 3000; ++trial) {
        const int w = rng.uniform(1, 40), h = rng.uniform(1, 40);
        std::vector<std::vector<cv::Point>> contours(static_cast<size_t>(rng.uniform(1, 3)));
        for (auto& c : contours)
            for (int k = rng.uniform(1, 9); k > 0; --k) {
                const int x = rng.uniform(0, 8) == 0 ? rng.uniform(-30000, 30000) : rng.uniform(-w, 2 * w);
                const int y = rng.uniform(0, 3) == 0 ? rng.uniform(-30000, 0) : rng.uniform(-h, 2 * h);
                c.emplace_back(x, y);
            }
        const cv::Point offset(rng.uniform(-5, 6), rng.uniform(-5, 6));
        cv::Mat expected = cv::Mat::zeros(h, w, CV_8U), drawn = expected.clone();
        cv::drawContours(expected, contours, -1, cv::Scalar(51), cv::FILLED, cv::LINE_8, cv::noArray(), INT_MAX,
                         offset);
        FillContoursBounded(drawn, contours, cv::Scalar(51), cv::LINE_8, offset);
        ASSERT_EQ(cv::countNonZero(expected != drawn), 0) << "trial " << trial;
    }
}

TEST(ContourGuards, OutlineNearTheIntLimitsFillsOnlyTheImageRows)
{
    // A triangle from (4, 2 - 2^31) down to (8, 4) and (0, 4). Both slanted
    // sides move 4 columns over 2^31 + 2 rows: 4 * 2^16 / (2^31 + 2)
    // truncates to a step of 0, so both cross every row at x = 4 and the
    // fill is column 4 of rows 0 to 3. The strokes are clipped to row 0 at
    // x = 4 + 2^31 * 4 / (2^31 + 2) = 4 + 3 = 7 and x = 4 - 3 = 1 (both
    // truncated), then run to (8, 4) and (0, 4); the bottom side fills row 4.
    cv::Mat mask = cv::Mat::zeros(6, 10, CV_8U);
    DrawContour(mask, {{4, -2147483646}, {8, 4}, {0, 4}}, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    const cv::Mat expected = 255 * (cv::Mat_<uchar>(6, 10) << 0, 1, 0, 0, 1, 0, 0, 1, 0, 0,
                                                               0, 1, 0, 0, 1, 0, 0, 1, 0, 0,
                                                               1, 0, 0, 0, 1, 0, 0, 1, 0, 0,
                                                               1, 0, 0, 0, 1, 0, 0, 0, 1, 0,
                                                               1, 1, 1, 1, 1, 1, 1, 1, 1, 0,
                                                               0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(cv::countNonZero(mask != expected), 0) << mask;
}

namespace {

// A random outline of the kinds hosts pass: a jagged ring, a few far-flung
// vertices, or a self-crossing zigzag, in and around a canvas of `size`.
std::vector<cv::Point> RandomOutline(cv::RNG& rng, cv::Size size)
{
    std::vector<cv::Point> outline;
    const int kind = rng.uniform(0, 3);
    const cv::Point centre(rng.uniform(-5, size.width + 5), rng.uniform(-5, size.height + 5));
    const int count = rng.uniform(1, 30);
    for (int i = 0; i < count; ++i) {
        if (kind == 0) {
            const double t = 6.283185307179586 * i / count, r = rng.uniform(1.0, 20.0);
            outline.emplace_back(centre.x + int(r * std::cos(t)), centre.y + int(r * std::sin(t)));
        } else if (kind == 1) {
            outline.emplace_back(rng.uniform(-20, size.width + 20), rng.uniform(-20, size.height + 20));
        } else {
            outline.emplace_back(centre.x + rng.uniform(-12, 13), centre.y + (i % 2 ? 6 : -6));
        }
    }
    return outline;
}

} // namespace

// Tracing a fresh mask on the filled outline's box gives the outline a trace
// of the whole mask gives, and a mask that held something is traced whole.
TEST(FillAndTakeOutline, TracingTheBoxFindsTheWholeMasksOutline)
{
    cv::RNG rng(20261124);
    for (int trial = 0; trial < 100000; ++trial) {
        const cv::Size size(rng.uniform(1, 60), rng.uniform(1, 60));
        std::vector<cv::Point> outline = RandomOutline(rng, size);
        cv::Mat mask = cv::Mat::zeros(size, CV_8UC1);
        if (trial % 10 == 0)
            mask.at<uchar>(rng.uniform(0, size.height), rng.uniform(0, size.width)) = 255;
        cv::Mat whole = mask.clone();
        DrawContour(whole, outline, cv::Scalar(255), cv::FILLED, cv::LINE_8);
        std::vector<std::vector<cv::Point>> found;
        cv::findContours(whole, found, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
        std::vector<cv::Point> copy;
        const bool any = FillAndTakeOutline(outline, copy, mask);
        ASSERT_EQ(any, !found.empty()) << "trial " << trial;
        if (any) {
            ASSERT_EQ(outline, found[0]) << "trial " << trial;
            ASSERT_EQ(copy, found[0]) << "trial " << trial;
        }
        ASSERT_EQ(cv::norm(mask, whole, cv::NORM_INF), 0.0) << "trial " << trial;
    }
}

// An outline drawn on a canvas of its own box, moved by the box's corner,
// sets the pixels it sets on the whole canvas: spots and holes are measured
// on their boxes.
TEST(ContourGuards, DrawingOnTheBoxEqualsTheWholeDrawingCut)
{
    cv::RNG rng(20261125);
    for (int trial = 0; trial < 100000; ++trial) {
        const cv::Size size(rng.uniform(1, 60), rng.uniform(1, 60));
        std::vector<cv::Point> outline = RandomOutline(rng, size);
        for (cv::Point& p : outline) // spots lie on the canvas
            p = cv::Point(std::clamp(p.x, 0, size.width - 1), std::clamp(p.y, 0, size.height - 1));
        cv::Mat whole = cv::Mat::zeros(size, CV_8UC1);
        DrawContour(whole, outline, cv::Scalar(255), cv::FILLED, cv::LINE_8);
        const cv::Rect box = GrowWithin(cv::boundingRect(outline), 1, size);
        cv::Mat part = cv::Mat::zeros(box.size(), CV_8UC1);
        SafeDrawContours(part, std::vector<std::vector<cv::Point>>(1, outline), 0, cv::Scalar(255), cv::FILLED,
                         cv::LINE_8, INT_MAX, -box.tl());
        ASSERT_EQ(cv::countNonZero(whole), cv::countNonZero(part)) << "trial " << trial;
        ASSERT_EQ(cv::norm(whole(box), part, cv::NORM_INF), 0.0) << "trial " << trial;
    }
}

// The vessel choice counted on the plaque's box agrees with counting the
// overlap of whole-image masks.
TEST(ChooseOneOrgan, CountingOnThePlaquesBoxChoosesAsWholeMasksDo)
{
    cv::RNG rng(20261126);
    for (int trial = 0; trial < 100000; ++trial) {
        const cv::Size size(rng.uniform(1, 60), rng.uniform(1, 60));
        const std::vector<cv::Point> plaque = RandomOutline(rng, size);
        std::vector<cv::Point> packed;
        std::vector<int> sizes;
        for (int k = rng.uniform(0, 4); k > 0; --k) {
            const std::vector<cv::Point> vessel = RandomOutline(rng, size);
            packed.insert(packed.end(), vessel.begin(), vessel.end());
            sizes.push_back(int(vessel.size()));
        }
        // Straightforward: whole masks at 50, overlaps where the sum passes 80.
        cv::Mat lesion = cv::Mat::zeros(size, CV_8UC1);
        DrawContour(lesion, plaque, cv::Scalar(50), cv::FILLED, cv::LINE_8);
        const int limit = TruncToInt(0.25f * static_cast<float>(cv::countNonZero(lesion)));
        std::vector<cv::Point> expected;
        size_t next = 0;
        for (int s : sizes) {
            const std::vector<cv::Point> vessel(packed.begin() + long(next), packed.begin() + long(next + size_t(s)));
            next += size_t(s);
            cv::Mat organ = cv::Mat::zeros(size, CV_8UC1);
            DrawContour(organ, vessel, cv::Scalar(50), cv::FILLED, cv::LINE_8);
            cv::Mat sum = organ + lesion;
            cv::threshold(sum, sum, 80, 255, cv::THRESH_BINARY);
            if (cv::countNonZero(sum) > limit) {
                expected = vessel;
                break;
            }
        }
        std::vector<cv::Point> chosen;
        const bool found = ChooseOneOrgan(plaque, packed, sizes, size.width, size.height, chosen);
        ASSERT_EQ(found, !expected.empty()) << "trial " << trial;
        ASSERT_EQ(chosen, expected) << "trial " << trial;
    }
}
