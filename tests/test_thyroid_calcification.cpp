// Thyroid calcification: the model's mask, the acoustic shadow search and
// the bright-spot fallback.
#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "thyroid_scene.h"

using thyscene::Deposit;

namespace {

// Ten deposit positions inside the nodule (x 80..119, y 65..94), apart from each other.
std::vector<std::vector<cv::Point>> Deposits(int count)
{
    std::vector<std::vector<cv::Point>> out;
    for (int i = 0; i < count; ++i)
        out.push_back(Deposit(83 + (i % 5) * 7, 68 + (i / 5) * 8));
    return out;
}

// A 2 x 2 dark dot (grey 10) inside the shadow search rectangle, outside
// the nodule. The rectangle for roi (70, 50, 60, 60) is x 62..133, y 50..145:
// w = 60 * 1.2 = 72, h = 60 * 1.6 = 96, x = trunc(70 - 7.2) = 62.
void DarkDot(cv::Mat& image, int x, int y) { image(cv::Rect(x, y, 2, 2)).setTo(10); }

} // namespace

TEST(ThyroidCalcification, ModelCoveringMoreThanThreeTenthsIsOneAndEchoThree)
{
    // 20 x 20 = 400 model pixels over 1200 lesion pixels: 0.33 > 0.3 gives 1 at
    // once, and the echo then returns 3 on the model ratio.
    thyscene::Scene s = thyscene::Make();
    s.model = {thyscene::Box(85, 70, 104, 89)};
    const ThyroidResult r = s.Run();
    EXPECT_EQ(r.calcification, 1);
    EXPECT_EQ(r.echo, 3);
}

TEST(ThyroidCalcification, TenSmallDepositsAreMicrocalcification)
{
    // 10 x 9 = 90 pixels over 1200: 0.075 < 0.08, ten blobs, one dark dot
    // (a single dark blob never shows a shadow): 2.
    thyscene::Scene s = thyscene::Make();
    s.model = Deposits(10);
    DarkDot(s.image, 64, 140);
    const ThyroidResult r = s.Run();
    EXPECT_EQ(r.calcification, 2);
    EXPECT_EQ(r.echo, 0); // 30 / 120 = 0.25, mean 30 <= 35
}

TEST(ThyroidCalcification, NineDepositsLeaveItToTheBrightSpots)
{
    // Nine blobs fall to the bright-spot search; a nodule of 25 and 35 only has
    // no very bright pixel (level 2.4 * 5 + 30 = 42), so nothing is enclosed: 0.
    thyscene::Scene s = thyscene::Make();
    s.model = Deposits(9);
    DarkDot(s.image, 64, 140);
    EXPECT_EQ(s.Run().calcification, 0);

    // The same nine with four enclosed 2 x 2 spots of 250 in the nodule: the
    // fallback finds four small spots (4 / 1200 = 0.0033 each) and grades 2.
    for (int i = 0; i < 4; ++i)
        s.image(cv::Rect(85 + 8 * i, 88, 2, 2)).setTo(250);
    EXPECT_EQ(s.Run().calcification, 2);
}

TEST(ThyroidCalcification, WithoutAnyDarkPixelTheBlobCountIsNeverTaken)
{
    // No pixel of grey 20 or below in the search rectangle: the shadow search
    // returns before counting the model's blobs, so ten deposits do not give 2.
    thyscene::Scene s = thyscene::Make();
    s.model = Deposits(10);
    EXPECT_EQ(s.Run().calcification, 0);
}

namespace {

// A deposit at (95..97, 70..72) above a shadow of grey 10 over x 90..102,
// y 76..90 (contour area 12 * 14 = 168 > 2.7 * 4). Dilated by 5 the shadow
// starts at row 71, below the deposit's top row 70, and touches it.
thyscene::Scene ShadowScene(bool extraDots, int depositY = 70)
{
    thyscene::Scene s = thyscene::Make();
    s.image(cv::Rect(90, 76, 13, 15)).setTo(10);
    s.model = {Deposit(95, depositY)};
    if (extraDots) {
        DarkDot(s.image, 64, 52);
        DarkDot(s.image, 64, 140);
    }
    return s;
}

} // namespace

