// The histogram valley searches: drawn two-peak and one-peak histograms.
#include <cmath>

#include <gtest/gtest.h>

#include "BusFeature/BarPicture.h"
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

// The bar picture drawn line by line and closed by OpenCV's own dilation
// and erosion with the 15 x 15 disc.
cv::Mat DrawnAndClosed(const cv::Mat& hist, double maxBin)
{
    cv::Mat picture = cv::Mat::zeros(256, 256, CV_8U);
    for (int h = 0; h < 256; ++h) {
        const double bar = static_cast<double>(230.0f * hist.at<float>(h)) / maxBin;
        cv::line(picture, cv::Point(h, 255), cv::Point(h, WrapSub(256, RoundToInt(bar))), cv::Scalar(255), 1,
                 cv::LINE_8);
    }
    const cv::Mat disc = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(15, 15), cv::Point(-1, -1));
    cv::dilate(picture, picture, disc, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    cv::erode(picture, picture, disc, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    return picture;
}

// A random masked-grey histogram: sparse spikes, smooth crests, noise, flat
// runs, huge counts or nothing at all; bin 255 cleared as the search does.
cv::Mat RandomHistogram(cv::RNG& rng)
{
    cv::Mat hist = cv::Mat::zeros(256, 1, CV_32F);
    const int kind = rng.uniform(0, 6);
    const float scale = rng.uniform(0, 4) == 0 ? 1e6f : 1000.0f;
    if (kind == 0) { // empty
    } else if (kind == 1) {
        for (int k = rng.uniform(1, 12); k > 0; --k)
            hist.at<float>(rng.uniform(0, 256)) = float(rng.uniform(1, int(scale)));
    } else if (kind == 2) {
        for (int k = rng.uniform(1, 5); k > 0; --k) {
            const double centre = rng.uniform(0.0, 255.0), sigma = rng.uniform(1.0, 40.0);
            const double height = rng.uniform(1.0, double(scale));
            for (int g = 0; g < 256; ++g)
                hist.at<float>(g) += float(std::round(height * std::exp(-(g - centre) * (g - centre) / (2 * sigma * sigma))));
        }
    } else if (kind == 3) {
        for (int g = 0; g < 256; ++g)
            hist.at<float>(g) = float(rng.uniform(0, int(scale)));
    } else if (kind == 4) {
        const int from = rng.uniform(0, 256), to = rng.uniform(from, 256);
        for (int g = from; g <= to && g < 256; ++g)
            hist.at<float>(g) = scale;
    } else {
        for (int g = 0; g < 256; ++g)
            hist.at<float>(g) = rng.uniform(0, 3) == 0 ? float(rng.uniform(0, 40)) : 0.0f;
    }
    hist.at<float>(255) = 0.0f;
    return hist;
}

} // namespace

// The closing computed on column heights gives the drawn and closed picture
// pixel for pixel, empty histograms (a whole-column bar) included.
TEST(HistogramValley, ClosingByColumnHeightsEqualsTheDrawnClosing)
{
    cv::RNG rng(20261124);
    for (int trial = 0; trial < 100000; ++trial) {
        const cv::Mat hist = RandomHistogram(rng);
        double maxBin = 0.0;
        cv::minMaxLoc(hist, nullptr, &maxBin);
        const cv::Mat expected = DrawnAndClosed(hist, maxBin);
        const cv::Mat actual = barpicture::Closed(barpicture::Heights(hist, maxBin));
        ASSERT_EQ(cv::countNonZero(expected != actual), 0) << "trial " << trial;
    }
}

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
