// Breast echo from the lesion's grey histogram, and boundary from the
// contrast of the bands along the outline.
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "FeatureDescription/Description.h"
#include "breast_scene.h"

namespace {

// A lesion made of `count` pixels of each listed grey, laid out in one row
// under a full mask: only the histogram matters to the echo verdict.
int Echo(const std::vector<std::pair<int, int>>& greyCounts)
{
    std::vector<uchar> pixels;
    for (const auto& gc : greyCounts)
        pixels.insert(pixels.end(), static_cast<size_t>(gc.second), static_cast<uchar>(gc.first));
    const cv::Mat image = cv::Mat(pixels, true).reshape(1, 1);
    BUSFeature feature(image, cv::Rect(0, 0, image.cols, 1));
    feature.m_lesionMask = cv::Mat(1, image.cols, CV_8UC1, cv::Scalar(255));
    return feature.GetEchoFeature();
}

// Band contrast of a 40 x 30 lesion of grey 100 on a flat background. The
// bands are 7 pixels deep (15 x 15 rectangle): inside 1200 - 26 * 16 = 784
// pixels, outside 54 * 44 - 1200 = 1176, shares 0.4 and 0.6. With no spread
// within a band, between-class variance = 0.24 d^2 and the deviation is its
// root, so the value is d * sqrt(0.24) = 0.48990 d for d = |100 - background|.
float BandContrast(int background)
{
    const cv::Mat image = scene::Image(60, 54, background, 10, 12, 49, 41, 100);
    cv::Mat label = cv::Mat::zeros(54, 60, CV_8UC1);
    cv::rectangle(label, cv::Point(10, 12), cv::Point(49, 41), cv::Scalar(1), cv::FILLED, cv::LINE_8);
    return GrayAvgsep(label, image, 15);
}

int Boundary(float value)
{
    const cv::Mat grey(4, 4, CV_8UC1, cv::Scalar(0));
    Description description(grey, grey, cv::Rect(0, 0, 4, 4));
    return description.BoundaryDescription2(value);
}

} // namespace

TEST(BreastEcho, UniformLesionIsOneSharpPeakFromTwentyPixels)
{
    // One bin: otherSum 0, so sharpness = peak count.
    EXPECT_EQ(Echo({{100, 20}}), 1);
    EXPECT_EQ(Echo({{100, 19}}), 2);
}

TEST(BreastEcho, DarkShareAboveThreeQuartersIsOne)
{
    // Peak 19 at grey 10; others 19, 19, 18 (dark) and 13, 12: otherSum 81 over
    // 5 bins = 16.2, sharpness 19 / 16.2 = 1.2. total = 81 + 19 = 100.
    // Dark (grey 1..25) 19 + 19 + 19 + 19 = 76: 76 / 101 = 0.752 > 0.75 -> 1.
    EXPECT_EQ(Echo({{10, 19}, {15, 19}, {20, 19}, {25, 19}, {100, 12}, {110, 12}}), 1);
    // Dark 75: 75 / 101 = 0.743 -> sharpness decides -> 2.
    EXPECT_EQ(Echo({{10, 19}, {15, 19}, {20, 19}, {25, 18}, {100, 13}, {110, 12}}), 2);
}

TEST(BreastEcho, BlackPeakCountsInTotalButNotAsDark)
{
    // Peak 40 at grey 0; 20 at each of 5, 10, 15. darkSum 60 (bin 0 never added),
    // total = 60 + 40 = 100, darkShare 60 / 101 = 0.59; sharpness 40 / 20 = 2 -> 2.
    EXPECT_EQ(Echo({{0, 40}, {5, 20}, {10, 20}, {15, 20}}), 2);
}

TEST(BreastEcho, EchoIgnoresSaturatedWhite)
{
    // 60 pixels of 255 would be the peak (sharpness 60 / 20 = 3 -> 2); ignored,
    // the 20 pixels of 100 stand alone: sharpness 20 -> 1.
    EXPECT_EQ(Echo({{100, 20}, {255, 60}}), 1);
}

TEST(BreastEcho, BinOfTwoPixelsIsLeftOutOfTheSpreadButCountsAsDark)
{
    // 30 at 100 and 2 at 200: the pair is not a bin of the spread, sharpness 30 -> 1.
    EXPECT_EQ(Echo({{100, 30}, {200, 2}}), 1);
    // 3 at 200 are: sharpness 30 / 3 = 10 -> 2.
    EXPECT_EQ(Echo({{100, 30}, {200, 3}}), 2);
    // Peak 10 at grey 20; 3 at each of 40, 60, 80 (sharpness 10 / 3 = 3.3);
    // pairs at 3, 6, 9, 12 add 8 to dark only: (10 + 8) / (9 + 10 + 1) = 0.9 > 0.75 -> 1.
    EXPECT_EQ(Echo({{20, 10}, {40, 3}, {60, 3}, {80, 3}, {3, 2}, {6, 2}, {9, 2}, {12, 2}}), 1);
}

TEST(BreastEcho, SecondPeakWithinThreeBinsMergesWithTheFirst)
{
    // Peak 30 at 100, second 12 at 103, 3 at 200: otherSum 15 over 2 bins.
    // Merged: otherSum (15 - 12) / 2 = 1.5, peak 42: sharpness 28 -> 1.
    EXPECT_EQ(Echo({{100, 30}, {103, 12}, {200, 3}}), 1);
    EXPECT_EQ(Echo({{100, 30}, {97, 12}, {200, 3}}), 1);
    // Four bins apart they stay apart: 30 / 7.5 = 4 -> 2.
    EXPECT_EQ(Echo({{100, 30}, {104, 12}, {200, 3}}), 2);
    EXPECT_EQ(Echo({{100, 30}, {96, 12}, {200, 3}}), 2);
}

TEST(BreastBoundary, BandContrastOfFlatBands)
{
    // d = 60: 0.48990 * 60 = 29.394.
    EXPECT_NEAR(BandContrast(40), 29.3938769f, 1e-4f);
    EXPECT_NEAR(BandContrast(160), 29.3938769f, 1e-4f);
}

TEST(BreastBoundary, ContrastAboveEightIsAbrupt)
{
    // d = 17: 8.33 -> 1; d = 16: 7.84 -> 2.
    EXPECT_EQ(Boundary(BandContrast(83)), 1);
    EXPECT_EQ(Boundary(BandContrast(84)), 2);
    EXPECT_EQ(Boundary(8.0f), 2);
    EXPECT_EQ(Boundary(std::nextafter(8.0f, 9.0f)), 1);
}

TEST(BreastBoundary, FlatImageGivesNaNWhichCountsAsAbrupt)
{
    // Both bands 100: between-class variance 0 over deviation 0.
    const float value = BandContrast(100);
    EXPECT_TRUE(std::isnan(value));
    EXPECT_EQ(Boundary(value), 1);
    EXPECT_EQ(Boundary(std::numeric_limits<float>::quiet_NaN()), 1);
}
