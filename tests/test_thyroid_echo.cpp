// Thyroid echo: the ratio table, the muscle test and the refinement for
// very dark nodules, and the overlap test JudgeLesion.
#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"

namespace {

// A 60 x 60 region; the lesion is the 20 x 20 square x 20..39, y 20..39
// (400 pixels). No gland outline is known, so the muscle reference is 0 and
// the muscle distance d equals the lesion mean m.
BUSFeature EchoFeature(const cv::Mat& region, float ring)
{
    BUSFeature f(region, cv::Rect(0, 0, 60, 60), 60, 60);
    f.m_fullSrcImg = region;
    f.m_label = cv::Mat::zeros(60, 60, CV_8U);
    f.m_label(cv::Rect(20, 20, 20, 20)).setTo(1);
    f.m_lesionPixNum = 400;
    f.m_calcMask = cv::Mat::zeros(60, 60, CV_8U);
    f.m_thyOrganMask = cv::Mat::zeros(60, 60, CV_8U);
    f.m_thyFloat1 = ring;
    return f;
}

// A flat region: a single grey makes the lesion's Otsu threshold 0, its
// split -1, and its mean the region's grey.
int FlatEcho(int grey, float ring)
{
    const cv::Mat region(60, 60, CV_8U, cv::Scalar(grey));
    return EchoFeature(region, ring).ThyCalcuEchoMy2();
}

// A lesion of grey 5 with `bright` pixels of 25 inside its core, on black.
cv::Mat DarkLesion(int bright)
{
    cv::Mat region = cv::Mat::zeros(60, 60, CV_8U);
    region(cv::Rect(20, 20, 20, 20)).setTo(5);
    for (int i = 0; i < bright; ++i)
        region.at<uchar>(24 + i / 10, 25 + i % 10) = 25;
    return region;
}

} // namespace

TEST(ThyroidEcho, RatioTableRows)
{
    EXPECT_EQ(FlatEcho(100, 70.0f), 1);  // 100 / 70 = 1.43 > 1.4
    EXPECT_EQ(FlatEcho(100, 100.0f), 2); // 1.0 in (0.96, 1.4]
    // 96 / 100 = 0.96f = 0.95999998 is not above 0.96: hypoechoic.
    EXPECT_EQ(FlatEcho(96, 100.0f), 3);
    EXPECT_EQ(FlatEcho(97, 100.0f), 2);
    EXPECT_EQ(FlatEcho(50, 100.0f), 3); // 0.5 in (0.45, 0.96]
    EXPECT_EQ(FlatEcho(36, 100.0f), 3); // 0.36 < 0.41, mean 36 > 35
    EXPECT_EQ(FlatEcho(35, 100.0f), 0); // 0.35 < 0.41, mean 35 <= 35
    // 0.43 always takes the refinement; a flat lesion has every core pixel
    // above its level (256 / 400 > 0.099): 3, never the table's 0.
    EXPECT_EQ(FlatEcho(30, 69.7674f), 3);
}

TEST(ThyroidEcho, EmptyRingIsReplacedByATinyMean)
{
    // 30 / 1e-5 is far above 1.4: hyperechoic.
    EXPECT_EQ(FlatEcho(30, 0.0f), 1);
}

TEST(ThyroidEcho, LargeModelAreaOrShadowGivesThreeButStillMeasures)
{
    const cv::Mat region(60, 60, CV_8U, cv::Scalar(100));
    BUSFeature f = EchoFeature(region, 70.0f);
    f.m_calcRatio = 0.31f;
    EXPECT_EQ(f.ThyCalcuEchoMy2(), 3);
    EXPECT_EQ(f.m_lesionAvgGray, 100.0f);

    BUSFeature g = EchoFeature(region, 70.0f);
    g.m_calcFlag = true;
    EXPECT_EQ(g.ThyCalcuEchoMy2(), 3);
}

