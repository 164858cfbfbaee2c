// Extrathyroidal extension: the gates before the probing, and a nodule that
// runs along the gland's whole outline.
#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "synthetic.h"

namespace {

// A gland ellipse about (112, 90), half-axes 90 and 50, grey 120, and a
// nodule of grey 70 filling it to within a pixel (half-axes 89 and 49), on a
// background of 60. The image is `width` columns wide and 180 rows high.
ThyroidResult FullGland(int width, int shiftX = 0)
{
    cv::Mat image(180, width, CV_8U, cv::Scalar(60));
    const std::vector<cv::Point> gland = synth::Outline({112 + shiftX, 90}, 90, 50, 300);
    const std::vector<cv::Point> nodule = synth::Outline({112 + shiftX, 90}, 89, 49, 300);
    cv::fillPoly(image, std::vector<std::vector<cv::Point>>{gland}, cv::Scalar(120), cv::LINE_8);
    cv::fillPoly(image, std::vector<std::vector<cv::Point>>{nodule}, cv::Scalar(70), cv::LINE_8);
    std::vector<MyPoint> organ = synth::ToMyPoints(gland);
    const std::vector<MyPoint> lesion = synth::ToMyPoints(nodule);
    const RoiCoor roi{10 + shiftX, 30, 204, 122};
    ThyroidResult r{-1, -1, -1, -1};
    ThyroidDescriptionModelAfterProcess(image.data, 1, image.cols, image.rows, int(organ.size()), organ.data(),
                                        int(lesion.size()), lesion.data(), 0, nullptr, nullptr, roi, &r);
    return r;
}

} // namespace

TEST(ThyroidExtension, NoduleAlongTheWholeOutlineOfA224ColumnImageIsExtension)
{
    // 224 columns scale to 220: the lesion keeps (220 / 224)^2 = 0.96 of its
    // pixels, and the interpolation only widens both masks, so the overlap
    // passes 0.9. Every probe then meets the gland's outline within a pixel or
    // two of the nodule's, all stretches join into one run, and the crossings
    // lie on the gland's ellipse about the nodule's centroid: margin 4.
    EXPECT_EQ(FullGland(224).margin, 4);
}

TEST(ThyroidExtension, ImagesOf220ColumnsOrFewerNeverShowExtension)
{
    // At 220 columns the lesion mask of the test stays empty: no overlap.
    EXPECT_NE(FullGland(220).margin, 4);
}

TEST(ThyroidExtension, WideImagesLoseTheOverlapToTheScale)
{
    // 800 columns: about (220 / 800)^2 = 0.08 of the lesion's pixels remain.
    EXPECT_NE(FullGland(800, 300).margin, 4);
}

TEST(ThyroidExtension, NoduleInsideTheGlandWithoutNearOutlineIsNoExtension)
{
    // A small nodule in the middle of the gland passes the overlap test but no
    // probe comes within 8 pixels of the gland's outline: no stretch, false.
    cv::Mat image(180, 224, CV_8U, cv::Scalar(60));
    const std::vector<cv::Point> gland = synth::Outline({112, 90}, 90, 50, 300);
    const std::vector<cv::Point> nodule = synth::Outline({112, 90}, 25, 15, 100);
    BUSFeature f(image(cv::Rect(72, 60, 80, 60)), cv::Rect(72, 60, 80, 60), 224, 180);
    std::vector<cv::Point> organ = gland;
    std::vector<cv::Point> whole = nodule;
    std::vector<cv::Point> region;
    for (const cv::Point& p : nodule)
        region.push_back(p - cv::Point(72, 60));
    f.InitiThroidPara(organ, region, whole);
    f.m_lesionPixNum = cv::countNonZero(f.m_label);
    EXPECT_FALSE(f.GetThyroidalExtensionMy());
}
