// The liver initialiser: masks, re-extracted outlines and the grey
// statistics every liver verdict rests on.
#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "liver_scene.h"

using namespace liver_scene;

// Whole image 100 x 80; region (10, 5, 70, 60); liver (0..44, 0..79) of grey
// 100, the rest of the image 200; lesion (30..39, 20..29) in whole-image
// coordinates, (20..29, 15..24) in the region, of grey 130.
class LiverInit : public ::testing::Test {
protected:
    void SetUp() override
    {
        image = Scene(100, 80, 200);
        Paint(image, 0, 0, 44, 79, 100);
        Paint(image, 30, 20, 39, 29, 130);
        region = image(roi);
    }
    cv::Mat image;
    cv::Rect roi{10, 5, 70, 60};
    cv::Mat region;
};

TEST_F(LiverInit, MasksAndOutlinesKeepTheirFrames)
{
    BUSFeature f(region, 100, 80);
    std::vector<cv::Point> liver = BoxPoints(0, 0, 44, 79);
    std::vector<cv::Point> lesion = BoxPoints(20, 15, 29, 24);
    f.InitiLiverPara(liver, lesion, roi);

    // Liver mask at whole-image size, 45 * 80 = 3600 pixels of 255.
    EXPECT_EQ(f.m_organMaskA.size(), cv::Size(100, 80));
    EXPECT_EQ(cv::countNonZero(f.m_organMaskA), 3600);
    EXPECT_EQ(f.m_organMaskA.at<uchar>(79, 44), 255);
    // The liver outline comes back from the mask in whole-image coordinates;
    // the caller's vector is replaced by the same outline.
    const std::vector<cv::Point> organ = f.GetOrganCont(ORGAN_LIVER);
    ASSERT_FALSE(organ.empty());
    EXPECT_EQ(cv::boundingRect(organ), cv::Rect(0, 0, 45, 80));
    EXPECT_EQ(liver, organ);
    // Lesion mask at region size, 10 * 10 = 100 pixels, label 0/1.
    EXPECT_EQ(f.m_lesionMask.size(), cv::Size(70, 60));
    EXPECT_EQ(cv::countNonZero(f.m_lesionMask), 100);
    EXPECT_EQ(f.m_label.at<uchar>(15, 20), 1);
    EXPECT_EQ(f.m_label.at<uchar>(14, 20), 0);
    EXPECT_EQ(lesion, f.GetLesionCont());
    EXPECT_EQ(cv::boundingRect(lesion), cv::Rect(20, 15, 10, 10));
    EXPECT_EQ(f.m_lesionBoundRect, cv::Rect(20, 15, 10, 10));
    // Area of the outline 9 * 9 = 81, not the 100 pixels.
    EXPECT_EQ(f.GetLesionArea(), 81.0f);
    EXPECT_TRUE(f.GetOrganCont(ORGAN_NONE).empty());
    EXPECT_TRUE(f.GetOrganCont(static_cast<Organ>(1)).empty());
    EXPECT_TRUE(f.GetOrganCont(ORGAN_GALLBLADDER).empty());
}

TEST_F(LiverInit, GreyStatisticsAndCounts)
{
    BUSFeature f(region, 100, 80);
    std::vector<cv::Point> liver = BoxPoints(0, 0, 44, 79);
    std::vector<cv::Point> lesion = BoxPoints(20, 15, 29, 24);
    f.InitiLiverPara(liver, lesion, roi);
    EXPECT_EQ(f.GetLesionAvgGray(), 130.0f);
    EXPECT_EQ(f.GetLesionStdGray(), 0.0f);
    // The ring reaches grey-200 tissue right of column 44, but only the part
    // inside the liver counts: all of it grey 100.
    EXPECT_EQ(f.GetLiverAvgGray(), 100.0f);
    // 100 lesion pixels; 70 * 60 - 100 = 4100 others.
    EXPECT_EQ(f.GetPixNum(), (std::vector<int>{100, 4100}));
    // The region (70 x 60 = 4200 pixels) holds 2000 pixels of 100, 100 of 130,
    // 2100 of 200. Splitting {100} | {130, 200}: 0.476 * 0.524 * (196.8 - 100)^2
    // = 2338; splitting {100, 130} | {200}: 0.5 * 0.5 * (200 - 101.4)^2 = 2429,
    // the larger: a level from 130 up to 199. Half the lesion deviation 0 adds nothing.
    EXPECT_GE(f.m_otsuThresh, 130.0f);
    EXPECT_LT(f.m_otsuThresh, 200.0f);
    // Lengths that the liver path never sets stay 0.
    EXPECT_EQ(f.GetMajorAxisLength(), 0.0f);
    EXPECT_EQ(f.GetMinorAxisLength(), 0.0f);
    EXPECT_EQ(f.GetLesionPerimeter(), 0.0f);
}

