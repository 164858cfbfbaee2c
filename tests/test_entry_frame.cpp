// The steps every entry point shares, and the verdict object's setters.
#include <stdexcept>

#include <gtest/gtest.h>

#include "FeatureDescription/Description.h"
#include "LesionDescriExport/EntryFrame.h"

TEST(EntryFrame, OnlyOneThreeOrFourChannelsAreAccepted)
{
    const unsigned char pixel[4] = {};
    EXPECT_FALSE(IsValidImage(nullptr, 1));
    EXPECT_FALSE(IsValidImage(pixel, 2));
    EXPECT_FALSE(IsValidImage(pixel, 5));
    EXPECT_FALSE(IsValidImage(pixel, 0));
    EXPECT_TRUE(IsValidImage(pixel, 1));
    EXPECT_TRUE(IsValidImage(pixel, 3));
    EXPECT_TRUE(IsValidImage(pixel, 4));
}

TEST(EntryFrame, WrapSharesTheCallersBuffer)
{
    unsigned char buffer[2 * 3 * 3] = {};
    const cv::Mat wrapped = WrapImage(buffer, 3, 3, 2);
    EXPECT_EQ(wrapped.type(), CV_8UC3);
    EXPECT_EQ(wrapped.size(), cv::Size(3, 2));
    EXPECT_EQ(wrapped.data, buffer);
}

TEST(EntryFrame, GreyTakesBlueGreenRedAndIgnoresTheFourthChannel)
{
    // Fixed-point BGR to grey: R weight 4899, B weight 1868 over 2^14.
    // 255 * 4899 / 16384 = 76.2 -> 76; 255 * 1868 / 16384 = 29.1 -> 29.
    const unsigned char bgra[2 * 4] = {0, 0, 255, 77, 255, 0, 0, 200};
    const cv::Mat grey = MakeGrey(WrapImage(bgra, 4, 2, 1));
    ASSERT_EQ(grey.type(), CV_8UC1);
    EXPECT_EQ(grey.at<uchar>(0, 0), 76);
    EXPECT_EQ(grey.at<uchar>(0, 1), 29);
}

// One channel is used in place (the fuzzed calls check no entry writes into
// it); colour is made grey in a buffer of the library's own.
TEST(EntryFrame, OneChannelGreyIsTheCallersBuffer)
{
    unsigned char buffer[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    EXPECT_EQ(MakeGrey(WrapImage(buffer, 1, 2, 2)).data, buffer);
    const cv::Mat grey = MakeGrey(WrapImage(buffer, 3, 2, 2));
    EXPECT_NE(grey.data, buffer);
    EXPECT_EQ(grey.channels(), 1);
}

TEST(EntryFrame, ContourCopyRefusesNegativeCountsAndNullArrays)
{
    const MyPoint points[2] = {{1, 2}, {3, 4}};
    EXPECT_THROW(CopyContour(points, -1), std::length_error);
    EXPECT_ANY_THROW(CopyContour(nullptr, 3));
    EXPECT_TRUE(CopyContour(nullptr, 0).empty());
    EXPECT_EQ(CopyContour(points, 2), (std::vector<cv::Point>{{1, 2}, {3, 4}}));
}

TEST(EntryFrame, ShiftMovesIntoRegionCoordinates)
{
    const std::vector<cv::Point> whole{{10, 20}, {15, 25}};
    EXPECT_EQ(ShiftContour(whole, 10, 5), (std::vector<cv::Point>{{0, 15}, {5, 20}}));
}

TEST(Description, ImagesArePrivateCopies)
{
    cv::Mat image(4, 4, CV_8U, cv::Scalar(10));
    Description d(image, image(cv::Rect(1, 1, 2, 2)), cv::Rect(1, 1, 2, 2));
    image.setTo(99);
    EXPECT_EQ(d.m_image.at<uchar>(0, 0), 10);
    EXPECT_EQ(d.m_regionImage.at<uchar>(0, 0), 10);
    EXPECT_EQ(d.m_regionImage.size(), cv::Size(2, 2));
    EXPECT_EQ(d.m_roi, cv::Rect(1, 1, 2, 2));
}

TEST(Description, SettersKeepAngleTwiceAndDefaultAxis)
{
    Description d(cv::Mat::zeros(2, 2, CV_8U), cv::Mat::zeros(2, 2, CV_8U), cv::Rect(0, 0, 2, 2));
    d.SetEllipse(cv::RotatedRect(cv::Point2f(5, 5), cv::Size2f(4, 2), 33.0f));
    EXPECT_EQ(d.m_ellipse.angle, 33.0f);
    EXPECT_EQ(d.m_ellipseAngle, 33.0f);
    d.SetAxisPts(nullptr);
    EXPECT_EQ(d.m_axisPts[0], cv::Point(0, 0));
    EXPECT_EQ(d.m_axisPts[1], cv::Point(1, 0));
    const cv::Point ends[2] = {{3, 4}, {5, 6}};
    d.SetAxisPts(ends);
    EXPECT_EQ(d.m_axisPts[1], cv::Point(5, 6));
    d.SetNewSize(cv::Mat::zeros(7, 9, CV_8U));
    EXPECT_EQ(d.m_newWidth, 9);
    EXPECT_EQ(d.m_newHeight, 7);
    const WallSize w = d.GetGBWallSize();
    EXPECT_EQ(w.max, 0.0f);
    EXPECT_EQ(w.mean, 0.0f);
}
