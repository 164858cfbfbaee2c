// Echo of the plaque from its own grey levels.
#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"

namespace {

// A 4 x 5 plaque filling its whole region (20 pixels), grey values in row order.
BUSFeature PlaqueOf(const std::vector<uchar>& greys)
{
    cv::Mat image(4, 5, CV_8UC1);
    for (int i = 0; i < 20; ++i)
        image.at<uchar>(i / 5, i % 5) = greys[static_cast<size_t>(i)];
    BUSFeature feature(image, cv::Rect(0, 0, 5, 4), 5, 4);
    feature.m_label = cv::Mat(4, 5, CV_8UC1, cv::Scalar(1));
    feature.m_lesionPixNum = 20;
    return feature;
}

std::vector<uchar> Greys(int a, int na, int b, int nb, int c, int nc)
{
    std::vector<uchar> g;
    g.insert(g.end(), static_cast<size_t>(na), static_cast<uchar>(a));
    g.insert(g.end(), static_cast<size_t>(nb), static_cast<uchar>(b));
    g.insert(g.end(), static_cast<size_t>(nc), static_cast<uchar>(c));
    return g;
}

} // namespace

TEST(CarotidEcho, MeanOf65WithHalfBrightAndSpotsIsMixed)
{
    // 10 x 55, 9 x 65, 1 x 165: mean 1300 / 20 = 65.
    // Otsu: splitting off 165 (v = 0.95 * 0.05 * (165 - 59.7)^2 = 526) beats splitting
    // off 55 (v = 0.25 * 20^2 = 100), so the boundary is 66 and the threshold 65;
    // bright = pixels above 64 = 10 -> 0.5.
    // sd^2 = 95500 / 20 - 65^2 = 550, sd = 23.45; limit = 65 + 2.2 * 23.45 = 116.6 -> 116.
    // top = pixels above 116 = 1 -> 0.05.
    // Rule 1: 0.5 <= 0.65. Rule 2: 65 is not above 65. Rule 3: 65 <= 65, above 40,
    // 0.5 > 0.35 and 0.05 > 0.04: mixed, before rule 4 (116 <= 119) could give 1.
    BUSFeature feature = PlaqueOf(Greys(55, 10, 65, 9, 165, 1));
    EXPECT_EQ(feature.GetCarotidPlaqueEcho(), 3);
    EXPECT_EQ(feature.m_hypoCount, 10); // the bright count
    EXPECT_EQ(feature.m_hyperCount, 10);
}

TEST(CarotidEcho, LimitOf119IsLowEchoWhateverTheSpots)
{
    // 13 x 62, 6 x 64, 1 x 170: mean 1360 / 20 = 68.
    // Otsu splits off 170 (v = 0.95 * 0.05 * 107.4^2 = 548 against 67 for 62 | 64, 170),
    // threshold 64: bright = pixels above 63 = 7 -> 0.35f, not above 0.35.
    // sd^2 = 103448 / 20 - 68^2 = 548.4, sd = 23.42; limit = 68 + 51.52 = 119.5 -> 119.
    // Rules 1 to 3 fail; rule 4: 119 <= 119 gives 1, although top = 1 / 20 = 0.05 > 0.03.
    BUSFeature feature = PlaqueOf(Greys(62, 13, 64, 6, 170, 1));
    EXPECT_EQ(feature.GetCarotidPlaqueEcho(), 1);
    EXPECT_EQ(feature.m_hypoCount, 7);
    EXPECT_EQ(feature.m_hyperCount, 13);
}

TEST(CarotidEcho, BrightPlaqueAboveItsOtsuLevelIsUniformlyBright)
{
    // 2 x 10, 17 x 100, 1 x 101: Otsu splits off 10, threshold 10, bright = above 9 = all 20.
    // mean = (20 + 1700 + 101) / 20 = 91.05 > 60 and 1.0 > 0.65.
    BUSFeature feature = PlaqueOf(Greys(10, 2, 100, 17, 101, 1));
    EXPECT_EQ(feature.GetCarotidPlaqueEcho(), 2);
}
