// Breast calcification: bright holes isolated inside the lesion, and the
// host model's regions graded by size.
#include <vector>

#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "breast_scene.h"

namespace {

// Lesion on columns 40..79, rows 30..59: 40 x 30 = 1200 pixels; the ring
// around it lies wholly on the background.
struct Speck {
    cv::Rect box;
    int grey;
};

struct Calcification {
    int verdict;
    int holePixels;
};

Calcification Grade(int background, int lesion, const std::vector<Speck>& specks,
                    const std::vector<cv::Point>& extraPixels = {}, int extraGrey = 0)
{
    cv::Mat image = scene::Image(120, 100, background, 40, 30, 79, 59, lesion);
    for (const Speck& s : specks)
        image(s.box).setTo(cv::Scalar(s.grey));
    for (const cv::Point& p : extraPixels)
        image.at<uchar>(p) = static_cast<uchar>(extraGrey);
    BUSFeature feature(image, cv::Rect(0, 0, 120, 100));
    feature.IntiBreastPara(scene::Rectangle(40, 30, 79, 59));
    const int verdict = feature.BreastCalcification();
    return {verdict, cv::countNonZero(feature.m_calcMask)};
}

// Three separate 2 x 2 specks well inside the lesion.
std::vector<Speck> ThreeSpecks(int grey)
{
    return {{cv::Rect(50, 40, 2, 2), grey}, {cv::Rect(60, 40, 2, 2), grey}, {cv::Rect(70, 45, 2, 2), grey}};
}

} // namespace

TEST(BreastCalcification, UniformLesionHasNoHole)
{
    // Deviation 0: every pixel is at the first and the second limit, all are
    // bright, nothing of the lesion is left to enclose a hole.
    const Calcification c = Grade(40, 100, {});
    EXPECT_EQ(c.verdict, 1);
    EXPECT_EQ(c.holePixels, 0);
}

TEST(BreastCalcification, ThreeSmallSpecksAreMicrocalcification)
{
    // 12 of 1200 pixels at 250 on 60: deviation 190 * sqrt(0.01 * 0.99) = 18.9,
    // first limit trunc(60 + 37.8) = 97, so the specks are the upper part; its
    // deviation is 0 and the second limit 250: the specks are the holes.
    // Each: area 4, share 0.0033 (small and valid; not strong: <= 0.004, <= 100 px).
    // Hole share 0.01 >= 0.0095, 3 valid small > 1; mean 250 - ring 40 >= 25,
    // 250 >= 85, share sum 0.01 >= 0.003; 3 small > 2 and none strong: 3.
    const Calcification c = Grade(40, 60, ThreeSpecks(250));
    EXPECT_EQ(c.holePixels, 12);
    EXPECT_EQ(c.verdict, 3);
}

TEST(BreastCalcification, HoleOfThreePixelsIsIgnoredButStaysInTheMask)
{
    // The third speck an L of 3 pixels: it stays in the hole mask (11 pixels),
    // hole share 11 / 1200 = 0.0092 < 0.0095 with no strong hole, and only 2
    // valid small holes: not more than 2, so 1. Counted, it would make 3.
    std::vector<Speck> specks = ThreeSpecks(250);
    specks.pop_back();
    const Calcification c = Grade(40, 60, specks, {{70, 45}, {71, 45}, {70, 46}}, 250);
    EXPECT_EQ(c.holePixels, 11);
    EXPECT_EQ(c.verdict, 1);
}

TEST(BreastCalcification, SpeckOnTheOutlineIsNotAHole)
{
    // A speck on the lesion's top row touches the outside: two holes of 8
    // pixels, share 0.0067 < 0.0095, 2 valid small holes: 1.
    std::vector<Speck> specks = ThreeSpecks(250);
    specks.back().box = cv::Rect(70, 30, 2, 2);
    const Calcification c = Grade(40, 60, specks);
    EXPECT_EQ(c.holePixels, 8);
    EXPECT_EQ(c.verdict, 1);
}

TEST(BreastCalcification, OneLargeBrightHoleIsCoarse)
{
    // 6 x 4 = 24 pixels, share 0.02: big (> 0.008) and strong twice (contrast
    // 250 / 60 > 1.4 with share > 0.004; share > 0.011). Share sum 0.02 > 0.015: 2.
    const Calcification c = Grade(40, 60, {{cv::Rect(55, 40, 6, 4), 250}});
    EXPECT_EQ(c.holePixels, 24);
    EXPECT_EQ(c.verdict, 2);
}

TEST(BreastCalcification, StrongHoleAmongSmallOnesMakesItCoarse)
{
    // Add a 3 x 2 speck: share 6 / 1200 = 0.005 > 0.004 with contrast 4.2: strong.
    // Four small holes > 2, but one strong: 2.
    std::vector<Speck> specks = ThreeSpecks(250);
    specks.push_back({cv::Rect(55, 50, 3, 2), 250});
    EXPECT_EQ(Grade(40, 60, specks).verdict, 2);
}

