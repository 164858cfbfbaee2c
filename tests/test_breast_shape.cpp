// Breast orientation from the host's axes, the shape verdict, and the
// Fourier descriptors behind the shape measures.
#include <cmath>
#include <complex>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "FourierDescriptors/FourierDescriptors.h"
#include "breast_scene.h"

namespace {

BUSFeature BareFeature()
{
    return BUSFeature(cv::Mat(10, 10, CV_8UC1, cv::Scalar(0)), cv::Rect(0, 0, 10, 10));
}

struct Orientation {
    int verdict;
    float longLength;
    float shortLength;
};

Orientation Orient(cv::Point longEnd, cv::Point shortEnd)
{
    BUSFeature feature = BareFeature();
    const cv::Point longAxis[2] = {cv::Point(0, 0), longEnd};
    const cv::Point shortAxis[2] = {cv::Point(0, 0), shortEnd};
    Orientation o{0, -1.0f, -1.0f};
    o.verdict = feature.CalcLesionAxis(longAxis, shortAxis, o.longLength, o.shortLength);
    return o;
}

// Shape from the margin's figures {mean depth, greatest depth, count} and two lengths.
int Shape(float mean, float max, float count, float first, float second)
{
    BUSFeature feature = BareFeature();
    feature.m_marginVals = {mean, max, count, 20.0f};
    return feature.GetBreatShape(first, second);
}

} // namespace

TEST(BreastOrientation, HorizontalLongAxisIsParallelUnlessRoundish)
{
    // 79 / 100 < 0.8 and 0 degrees: 1. 80 / 100 = 0.8: 2.
    const Orientation flat = Orient({100, 0}, {0, 79});
    EXPECT_EQ(flat.verdict, 1);
    EXPECT_EQ(flat.longLength, 100.0f);
    EXPECT_EQ(flat.shortLength, 79.0f);
    EXPECT_EQ(Orient({100, 0}, {0, 80}).verdict, 2);
}

TEST(BreastOrientation, ThirtyDegreesSeparatesParallelFromSteep)
{
    // Rising 1 in 2: asin(50 / 111.8) = 26.6 degrees: 1. Rising 3 in 4:
    // asin(75 / 125) = 36.9 degrees: 2. Short axis 50: ratio 0.45 and 0.4.
    EXPECT_EQ(Orient({100, 50}, {0, 50}).verdict, 1);
    const Orientation steep = Orient({100, 75}, {0, 50});
    EXPECT_EQ(steep.verdict, 2);
    EXPECT_EQ(steep.longLength, 125.0f);
    // 780 / sqrt(1351^2 + 780^2) = 780 / 1560.0003: just under 30 degrees: 1;
    // 781 / 1560.50 = 0.50048: 30.03 degrees: 2.
    EXPECT_EQ(Orient({1351, 780}, {0, 1}).verdict, 1);
    EXPECT_EQ(Orient({1351, 781}, {0, 1}).verdict, 2);
    // The sign of the rise does not matter.
    EXPECT_EQ(Orient({-100, -50}, {0, 50}).verdict, 1);
    EXPECT_EQ(Orient({100, -75}, {0, 50}).verdict, 2);
}

TEST(BreastOrientation, DegenerateAxes)
{
    // Long axis of length 0: 30 / 0 is infinite >= 0.8: 2. Both 0: NaN: 0.
    EXPECT_EQ(Orient({0, 0}, {0, 30}).verdict, 2);
    EXPECT_EQ(Orient({0, 0}, {0, 0}).verdict, 0);
}

TEST(BreastShape, ManyOrDeepDefectsAreIrregular)
{
    EXPECT_EQ(Shape(0.0f, 0.0f, 4.0f, 100.0f, 99.0f), 3);
    EXPECT_EQ(Shape(0.46f, 0.5f, 1.0f, 100.0f, 99.0f), 3);
    // 0.45f widens to 0.44999999 < 0.45: not irregular; one defect: 1.
    EXPECT_EQ(Shape(0.45f, 0.5f, 1.0f, 100.0f, 99.0f), 1);
}

