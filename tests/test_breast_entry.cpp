// Both breast entry points: what a call writes, what a failed call leaves,
// and the region derived when the host gives none.
#include <climits>
#include <vector>

#include <gtest/gtest.h>

#include "breast_scene.h"

namespace {

// Background 40 with a lesion of grey 100 on columns 40..79 and rows 30..59
// (40 x 30 = 1200 pixels), 40 pixels from the left, top, right and bottom edges.
constexpr int kWidth = 120;
constexpr int kHeight = 100;

// Verdicts of that scene with the axes below:
//   echo 1: one grey level, sharpness = 1200 pixels >= 20;
//   boundary 1: flat bands of 100 inside and 40 outside, contrast 29.4 > 8;
//   margin 1: a rectangle approximates to 4 vertices <= 8;
//   calcification 1: no pixel is brighter than the rest, so no hole;
//   orientation 2: short over long axis 90 / 100 = 0.9 >= 0.8;
//   shape 2: no defect, axis ratio 100 / 90 = 1.11 < 1.2.
constexpr BreastResult kSceneRecord{2, 2, 1, 1, 1, 1};

const lesionAxisPointEnd kAxes{{0, 0}, {0, 100}, {0, 0}, {90, 0}};

struct Scene {
    cv::Mat image = scene::Image(kWidth, kHeight, 40, 40, 30, 79, 59, 100);
    std::vector<MyPoint> lesion = scene::ToMy(scene::Rectangle(40, 30, 79, 59));
};

BreastResult Describe(const unsigned char* image, int channels, RoiCoor roi, int count, const MyPoint* points,
                      lesionAxisPointEnd axes = kAxes, int width = kWidth, int height = kHeight)
{
    BreastResult result = scene::Filled(7);
    BreastDescription(image, channels, width, height, roi, count, points, axes, &result);
    return result;
}

BreastResult DescribeWithModel(const Scene& s, RoiCoor roi, int modelCount, const int* sizes, const MyPoint* points,
                               int lesionCount = -2)
{
    BreastResult result = scene::Filled(7);
    const int count = lesionCount == -2 ? static_cast<int>(s.lesion.size()) : lesionCount;
    BreastDescriptionHaveModelProcess(s.image.data, 1, kWidth, kHeight, roi, count, s.lesion.data(), modelCount,
                                      sizes, points, kAxes, &result);
    return result;
}

// The region BreastDescription derives for the scene: bounds (40, 30, 40, 30)
// widened by 10 a side to (30, 20, 60, 50), unclipped, then again to (20, 10, 80, 70).
constexpr RoiCoor kSceneRegion{20, 10, 80, 70};
constexpr RoiCoor kEmptyRoi{0, 0, 0, 0};

} // namespace

TEST(BreastEntry, SceneGivesItsHandWorkedRecord)
{
    Scene s;
    EXPECT_EQ(Describe(s.image.data, 1, kEmptyRoi, static_cast<int>(s.lesion.size()), s.lesion.data()), kSceneRecord);
    EXPECT_EQ(Describe(s.image.data, 1, kSceneRegion, static_cast<int>(s.lesion.size()), s.lesion.data()),
              kSceneRecord);
}

TEST(BreastEntry, BrightSpecksInTheLesionGradeMicrocalcification)
{
    // Lesion of 60 with three 2 x 2 specks of 250 well inside it, on a
    // background of 40. Echo: peak 1188 over the 12 speck pixels, sharpness 99: 1.
    // Boundary: the specks lie deeper than the 7-pixel band, bands 60 and 40
    // differ by 20, 0.49 * 20 = 9.8 > 8: 1. Calcification, as worked out for
    // three small specks without contrast: 3.
    Scene s;
    s.image = scene::Image(kWidth, kHeight, 40, 40, 30, 79, 59, 60);
    for (const cv::Rect& speck : {cv::Rect(50, 40, 2, 2), cv::Rect(60, 40, 2, 2), cv::Rect(70, 45, 2, 2)})
        s.image(speck).setTo(cv::Scalar(250));
    EXPECT_EQ(Describe(s.image.data, 1, kEmptyRoi, static_cast<int>(s.lesion.size()), s.lesion.data()),
              (BreastResult{2, 2, 1, 1, 1, 3}));
}

