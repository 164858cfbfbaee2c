// Outline measures and the echo histogram of BUSFeature, which no entry point uses.
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

#include "BusFeature/BusFeature.h"

namespace {

constexpr double kPi = 3.141592653589793;

BUSFeature Feature(const cv::Mat& image) { return BUSFeature(image, cv::Rect(0, 0, image.cols, image.rows)); }

// Every pixel of the outline of the square (0,0)-(10,10), 40 points, clockwise.
std::vector<cv::Point> SquareOutline()
{
    std::vector<cv::Point> out;
    for (int i = 0; i < 10; ++i) out.emplace_back(i, 0);
    for (int i = 0; i < 10; ++i) out.emplace_back(10, i);
    for (int i = 10; i > 0; --i) out.emplace_back(i, 10);
    for (int i = 10; i > 0; --i) out.emplace_back(0, i);
    return out;
}

} // namespace

TEST(BusFeatureToolkit, PointAngleByQuadrant)
{
    const struct {
        cv::Point b;
        double angle;
        const char* why;
    } rows[] = {
        {{0, 0}, 0.0, "no step"},
        {{0, 5}, kPi / 2, "dx 0"},
        {{0, -5}, kPi / 2, "dx 0, either sense"},
        {{-3, 0}, 0.0, "dy 0, either sense"},
        {{2, 2}, 2 * kPi - kPi / 4, "t = atan(1); dx, dy > 0: 2 pi - t"},
        {{-2, 2}, kPi + kPi / 4, "dx < 0, dy > 0: 2 pi - (pi - t)"},
        {{2, -2}, kPi / 4, "dx > 0, dy < 0: t"},
        {{-2, -2}, kPi - kPi / 4, "dx, dy < 0: pi - t"},
        {{-4, 3}, kPi + 0.6435011087932844, "t = atan(0.75) = 0.6435011"},
    };
    BUSFeature feature = Feature(cv::Mat::zeros(4, 4, CV_8U));
    for (const auto& row : rows)
        EXPECT_NEAR(feature.GetPointsAngle({0, 0}, row.b), row.angle, 1e-12) << row.why;
}

TEST(BusFeatureToolkit, AverageAngleDividesByThePointCount)
{
    BUSFeature feature = Feature(cv::Mat::zeros(4, 4, CV_8U));
    // Two steps of pi / 4 over three points: pi / 6.
    EXPECT_NEAR(feature.CalAverageAngle({{0, 0}, {1, -1}, {2, -2}}), kPi / 6, 1e-12);
    EXPECT_EQ(feature.CalAverageAngle({{5, 5}}), 0.0) << "no pair: 0 / 1";
    EXPECT_TRUE(std::isnan(feature.CalAverageAngle({}))) << "0 / 0";
}

TEST(BusFeatureToolkit, NormRadialLengthIsTheSpreadOfScaledRadii)
{
    const struct {
        std::vector<cv::Point> contour;
        double spread;
        const char* why;
    } rows[] = {
        {{{3, 0}, {0, 4}, {-5, 0}}, 0.2, "radii 3 4 5 -> 0.6 0.8 1; mean 0.8; (0.04 + 0 + 0.04) / 2 = 0.04; root 0.2"},
        {{{3, 4}, {4, -3}, {-3, -4}, {-4, 3}}, 0.0, "all at 5: every quotient 1"},
        {{{7, 0}}, 0.0, "one point: the spread is not divided"},
        {{}, 0.0, "no point: 0 / -1 is -0, and its root is 0"},
    };
    BUSFeature feature = Feature(cv::Mat::zeros(4, 4, CV_8U));
    for (const auto& row : rows)
        EXPECT_NEAR(feature.NormRadialLength(row.contour, {0, 0}), row.spread, 1e-6) << row.why;
}

TEST(BusFeatureToolkit, NrgsAreLeftInTheObject)
{
    // Grey 10 * x: interior gradient (10, 0). Centre (10, 10), points at radii 3, 4, 5.
    cv::Mat ramp(20, 20, CV_8U);
    for (int x = 0; x < 20; ++x)
        ramp.col(x).setTo(10 * x);
    BUSFeature feature = Feature(ramp);
    feature.m_centroid = {10, 10};
    feature.m_lesionCont = {{13, 10}, {10, 14}, {15, 10}};
    const std::vector<float> nrgs = feature.CalcuNrgs();
    ASSERT_EQ(nrgs.size(), 3u);
    // Radial parts 10, 0, 10 over magnitudes 10 + 10 + 10.
    EXPECT_NEAR(feature.m_nrg, 20.0 / 30.0, 1e-6);
    // 0.6 0.8 1 again.
    EXPECT_NEAR(feature.m_nrg2, 0.2, 1e-6);
    // (10,14) - (13,10) = (-3, 4): pi + atan(4/3); (15,10) - (10,14) = (5, -4): atan(0.8); over 3.
    EXPECT_NEAR(feature.m_nrg3, (kPi + 0.9272952180016122 + 0.6747409422235527) / 3.0, 1e-6);
    EXPECT_EQ(nrgs[2], feature.m_nrg3);
}