// Without the region the ring is not restricted to the liver.
TEST_F(LiverInit, FormWithoutRegionTakesTheWholeRing)
{
    BUSFeature f(region, 100, 80);
    std::vector<cv::Point> liver = BoxPoints(0, 0, 44, 79);
    std::vector<cv::Point> lesion = BoxPoints(20, 15, 29, 24);
    f.InitiLiverPara(liver, lesion);
    // Part of the ring lies right of the liver (grey 200): the mean is above 100.
    EXPECT_GT(f.GetLiverAvgGray(), 100.0f);
    EXPECT_LT(f.GetLiverAvgGray(), 200.0f);
    EXPECT_EQ(f.m_lesionBoundRect, cv::Rect());
    EXPECT_EQ(f.GetPixNum(), (std::vector<int>{100, 4100}));
}

TEST_F(LiverInit, LesionAwayFromLiverGivesLiverGreyZero)
{
    BUSFeature f(region, 100, 80);
    // Liver (0..9, 0..9) only: the ring around the lesion (about 10 pixels)
    // never reaches it, so the ring in the liver is empty and its mean 0.
    std::vector<cv::Point> liver = BoxPoints(0, 0, 9, 9);
    std::vector<cv::Point> lesion = BoxPoints(20, 15, 29, 24);
    f.InitiLiverPara(liver, lesion, roi);
    EXPECT_EQ(f.GetLiverAvgGray(), 0.0f);

    BUSFeature g(region, 100, 80);
    std::vector<cv::Point> none;
    lesion = BoxPoints(20, 15, 29, 24);
    g.InitiLiverPara(none, lesion, roi);
    EXPECT_EQ(g.GetLiverAvgGray(), 0.0f);
    EXPECT_TRUE(g.GetOrganCont(ORGAN_LIVER).empty());
}

// A self-crossing lesion outline (a bow tie) comes back as one simple outline.
TEST_F(LiverInit, OutlineIsReplacedByTheFilledShapesBorder)
{
    BUSFeature f(region, 100, 80);
    std::vector<cv::Point> liver = BoxPoints(0, 0, 44, 79);
    std::vector<cv::Point> bowTie{{20, 15}, {40, 35}, {40, 15}, {20, 35}};
    f.InitiLiverPara(liver, bowTie, roi);
    EXPECT_GT(bowTie.size(), 4u);
    EXPECT_EQ(cv::boundingRect(bowTie), cv::Rect(20, 15, 21, 21));
}

// A U whose bottom lies below the region fills to two arms inside it. Only
// one comes back: the outer contours arrive last-found first, so the arm
// whose top row is lower (row 30 against row 5) is kept.
TEST_F(LiverInit, OutlineCutIntoTwoPiecesKeepsTheLowerOne)
{
    BUSFeature f(region, 100, 80);
    std::vector<cv::Point> liver = BoxPoints(0, 0, 44, 79);
    std::vector<cv::Point> u{{5, 5}, {14, 5}, {14, 80}, {40, 80}, {40, 30}, {49, 30}, {49, 90}, {5, 90}};
    f.InitiLiverPara(liver, u, roi);
    EXPECT_EQ(cv::boundingRect(u), cv::Rect(40, 30, 10, 30)); // rows 30..59 of the 60
    EXPECT_EQ(f.m_lesionBoundRect, cv::Rect(40, 30, 10, 30));
    // Both arms stay in the mask: 10 * 55 + 10 * 30 = 850 pixels.
    EXPECT_EQ(f.GetPixNum()[0], 850);
}

TEST_F(LiverInit, TooFewOutlinePointsRaise)
{
    BUSFeature f(region, 100, 80);
    std::vector<cv::Point> liver = BoxPoints(0, 0, 44, 79);
    std::vector<cv::Point> lesion = BoxPoints(20, 15, 21, 16); // 2 x 2 pixels: 4 outline points
    EXPECT_ANY_THROW(f.InitiLiverPara(liver, lesion, roi));
}
