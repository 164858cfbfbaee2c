// The feature object's shape and the measures every organ shares.
#include <climits>
#include <cmath>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "BoundarySharpness/BoundarySharpness.h"
#include "BusFeature/BusFeature.h"
#include "BusFeature/RunDilation.h"

TEST(BUSFeatureObject, ConstructorsTakeSizesFromImageOrRegion)
{
    const cv::Mat image = cv::Mat::zeros(30, 40, CV_8U);
    BUSFeature breast(image, cv::Rect(5, 6, 7, 8));
    EXPECT_EQ(breast.m_width, 40);
    EXPECT_EQ(breast.m_height, 30);
    EXPECT_EQ(breast.m_fullWidth, 0);
    EXPECT_EQ(breast.m_roi, cv::Rect(5, 6, 7, 8));
    BUSFeature liver(image, 640, 480);
    EXPECT_EQ(liver.m_width, 40);
    EXPECT_EQ(liver.m_fullHeight, 480);
    EXPECT_EQ(liver.m_roi, cv::Rect());
    BUSFeature thyroid(image, cv::Rect(5, 6, 7, 8), 640, 480);
    EXPECT_EQ(thyroid.m_width, 7);
    EXPECT_EQ(thyroid.m_height, 8);
    EXPECT_EQ(thyroid.m_fullWidth, 640);
    EXPECT_FALSE(thyroid.m_calcFlag);
    EXPECT_EQ(thyroid.m_thyFloat2, 0.0f);
    EXPECT_EQ(thyroid.m_lesionStdGray, 0.0f);
    EXPECT_TRUE(thyroid.m_srcImg.data == image.data); // shares pixels
}

TEST(BUSFeatureObject, UnknownOrganGivesEmptyResults)
{
    BUSFeature f(cv::Mat::zeros(4, 4, CV_8U), 4, 4);
    f.m_organMaskA = cv::Mat::ones(4, 4, CV_8U);
    f.m_organCont2 = {{1, 1}};
    EXPECT_TRUE(f.GetOrganMask(static_cast<Organ>(0)).empty());
    EXPECT_TRUE(f.GetOrganMask(static_cast<Organ>(1)).empty());
    EXPECT_TRUE(f.GetOrganCont(static_cast<Organ>(1)).empty());
    EXPECT_FALSE(f.GetOrganMask(ORGAN_LIVER).empty());
    EXPECT_EQ(f.GetOrganCont(ORGAN_LIVER).size(), 1u);
}

TEST(BUSFeatureObject, CopyOwnsVectorsButSharesMaskPixels)
{
    BUSFeature f(cv::Mat::zeros(4, 4, CV_8U), cv::Rect(0, 0, 4, 4));
    f.m_lesionCont = {{1, 1}, {2, 2}};
    f.m_label = cv::Mat::zeros(4, 4, CV_8U);
    BUSFeature copy = f;
    copy.m_lesionCont.push_back({3, 3});
    copy.m_label.at<uchar>(1, 1) = 1;
    EXPECT_EQ(f.m_lesionCont.size(), 2u);
    EXPECT_EQ(f.m_label.at<uchar>(1, 1), 1);
}

namespace {

// Filled 10x10 square at (5, 5) in a 30x30 region: 100 mask pixels, and a
// border contour whose area is 9 * 9 = 81.
BUSFeature SquareLesion()
{
    BUSFeature f(cv::Mat::zeros(30, 30, CV_8U), cv::Rect(0, 0, 30, 30));
    f.m_label = cv::Mat::zeros(30, 30, CV_8U);
    f.m_label(cv::Rect(5, 5, 10, 10)).setTo(1);
    f.m_lesionCont = {{5, 5}, {14, 5}, {14, 14}, {5, 14}};
    f.m_lesionArea = static_cast<float>(cv::contourArea(f.m_lesionCont));
    return f;
}

} // namespace

TEST(CalcCentroid, DividesPixelSumsByContourArea)
{
    BUSFeature f = SquareLesion();
    ASSERT_EQ(f.m_lesionArea, 81.0f);
    // column sum: 10 rows * (5 + ... + 14) = 950; 950 / 81 = 11.73 -> 11
    EXPECT_EQ(f.CalcCentroid(false), cv::Point(11, 11));
    EXPECT_EQ(f.m_centroid, cv::Point(11, 11));
}

TEST(CalcCentroid, OrganFormReadsOrganLabelAndArea)
{
    BUSFeature f = SquareLesion();
    f.m_organLabel = cv::Mat::zeros(30, 30, CV_8U);
    f.m_organLabel(cv::Rect(0, 0, 4, 2)).setTo(1); // columns 0..3, rows 0..1
    f.m_organArea = 2.0f;
    // column sum 2 * 6 = 12 -> 6; row sum 4 * 1 = 4 -> 2
    EXPECT_EQ(f.CalcCentroid(true), cv::Point(6, 2));
}