TEST(BreastCalcification, HolesMustBeBrightAbsolutely)
{
    // Lesion 20, background 10, specks 85: first limit trunc(20 + 2 * 6.47) = 32,
    // second limit 85; mean 85 - 10 >= 25 and 85 >= 85: 3. At 84: 84 < 85: 1.
    EXPECT_EQ(Grade(10, 20, ThreeSpecks(85)).verdict, 3);
    EXPECT_EQ(Grade(10, 20, ThreeSpecks(84)).verdict, 1);
}

TEST(BreastCalcification, HolesMustStandAboveTheSurroundingTissue)
{
    // Hole mean 250 against the ring around the lesion: 250 - 225 = 25 passes,
    // 250 - 226 = 24 < 25 gives 1.
    EXPECT_EQ(Grade(225, 60, ThreeSpecks(250)).verdict, 3);
    EXPECT_EQ(Grade(226, 60, ThreeSpecks(250)).verdict, 1);
}

namespace {

struct ModelGrade {
    int verdict;
    BUSFeature feature;
};

// Lesion of 1200 pixels in a region at (20, 10) of the whole image; model
// regions come in whole-image coordinates.
ModelGrade GradeModel(const std::vector<std::vector<MyPoint>>& regions)
{
    const cv::Mat image = scene::Image(80, 70, 40, 20, 20, 59, 49, 100);
    ModelGrade g{0, BUSFeature(image, cv::Rect(20, 10, 80, 70))};
    g.feature.IntiBreastPara(scene::Rectangle(20, 20, 59, 49));
    std::vector<int> sizes;
    std::vector<MyPoint> points;
    for (const auto& r : regions) {
        sizes.push_back(static_cast<int>(r.size()));
        points.insert(points.end(), r.begin(), r.end());
    }
    g.verdict = g.feature.CalcuCalcificationUseModelResult(RoiCoor{20, 10, 80, 70}, static_cast<int>(sizes.size()),
                                                           sizes.data(), points.data());
    return g;
}

} // namespace

TEST(BreastModelCalcification, OverlapAddsUpInTheModelMask)
{
    // Each region adds 51: the overlap of two holds 102, of six 306 -> 255.
    const std::vector<MyPoint> square{{45, 35}, {54, 35}, {54, 44}, {45, 44}};
    ModelGrade two = GradeModel({square, square});
    EXPECT_EQ(two.feature.m_modelMask.at<uchar>(30, 30), 102); // (50, 40) less (20, 10)
    EXPECT_EQ(two.feature.m_calcMask.at<uchar>(30, 30), 255);
    EXPECT_EQ(cv::countNonZero(two.feature.m_calcMask), 100);
    EXPECT_EQ(two.feature.m_lesionPixNum, 1200);
    ModelGrade six = GradeModel({square, square, square, square, square, square});
    EXPECT_EQ(six.feature.m_modelMask.at<uchar>(30, 30), 255);
}

TEST(BreastModelCalcification, RegionsBeyondTheLesionGiveAShareAboveOne)
{
    // 60 x 50 = 3000 pixels over a lesion of 1200: share 2.5 > 0.3 -> 2.
    const ModelGrade g = GradeModel({{{30, 20}, {89, 20}, {89, 69}, {30, 69}}});
    EXPECT_FLOAT_EQ(g.feature.m_calcRatio, 2.5f);
    EXPECT_EQ(g.verdict, 2);
}

TEST(BreastModelCalcification, ReadyMaskIsGradedByItsFloatShare)
{
    // Share of 1000 lesion pixels: 0.3 is 0.3f = 0.30000001 > 0.3 -> 2;
    // 0.06f = 0.0599999987 < 0.06 -> 3; 0.061 -> 2.
    const cv::Mat image(10, 10, CV_8UC1, cv::Scalar(0));
    BUSFeature feature(image, cv::Rect(0, 0, 10, 10));
    feature.m_lesionPixNum = 1000;
    auto grade = [&feature](int pixels) {
        cv::Mat mask = cv::Mat::zeros(1, 400, CV_8UC1);
        mask.colRange(0, pixels).setTo(cv::Scalar(255));
        return feature.BreastCalcificationModel(mask, RoiCoor{0, 0, 0, 0});
    };
    EXPECT_EQ(grade(300), 2);
    EXPECT_EQ(grade(61), 2);
    EXPECT_EQ(grade(60), 3);
    EXPECT_EQ(grade(10), 3);
    EXPECT_FLOAT_EQ(feature.m_calcRatio, 0.01f);
}
