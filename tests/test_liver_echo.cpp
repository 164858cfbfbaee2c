// Echo of a liver lesion: the grey ratio of lesion to liver ring and the
// histogram features that decide between neighbouring verdicts.
#include <cmath>

#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "FeatureDescription/Description.h"
#include "liver_scene.h"

using namespace liver_scene;

namespace {

// Echo of a lesion (x0..x1, y0..y1) of one grey on a uniform liver of
// another; the liver covers the whole image.
int EchoOf(int width, int height, int liverGrey, int x0, int y0, int x1, int y1, int lesionGrey)
{
    cv::Mat image = Scene(width, height, liverGrey);
    Paint(image, x0, y0, x1, y1, lesionGrey);
    return Describe(image, WholeLiver(image, Box(x0, y0, x1, y1))).echo;
}

// A feature object initialised on a grey image with the liver over all of it.
BUSFeature Initialised(const cv::Mat& image, std::vector<cv::Point> lesion)
{
    BUSFeature f(image, image.cols, image.rows);
    std::vector<cv::Point> liver = BoxPoints(0, 0, image.cols - 1, image.rows - 1);
    f.InitiLiverPara(liver, lesion, cv::Rect(0, 0, image.cols, image.rows));
    return f;
}

} // namespace

// 20 x 20 lesion in a 100 x 100 liver: lesion area 19 * 19 = 361, liver area
// 99 * 99 = 9801, share 0.037 (above 0.005). Liver ring grey 100 throughout.
TEST(LiverEcho, RatioAtOnePointOneStaysInLowerBranch)
{
    // 110 / 100 = 1.1f, not greater than 1.1f; widened 1.10000002 > 0.7 -> 2.
    EXPECT_EQ(EchoOf(100, 100, 100, 40, 40, 59, 59, 110), 2);
    // 111 / 100 = 1.11 > 1.1f and < 1.5f -> 3.
    EXPECT_EQ(EchoOf(100, 100, 100, 40, 40, 59, 59, 111), 3);
}

TEST(LiverEcho, RatioOnePointFiveGoesToAreaAndBrightTests)
{
    // 150 / 100 = 1.5f: not below 1.5f, below 2.0f. Share 0.037 > 0.005;
    // no pixel at 200 or more, bright share 0 -> 3.
    EXPECT_EQ(EchoOf(100, 100, 100, 40, 40, 59, 59, 150), 3);

    // Same lesion, left half 100 and right half 200: mean (100 + 200) / 2 = 150,
    // ratio 1.5f; 200 of 400 pixels at 200 or more: 0.5 > 0.1 -> 4.
    cv::Mat image = Scene(100, 100, 100);
    Paint(image, 40, 40, 49, 59, 100);
    Paint(image, 50, 40, 59, 59, 200);
    EXPECT_EQ(Describe(image, WholeLiver(image, Box(40, 40, 59, 59))).echo, 4);

    // Uniform 150 in a 400 x 300 liver: 361 / (399 * 299 = 119301) = 0.0030 <= 0.005 -> 4.
    EXPECT_EQ(EchoOf(400, 300, 100, 190, 140, 209, 159, 150), 4);
}

TEST(LiverEcho, RatioTwoDecidesByAbsoluteGrey)
{
    // 200 / 100 = 2.0f >= 2.0f, lesion grey 200 >= 80 -> 4.
    EXPECT_EQ(EchoOf(100, 100, 100, 40, 40, 59, 59, 200), 4);
    // 78 / 39 = 2.0f, lesion grey 78 < 80 -> 3.
    EXPECT_EQ(EchoOf(100, 100, 39, 40, 40, 59, 59, 78), 3);
    // 80 / 40 = 2.0f, lesion grey 80 >= 80 -> 4.
    EXPECT_EQ(EchoOf(100, 100, 40, 40, 40, 59, 59, 80), 4);
    // 79 / 40 = 1.975: middle test; share 0.037 > 0.005, no bright pixel -> 3.
    EXPECT_EQ(EchoOf(100, 100, 40, 40, 40, 59, 59, 79), 3);
}

// Between 0.6 and 0.7 the weighted histogram sum grey^2 * pixels decides,
// against 1e7. A 20 x 20 lesion has 400 pixels, a 60 x 60 one 3600.
TEST(LiverEcho, RatioBetweenSixAndSevenTenthsUsesWeightedSum)
{
    // 60 / 100 = 0.6f, widened 0.60000002: not below 0.6.
    //   3600 * 400 = 1.44e6, not above 1e7 -> 1.
    EXPECT_EQ(EchoOf(100, 100, 100, 40, 40, 59, 59, 60), 1);
    //   3600 * 3600 = 1.296e7 > 1e7 -> 2.
    EXPECT_EQ(EchoOf(100, 100, 100, 20, 20, 79, 79, 60), 2);
    // 70 / 100 = 0.7f, widened 0.69999999: not above 0.7.
    //   4900 * 400 = 1.96e6 -> 1;  4900 * 3600 = 1.764e7 -> 2.
    EXPECT_EQ(EchoOf(100, 100, 100, 40, 40, 59, 59, 70), 1);
    EXPECT_EQ(EchoOf(100, 100, 100, 20, 20, 79, 79, 70), 2);
    // Outside the band the sum plays no part: 0.59 -> 1 despite
    // 3481 * 3600 = 1.25e7; 0.71 -> 2 despite 5041 * 400 = 2.0e6.
    EXPECT_EQ(EchoOf(100, 100, 100, 20, 20, 79, 79, 59), 1);
    EXPECT_EQ(EchoOf(100, 100, 100, 40, 40, 59, 59, 71), 2);
}