TEST(BreastEntry, BadChannelCountOrNullImageLeavesPrefilledRecord)
{
    Scene s;
    const int n = static_cast<int>(s.lesion.size());
    for (int channels : {0, 2, 5, -1})
        EXPECT_EQ(Describe(s.image.data, channels, kEmptyRoi, n, s.lesion.data()), scene::Filled(7)) << channels;
    EXPECT_EQ(Describe(nullptr, 1, kEmptyRoi, n, s.lesion.data()), scene::Filled(7));
}

TEST(BreastEntry, OneThreeAndFourChannelsGiveTheSameRecordForGreyPixels)
{
    // Blue = green = red = v turns into grey v; the fourth channel is ignored.
    Scene s;
    const int n = static_cast<int>(s.lesion.size());
    cv::Mat bgr, bgra;
    cv::cvtColor(s.image, bgr, cv::COLOR_GRAY2BGR);
    cv::cvtColor(s.image, bgra, cv::COLOR_GRAY2BGRA);
    cv::randu(bgra.reshape(1, kHeight * kWidth).col(3), 0, 256);
    EXPECT_EQ(Describe(s.image.data, 1, kEmptyRoi, n, s.lesion.data()), kSceneRecord);
    EXPECT_EQ(Describe(bgr.data, 3, kEmptyRoi, n, s.lesion.data()), kSceneRecord);
    EXPECT_EQ(Describe(bgra.data, 4, kEmptyRoi, n, s.lesion.data()), kSceneRecord);
}

TEST(BreastEntry, ColourIsReadAsBlueGreenRed)
{
    // Lesion pixel (B, G, R) = (0, 0, 255): grey (255 * 4899 + 8192) >> 14 = 76.
    // Against a background of 40 the bands differ by 36: still an abrupt boundary,
    // but read as red-green-blue the lesion would be grey 29 on 40, contrast 0.49 * 11 = 5.4 < 8.
    Scene s;
    cv::Mat colour(kHeight, kWidth, CV_8UC3, cv::Scalar(40, 40, 40));
    cv::rectangle(colour, cv::Point(40, 30), cv::Point(79, 59), cv::Scalar(0, 0, 255), cv::FILLED, cv::LINE_8);
    const BreastResult r = Describe(colour.data, 3, kEmptyRoi, static_cast<int>(s.lesion.size()), s.lesion.data());
    EXPECT_EQ(r.boundary, 1);
}

TEST(BreastEntry, BrokenOutlineLeavesRecordZero)
{
    Scene s;
    EXPECT_EQ(Describe(s.image.data, 1, kEmptyRoi, -1, s.lesion.data()), scene::Filled(0));
    EXPECT_EQ(Describe(s.image.data, 1, kEmptyRoi, INT_MIN, s.lesion.data()), scene::Filled(0));
    // Three points cannot be fitted with an ellipse.
    EXPECT_EQ(Describe(s.image.data, 1, kEmptyRoi, 3, s.lesion.data()), scene::Filled(0));
    EXPECT_EQ(Describe(s.image.data, 1, kSceneRegion, 3, s.lesion.data()), scene::Filled(0));
    EXPECT_EQ(Describe(s.image.data, 1, kEmptyRoi, 0, s.lesion.data()), scene::Filled(0));
    EXPECT_EQ(Describe(s.image.data, 1, kEmptyRoi, 12, nullptr), scene::Filled(0));
}

TEST(BreastEntry, FivePointOutlineIsEnough)
{
    // The four corners and one point on the top edge fill the same rectangle.
    Scene s;
    const std::vector<MyPoint> five{{40, 30}, {60, 30}, {79, 30}, {79, 59}, {40, 59}};
    EXPECT_EQ(Describe(s.image.data, 1, kEmptyRoi, 5, five.data()), kSceneRecord);
}