TEST(CalcCentroid, ZeroAreaGivesIntMin)
{
    BUSFeature f = SquareLesion();
    f.m_lesionArea = 0.0f;
    EXPECT_EQ(f.CalcCentroid(false), cv::Point(INT_MIN, INT_MIN));
}

TEST(CalcCentroid, MaskFormScales255ToOne)
{
    BUSFeature f = SquareLesion();
    cv::Mat mask = f.m_label * 255;
    EXPECT_EQ(f.CalcCentroid(mask, f.m_lesionCont), cv::Point(11, 11));
}

TEST(CalcCentroid, MissingOrganMaskIsRefused)
{
    BUSFeature f = SquareLesion();
    EXPECT_ANY_THROW(f.CalcCentroid(true));
}

TEST(ConnectionMaskCv, EmptyContourKeepsBothVectors)
{
    BUSFeature f(cv::Mat::zeros(10, 10, CV_8U), cv::Rect(0, 0, 10, 10));
    std::vector<cv::Point> contour, copy{{4, 4}};
    EXPECT_FALSE(f.ConnectionMaskCv(contour, copy, cv::Mat::zeros(10, 10, CV_8U)));
    EXPECT_TRUE(contour.empty());
    EXPECT_EQ(copy.size(), 1u);
}

TEST(ConnectionMaskCv, CornersBecomeAnEightConnectedOutline)
{
    BUSFeature f(cv::Mat::zeros(20, 20, CV_8U), cv::Rect(0, 0, 20, 20));
    std::vector<cv::Point> contour{{2, 2}, {12, 2}, {12, 8}, {2, 8}}, copy;
    cv::Mat mask = cv::Mat::zeros(20, 20, CV_8U);
    ASSERT_TRUE(f.ConnectionMaskCv(contour, copy, mask));
    EXPECT_EQ(cv::countNonZero(mask), 11 * 7); // the caller sees the filled square
    EXPECT_EQ(contour, copy);
    EXPECT_EQ(contour.size(), 2u * (10 + 6)); // perimeter of an 11x7 pixel block
    for (size_t i = 0; i < contour.size(); ++i) {
        const cv::Point d = contour[i] - contour[(i + 1) % contour.size()];
        EXPECT_LE(std::max(std::abs(d.x), std::abs(d.y)), 1);
    }
}

TEST(ConectionMask, GapsAreBridgedTowardTheNextPoint)
{
    // (2,2) -> (6,2) is bridged along the row. Closing (6,2) -> (2,2): the
    // nearest free neighbours are (5,1) and (5,3), both sqrt(10) away, and the
    // upper one is met first; then (4,1) at sqrt(5), then (3,1) at sqrt(2).
    BUSFeature f(cv::Mat::zeros(10, 10, CV_8U), cv::Rect(0, 0, 10, 10));
    cv::Mat mask = cv::Mat::zeros(10, 10, CV_8U);
    std::vector<cv::Point> closed;
    f.ConectionMask({{2, 2}, {6, 2}}, closed, mask);
    const std::vector<cv::Point> expected{{2, 2}, {3, 2}, {4, 2}, {5, 2}, {6, 2}, {5, 1}, {4, 1}, {3, 1}};
    EXPECT_EQ(closed, expected);
    EXPECT_EQ(cv::countNonZero(mask), 8);
}

TEST(Gradient, OneSidedAtTheEdgesCentralInside)
{
    const cv::Mat row = (cv::Mat_<double>(1, 3) << 1.0, 2.0, 4.0);
    const cv::Mat gx = GradientX(row);
    EXPECT_EQ(gx.at<double>(0, 0), 1.0);
    EXPECT_EQ(gx.at<double>(0, 1), 1.5);
    EXPECT_EQ(gx.at<double>(0, 2), 2.0);
    const cv::Mat gy = GradientY(row.t());
    EXPECT_EQ(gy.at<double>(1, 0), 1.5);
    EXPECT_ANY_THROW(GradientX(row.t())); // one column: nothing to difference
}

namespace {

double DiscNrg(uchar inside, uchar outside, std::vector<cv::Point> extra = {})
{
    cv::Mat image(64, 64, CV_8U, cv::Scalar(outside));
    cv::circle(image, cv::Point(32, 32), 15, cv::Scalar(inside), cv::FILLED, cv::LINE_8);
    std::vector<cv::Point> contour;
    cv::ellipse2Poly(cv::Point(32, 32), cv::Size(15, 15), 0, 0, 360, 10, contour);
    contour.insert(contour.end(), extra.begin(), extra.end());
    BUSFeature f(image, cv::Rect(0, 0, 64, 64));
    return f.NormRadialGradient(contour, cv::Point(32, 32), image);
}

} // namespace

