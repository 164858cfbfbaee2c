// Breast margin: convexity defects of the outline against the vertices of
// its polygon approximation.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "breast_scene.h"

namespace {

// A star of `tips` points of radius 40 and notches of radius 10 about (100, 100).
// Each vertex lies at least 18 pixels off the chord of its neighbours, so the
// polygon approximation (10 pixels) keeps all 2 * tips of them; each notch is a
// defect 40 cos(180 / tips) - 10 >= 18 deep, far above 2 % of the 81 + 81 box.
std::vector<cv::Point> Star(int tips)
{
    std::vector<cv::Point> points;
    const double step = 3.141592653589793 / tips;
    for (int i = 0; i < 2 * tips; ++i) {
        const double radius = i % 2 == 0 ? 40.0 : 10.0;
        points.emplace_back(static_cast<int>(std::lround(100 + radius * std::cos(i * step))),
                            static_cast<int>(std::lround(100 + radius * std::sin(i * step))));
    }
    return points;
}

struct Margin {
    int verdict;
    std::vector<float> values;
};

Margin MarginOf(const std::vector<cv::Point>& outline)
{
    const cv::Mat image(200, 200, CV_8UC1, cv::Scalar(50));
    BUSFeature feature(image, cv::Rect(0, 0, 200, 200));
    feature.IntiBreastPara(outline);
    const int verdict = feature.GetMarginFeatureMy();
    return {verdict, feature.m_marginVals};
}

} // namespace

TEST(BreastMargin, ConvexOutlineHasNoCountedDefect)
{
    const Margin m = MarginOf(scene::Rectangle(40, 30, 79, 59));
    EXPECT_EQ(m.verdict, 1);
    EXPECT_EQ(m.values, (std::vector<float>{0.0f, 0.0f, 0.0f, 4.0f}));
}

TEST(BreastMargin, EightVerticesAreCircumscribedWhateverTheDefects)
{
    const Margin m = MarginOf(Star(4));
    EXPECT_EQ(m.values[3], 8.0f);
    EXPECT_EQ(m.values[2], 4.0f);
    EXPECT_EQ(m.verdict, 1);
}

TEST(BreastMargin, LobulatedOutlineIsNotCircumscribed)
{
    // 10 vertices with 5 defects (>= 4), and 16 vertices with 8 defects (> 3).
    const Margin five = MarginOf(Star(5));
    EXPECT_EQ(five.values[3], 10.0f);
    EXPECT_EQ(five.values[2], 5.0f);
    EXPECT_EQ(five.verdict, 2);
    const Margin eight = MarginOf(Star(8));
    EXPECT_EQ(eight.values[3], 16.0f);
    EXPECT_EQ(eight.values[2], 8.0f);
    EXPECT_EQ(eight.verdict, 2);
    EXPECT_GT(eight.values[1], 0.0f);
    EXPECT_LE(eight.values[0], eight.values[1]);
}

TEST(BreastMargin, DefectExactlyAtTheFloorIsNotCounted)
{
    // Box 100 x 100: floor (100 + 100) * 0.02 = 4. A notch 4 pixels below the
    // top edge is a defect of depth 4.0, not counted; 5 pixels is counted.
    const Margin atFloor = MarginOf({{10, 10}, {60, 14}, {109, 10}, {109, 109}, {10, 109}});
    EXPECT_EQ(atFloor.values[2], 0.0f);
    const Margin below = MarginOf({{10, 10}, {60, 15}, {109, 10}, {109, 109}, {10, 109}});
    EXPECT_EQ(below.values[2], 1.0f);
    // One defect: its depth is both the mean and the greatest.
    EXPECT_GT(below.values[0], 0.0f);
    EXPECT_EQ(below.values[0], below.values[1]);
}