TEST(ThyroidEcho, DarkLesionNearTheMuscleIsRefined)
{
    // 380 pixels of 5 and 20 of 25: Otsu splits at 5 (split 4), so the whole
    // lesion is the dominant part, m = (380 * 5 + 20 * 25) / 400 = 6.
    // r = 6 / 15 = 0.4 and d = 6 < 10: near the muscle, refinement.
    // std = sqrt(55 - 36) = 4.36, level = trunc(1.2 * 4.36 + 6) = 11:
    // 20 bright core pixels, 20 / 400 = 0.05 <= 0.099: 4.
    BUSFeature f = EchoFeature(DarkLesion(20), 15.0f);
    EXPECT_EQ(f.ThyCalcuEchoMy2(), 4);
    EXPECT_EQ(f.m_lesionAvgGray, 6.0f);
    EXPECT_EQ(f.m_hypoCount, 400);
    EXPECT_EQ(f.m_hyperCount, 0);

    // Without the near-muscle test the same r = 0.4 with m = 6 <= 35 would be 0:
    // a ring of 15 puts r inside (0.38, 0.48), a ring of 30 (r = 0.2) does not.
    EXPECT_EQ(EchoFeature(DarkLesion(20), 30.0f).ThyCalcuEchoMy2(), 0);
}

TEST(ThyroidEcho, RefinementOverrides)
{
    // 39 bright pixels: m = 6.95, std = 5.93, level = 14, 39 / 400 = 0.0975: 4.
    EXPECT_EQ(EchoFeature(DarkLesion(39), 15.0f).ThyCalcuEchoMy2(), 4);
    // 40 bright pixels: m = 7, std = 6, level = trunc(14.2) = 14, 40 / 400 = 0.1 > 0.099: 3.
    EXPECT_EQ(EchoFeature(DarkLesion(40), 15.0f).ThyCalcuEchoMy2(), 3);

    // The darker part of the ring: 6 / 12 = 0.5 keeps 4, 6 / 9 = 0.67 > 0.6 gives 3.
    BUSFeature keep = EchoFeature(DarkLesion(20), 15.0f);
    keep.m_thyFloat2 = 12.0f;
    EXPECT_EQ(keep.ThyCalcuEchoMy2(), 4);
    BUSFeature lighter = EchoFeature(DarkLesion(20), 15.0f);
    lighter.m_thyFloat2 = 9.0f;
    EXPECT_EQ(lighter.ThyCalcuEchoMy2(), 3);
    // 6 / 10 = 0.6f = 0.60000002, above 0.6 once widened: 3.
    BUSFeature edge = EchoFeature(DarkLesion(20), 15.0f);
    edge.m_thyFloat2 = 10.0f;
    EXPECT_EQ(edge.ThyCalcuEchoMy2(), 3);
}

TEST(ThyroidEcho, CalcifiedPixelsLeaveTheLesionMean)
{
    // Lesion of 100 with its left half marked calcified and painted 200: the
    // dominant part without them is the right half, mean 100; r = 100 / 70 > 1.4.
    cv::Mat region(60, 60, CV_8U, cv::Scalar(100));
    region(cv::Rect(20, 20, 10, 20)).setTo(200);
    BUSFeature f = EchoFeature(region, 70.0f);
    f.m_calcMask(cv::Rect(20, 20, 10, 20)).setTo(255);
    EXPECT_EQ(f.ThyCalcuEchoMy2(), 1);
    EXPECT_EQ(f.m_lesionAvgGray, 100.0f);
}

TEST(ThyroidEcho, JudgeLesionNeedsNineTenthsInBoth)
{
    const cv::Mat region(60, 60, CV_8U, cv::Scalar(0));
    BUSFeature f = EchoFeature(region, 1.0f);
    cv::Mat a = cv::Mat::zeros(10, 10, CV_8U);
    cv::Mat b = cv::Mat::zeros(10, 10, CV_8U);
    a(cv::Rect(0, 0, 10, 10)).setTo(255);
    b(cv::Rect(0, 0, 10, 4)).setTo(255); // 40 pixels in both
    f.m_lesionPixNum = 44;               // 40 / 44 = 0.909 >= 0.9
    EXPECT_TRUE(f.JudgeLesion(a, b));
    f.m_lesionPixNum = 45; // 40 / 45 = 0.889
    EXPECT_FALSE(f.JudgeLesion(a, b));
    f.m_lesionPixNum = 30; // a share above 1 passes too
    EXPECT_TRUE(f.JudgeLesion(a, b));
    EXPECT_FALSE(f.JudgeLesion(a, cv::Mat::zeros(10, 10, CV_8U)));
}