TEST(BreastEntry, NullRecordReturnsQuietly)
{
    Scene s;
    BreastDescription(s.image.data, 1, kWidth, kHeight, kEmptyRoi, static_cast<int>(s.lesion.size()),
                      s.lesion.data(), kAxes, nullptr);
    BreastDescriptionHaveModelProcess(s.image.data, 1, kWidth, kHeight, kSceneRegion,
                                      static_cast<int>(s.lesion.size()), s.lesion.data(), 0, nullptr, nullptr, kAxes,
                                      nullptr);
    SUCCEED();
}

TEST(BreastEntry, GivenRegionIsUsedUnclippedAndMustLieInTheImage)
{
    Scene s;
    const int n = static_cast<int>(s.lesion.size());
    // Ending exactly on the last column and row is inside the image.
    EXPECT_EQ(Describe(s.image.data, 1, RoiCoor{20, 10, 100, 90}, n, s.lesion.data()), kSceneRecord);
    // One column or row further, or starting left of or above the image, is not.
    for (const RoiCoor roi : {RoiCoor{20, 10, 101, 90}, RoiCoor{20, 10, 100, 91}, RoiCoor{-1, 10, 80, 70},
                              RoiCoor{20, -1, 80, 70}, RoiCoor{20, 10, -80, 70}, RoiCoor{INT_MAX, 10, 80, 70}})
        EXPECT_EQ(Describe(s.image.data, 1, roi, n, s.lesion.data()), scene::Filled(0)) << roi.x << " " << roi.width;
}

TEST(BreastEntry, ZeroWidthOrHeightDerivesTheRegionFromTheOutline)
{
    // The other fields are ignored: taken as given, these would leave the image.
    Scene s;
    const int n = static_cast<int>(s.lesion.size());
    EXPECT_EQ(Describe(s.image.data, 1, RoiCoor{-500, 7000, 0, 3}, n, s.lesion.data()), kSceneRecord);
    EXPECT_EQ(Describe(s.image.data, 1, RoiCoor{900, -4, 35, 0}, n, s.lesion.data()), kSceneRecord);
}

TEST(BreastEntry, OutlineReachingOutsideTheRegionIsStillDescribed)
{
    // Region from column 50: the lesion's columns 40..49 fall outside it. What
    // lies inside is 30 x 30 pixels of 100: one peak, echo 1; bands of 100 and
    // 40 (inside 900 - 23 * 16 = 532, outside 37 * 44 - 900 = 728 pixels):
    // 60 * sqrt(0.422 * 0.578) = 29.6 > 8, boundary 1; still a rectangle for
    // the margin, and no hole.
    Scene s;
    EXPECT_EQ(Describe(s.image.data, 1, RoiCoor{50, 10, 70, 70}, static_cast<int>(s.lesion.size()),
                       s.lesion.data()),
              kSceneRecord);
}

TEST(BreastEntry, DerivedRegionReachesTwentyPixelsBeyondTheOutline)
{
    // A 40 x 30 lesion in a 200 x 160 image. The derived region spans the outline
    // plus 20 pixels on every side, so an outline 20 pixels from an edge fits and
    // one 19 pixels from it reaches outside the image (left/top: x - 20 < 0;
    // right: last column + 20 > 199; bottom: last row + 20 > 159).
    constexpr int width = 200, height = 160;
    struct Case {
        int x0, y0;
        bool fits;
    };
    const Case cases[] = {{20, 60, true},  {19, 60, false}, {80, 20, true},  {80, 19, false},
                          {140, 60, true}, {141, 60, false}, {80, 110, true}, {80, 111, false}};
    for (const Case& c : cases) {
        const int x1 = c.x0 + 39, y1 = c.y0 + 29;
        const cv::Mat image = scene::Image(width, height, 40, c.x0, c.y0, x1, y1, 100);
        const std::vector<MyPoint> lesion = scene::ToMy(scene::Rectangle(c.x0, c.y0, x1, y1));
        const BreastResult r = Describe(image.data, 1, kEmptyRoi, static_cast<int>(lesion.size()), lesion.data(),
                                        kAxes, width, height);
        EXPECT_EQ(r, c.fits ? kSceneRecord : scene::Filled(0)) << c.x0 << "," << c.y0;
    }
}