TEST(BreastShape, ThreeDefectsAreIrregularWhenBothDeep)
{
    EXPECT_EQ(Shape(0.41f, 0.56f, 3.0f, 100.0f, 84.0f), 3);
    // The greatest depth is compared in double: 0.55f = 0.55000001 > 0.55 is still deep.
    EXPECT_EQ(Shape(0.41f, 0.55f, 3.0f, 100.0f, 84.0f), 3);
    // Just below 0.55 the ratio test decides: 100 / 84 = 1.19 < 1.2 with defects: 1.
    EXPECT_EQ(Shape(0.41f, 0.5499999f, 3.0f, 100.0f, 84.0f), 1);
    // Mean 0.4f = 0.40000001 > 0.4 counts as deep; 0.3999999f does not.
    EXPECT_EQ(Shape(0.4f, 0.56f, 3.0f, 100.0f, 84.0f), 3);
    EXPECT_EQ(Shape(0.3999999f, 0.56f, 3.0f, 100.0f, 84.0f), 1);
}

TEST(BreastShape, RoundWithoutDefectIsRegular)
{
    // 100 / 84 = 1.19 < 1.2: no defect 2, one defect 1; either order of lengths.
    EXPECT_EQ(Shape(0.0f, 0.0f, 0.0f, 100.0f, 84.0f), 2);
    EXPECT_EQ(Shape(0.0f, 0.0f, 0.0f, 84.0f, 100.0f), 2);
    EXPECT_EQ(Shape(0.1f, 0.1f, 1.0f, 100.0f, 84.0f), 1);
    // 120 / 100 = 1.2f: elongated, 1. Both lengths 0: NaN, 1.
    EXPECT_EQ(Shape(0.0f, 0.0f, 0.0f, 120.0f, 100.0f), 1);
    EXPECT_EQ(Shape(0.0f, 0.0f, 0.0f, 100.0f, 120.0f), 1);
    EXPECT_EQ(Shape(0.0f, 0.0f, 0.0f, 0.0f, 0.0f), 1);
}

TEST(BreastShape, NeedsTheMarginFiguresFirst)
{
    BUSFeature feature = BareFeature();
    EXPECT_THROW(feature.GetBreatShape(100.0f, 84.0f), std::out_of_range);
}

namespace {

// The square (1, 1), (-1, 1), (-1, -1), (1, -1) about (cx, cy), times `scale`:
// relative to its mean it is (1 + i) * i^n, a single harmonic.
std::vector<cv::Point> Square(int cx, int cy, int scale, bool reversed)
{
    std::vector<cv::Point> points{{1, 1}, {-1, 1}, {-1, -1}, {1, -1}};
    if (reversed)
        std::swap(points[1], points[3]);
    for (cv::Point& p : points)
        p = cv::Point(cx + scale * p.x, cy + scale * p.y);
    return points;
}

void ExpectNear(const std::complex<double>& actual, const std::complex<double>& expected)
{
    EXPECT_NEAR(actual.real(), expected.real(), 1e-12);
    EXPECT_NEAR(actual.imag(), expected.imag(), 1e-12);
}

} // namespace

TEST(FourierDescriptors, SquareIsOneUnitHarmonic)
{
    // DFT of (1 + i) i^n over 4 points: frequency 1 holds 4 (1 + i), others 0;
    // over 4: 1 + i. With count 1: [f(-1), 0, f(1)] = [0, 0, 1 + i]. Divided by
    // |1 + i|, rotated by -theta = -45 degrees (phi = arg 0 = 0): [0, 0, 1].
    std::vector<std::complex<double>> d;
    CalcuFourierDescriptors(d, Square(0, 0, 1, false), 1, 0, 0);
    ASSERT_EQ(d.size(), 3u);
    ExpectNear(d[0], 0.0);
    ExpectNear(d[1], 0.0);
    ExpectNear(d[2], 1.0);
}

