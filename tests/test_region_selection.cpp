// Hole filling and the choice of one region among several.
#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "RegionSelection/RegionSelection.h"

namespace {

std::vector<std::vector<cv::Point>> External(const cv::Mat& image)
{
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(image, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
    return contours;
}

} // namespace

TEST(MyFillHole, AllZeroStaysZero)
{
    const cv::Mat src = cv::Mat::zeros(8, 8, CV_8U);
    cv::Mat dst;
    MyFillHole(src, dst);
    EXPECT_EQ(cv::countNonZero(dst), 0);
}

TEST(MyFillHole, EnclosedHoleIsFilled)
{
    // A 5x5 square ring with a 3x3 hole: 16 ring pixels become 25.
    cv::Mat src = cv::Mat::zeros(9, 9, CV_8U);
    cv::rectangle(src, cv::Rect(2, 2, 5, 5), cv::Scalar(255), 1, cv::LINE_8);
    ASSERT_EQ(cv::countNonZero(src), 16);
    MyFillHole(src, src);
    EXPECT_EQ(cv::countNonZero(src), 25);
    EXPECT_EQ(src.at<uchar>(4, 4), 255);
}

TEST(MyFillHole, PocketOpenToTheEdgeStaysOpen)
{
    // A ring cut off by the left edge: its inside touches the edge, so the
    // frame lets the flood in and nothing is filled.
    cv::Mat src = cv::Mat::zeros(9, 9, CV_8U);
    cv::line(src, cv::Point(0, 2), cv::Point(6, 2), cv::Scalar(255));
    cv::line(src, cv::Point(6, 2), cv::Point(6, 6), cv::Scalar(255));
    cv::line(src, cv::Point(6, 6), cv::Point(0, 6), cv::Scalar(255));
    const int before = cv::countNonZero(src);
    cv::Mat dst;
    MyFillHole(src, dst);
    EXPECT_EQ(cv::countNonZero(dst), before);
}

TEST(GetTargetRegion, NothingFoundAppendsOrigin)
{
    std::vector<cv::Point> out{{7, 7}};
    GetTargetRegion(cv::Mat::zeros(5, 5, CV_8U), out);
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0], cv::Point(7, 7));
    EXPECT_EQ(out[1], cv::Point(0, 0));
}

TEST(GetTargetRegion, LargestAreaWins)
{
    cv::Mat image = cv::Mat::zeros(30, 30, CV_8U);
    image(cv::Rect(2, 2, 3, 3)).setTo(255);    // area 4
    image(cv::Rect(10, 10, 6, 5)).setTo(255);  // area 20
    image(cv::Rect(20, 20, 4, 4)).setTo(255);  // area 9
    std::vector<cv::Point> out;
    GetTargetRegion(image, out);
    EXPECT_EQ(cv::boundingRect(out), cv::Rect(10, 10, 6, 5));
}

TEST(GetTargetRegion, EqualAreasKeepTheFirstFound)
{
    cv::Mat image = cv::Mat::zeros(20, 20, CV_8U);
    image(cv::Rect(2, 2, 4, 4)).setTo(255);
    image(cv::Rect(12, 12, 4, 4)).setTo(255);
    const auto found = External(image);
    ASSERT_EQ(found.size(), 2u);
    std::vector<cv::Point> out;
    GetTargetRegion(image, out);
    EXPECT_EQ(out, found[0]);
}

TEST(GetTargetRegion1, ContourOnTheReferenceCentreWins)
{
    // Left blob is larger, but the right one sits on the reference centre:
    // its distance is 0 and its score infinite.
    cv::Mat image = cv::Mat::zeros(40, 60, CV_8U);
    image(cv::Rect(2, 10, 15, 15)).setTo(255);
    image(cv::Rect(40, 10, 5, 5)).setTo(255);
    const std::vector<cv::Point> reference{{40, 10}, {44, 10}, {44, 14}, {40, 14}}; // centre (42, 12)
    std::vector<cv::Point> out{{1, 1}};
    GetTargetRegion1(image, reference, out);
    EXPECT_EQ(cv::boundingRect(out), cv::Rect(40, 10, 5, 5));
}

TEST(GetTargetRegion1, ReferenceWithZeroMomentUsesImageCentre)
{
    // A reference on the line x = 0 has no area: m00 = 0, so the centre is
    // (60 / 2, 40 / 2) = (30, 20), where the small blob sits.
    cv::Mat image = cv::Mat::zeros(40, 60, CV_8U);
    image(cv::Rect(2, 2, 12, 12)).setTo(255);
    image(cv::Rect(28, 18, 5, 5)).setTo(255); // contour centroid (30, 20)
    const std::vector<cv::Point> reference{{0, 0}, {0, 30}};
    std::vector<cv::Point> out;
    GetTargetRegion1(image, reference, out);
    EXPECT_EQ(cv::boundingRect(out), cv::Rect(28, 18, 5, 5));
}

TEST(GetTargetRegion1, NoContourGivesOrigin)
{
    std::vector<cv::Point> out{{3, 3}, {4, 4}};
    GetTargetRegion1(cv::Mat::zeros(5, 5, CV_8U), {}, out);
    EXPECT_EQ(out, std::vector<cv::Point>{cv::Point(0, 0)});
}

TEST(RandomColor, MultiplesOf255AreBlack)
{
    EXPECT_EQ(RandomColor(255), cv::Vec3b(0, 0, 0));
    const cv::Vec3b c = RandomColor(7);
    EXPECT_LT(c[0], 7);
    EXPECT_LT(c[1], 7);
    EXPECT_LT(c[2], 7);
}