TEST(LiverEcho, WeightedSumMustExceedTenMillionStrictly)
{
    // Lesion (10..49, 10..34): 40 * 25 = 1000 pixels of grey 100:
    // 100^2 * 1000 = 1e7 exactly, which is not above 1e7f.
    cv::Mat image = Scene(60, 45, 100);
    BUSFeature f = Initialised(image, BoxPoints(10, 10, 49, 34));
    f.m_lesionAvgGray = 65.0f;
    f.m_liverAvgGray = 100.0f; // 0.65: the weighted-sum band
    Description d(image, image, cv::Rect(0, 0, 60, 45));
    EXPECT_EQ(d.LiverEcho(f, f.GetOrganCont(ORGAN_LIVER)), 1);

    // One pixel at 101 instead: 999 * 10000 + 10201 = 10000201 > 1e7 -> 2.
    image.at<uchar>(20, 20) = 101;
    EXPECT_EQ(d.LiverEcho(f, f.GetOrganCont(ORGAN_LIVER)), 2);
}

TEST(LiverEcho, EmptyLiverOutlineMakesAreaShareLarge)
{
    cv::Mat image = Scene(400, 300, 100);
    Paint(image, 190, 140, 209, 159, 150);
    BUSFeature f = Initialised(image, BoxPoints(190, 140, 209, 159));
    Description d(image, image, cv::Rect(0, 0, 400, 300));
    // Ratio 1.5f. With the liver outline, 361 / 119301 = 0.003 <= 0.005 -> 4.
    EXPECT_EQ(d.LiverEcho(f, f.GetOrganCont(ORGAN_LIVER)), 4);
    // With no outline the area is 0 + 1e-5: 361 / 1e-5 is far above 0.005,
    // and the bright share 0 is not above 0.1 -> 3.
    EXPECT_EQ(d.LiverEcho(f, {}), 3);
}

// Pure white takes no part in the weighted sum but counts as bright.
TEST(LiverEchoFeature, WhiteIsBrightButNotWeighed)
{
    // Lesion (10..19)^2 of 100 pixels: columns 10..14 grey 255, 15..19 grey 200.
    cv::Mat image = Scene(40, 40, 100);
    Paint(image, 10, 10, 14, 19, 255);
    Paint(image, 15, 10, 19, 19, 200);
    BUSFeature f = Initialised(image, BoxPoints(10, 10, 19, 19));
    const std::vector<float> e = f.GetEchoCysticFeature();
    ASSERT_EQ(e.size(), 2u);
    EXPECT_EQ(e[0], 2000000.0f); // 200^2 * 50; the 50 white pixels add nothing
    EXPECT_EQ(e[1], 1.0f);       // 100 of 100 pixels at 200 or more
}

// The bright share reads the object's lesion, whatever image and mask are given.
TEST(LiverEchoFeature, BrightShareReadsTheWholeLesion)
{
    cv::Mat image = Scene(40, 40, 100);
    Paint(image, 10, 10, 19, 14, 220); // 50 of the 100 lesion pixels at 220
    BUSFeature f = Initialised(image, BoxPoints(10, 10, 19, 19));
    const cv::Mat none = cv::Mat::zeros(40, 40, CV_8UC1);
    const std::vector<float> e = f.CalcuEcho(image, none);
    EXPECT_EQ(e[0], 0.0f); // empty mask: empty histogram
    EXPECT_EQ(e[1], 0.5f); // 50 / 100 from the object's own lesion
}

// With no lesion pixel the bright share is 0 / 0, not a number, and the
// comparison with 0.1 fails.
TEST(LiverEcho, EmptyLesionLabelGivesNotANumberBrightShare)
{
    const cv::Mat image = Scene(100, 100, 220);
    BUSFeature f(image, 100, 100);
    f.m_label = cv::Mat::zeros(100, 100, CV_8UC1);
    f.m_lesionBoundRect = cv::Rect(0, 0, 100, 100);
    const std::vector<float> e = f.GetEchoCysticFeature();
    EXPECT_EQ(e[0], 0.0f);
    EXPECT_TRUE(std::isnan(e[1]));

    // Ratio 150 / 100 = 1.5f, area share 10 / (99 * 99) = 0.001 would give 4;
    // with area 100 the share is 0.0102 > 0.005 and the bright test decides:
    // NaN > 0.1 is false -> 3.
    f.m_lesionAvgGray = 150.0f;
    f.m_liverAvgGray = 100.0f;
    f.m_lesionArea = 100.0f;
    Description d(image, image, cv::Rect(0, 0, 100, 100));
    EXPECT_EQ(d.LiverEcho(f, BoxPoints(0, 0, 99, 99)), 3);
    f.m_lesionArea = 10.0f;
    EXPECT_EQ(d.LiverEcho(f, BoxPoints(0, 0, 99, 99)), 4);
}