TEST(ThyroidCalcification, ShadowBelowADepositIsOneAndEchoThree)
{
    // Dots above and below keep the shadow from being the first dark blob.
    thyscene::Scene s = ShadowScene(true);
    const ThyroidResult r = s.Run();
    EXPECT_EQ(r.calcification, 1);
    EXPECT_EQ(r.echo, 3);
}

TEST(ThyroidCalcification, ShadowAboveTheDepositIsNoShadow)
{
    // The deposit at rows 92..94 no longer lies above the shadow's top (71).
    thyscene::Scene s = ShadowScene(true, 92);
    EXPECT_EQ(s.Run().calcification, 0);
}

TEST(ThyroidCalcification, ALoneDarkBlobNeverMakesAShadow)
{
    // The same shadow as the only dark blob: its area is never recorded.
    thyscene::Scene s = ShadowScene(false);
    const ThyroidResult r = s.Run();
    EXPECT_EQ(r.calcification, 0);
}

namespace {

// A feature object on a 60 x 50 region of grey 40 with a 40 x 30 lesion
// (x 10..49, y 10..39, 1200 pixels), the gland everywhere, ring grey 100.
BUSFeature SpotFeature(const cv::Mat& region)
{
    BUSFeature f(region, cv::Rect(0, 0, region.cols, region.rows), region.cols, region.rows);
    f.m_label = cv::Mat::zeros(region.size(), CV_8U);
    f.m_label(cv::Rect(10, 10, 40, 30)).setTo(1);
    f.m_lesionPixNum = 1200;
    f.m_thyOrganMask = cv::Mat(region.size(), CV_8U, cv::Scalar(255));
    f.m_thyFloat1 = 100.0f;
    return f;
}

} // namespace

TEST(ThyroidCalcification, EnclosedBrightSpotsAreCountedBySize)
{
    cv::Mat region(50, 60, CV_8U, cv::Scalar(40));
    // Two 2 x 2 spots of 250: spot share 8 / 1200 = 0.0067 < 0.0095 with no
    // strong spot (4 / 1200 = 0.0033 is not above 0.004), so the gate asks
    // for more than two medium spots: 0.
    region(cv::Rect(15, 15, 2, 2)).setTo(250);
    region(cv::Rect(25, 15, 2, 2)).setTo(250);
    EXPECT_EQ(SpotFeature(region).ThyCalcuCalcification(), 0);

    // A third: three medium spots pass; 3 small > max(0, 2) and none strong: 2.
    region(cv::Rect(35, 15, 2, 2)).setTo(250);
    BUSFeature three = SpotFeature(region);
    EXPECT_EQ(three.ThyCalcuCalcification(), 2);
    EXPECT_EQ(cv::countNonZero(three.m_calcMask), 12);

    // A 3 x 3 spot has 9 pixels, 9 / 1200 = 0.0075 > 0.004 with contrast
    // 250 / 40 > 1.4: strong. Three such spots are small but strong: 1.
    cv::Mat strong(50, 60, CV_8U, cv::Scalar(40));
    for (int x : {15, 25, 35})
        strong(cv::Rect(x, 15, 3, 3)).setTo(250);
    EXPECT_EQ(SpotFeature(strong).ThyCalcuCalcification(), 1);
}

TEST(ThyroidCalcification, SpotsNoBrighterThanTheRingAreIgnored)
{
    // Three spots of 120: 120 - 100 < 25 fails the second gate.
    cv::Mat region(50, 60, CV_8U, cv::Scalar(40));
    for (int x : {15, 25, 35})
        region(cv::Rect(x, 15, 2, 2)).setTo(120);
    EXPECT_EQ(SpotFeature(region).ThyCalcuCalcification(), 0);
}

TEST(ThyroidCalcification, EmptyModelMaskWritesNeitherRatioNorFlag)
{
    cv::Mat region(50, 60, CV_8U, cv::Scalar(40));
    BUSFeature f = SpotFeature(region);
    f.m_calcRatio = 0.5f;
    EXPECT_EQ(f.ThyCalcificationUseModelResult(cv::Mat::zeros(50, 60, CV_8U), RoiCoor{0, 0, 60, 50}), 0);
    EXPECT_EQ(f.m_calcRatio, 0.5f);
    EXPECT_FALSE(f.m_calcFlag);
    EXPECT_EQ(f.m_lesionPixNum, 1200);
    EXPECT_EQ(cv::countNonZero(f.m_calcMask), 0);
}
