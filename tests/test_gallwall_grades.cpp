// Gall wall masks, the thickening grade and its working scale, and the wall grade.
#include <cmath>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

namespace {

std::vector<cv::Point> Box(int left, int top, int right, int bottom)
{
    return {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
}

// A feature on a black cols x rows region with an outer box inset by 5 and a
// lumen 7 px further in: a wall band 7 px thick on every side.
BUSFeature FrameOf(int cols, int rows)
{
    BUSFeature feature(cv::Mat::zeros(rows, cols, CV_8UC1), cols, rows);
    std::vector<cv::Point> outer = Box(5, 5, cols - 6, rows - 6);
    std::vector<cv::Point> inner = Box(12, 12, cols - 13, rows - 13);
    feature.InitiGBOrganPara(outer, inner);
    return feature;
}

} // namespace

// Outer box (2,2)-(11,11) fills 10x10 = 100 pixels; lumen (4,4)-(9,9) fills
// 36; the band holds 64. The outline of the filled square has 4*9 = 36
// points and encloses 9*9 = 81.
TEST(GallWallMasks, BandIsOrganLessLumen)
{
    BUSFeature feature(cv::Mat::zeros(14, 14, CV_8UC1), 14, 14);
    std::vector<cv::Point> outer = Box(2, 2, 11, 11);
    std::vector<cv::Point> inner = Box(4, 4, 9, 9);
    feature.InitiGBOrganPara(outer, inner);
    EXPECT_EQ(cv::countNonZero(feature.m_organMaskB == 255), 100);
    EXPECT_EQ(cv::countNonZero(feature.m_gbOrganMask == 255), 36);
    EXPECT_EQ(cv::countNonZero(feature.m_organLabel == 1), 100);
    EXPECT_EQ(cv::countNonZero(feature.m_gbWallLabel == 1), 36);
    EXPECT_EQ(cv::countNonZero(feature.m_gbWallMask == 1), 64);
    EXPECT_EQ(cv::countNonZero(feature.m_gbWallMask), 64);
    EXPECT_EQ(feature.m_gbCont1.size(), 36u);
    EXPECT_EQ(feature.m_gbCont2.size(), 20u); // 4*5 around the 6x6 lumen
    EXPECT_EQ(outer, feature.m_gbCont1);      // the caller's vectors are replaced too
    EXPECT_EQ(feature.m_organArea, 81.0f);
    EXPECT_NEAR(feature.m_ellipse.center.x, 6.5f, 1e-3); // centre of the square's outline
    EXPECT_NEAR(feature.m_ellipse.center.y, 6.5f, 1e-3);
}

TEST(GallWallMasks, OneOuterPixelCannotBeFitted)
{
    BUSFeature feature(cv::Mat::zeros(14, 14, CV_8UC1), 14, 14);
    std::vector<cv::Point> outer = {{5, 5}};
    std::vector<cv::Point> inner = Box(4, 4, 9, 9);
    EXPECT_THROW(feature.InitiGBOrganPara(outer, inner), cv::Exception);
}

// 110 columns by 40 rows: 110 lies in 110..150, so no resizing although the
// rows are below 110. Band from x 5..104, y 5..34 (100x30 = 3000) less the
// lumen x 12..97, y 12..27 (86x16 = 1376): 1624. After three 3x3 erosions a
// pixel must be 3 from anything outside: inside x 8..101, y 8..31 (94x24 =
// 2256), outside x 9..100, y 9..30 (92x22 = 2024): 232 = 1624/7 -> 1/7.
// Chords are columns (the lumen box's short side is vertical): wall rows
// 5..11 and 28..34, 14 pixels over 34 - 5 = 29 -> 14/29. 1/7 < 0.15 -> 1.
TEST(GallWallThicken, HundredTenByFortyIsNotResized)
{
    BUSFeature feature = FrameOf(110, 40);
    EXPECT_EQ(feature.GetGBThicken(), 1);
    EXPECT_EQ(feature.m_gbThickRatio1, 232.0f / 1624.0f);
    EXPECT_EQ(feature.m_gbThickRatio2, 14.0f / 29.0f);
}

// 160 by 100: columns above 150 but rows below, so no band applies and the
// scale stays 1. Band 150x90 - 136x76 = 3164; survivors 144x84 - 142x82 =
// 452 = 3164/7. Chords: rows 5..11 and 88..94, 14 pixels over 89.
TEST(GallWallThicken, HundredSixtyByHundredIsNotResized)
{
    BUSFeature feature = FrameOf(160, 100);
    EXPECT_EQ(feature.GetGBThicken(), 1);
    EXPECT_EQ(feature.m_gbThickRatio1, 452.0f / 3164.0f);
    EXPECT_EQ(feature.m_gbThickRatio2, 14.0f / 89.0f);
}

// 109 by 109 is measured at 1.5: the 7 px band grows to about 10.5 px, and
// three erosions leave about 4.5 of it, well above the 1/7 of full size.
// Chords still run on the band at its own size: 14 pixels over 98.
TEST(GallWallThicken, HundredNineSquareIsEnlarged)
{
    BUSFeature feature = FrameOf(109, 109);
    const int verdict = feature.GetGBThicken();
    EXPECT_GT(feature.m_gbThickRatio1, 0.3f);
    EXPECT_LT(feature.m_gbThickRatio1, 0.5f);
    EXPECT_EQ(verdict, 2); // radial measures are 7 to 10 px, never above 35
    EXPECT_EQ(feature.m_gbThickRatio2, 14.0f / 98.0f);
}

// 151 by 151 is measured at 2/3: the 7 px band shrinks to about 5 px, which
// three erosions (7 px across) remove completely.
TEST(GallWallThicken, HundredFiftyOneSquareIsShrunk)
{
    BUSFeature feature = FrameOf(151, 151);
    EXPECT_EQ(feature.GetGBThicken(), 1);
    EXPECT_EQ(feature.m_gbThickRatio1, 0.0f);
    EXPECT_EQ(feature.m_gbThickRatio2, 14.0f / 140.0f);
}

// No wall at all (lumen equal to the organ): the chords across the lumen meet
// no wall pixel and have no ends to measure between, so grading stops there.
TEST(GallWallThicken, EmptyWallStopsAtTheFirstChord)
{
    BUSFeature feature(cv::Mat::zeros(60, 60, CV_8UC1), 60, 60);
    std::vector<cv::Point> outer = Box(10, 10, 49, 49);
    std::vector<cv::Point> inner = Box(10, 10, 49, 49);
    feature.InitiGBOrganPara(outer, inner);
    EXPECT_THROW(feature.GetGBThicken(), std::range_error);
}

// A lumen outline of 39 points gives a stride of 39/40 = 0: refused at once
// instead of measuring the first ray for ever. The 11x11 square with one
// corner pixel cut has 40 - 1 = 39 outline points.
TEST(GallWallThicken, LumenOfThirtyNinePointsIsRefused)
{
    BUSFeature feature(cv::Mat::zeros(60, 60, CV_8UC1), 60, 60);
    std::vector<cv::Point> outer = Box(10, 10, 49, 49);
    std::vector<cv::Point> inner = {{26, 25}, {35, 25}, {35, 35}, {25, 35}, {25, 26}};
    feature.InitiGBOrganPara(outer, inner);
    ASSERT_EQ(feature.m_gbCont2.size(), 39u);
    EXPECT_THROW(feature.GetGBThicken(), std::length_error);
    EXPECT_EQ(feature.m_gbThickRatio1, 0.0f); // nothing stored
}

// Lumen pushed against the right of a wide organ: the wall is 40 px on the
// left and 2 px on the right. The erosion keeps most of the left band (share
// well above 0.15); rays to the right lumen edge measure about 3 px to the
// two-pixel outline, rays to the left edge about 40: 3/40 < 0.1 with 40 > 35
// -> focal thickening.
TEST(GallWallThicken, OneSidedThickWallIsFocal)
{
    BUSFeature feature(cv::Mat::zeros(130, 130, CV_8UC1), 130, 130);
    std::vector<cv::Point> outer = Box(5, 5, 124, 124);
    std::vector<cv::Point> inner = Box(45, 7, 122, 122);
    feature.InitiGBOrganPara(outer, inner);
    EXPECT_EQ(feature.GetGBThicken(), 3);
    EXPECT_GT(feature.m_gbThickRatio1, 0.15f);
}

// Wall grade from the stored ratios: thresholds compared in double, so the
// float 0.12f (0.11999999731...) is below 0.12 and the next float above it
// is not; 0.33f (0.33000001311...) is above 0.33 and the float below is not.
class GallWallGrade : public ::testing::Test {
protected:
    BUSFeature feature{cv::Mat(10, 20, CV_8UC1, cv::Scalar(100)), 20, 10};
    void SetUp() override
    {
        // A wall of 200 pixels of grey 100: mean 100, sd 0, level 100 ->
        // every wall pixel is above 99, a bright share of 1. Tests that need
        // a dark wall replace the image.
        feature.m_gbWallMask = cv::Mat(10, 20, CV_8UC1, cv::Scalar(1));
        feature.m_gbThickRatio1 = 0.0f;
        feature.m_gbThickRatio2 = 0.0f;
    }
    // k wall pixels of 255 among 200, the rest 100 (p = k/200): mean
    // 100 + 155p, sd 155*sqrt(p(1-p)), level = trunc(mean + 1.8f*sd).
    void BrightPixels(int k)
    {
        feature.m_srcImg = cv::Mat(10, 20, CV_8UC1, cv::Scalar(100));
        for (int i = 0; i < k; ++i)
            feature.m_srcImg.at<uchar>(i / 20, i % 20) = 255;
    }
};

TEST_F(GallWallGrade, UniformWallIsAllBright) { EXPECT_EQ(feature.GetGBWall(), 2); }

// k = 19: mean 114.725, sd 45.448, level trunc(196.53) = 196; the 19 pixels of
// 255 pass 195, the 100s do not: 19/200 = 0.095f (0.09499999880 as double),
// not above 0.095 -> normal.
// k = 20: mean 115.5, sd 46.5, level trunc(199.2) = 199; 20/200 = 0.1 -> 2.
TEST_F(GallWallGrade, BrightShareAboveNinePointFivePercentIsAbnormal)
{
    BrightPixels(19);
    EXPECT_EQ(feature.GetGBWall(), 1);
    BrightPixels(20);
    EXPECT_EQ(feature.GetGBWall(), 2);
}

// Pixels outside the wall band are not counted, however bright: with the
// last 10 columns out of the band (100 wall pixels: 9 of 255, 91 of 100,
// p = 0.09, level = trunc(113.95 + 1.8f*44.36) = 193) and those columns set
// to 255, the share stays 9/100 = 0.09 -> normal.
TEST_F(GallWallGrade, PixelsOutsideTheBandAreNotBright)
{
    feature.m_srcImg = cv::Mat(10, 20, CV_8UC1, cv::Scalar(100));
    feature.m_gbWallMask = cv::Mat::zeros(10, 20, CV_8UC1);
    feature.m_gbWallMask(cv::Rect(0, 0, 10, 10)).setTo(1);
    feature.m_srcImg(cv::Rect(10, 0, 10, 10)).setTo(255);
    for (int i = 0; i < 9; ++i)
        feature.m_srcImg.at<uchar>(i, 0) = 255;
    EXPECT_EQ(feature.GetGBWall(), 1);
}

TEST_F(GallWallGrade, ErosionShareThresholdIsTakenInDouble)
{
    BrightPixels(0);
    feature.m_srcImg.at<uchar>(0, 0) = 0; // one dark pixel: level trunc(99.5 + 1.8f*7.05) = 112, none above 111
    feature.m_gbThickRatio1 = 0.12f;
    EXPECT_EQ(feature.GetGBWall(), 1);
    feature.m_gbThickRatio1 = std::nextafter(0.12f, 1.0f);
    EXPECT_EQ(feature.GetGBWall(), 2);
    feature.m_gbThickRatio1 = std::nanf("");
    EXPECT_EQ(feature.GetGBWall(), 2); // NaN is not below 0.12
}

TEST_F(GallWallGrade, ChordShareThresholdIsTakenInDouble)
{
    BrightPixels(0);
    feature.m_srcImg.at<uchar>(0, 0) = 0;
    feature.m_gbThickRatio2 = 0.33f;
    EXPECT_EQ(feature.GetGBWall(), 2);
    feature.m_gbThickRatio2 = std::nextafter(0.33f, 0.0f);
    EXPECT_EQ(feature.GetGBWall(), 1);
}

// Only the main diagonal weighs: 1/((r-c)^2+1) is 0 off it in integer
// division. A 3x3 image of 90 under a full mask: (90*3)/9 = 30.
TEST(GallWallHomogeneity, OnlyTheDiagonalCountsOverAllMaskedPixels)
{
    BUSFeature feature(cv::Mat::zeros(3, 3, CV_8UC1), 3, 3);
    const cv::Mat image(3, 3, CV_8UC1, cv::Scalar(90));
    EXPECT_EQ(feature.GetHomogeneity(image, cv::Mat(3, 3, CV_8UC1, cv::Scalar(1))), 30.0f);
    // Mask only off the diagonal: 0/6 = 0. No mask at all: 0/0, NaN.
    cv::Mat offDiagonal(3, 3, CV_8UC1, cv::Scalar(1));
    for (int i = 0; i < 3; ++i)
        offDiagonal.at<uchar>(i, i) = 0;
    EXPECT_EQ(feature.GetHomogeneity(image, offDiagonal), 0.0f);
    EXPECT_TRUE(std::isnan(feature.GetHomogeneity(image, cv::Mat::zeros(3, 3, CV_8UC1))));
}
