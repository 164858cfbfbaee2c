// Contour metrics of Description and the verdicts built on them.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>
#include <opencv2/ml.hpp>

#include "FeatureDescription/Description.h"

namespace {

constexpr double kPi = 3.141592653589793;

Description Make()
{
    const cv::Mat image = cv::Mat::zeros(100, 100, CV_8U);
    return Description(image, image, cv::Rect(0, 0, 100, 100));
}

std::vector<cv::Point> Polygon(const cv::RotatedRect& e)
{
    std::vector<cv::Point> out;
    cv::ellipse2Poly(cv::Point(cvRound(e.center.x), cvRound(e.center.y)),
                     cv::Size(int(e.size.width) / 2, int(e.size.height) / 2), int(e.angle), 0, 360, 1, out);
    return out;
}

const std::vector<cv::Point> kSquare = {{30, 30}, {40, 30}, {40, 40}, {30, 40}};

} // namespace

TEST(DescriptionMetrics, AreaAndPerimeterMetrics)
{
    Description d = Make();
    // Nothing sets area and perimeter: both guarded metrics give 0, circularity 0 / 0.
    EXPECT_EQ(d.RoundnessMetric(), 0.0);
    EXPECT_EQ(d.TightMetric(), 0.0);
    EXPECT_TRUE(std::isnan(d.CalcuCircularity(kSquare)));
    EXPECT_EQ(d.ConvexHullMetric(kSquare), 0.0) << "0 over the hull's 100";

    d.m_contourArea = 100.0f;
    d.m_contourPerimeter = 40.0f;
    EXPECT_NEAR(d.RoundnessMetric(), kPi / 4, 1e-12) << "100 * 4 pi / 1600";
    EXPECT_NEAR(d.CalcuCircularity(kSquare), kPi / 4, 1e-12);
    EXPECT_EQ(d.TightMetric(), 16.0) << "1600 / 100";
    EXPECT_EQ(d.ConvexHullMetric(kSquare), 1.0) << "100 / 100";
}

TEST(DescriptionMetrics, MarginThresholdInFloat)
{
    const struct {
        float a, b;
        int verdict;
        const char* why;
    } rows[] = {
        {0.0f, 3.4f, 2, "3.4f widens to 3.4000000954 > 3.4"},
        {0.0f, 3.3999f, 1, "below"},
        {0.2f, 1.5f, 2, "2 + 1.5 = 3.5"},
        {0.1f, 2.0f, 1, "1 + 2 = 3"},
    };
    Description d = Make();
    for (const auto& row : rows) {
        EXPECT_EQ(d.MarginDescription(row.a, row.b), row.verdict) << row.why;
        EXPECT_EQ(d.MarginDescription2({row.a, row.b}), row.verdict) << row.why;
    }
}

TEST(DescriptionMetrics, EchoTypeFromTheHistogramPeak)
{
    // 30 at grey 100, 5 at 50, 5 at 60, 2 at 70 (not above 2), 10 at 0 (bin 0
    // not averaged), 50 at 255 (cleared). Peak 30; mean of 5 and 5 is 5: ratio 6.
    cv::Mat image(1, 102, CV_8U);
    int at = 0;
    for (const auto& [grey, count] : std::vector<std::pair<int, int>>{{100, 30}, {50, 5}, {60, 5}, {70, 2}, {0, 10},
                                                                      {255, 50}})
        for (int i = 0; i < count; ++i)
            image.at<uchar>(0, at++) = uchar(grey);
    const struct {
        float limit;
        int verdict;
        const char* why;
    } rows[] = {{7.0f, 2, "6 < 7: spread"}, {6.0f, 1, "6 not below 6: one sharp peak"}};
    Description d = Make();
    for (const auto& row : rows) {
        float ratio = 0.0f;
        EXPECT_EQ(d.JudgeEchoType(image, row.limit, ratio), row.verdict) << row.why;
        EXPECT_EQ(ratio, 6.0f);
    }
    float ratio = 0.0f;
    EXPECT_EQ(d.JudgeEchoType(cv::Mat(4, 4, CV_8U, cv::Scalar(100)), 7.0f, ratio), 1);
    EXPECT_TRUE(std::isnan(ratio)) << "no other bin: 0 / 0";
}

