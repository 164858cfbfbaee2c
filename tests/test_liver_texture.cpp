// Echo texture of a liver lesion: the share of very bright pixels away from
// the outline, against a threshold chosen by the size of the region; and the
// grey entropy.
#include <cmath>

#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "liver_scene.h"

using namespace liver_scene;

namespace {

// 200 x 200 image of grey 100, liver over all of it. Lesion (35..134)^2,
// 100 * 100 = 10000 pixels, also grey 100, with a centre block of `bright`
// pixels of grey 200: 10 rows (80..89) by bright / 10 columns from 70.
//
// With k bright pixels, share p = k / 10000:
//   mean = 100 + 100 p, deviation = 100 sqrt(p (1 - p)),
//   k = 310: 103.1 + 1.8 * 17.33 = 134.3 -> limit 134;
//   k = 280: 102.8 + 1.8 * 16.50 = 132.5 -> limit 132;
// so exactly the 200s are very bright. They lie far from the outline, and
// the high share is k / 10000: 0.031f or 0.028f.
cv::Mat TextureScene(int bright)
{
    cv::Mat image = Scene(200, 200, 100);
    Paint(image, 70, 80, 70 + bright / 10 - 1, 89, 200);
    return image;
}

int TextureVerdict(int bright, int regionWidth, int regionHeight)
{
    const cv::Mat image = TextureScene(bright);
    const Call call{RoiCoor{10, 10, regionWidth, regionHeight}, Box(0, 0, 199, 199), Box(35, 35, 134, 134)};
    return Describe(image, call).echoTexture;
}

} // namespace

TEST(LiverTexture, ThresholdFollowsRegionSize)
{
    // 150 wide (not above 150), 151 tall (above): threshold 0.03.
    EXPECT_EQ(TextureVerdict(310, 150, 151), 2); // 0.031 >= 0.03
    EXPECT_EQ(TextureVerdict(280, 150, 151), 1); // 0.028 <  0.03
    // 151 by 150: the same threshold.
    EXPECT_EQ(TextureVerdict(310, 151, 150), 2);
    EXPECT_EQ(TextureVerdict(280, 151, 150), 1);
    // Both above 150: 0.025, and 0.028 passes.
    EXPECT_EQ(TextureVerdict(280, 151, 151), 2);
    // Neither above 150: 0.035, and 0.031 fails.
    EXPECT_EQ(TextureVerdict(310, 150, 150), 1);
}

TEST(LiverTexture, SevenValuesOfTheMeasure)
{
    const cv::Mat image = TextureScene(310);
    const cv::Rect roi(10, 10, 150, 151);
    BUSFeature f(image(roi), 200, 200);
    std::vector<cv::Point> liver = BoxPoints(0, 0, 199, 199);
    std::vector<cv::Point> lesion = BoxPoints(25, 25, 124, 124);
    f.InitiLiverPara(liver, lesion, roi);
    const std::vector<float> t = f.GetEchotexture();
    ASSERT_EQ(t.size(), 7u);
    EXPECT_EQ(t[2], 10000.0f / 40000.0f); // lesion pixels over liver pixels, 200 * 200
    EXPECT_EQ(t[3], 310.0f / 10000.0f);
    EXPECT_EQ(t[5], 150.0f);
    EXPECT_EQ(t[6], 151.0f);
    // Two greys in shares 0.969 and 0.031:
    // -(0.969 log2 0.969 + 0.031 log2 0.031) = 0.0440 + 0.1554 = 0.1994 bits.
    EXPECT_NEAR(t[4], 0.1994f, 1e-3f);
}

TEST(LiverEntropy, UniformLesionHasNone)
{
    const cv::Mat image = Scene(30, 30, 90);
    cv::Mat mask = cv::Mat::zeros(30, 30, CV_8UC1);
    Paint(mask, 5, 5, 24, 24, 1);
    BUSFeature f(image, 30, 30);
    // One bin holds everything: p = 1, log2 1 = 0.
    EXPECT_EQ(f.GetEntropy(image, mask), 0.0f);
}

TEST(LiverEntropy, CountsBitsOverMaskedPixelsOnly)
{
    cv::Mat image = Scene(30, 30, 255); // outside the mask: ignored
    Paint(image, 0, 0, 14, 29, 10);
    Paint(image, 15, 0, 29, 29, 20);
    cv::Mat mask = cv::Mat::zeros(30, 30, CV_8UC1);
    Paint(mask, 5, 5, 24, 24, 7); // any non-zero value counts
    BUSFeature f(image, 30, 30);
    // Columns 5..14 grey 10, 15..24 grey 20: two halves, 1 bit.
    EXPECT_FLOAT_EQ(f.GetEntropy(image, mask), 1.0f);
    // Four equal quarters: 2 bits.
    Paint(image, 0, 15, 14, 29, 30);
    Paint(image, 15, 15, 29, 29, 40);
    EXPECT_FLOAT_EQ(f.GetEntropy(image, mask), 2.0f);
}

TEST(LiverEntropy, EmptyMaskIsNotANumber)
{
    const cv::Mat image = Scene(10, 10, 50);
    const cv::Mat mask = cv::Mat::zeros(10, 10, CV_8UC1);
    BUSFeature f(image, 10, 10);
    // Every bin 0 / 0.
    EXPECT_TRUE(std::isnan(f.GetEntropy(image, mask)));
}