TEST(BreastEntry, DegenerateAxesGiveOrientationZeroButTheCallRunsToItsEnd)
{
    // Both axes of length 0: ratio 0 / 0 and angle asin(0 / 0) are NaN, so
    // orientation 0; shape, written after it, takes the NaN ratio as elongated: 1.
    Scene s;
    const lesionAxisPointEnd point{{5, 5}, {5, 5}, {9, 9}, {9, 9}};
    const BreastResult r = Describe(s.image.data, 1, kEmptyRoi, static_cast<int>(s.lesion.size()), s.lesion.data(),
                                    point);
    EXPECT_EQ(r, (BreastResult{1, 0, 1, 1, 1, 1}));
}

TEST(BreastModelEntry, NoModelRegionGradesOneAndTakesNullArrays)
{
    Scene s;
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 0, nullptr, nullptr), kSceneRecord);
}

TEST(BreastModelEntry, EmptyRegionLeavesPrefilledRecord)
{
    Scene s;
    EXPECT_EQ(DescribeWithModel(s, RoiCoor{20, 10, 0, 70}, 0, nullptr, nullptr), scene::Filled(7));
    EXPECT_EQ(DescribeWithModel(s, RoiCoor{20, 10, 80, 0}, 0, nullptr, nullptr), scene::Filled(7));
    BreastResult r = scene::Filled(7);
    BreastDescriptionHaveModelProcess(s.image.data, 2, kWidth, kHeight, kSceneRegion, 14, s.lesion.data(), 0,
                                      nullptr, nullptr, kAxes, &r);
    EXPECT_EQ(r, scene::Filled(7));
}

TEST(BreastModelEntry, RegionOutsideImageOrBrokenOutlineLeavesRecordZero)
{
    Scene s;
    EXPECT_EQ(DescribeWithModel(s, RoiCoor{50, 10, 80, 70}, 0, nullptr, nullptr), scene::Filled(0));
    EXPECT_EQ(DescribeWithModel(s, RoiCoor{20, 10, -80, 70}, 0, nullptr, nullptr), scene::Filled(0));
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 0, nullptr, nullptr, -1), scene::Filled(0));
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 0, nullptr, nullptr, 3), scene::Filled(0));
}

TEST(BreastModelEntry, OutlineOfFewerThanElevenPointsLeavesRecordZero)
{
    // The shape measures take ten harmonics of the outline, which needs eleven points.
    Scene s;
    const std::vector<MyPoint> five{{40, 30}, {60, 30}, {79, 30}, {79, 59}, {40, 59}};
    BreastResult r = scene::Filled(7);
    BreastDescriptionHaveModelProcess(s.image.data, 1, kWidth, kHeight, kSceneRegion, 5, five.data(), 0, nullptr,
                                      nullptr, kAxes, &r);
    EXPECT_EQ(r, scene::Filled(0));
}

TEST(BreastModelEntry, BadModelSizesFailBeforeAnyVerdict)
{
    Scene s;
    const std::vector<MyPoint> square{{45, 35}, {54, 35}, {54, 44}, {45, 44}};
    const int negative[] = {4, -1};
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 2, negative, square.data()), scene::Filled(0));
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 1, nullptr, square.data()), scene::Filled(0));
    const int four[] = {4};
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 1, four, nullptr), scene::Filled(0));
}