TEST(DescriptionMetrics, RegularityAndShapeOnTheEllipseItself)
{
    // The ellipse's own polygon: Fourier distance 0 < 0.38, so the aspect decides.
    const struct {
        cv::Size2f size;
        float angle;
        int regularity;
        int shape;
        const char* why;
    } rows[] = {
        {{40, 20}, 90.0f, 1, 1, "40 / 20 = 2: oval; 90 is parallel"},
        {{30, 25}, 109.0f, 2, 1, "30 / 25 = 1.2 < 1.5: round; |19| not above 19"},
        {{30, 25}, 109.5f, 2, 2, "19.5 above 19"},
        {{40, 20}, 70.0f, 1, 2, "20 above 19"},
    };
    for (const auto& row : rows) {
        Description d = Make();
        d.m_ellipse = cv::RotatedRect(cv::Point2f(50, 50), row.size, 0.0f);
        d.m_ellipseAngle = row.angle;
        const std::vector<cv::Point> outline = Polygon(d.m_ellipse);
        int regularity = 0;
        EXPECT_EQ(d.ShapeDescriptionOld(outline, regularity), row.shape) << row.why;
        EXPECT_EQ(regularity, row.regularity) << row.why;
        EXPECT_NEAR(d.m_regularity, 0.0, 1e-9) << row.why;
        EXPECT_EQ(d.ShapeDescription(outline), row.shape) << row.why;
        EXPECT_NEAR(d.MatchContoursHu(outline), 0.0, 1e-9) << row.why;
        EXPECT_EQ(d.m_ellipseAngle, 0.0f) << "copied from the ellipse";
    }
}

TEST(DescriptionMetrics, NormRadialLengthAboutTheCentroid)
{
    Description d = Make();
    d.SetCentroid({10, 10});
    // Radii 3, 4, 5 -> 0.6, 0.8, 1: spread 0.2.
    EXPECT_NEAR(d.NormRadialLength({{13, 10}, {10, 14}, {5, 10}}), 0.2, 1e-6);
}

TEST(DescriptionMetrics, ShapeContextFavoursTheEllipse)
{
    Description d = Make();
    d.m_ellipse = cv::RotatedRect(cv::Point2f(50, 50), cv::Size2f(40, 40), 0.0f);
    cv::theRNG().state = 7;
    const double same = d.MatchContoursSC(Polygon(d.m_ellipse));
    cv::theRNG().state = 7;
    const double square = d.MatchContoursSC({{30, 30}, {70, 30}, {70, 70}, {30, 70}});
    EXPECT_GE(same, 0.0);
    EXPECT_LT(same, square);
    // Above the limit: irregular; otherwise the aspect (40 / 40 = 1: round).
    cv::theRNG().state = 7;
    EXPECT_EQ(d.ContourRegularity2({{30, 30}, {70, 30}, {70, 70}, {30, 70}}, same), 3);
    cv::theRNG().state = 7;
    EXPECT_EQ(d.ContourRegularity2({{30, 30}, {70, 30}, {70, 70}, {30, 70}}, square + 1.0), 2);
}

TEST(DescriptionMetrics, SvmVerdictsFromATinyModel)
{
    // One feature: -2 and -1 are class -1, 1 and 2 are class 1.
    const cv::Mat samples = (cv::Mat_<float>(4, 1) << -2, -1, 1, 2);
    const cv::Mat labels = (cv::Mat_<int>(4, 1) << -1, -1, 1, 1);
    cv::Ptr<cv::ml::SVM> svm = cv::ml::SVM::create();
    svm->setType(cv::ml::SVM::C_SVC);
    svm->setKernel(cv::ml::SVM::LINEAR);
    svm->train(samples, cv::ml::ROW_SAMPLE, labels);

    const struct {
        std::vector<float> features;
        float first, second;
        bool skip;
        int verdict;
        const char* why;
    } rows[] = {
        {{-1.5f}, 10, 11, false, 3, "class -1: irregular"},
        {{1.5f}, 11, 10, false, 1, "class 1, 11 / 10 = 1.1 < 1.2"},
        {{1.5f}, 10, 13, false, 2, "class 1, 1.3"},
        {{}, 10, 11, true, 1, "skipped: the ratio alone"},
    };
    Description d = Make();
    for (const auto& row : rows)
        EXPECT_EQ(d.ShapeDescriptionSVM(svm, row.features, row.first, row.second, row.skip), row.verdict) << row.why;
    EXPECT_EQ(d.EchoDescriptionSVM(svm, {1.5f}), 1);
    EXPECT_EQ(d.BoundaryDescriptionSVM(svm, {-1.5f}), -1);
    EXPECT_EQ(d.MarginDescriptionSVM(svm, {2.0f}), 1);
}