TEST(NormRadialGradient, SignFollowsTheStepAcrossTheOutline)
{
    EXPECT_LT(DiscNrg(200, 50), -0.8); // bright disc: grey falls outward
    EXPECT_GT(DiscNrg(50, 200), 0.8);  // dark disc: grey rises outward
}

TEST(NormRadialGradient, PointsOutsideTheImageAreLeftOut)
{
    EXPECT_EQ(DiscNrg(200, 50, {{-3, 5}, {64, 10}, {10, 90}}), DiscNrg(200, 50));
}

TEST(NormRadialGradient, EmptyContourIsNotANumber)
{
    BUSFeature f(cv::Mat::zeros(8, 8, CV_8U), cv::Rect(0, 0, 8, 8));
    EXPECT_TRUE(std::isnan(f.NormRadialGradient({}, cv::Point(4, 4), f.m_srcImg))); // 0 / 0
}

TEST(GetShapeFeatureMy, ConvexOutlineHasNoConcavity)
{
    BUSFeature f(cv::Mat::zeros(50, 50, CV_8U), cv::Rect(0, 0, 50, 50));
    f.m_lesionCont = {{5, 5}, {45, 5}, {45, 45}, {5, 45}};
    const std::vector<float> s = f.GetShapeFeatureMy();
    EXPECT_EQ(s, (std::vector<float>{0.0f, 0.0f, 0.0f}));
    EXPECT_EQ(f.m_circularity, 1.0f); // perimeter unset: 1 by definition
}

TEST(GetShapeFeatureMy, NotchDepthInPixelsOrOverHalfMinorAxis)
{
    // A V notch 10 deep in the top side of a 40x40 square: one defect of
    // depth 10 (2560 / 256).
    BUSFeature f(cv::Mat::zeros(50, 50, CV_8U), cv::Rect(0, 0, 50, 50));
    f.m_lesionCont = {{0, 0}, {15, 0}, {20, 10}, {25, 0}, {40, 0}, {40, 40}, {0, 40}};
    EXPECT_EQ(f.GetShapeFeatureMy(), (std::vector<float>{10.0f, 10.0f, 1.0f}));
    f.m_majorAxisLength = 60.0f;
    f.m_minorAxisLength = 40.0f; // half = 20
    f.m_lesionArea = 100.0f;
    f.m_lesionPerimeter = 40.0f;
    EXPECT_EQ(f.GetShapeFeatureMy(), (std::vector<float>{0.5f, 0.5f, 1.0f}));
    // 100 * 4 pi / 1600 in double, then to float
    EXPECT_EQ(f.m_circularity, static_cast<float>(100.0 * 12.566370614359172 / 1600.0));
}

// Dilation by element runs gives cv::dilate's pixels for ellipses,
// rectangles and crosses of odd and even sizes, on speckled, sparse and
// empty planes: by rows, by columns, and around the set pixels.
TEST(RunDilation, AgreesWithOpenCVsDilation)
{
    cv::RNG rng(20261124);
    const int shapes[] = {cv::MORPH_ELLIPSE, cv::MORPH_RECT, cv::MORPH_CROSS};
    for (int trial = 0; trial < 100000; ++trial) {
        const cv::Size size(rng.uniform(1, 41), rng.uniform(1, 41));
        cv::Mat image(size, CV_8UC1);
        const int kind = trial % 3;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                image.at<uchar>(y, x) = kind == 0   ? uchar(rng.uniform(0, 256))
                                        : kind == 1 ? uchar(rng.uniform(0, 60) == 0 ? 255 : 0)
                                                    : uchar(0);
        if (kind == 2 && trial % 2)
            image.at<uchar>(rng.uniform(0, size.height), rng.uniform(0, size.width)) = 1;
        const cv::Size k(rng.uniform(1, 32), rng.uniform(1, 48));
        const cv::Mat element = cv::getStructuringElement(shapes[trial % 9 / 3], k, cv::Point(-1, -1));
        cv::Mat expected;
        cv::dilate(image, expected, element, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
                   cv::morphologyDefaultBorderValue());
        const cv::Mat actual = trial % 4 == 1   ? rundilation::Dilate(image, element)
                               : trial % 4 == 3 ? rundilation::DilateTall(image, element)
                                                : rundilation::DilateAround(image, element);
        ASSERT_EQ(cv::norm(expected, actual, cv::NORM_INF), 0.0) << "trial " << trial << " element " << k;
        // The centred form takes odd ellipses and rectangles only.
        if (trial % 9 < 6 && k.width % 2 == 1) {
            ASSERT_EQ(cv::norm(expected, rundilation::DilateCentred(image, element), cv::NORM_INF), 0.0)
                << "trial " << trial << " element " << k;
        }
    }
}