TEST(BusFeatureToolkit, ShapeFeature2OfASquareAgainstItsHull)
{
    BUSFeature feature = Feature(cv::Mat::zeros(12, 12, CV_8U));
    feature.m_lesionCont = SquareOutline();
    feature.m_hullPts = SquareOutline();
    feature.m_hull = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    feature.m_lesionArea = 100.0f;
    feature.m_hullArea = 100.0f;
    feature.m_lesionPerimeter = 40.0f;
    feature.m_majorAxisLength = 12.0f;
    feature.m_minorAxisLength = 10.0f;
    const std::vector<float> f = feature.GetShapeFeature2();
    ASSERT_EQ(f.size(), 5u);
    EXPECT_FLOAT_EQ(f[0], 1.0f) << "hull perimeter 40 / 40";
    EXPECT_FLOAT_EQ(f[1], 1.0f) << "area 100 / 100";
    EXPECT_FLOAT_EQ(f[2], float(100 * 4 * kPi / 1600)) << "4 pi 100 / 40^2 = 0.785398";
    EXPECT_FLOAT_EQ(f[3], float(12 * kPi * 10 / 160)) << "12 pi 10 / (4 * 40) = 2.356194";
    EXPECT_NEAR(f[4], 0.0f, 1e-6) << "the same outline twice";
}

TEST(BusFeatureToolkit, GreyStepAcrossTheOutline)
{
    // Lesion 20 x 20 at grey 50 in a field of 150: both rings differ by 100.
    cv::Mat image(60, 60, CV_8U, cv::Scalar(150));
    image(cv::Rect(20, 20, 20, 20)).setTo(50);
    cv::Mat label = cv::Mat::zeros(60, 60, CV_8U);
    label(cv::Rect(20, 20, 20, 20)).setTo(1);
    BUSFeature feature = Feature(image);
    feature.m_label = label;
    EXPECT_FLOAT_EQ(feature.GetGrayDiff(true), 100.0f);
    EXPECT_FLOAT_EQ(feature.GetGrayDiff(false), 100.0f);
    const std::vector<float> inner = feature.GetInnerEchoFeature();
    EXPECT_EQ(inner, (std::vector<float>{100.0f, 0.0f, 0.0f, 0.0f, 0.0f})) << "the two inner points stay (0, 0)";

    feature.m_lesionMask = label * 255;
    const cv::Mat before = feature.m_lesionMask.clone();
    feature.findTrackPoints();
    EXPECT_EQ(cv::norm(feature.m_lesionMask, before, cv::NORM_INF), 0.0) << "the search runs on a clone";
}

TEST(BusFeatureToolkit, EchoHistogramCountsGreyLevelsUnderTheMask)
{
    // Grey 2 x 3: 10 10 20 / 255 20 10.
    const cv::Mat grey = (cv::Mat_<uchar>(2, 3) << 10, 10, 20, 255, 20, 10);
    cv::Mat bottomRow = cv::Mat::zeros(2, 3, CV_8U);
    bottomRow.row(1).setTo(7);
    // BGR: blue 255 alone is (255 * 1868 + 8192) >> 14 = 29 (76 if read as red).
    const cv::Mat colour = (cv::Mat_<cv::Vec3b>(1, 2) << cv::Vec3b(255, 0, 0), cv::Vec3b(20, 20, 20));
    const struct {
        cv::Mat image, mask;
        std::vector<std::pair<int, float>> bins; // every other bin is 0
        const char* why;
    } rows[] = {
        {grey, cv::Mat(), {{10, 3}, {20, 2}, {255, 1}}, "no mask: all six pixels, white counted"},
        {grey, bottomRow, {{10, 1}, {20, 1}, {255, 1}}, "mask value 7 counts as set: 255 20 10"},
        {colour, cv::Mat(), {{29, 1}, {20, 1}}, "BGR made grey: 29 and 20"},
    };
    for (const auto& row : rows) {
        BUSFeature feature = Feature(cv::Mat::zeros(4, 4, CV_8U));
        cv::Mat expected = cv::Mat::zeros(256, 1, CV_32F);
        for (const auto& bin : row.bins)
            expected.at<float>(bin.first) = bin.second;
        const cv::Mat both[] = {feature.CalcuEchoHist(row.image, row.mask), feature.GetEchoHistMy(row.image, row.mask)};
        for (const cv::Mat& hist : both) {
            ASSERT_EQ(hist.type(), CV_32F) << row.why;
            ASSERT_EQ(hist.size(), cv::Size(1, 256)) << row.why;
            EXPECT_EQ(cv::norm(hist, expected, cv::NORM_INF), 0.0) << row.why;
        }
    }
}

TEST(BusFeatureToolkit, EchoHistogramRefusesWhatItCannotCount)
{
    const cv::Mat grey = cv::Mat::zeros(2, 3, CV_8U);
    const struct {
        cv::Mat image, mask;
        const char* why;
    } rows[] = {
        {cv::Mat(), cv::Mat(), "empty image"},
        {cv::Mat::zeros(2, 3, CV_16U), cv::Mat(), "16-bit levels"},
        {cv::Mat::zeros(2, 3, CV_8UC2), cv::Mat(), "two channels"},
        {grey, cv::Mat::ones(3, 2, CV_8U), "mask of another size"},
        {grey, cv::Mat::ones(2, 3, CV_32F), "mask not 8-bit"},
    };
    for (const auto& row : rows) {
        BUSFeature feature = Feature(cv::Mat::zeros(4, 4, CV_8U));
        EXPECT_THROW(feature.CalcuEchoHist(row.image, row.mask), std::invalid_argument) << row.why;
    }
}