TEST(DescriptionMetrics, ThresholdsAtTheValleysBetweenCrests)
{
    // Bins not listed are 0. Crests: 10 (40), 50 (30), 90 (20), 130 (5).
    const auto hist = [](const std::vector<std::pair<int, float>>& bins) {
        cv::Mat h = cv::Mat::zeros(256, 1, CV_32F);
        for (const auto& [grey, count] : bins)
            h.at<float>(grey) = count;
        return h;
    };
    const cv::Mat four = hist({{10, 40}, {50, 30}, {90, 20}, {130, 5}});
    // Between 10 and 50 the first zero is bin 11; between 50 and 90, bin 51.
    EXPECT_EQ(GetThreshold2Crest(four), 11);
    int low = -7, high = -7;
    EXPECT_TRUE(GetThreshold3Crest(four, low, high));
    EXPECT_EQ(low, 11);
    EXPECT_EQ(high, 51);

    // A valley that is not empty: 10 (40), 11..19 at 8, 20 at 3, 21..29 at 8, 30 (35): valley 20.
    std::vector<std::pair<int, float>> shaped = {{10, 40}, {20, 3}, {30, 35}};
    for (int g = 11; g < 30; ++g)
        if (g != 20)
            shaped.emplace_back(g, 8.0f);
    EXPECT_EQ(GetThreshold2Crest(hist(shaped)), 20);

    // One crest: a plateau 100..104 at 9 crests at 100 only.
    const cv::Mat single = hist({{100, 9}, {101, 9}, {102, 9}, {103, 9}, {104, 9}});
    EXPECT_EQ(GetThreshold2Crest(single), -1);
    EXPECT_FALSE(GetThreshold3Crest(single, low, high));
    EXPECT_EQ(low, 11) << "left alone";
}

TEST(DescriptionMetrics, BoundaryOfAContourOnTheRegion)
{
    // Flat region: both bands alike with no spread, 0 / 0 is NaN, counted abrupt (1).
    Description flat = Make();
    EXPECT_EQ(flat.BoundaryDescription2(kSquare), 1);
    // A 100/110 checkerboard: the bands' means are about equal, so their
    // between-class variance is near 0 against a spread of about 5: 2 (not abrupt).
    cv::Mat board(100, 100, CV_8U);
    for (int r = 0; r < 100; ++r)
        for (int c = 0; c < 100; ++c)
            board.at<uchar>(r, c) = uchar((r + c) % 2 == 0 ? 100 : 110);
    Description textured(board, board, cv::Rect(0, 0, 100, 100));
    EXPECT_EQ(textured.BoundaryDescription2(std::vector<cv::Point>{{30, 30}, {70, 30}, {70, 70}, {30, 70}}), 2);
}

TEST(DescriptionMetrics, BoundaryAgainstTheCallersLimit)
{
    const float nan = std::nanf("");
    const struct {
        float value, limit;
        int verdict;
        const char* why;
    } rows[] = {
        {8.0f, 8.0f, 2, "8 is not above 8"},
        {8.000001f, 8.0f, 1, "next float above 8"},
        {3.0f, 2.5f, 1, "3 > 2.5"},
        {-1.0f, -0.5f, 2, "-1 <= -0.5"},
        {nan, 8.0f, 1, "NaN value, as a flat image's 0 / 0"},
        {0.0f, nan, 1, "NaN limit"},
    };
    Description d = Make();
    for (const auto& row : rows) {
        EXPECT_EQ(d.BoundaryDescription(row.value, row.limit), row.verdict) << row.why;
        if (row.limit == 8.0f) {
            EXPECT_EQ(d.BoundaryDescription2(row.value), row.verdict) << row.why << ": the fixed-limit form";
        }
    }
}