TEST(FourierDescriptors, PositionScaleAndSenseDoNotMatter)
{
    // Traversed the other way the harmonic sits at -1 and the vector is reversed.
    for (const auto& square : {Square(50, -20, 1, false), Square(0, 0, 7, false), Square(3, 4, 2, true)}) {
        std::vector<std::complex<double>> d;
        CalcuFourierDescriptors(d, square, 1, 640, 480);
        ASSERT_EQ(d.size(), 3u);
        ExpectNear(d[0], 0.0);
        ExpectNear(d[2], 1.0);
    }
}

TEST(FourierDescriptors, CircleIsAlmostOnlyItsFirstHarmonic)
{
    // A circle of radius 60 sampled at 360 points: after scaling, |f(1)| = 1
    // exactly and every other harmonic is rounding noise of the pixel grid.
    std::vector<cv::Point> circle;
    for (int i = 0; i < 360; ++i) {
        const double t = 3.141592653589793 * i / 180.0;
        circle.emplace_back(static_cast<int>(std::lround(100 + 60 * std::cos(t))),
                            static_cast<int>(std::lround(100 + 60 * std::sin(t))));
    }
    std::vector<std::complex<double>> d;
    CalcuFourierDescriptors(d, circle, 10, 200, 200);
    ASSERT_EQ(d.size(), 21u);
    EXPECT_NEAR(std::abs(d[11]), 1.0, 1e-12);
    EXPECT_EQ(d[10], std::complex<double>(0.0, 0.0));
    for (size_t i = 0; i < d.size(); ++i) {
        if (i != 11) {
            EXPECT_LT(std::abs(d[i]), 0.01) << i;
        }
    }

    // Its distance to itself is 0.
    BUSFeature feature = BareFeature();
    EXPECT_EQ(feature.FourierDescriptors2(circle, circle), 0.0);
}

TEST(FourierDescriptors, OutlineNeedsMorePointsThanHarmonics)
{
    // Ten harmonics each way need eleven points; ten would wrap the spectrum.
    auto polygon = [](int n) {
        std::vector<cv::Point> points;
        for (int i = 0; i < n; ++i) {
            const double t = 6.283185307179586 * i / n;
            points.emplace_back(static_cast<int>(std::lround(100 + 50 * std::cos(t))),
                                static_cast<int>(std::lround(100 + 50 * std::sin(t))));
        }
        return points;
    };
    std::vector<std::complex<double>> d;
    EXPECT_THROW(CalcuFourierDescriptors(d, polygon(10), 10, 0, 0), std::out_of_range);
    EXPECT_THROW(CalcuFourierDescriptors(d, {}, 10, 0, 0), std::out_of_range);
    CalcuFourierDescriptors(d, polygon(11), 10, 0, 0);
    EXPECT_EQ(d.size(), 21u);
}

TEST(BreastShapeFeature, RectangleIsItsOwnHull)
{
    // Outline of 14 points on the rectangle 40..79 x 30..59: the hull has the
    // same perimeter 2 * (39 + 29) = 136 and area 39 * 29 = 1131, and no defect.
    const cv::Mat image(100, 120, CV_8UC1, cv::Scalar(50));
    BUSFeature feature(image, cv::Rect(0, 0, 120, 100));
    feature.IntiBreastPara(scene::Rectangle(40, 30, 79, 59));
    const std::vector<float> values = feature.GetShapeFeature();
    ASSERT_EQ(values.size(), 4u);
    EXPECT_EQ(feature.m_lesionPerimeter, 136.0f);
    EXPECT_EQ(feature.m_hullPerimeter, 136.0f);
    EXPECT_EQ(values[0], 1.0f);
    EXPECT_EQ(values[1], 1.0f);
    EXPECT_EQ(values[2], 0.0f);
    EXPECT_EQ(values[3], feature.m_fourierDist);
    // Circularity 4 pi 1131 / 136^2 = 14212.565 / 18496 = 0.768413.
    EXPECT_NEAR(feature.m_circularity, 0.768413f, 1e-6f);
}
