// Echo grades of gall bladder and liver lesions from grey summaries.
#include <gtest/gtest.h>

#include <vector>

#include "BusFeature/BusFeature.h"
#include "FeatureDescription/Description.h"

namespace {

// 40 x 40: lesion rows/cols 10..19, its first `darkCount` pixels (row by row)
// at `dark`, the rest at `lesion`; the 20 rows below it (20..39) at `below`.
BUSFeature Scene(int lesion, int below, int dark = 0, int darkCount = 0)
{
    cv::Mat image = cv::Mat::zeros(40, 40, CV_8U);
    image(cv::Rect(10, 10, 10, 10)).setTo(lesion);
    for (int i = 0; i < darkCount; ++i)
        image.at<uchar>(10 + i / 10, 10 + i % 10) = uchar(dark);
    image(cv::Rect(0, 20, 40, 20)).setTo(below);
    BUSFeature feature(image, cv::Rect(0, 0, 40, 40));
    feature.m_label = cv::Mat::zeros(40, 40, CV_8U);
    feature.m_label(cv::Rect(10, 10, 10, 10)).setTo(1);
    feature.m_lesionCont = {{10, 10}, {19, 10}, {19, 19}, {10, 19}};
    return feature;
}

Description Verdicts()
{
    const cv::Mat image = cv::Mat::zeros(40, 40, CV_8U);
    return Description(image, image, cv::Rect(0, 0, 40, 40));
}

} // namespace

TEST(EchoGrades, PosteriorBandIsTheTwentyRowsBelow)
{
    // Lesion label rows/cols 10..19 at 120, rows 20..39 at 69; the outline's box moves.
    const struct {
        int top, bottom;
        bool label;
        std::vector<float> p;
        const char* why;
    } rows[] = {
        {10, 19, true, {120.0f, 69.0f}, "band rows 20..39"},
        {25, 34, true, {120.0f, 69.0f}, "band rows 35..54 cut to 35..39"},
        {30, 39, true, {120.0f, 0.0f}, "band starts at row 40, outside"},
        {10, 19, false, {0.0f, 69.0f}, "no label drawn: no lesion pixel, not the whole image"},
    };
    for (const auto& row : rows) {
        BUSFeature feature = Scene(120, 69);
        feature.m_lesionCont = {{10, row.top}, {19, row.top}, {19, row.bottom}, {10, row.bottom}};
        if (!row.label)
            feature.m_label = cv::Mat();
        EXPECT_EQ(feature.GetGbPosterEchoFeature(), row.p) << row.why;
    }
}

TEST(EchoGrades, LesionHistogramAgainstTheLiver)
{
    // 100 lesion pixels: darkCount at `dark`, the rest at `lesion`.
    const struct {
        int lesion, dark, darkCount;
        float liver;
        bool label;
        std::vector<float> f;
        const char* why;
    } rows[] = {
        {150, 50, 70, 100, true, {70, 30, 50}, "50 < 100 darker; peak 50 (70 > 30): |50 - 100|"},
        {150, 50, 70, 50, true, {0, 100, 0}, "grey 50 at the liver's 50 counts as bright"},
        {255, 50, 30, 100, true, {30, 0, 50}, "white cleared: not counted, not the peak"},
        {150, 50, 50, 120, true, {50, 50, 70}, "equal bins: the darker peak 50, |50 - 120|"},
        {150, 50, 70, 100, false, {0, 0, 100}, "no label drawn: empty histogram, peak 0"},
    };
    for (const auto& row : rows) {
        BUSFeature feature = Scene(row.lesion, 0, row.dark, row.darkCount);
        feature.m_liverAvgGray = row.liver;
        if (!row.label)
            feature.m_label = cv::Mat();
        EXPECT_EQ(feature.GetEchoFeatureUseHist(), row.f) << row.why;
    }
}

TEST(EchoGrades, GallBladderEchoFirstRuleThatHolds)
{
    // bright 200, liver 100: 200 - 26 = 174, 100 + 20 = 120, 100 - 15 = 85.
    const struct {
        float high;
        int lesion, below;
        int verdict;
        const char* why;
    } rows[] = {
        {174, 100, 100, 4, "174 >= 174"},
        {173, 120, 69, 4, "120 - 69 = 51 > 50"},
        {121, 120, 70, 3, "50 not above 50; 121 > 120"},
        {84, 100, 100, 2, "84 < 85"},
        {85, 100, 100, 6, "85 is not below 85"},
    };
    for (const auto& row : rows) {
        BUSFeature feature = Scene(row.lesion, row.below);
        feature.m_lesionHighGray = row.high;
        feature.m_brightAvgGray = 200.0f;
        feature.m_liverAvgGray = 100.0f;
        EXPECT_EQ(Verdicts().GallBladderEcho(feature), row.verdict) << row.why;
    }
}

TEST(EchoGrades, GallBladderEcho2StartsFromTheLesionMean)
{
    const struct {
        float avg, liver, high;
        int below;
        int verdict;
        const char* why;
    } rows[] = {
        {80, 100, 0, 100, 2, "80 < 100 - 15"},
        {80, 60, 0, 100, 6, "45 <= 80 <= 80"},
        {80, 59, 0, 100, 3, "80 > 59 + 20"},
        {81, 100, 174, 100, 4, "above 80: 174 >= 200 - 26"},
        {81, 100, 100, 49, 4, "p0 100 - p1 49 = 51"},
        {81, 100, 100, 50, 3, "50 is not above 50"},
    };
    for (const auto& row : rows) {
        BUSFeature feature = Scene(100, row.below);
        feature.m_lesionAvgGray = row.avg;
        feature.m_liverAvgGray = row.liver;
        feature.m_lesionHighGray = row.high;
        feature.m_brightAvgGray = 200.0f;
        EXPECT_EQ(Verdicts().GallBladderEcho2(feature), row.verdict) << row.why;
    }
}

TEST(EchoGrades, LiverEchoFromTheLesionHistogram)
{
    const std::vector<cv::Point> organ = {{0, 0}, {10, 0}, {10, 10}, {0, 10}}; // area 100
    const struct {
        float avg, area;
        int lesion, dark, darkCount;
        int verdict;
        const char* why;
    } rows[] = {
        {111, 1, 150, 50, 0, 4, "111 / 100 > 1.1; 1 / 100 = 0.01, not above"},
        {111, 2, 150, 50, 0, 3, "0.02 above 0.01"},
        {110, 1, 150, 50, 70, 1, "110 / 100 is 1.1f, not above; 70 dark / 30 = 2.33 > 2"},
        {110, 1, 150, 50, 60, 1, "60 / 40 = 1.5; peak 50 is 50 from 100"},
        {110, 1, 105, 50, 40, 2, "40 / 60; peak 105 is 5 from 100"},
    };
    for (const auto& row : rows) {
        BUSFeature feature = Scene(row.lesion, 0, row.dark, row.darkCount);
        feature.m_lesionAvgGray = row.avg;
        feature.m_liverAvgGray = 100.0f;
        feature.m_lesionArea = row.area;
        EXPECT_EQ(Verdicts().LiverEchoUseHist(feature, organ), row.verdict) << row.why;
    }
}