TEST(BreastModelEntry, NegativeModelCountKeepsTheFirstThreeVerdicts)
{
    // Echo, boundary and margin are stored before the calcification grading
    // fails on its vector of areas; the three after it stay 0.
    Scene s;
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, -1, nullptr, nullptr), (BreastResult{0, 0, 1, 1, 1, 0}));
}

TEST(BreastModelEntry, RegionOfNinetyNinePixelsIsSmallAndOfOneHundredIsNot)
{
    // Lesion 1200 pixels. 10 x 10 = 100 pixels, share 0.083: large, calcification 2.
    // 9 x 11 = 99 pixels: small whatever its share, calcification 3.
    Scene s;
    const std::vector<MyPoint> hundred{{45, 35}, {54, 35}, {54, 44}, {45, 44}};
    const std::vector<MyPoint> ninetyNine{{45, 35}, {53, 35}, {53, 45}, {45, 45}};
    const int four[] = {4};
    BreastResult expected = kSceneRecord;
    expected.calcification = 2;
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 1, four, hundred.data()), expected);
    expected.calcification = 3;
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 1, four, ninetyNine.data()), expected);
}

TEST(BreastModelEntry, OverlapCountsOnceInTheCoveredShare)
{
    // Two identical 20 x 10 regions and a 9 x 11 one: the union covers
    // 200 + 99 = 299 of 1200 pixels, 0.249 <= 0.3, and the 99-pixel region is
    // small: 3. Counting the overlap twice would give 499 / 1200 > 0.3: 2.
    Scene s;
    const std::vector<MyPoint> points{{42, 32}, {61, 32}, {61, 41}, {42, 41}, {42, 32}, {61, 32},
                                      {61, 41}, {42, 41}, {65, 45}, {73, 45}, {73, 55}, {65, 55}};
    const int sizes[] = {4, 4, 4};
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 3, sizes, points.data()).calcification, 3);
}

TEST(BreastModelEntry, CoveredShareOfThreeTenthsIsLargeInDouble)
{
    // 9 x 11 + 9 x 29 = 99 + 261 = 360 of 1200 pixels: 0.3f = 0.30000001 > 0.3,
    // so 2 although one region is small. 99 + 10 x 26 = 359: 0.299 -> small -> 3.
    Scene s;
    const std::vector<MyPoint> exact{{42, 32}, {50, 32}, {50, 42}, {42, 42}, {60, 31}, {68, 31}, {68, 59}, {60, 59}};
    const std::vector<MyPoint> under{{42, 32}, {50, 32}, {50, 42}, {42, 42}, {60, 31}, {69, 31}, {69, 56}, {60, 56}};
    const int sizes[] = {4, 4};
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 2, sizes, exact.data()).calcification, 2);
    EXPECT_EQ(DescribeWithModel(s, kSceneRegion, 2, sizes, under.data()).calcification, 3);
}

TEST(BreastModelEntry, ShareOfOneHundredPixelsAroundSixThousandths)
{
    // 100-pixel region in a lesion of 166 x 100 = 16600 pixels: 0.006024 >= 0.006, large: 2.
    // In 167 x 100 = 16700 pixels: 0.005988 < 0.006, small: 3.
    constexpr int width = 240, height = 160;
    const std::vector<MyPoint> hundred{{60, 60}, {69, 60}, {69, 69}, {60, 69}};
    const int four[] = {4};
    for (const int lastColumn : {195, 196}) {
        const cv::Mat image = scene::Image(width, height, 40, 30, 30, lastColumn, 129, 100);
        const std::vector<MyPoint> lesion = scene::ToMy(scene::Rectangle(30, 30, lastColumn, 129));
        BreastResult r = scene::Filled(7);
        BreastDescriptionHaveModelProcess(image.data, 1, width, height, RoiCoor{10, 10, 210, 140},
                                          static_cast<int>(lesion.size()), lesion.data(), 1, four, hundred.data(),
                                          kAxes, &r);
        EXPECT_EQ(r.calcification, lastColumn == 195 ? 2 : 3) << lastColumn;
    }
}
