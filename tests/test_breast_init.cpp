// The breast initialiser: masks, geometry and grey statistics of the lesion,
// and the ring of tissue around it.
#include <vector>

#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "breast_scene.h"

namespace {

// Lesion of grey 100 on columns 40..79 and rows 30..59 of a 120 x 100 image of
// grey 40, plus an optional bright line of 200 at `line` (a column or a row).
BUSFeature Initialised(int column = -1, int row = -1)
{
    cv::Mat image = scene::Image(120, 100, 40, 40, 30, 79, 59, 100);
    if (column >= 0)
        image.col(column).setTo(cv::Scalar(200));
    if (row >= 0)
        image.row(row).setTo(cv::Scalar(200));
    BUSFeature feature(image, cv::Rect(0, 0, 120, 100));
    feature.IntiBreastPara(scene::Rectangle(40, 30, 79, 59));
    return feature;
}

} // namespace

TEST(BreastInit, LesionMeasuresOfARectangle)
{
    BUSFeature f = Initialised();
    // Filled pixels 40 x 30, polygon area 39 x 29, perimeter 2 (39 + 29).
    EXPECT_EQ(f.m_lesionPixNum, 1200);
    EXPECT_EQ(cv::countNonZero(f.m_lesionMask), 1200);
    EXPECT_EQ(cv::countNonZero(f.m_label == 1), 1200);
    EXPECT_EQ(f.m_lesionArea, 1131.0f);
    EXPECT_EQ(f.m_lesionPerimeter, 136.0f);
    EXPECT_EQ(f.m_hullArea, 1131.0f);
    EXPECT_EQ(f.m_hull.size(), 4u);
    // The outline of the filled hull visits each of the 2 (40 + 30) - 4 border pixels.
    EXPECT_EQ(f.m_hullPts.size(), 136u);
    EXPECT_EQ(f.m_lesionAvgGray, 100.0f);
    EXPECT_EQ(f.m_lesionStdGray, 0.0f);
    EXPECT_GE(f.m_majorAxisLength, f.m_minorAxisLength);
    EXPECT_EQ(f.m_ringAvgGray, 40.0f);
}

TEST(BreastInit, RingReachesSevenPixelsBeyondTheLesion)
{
    // The 15 x 15 ellipse reaches dx = 7, 7, 7, 6, 6, 5, 4, 0 at dy = 0..7, so the
    // ring around a W x H rectangle holds 14 (W + H) + 4 (7+7+6+6+5+4+0) = 980 + 140
    // = 1120 pixels. Column 79 + 7 = 86 crosses it on rows 30 - 2 .. 59 + 2 (dx of
    // 7 up to dy = 2): 34 pixels, mean (34 * 200 + 1086 * 40) / 1120 = 44.857.
    EXPECT_FLOAT_EQ(Initialised(86).m_ringAvgGray, 50240.0f / 1120.0f);
    EXPECT_EQ(Initialised(87).m_ringAvgGray, 40.0f);
    // Row 30 - 7 = 23 meets it only above the lesion (dx 0 at dy 7): 40 pixels,
    // (40 * 200 + 1080 * 40) / 1120 = 45.714.
    EXPECT_FLOAT_EQ(Initialised(-1, 23).m_ringAvgGray, 51200.0f / 1120.0f);
    EXPECT_EQ(Initialised(-1, 22).m_ringAvgGray, 40.0f);
}

TEST(BreastInit, RingOnlyOnTheFreeSidesAtTheBorder)
{
    // Lesion on columns 0..39: the ring loses its part left of column 0, 7 pixels
    // on each of the 30 rows and dx(d) on each row d above and below:
    // 210 + 2 * 35 = 280, leaving 1120 - 280 = 840. Column 39 + 7 = 46 at 200
    // crosses it in 34 pixels: (34 * 200 + 806 * 40) / 840 = 46.476.
    cv::Mat image = scene::Image(120, 100, 40, 0, 30, 39, 59, 100);
    image.col(46).setTo(cv::Scalar(200));
    BUSFeature feature(image, cv::Rect(0, 0, 120, 100));
    feature.IntiBreastPara(scene::Rectangle(0, 30, 39, 59));
    EXPECT_FLOAT_EQ(feature.m_ringAvgGray, 39040.0f / 840.0f);
    EXPECT_EQ(feature.m_lesionPixNum, 1200);
}

TEST(BreastInit, FewerThanFivePointsCannotBeFitted)
{
    const cv::Mat image(50, 50, CV_8UC1, cv::Scalar(0));
    BUSFeature feature(image, cv::Rect(0, 0, 50, 50));
    EXPECT_THROW(feature.IntiBreastPara({{10, 10}, {30, 10}, {30, 30}, {10, 30}}), cv::Exception);
}
