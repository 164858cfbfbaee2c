// Gradient strength along an outline, edge indicators, filters, and an
// outline rebuilt from its Fourier descriptors.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <stdexcept>
#include <vector>

#include "BoundarySharpness/BoundarySharpness.h"
#include "FourierDescriptors/FourierDescriptors.h"

TEST(EdgeAnalysis, EvaIsTheStrengthOverTheBandAroundTheOutline)
{
    // Outline: columns 10..29 over all 40 rows. Erosion by the 11 x 11 ellipse
    // (radius 5) keeps columns 15..24, dilation reaches 5..34 (the image's top
    // and bottom neither erode nor grow it). Outline areas: (34 - 5) * 39 = 1131
    // and (24 - 15) * 39 = 351, apart by 780.
    const std::vector<cv::Point> outline = {{10, 0}, {29, 0}, {29, 39}, {10, 39}};
    // Grey step 0 | 100 between columns 11 and 12: central differences 50 at
    // columns 11 and 12, 0 elsewhere -> strength 1 there, inside the band.
    cv::Mat step = cv::Mat::zeros(40, 40, CV_8U);
    step.colRange(12, 40).setTo(100);
    // Rows 1..38 count: 2 columns * 38 rows = 76; 76 / 780.
    EXPECT_NEAR(EVA(outline, step), 76.0 / 780.0, 1e-12);

    // Flat: strength 0 everywhere.
    EXPECT_EQ(EVA(outline, cv::Mat(40, 40, CV_8U, cv::Scalar(90))), 0.0);
    // Step away from the band (columns 19/20, inside the eroded core): 0.
    cv::Mat core = cv::Mat::zeros(40, 40, CV_8U);
    core.colRange(20, 40).setTo(100);
    EXPECT_EQ(EVA(outline, core), 0.0);
    EXPECT_THROW(EVA(outline, cv::Mat::zeros(40, 40, CV_8UC3)), cv::Exception) << "colour is refused";
}

TEST(EdgeAnalysis, EdgeIndicatorByMode)
{
    // Grey 10 * x: interior squared gradient 100, on the first and last column also 100.
    cv::Mat ramp(3, 5, CV_8U);
    for (int x = 0; x < 5; ++x)
        ramp.col(x).setTo(10 * x);
    const struct {
        cv::Mat image;
        int mode;
        double expected;
        const char* why;
    } rows[] = {
        {cv::Mat(3, 5, CV_8U, cv::Scalar(7)), 1, 1.0, "flat: 1 / (1 + 0)"},
        {cv::Mat(3, 5, CV_8U, cv::Scalar(7)), 2, 1.0, "flat: exp(0)"},
        {ramp, 1, 1.0 / 101.0, "1 / (1 + 100)"},
        {ramp, 2, std::exp(-100.0), "exp(-100)"},
    };
    for (const auto& row : rows) {
        cv::Mat out;
        CalcuEdgeIndicator(row.image, out, row.mode);
        ASSERT_EQ(out.type(), CV_64FC1) << row.why;
        double low = 0.0, high = 0.0;
        cv::minMaxLoc(out, &low, &high);
        // OpenCV's exp is within a few units in the last place of std::exp.
        EXPECT_NEAR(low / row.expected, 1.0, 1e-12) << row.why;
        EXPECT_NEAR(high / row.expected, 1.0, 1e-12) << row.why;
    }
    cv::Mat kept = cv::Mat::ones(2, 2, CV_8U);
    CalcuEdgeIndicator(ramp, kept, 3);
    EXPECT_EQ(kept.size(), cv::Size(2, 2)) << "mode 3 leaves the output alone";
}

TEST(EdgeAnalysis, ConvolutionFlipsTheKernelAndCorrelationDoesNot)
{
    cv::Mat impulse = cv::Mat::zeros(5, 5, CV_64F);
    impulse.at<double>(2, 2) = 1.0;
    const cv::Mat kernel = (cv::Mat_<double>(3, 3) << 1, 2, 3, 4, 5, 6, 7, 8, 9);
    cv::Mat flipped;
    cv::flip(kernel, flipped, -1);
    // Convolving an impulse copies the kernel around it; correlating copies it turned by 180 degrees.
    EXPECT_EQ(cv::norm(Conv2(impulse, kernel)(cv::Rect(1, 1, 3, 3)), kernel, cv::NORM_INF), 0.0);
    EXPECT_EQ(cv::norm(Correlation(impulse, kernel)(cv::Rect(1, 1, 3, 3)), flipped, cv::NORM_INF), 0.0);

    // Borders: a flat 1 image, convolved with ones(3): 4 in a corner (zeros
    // outside); correlated: 9 (reflected border).
    const cv::Mat flat = cv::Mat::ones(4, 4, CV_64F);
    const cv::Mat ones = cv::Mat::ones(3, 3, CV_64F);
    EXPECT_EQ(Conv2(flat, ones).at<double>(0, 0), 4.0);
    EXPECT_EQ(Correlation(flat, ones).at<double>(0, 0), 9.0);
}

TEST(EdgeAnalysis, GaussSmoothKeepsFlatGreyInsideAndLosesItAtTheBorder)
{
    // Size 3, sigma 1: g = (0.274069, 0.451863, 0.274069). A corner sees the
    // 2 x 2 part: (0.451863 + 0.274069)^2 = 0.526977, times 10.
    const cv::Mat flat(5, 5, CV_8U, cv::Scalar(10));
    const cv::Mat out = GaussSmooth(flat, 3, 1.0);
    ASSERT_EQ(out.type(), CV_64FC1);
    EXPECT_NEAR(out.at<double>(2, 2), 10.0, 1e-12);
    EXPECT_NEAR(out.at<double>(0, 0), 5.26977, 1e-5);
}

TEST(EdgeAnalysis, OutlineRebuiltFromItsDescriptors)
{
    // count 1: positions 0, 1, 2 hold frequencies -1, 0, +1. Only +1 = 10:
    // spectrum (0, 10 * 4, 0, 0); the scaled inverse gives 10 e^{i pi n / 2}:
    // (10, 0), (0, 10), (-10, 0), (0, -10) about (20.5, 20.5), truncated.
    const std::vector<std::complex<double>> descriptors = {0.0, 0.0, 10.0};
    cv::Mat out;
    GetBackImageLi(out, descriptors, {20.5, 20.5}, 4, 1, 40, 35, 1.0);
    ASSERT_EQ(out.size(), cv::Size(40, 35));
    for (const cv::Point p : {cv::Point(30, 20), cv::Point(20, 30), cv::Point(10, 20), cv::Point(20, 10)})
        EXPECT_EQ(out.at<uchar>(p), 255) << p;
    EXPECT_EQ(out.at<uchar>(20, 20), 0) << "drawn, not filled";
    // Four diagonal sides of 11 pixels sharing their ends: 40 pixels.
    EXPECT_EQ(cv::countNonZero(out), 40);

    // length 2 * count + 1 = 3: frequencies 0, +1, -1, no zero run; -1 = 5
    // at position 0 adds 5 e^{-2 pi i n / 3}: n 0 gives 10 + 5 = 15 on x.
    GetBackImageLi(out, {5.0, 0.0, 10.0}, {20.5, 20.5}, 3, 1, 40, 40, 1.0);
    EXPECT_EQ(out.at<uchar>(20, 35), 255);
    EXPECT_THROW(GetBackImageLi(out, descriptors, {0.0, 0.0}, 2, 1, 10, 10, 1.0), std::invalid_argument);
}
