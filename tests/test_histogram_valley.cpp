// The histogram valley searches: drawn two-peak and one-peak histograms.
#include <cmath>

#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"

namespace {

// A one-row image holding `count` pixels of each grey in `levels`.
cv::Mat Histogram(const std::vector<std::pair<int, int>>& levels)
{
    std::vector<uchar> pixels;
    for (const auto& [grey, count] : levels)
        pixels.insert(pixels.end(), static_cast<size_t>(count), static_cast<uchar>(grey));
    return cv::Mat(pixels, true).reshape(1, 1);
}

struct Valleys {
    float general;
    float thyroid;
};

Valleys Search(const cv::Mat& image)
{
    BUSFeature f(image, cv::Rect(0, 0, image.cols, image.rows));
    const cv::Mat mask(image.size(), CV_8U, cv::Scalar(1));
    return {f.GetCalcificationHistMy(image, mask), f.ThyGetCalcificationHist(image, mask)};
}

// Two spikes of 400 at 40 and 120 (bars up to y = 256 - 230 = 26) and a
// plateau of 100 a bin over 60..100 (230 * 100 / 400 = 57.5, rounded to even
// 58: top at y = 198). The spike tops are the two highest corners, and the
// plateau's corners, at x 60 and 100, lie between them.
std::vector<std::pair<int, int>> TwoPeaks()
{
    std::vector<std::pair<int, int>> levels = {{40, 400}, {120, 400}};
    for (int g = 60; g <= 100; ++g)
        levels.emplace_back(g, 100);
    return levels;
}

} // namespace

TEST(HistogramValley, TwoPeaksGiveTheMidpointOfTheirTops)
{
    // (40 + 120) / 2 = 80 for both searches.
    const Valleys v = Search(Histogram(TwoPeaks()));
    EXPECT_EQ(v.general, 80.0f);
    EXPECT_EQ(v.thyroid, 80.0f);
}

TEST(HistogramValley, PureWhiteNeverCounts)
{
    // 5000 pixels of 255 would be the highest bar; bin 255 is cleared first.
    std::vector<std::pair<int, int>> levels = TwoPeaks();
    levels.emplace_back(255, 5000);
    const Valleys v = Search(Histogram(levels));
    EXPECT_EQ(v.general, 80.0f);
    EXPECT_EQ(v.thyroid, 80.0f);
}

TEST(HistogramValley, OnePeakHasNoValley)
{
    // A single spike leaves one corner above the baseline: fewer than three.
    const Valleys v = Search(Histogram({{90, 300}}));
    EXPECT_EQ(v.general, 0.0f);
    EXPECT_EQ(v.thyroid, 0.0f);
    // A spike at 60 (top y = 26) and two low bars to its right: 100 at 90
    // (top y = 198) and 50 at 150 (230 * 50 / 400 = 28.75 -> 29, top y = 227).
    // The two highest corners are x 60 and 90; x 150 lies outside them: 0.
    const Valleys w = Search(Histogram({{60, 400}, {90, 100}, {150, 50}}));
    EXPECT_EQ(w.general, 0.0f);
    EXPECT_EQ(w.thyroid, 0.0f);
}

TEST(HistogramValley, CornerAtGreyZeroCountsOnlyForTheThyroid)
{
    // Bars: 230 at grey 60 (top y = 26), 106 at grey 0 (230 * 106 / 230 = 106,
    // top y = 150) and 56 at grey 30 (top y = 200).
    // General search: the corner at x = 0 with y 150 > 100 is dropped, two
    // corners remain: 0. Thyroid search: it stays (150 <= 230); the two
    // highest are x 60 and x 0, and x 30 lies between: (60 + 0) / 2 = 30.
    const Valleys v = Search(Histogram({{0, 106}, {30, 56}, {60, 230}}));
    EXPECT_EQ(v.general, 0.0f);
    EXPECT_EQ(v.thyroid, 30.0f);
}

TEST(HistogramValley, BaselineWalkSkipsTheCornerThatSlidesIntoAnErasedPlace)
{
    // Two Gaussian peaks of height 400 at greys 40 and 120: round(400 exp(-(g-40)^2 / 2s^2)
    // + 400 exp(-(g-120)^2 / 2s^2)) pixels of each grey g. For s = 8 the closed picture's
    // polygon is (40,26) (23,237) (0,255) (255,255) (141,250) (120,26) (101,245) (61,250)
    // (40,27). The walk erases (23,237) and steps past (0,255), which slid into its place;
    // likewise (255,255) then (141,250), and (101,245) then (61,250). Of the baseline corners
    // (0,255), (141,250) and (61,250) remain, and (61,250) lies between the two tops at x 40
    // and 120: (40 + 120) / 2 = 80. Re-examining the slid corners would erase every baseline
    // corner and leave no valley. s = 6, 10 and 12 walk the same way.
    for (const double sigma : {6.0, 8.0, 10.0, 12.0}) {
        std::vector<std::pair<int, int>> levels;
        for (int g = 0; g < 256; ++g) {
            const double a = (g - 40) / sigma, b = (g - 120) / sigma;
            levels.emplace_back(g, static_cast<int>(std::lround(400.0 * std::exp(-a * a / 2.0) +
                                                                 400.0 * std::exp(-b * b / 2.0))));
        }
        const Valleys v = Search(Histogram(levels));
        EXPECT_EQ(v.general, 80.0f) << "sigma " << sigma;
        EXPECT_EQ(v.thyroid, 80.0f) << "sigma " << sigma;
    }
}
