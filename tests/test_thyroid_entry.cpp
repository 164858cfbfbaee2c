// The thyroid entry: argument check, preset record, failures, the gland
// outline written back, and the grey plane it analyses.
#include <cstddef>

#include <gtest/gtest.h>

#include "thyroid_scene.h"

static_assert(sizeof(ThyroidResult) == 16, "four 32-bit verdicts");
static_assert(offsetof(ThyroidResult, shape) == 0 && offsetof(ThyroidResult, echo) == 4 &&
                  offsetof(ThyroidResult, margin) == 8 && offsetof(ThyroidResult, calcification) == 12,
              "verdicts at bytes 0, 4, 8, 12");

namespace {

void ExpectRecord(const ThyroidResult& r, int shape, int echo, int margin, int calcification)
{
    EXPECT_EQ(r.shape, shape);
    EXPECT_EQ(r.echo, echo);
    EXPECT_EQ(r.margin, margin);
    EXPECT_EQ(r.calcification, calcification);
}

struct Args {
    thyscene::Scene s = thyscene::Make();
    std::vector<MyPoint> organ = synth::ToMyPoints(s.gland);
    std::vector<MyPoint> lesion = synth::ToMyPoints(s.nodule);
};

} // namespace

TEST(ThyroidEntry, RejectedArgumentsLeaveRecordUntouched)
{
    Args a;
    const cv::Mat& img = a.s.image;
    ThyroidResult r{7, 7, 7, 7};
    ThyroidDescriptionModelAfterProcess(nullptr, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(),
                                        int(a.lesion.size()), a.lesion.data(), 0, nullptr, nullptr, a.s.roi, &r);
    ExpectRecord(r, 7, 7, 7, 7);
    for (int channels : {0, 2, 5}) {
        ThyroidDescriptionModelAfterProcess(img.data, channels, img.cols, img.rows, int(a.organ.size()),
                                            a.organ.data(), int(a.lesion.size()), a.lesion.data(), 0, nullptr,
                                            nullptr, a.s.roi, &r);
        ExpectRecord(r, 7, 7, 7, 7);
    }
    // Only a zero count is refused here, for either outline.
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, 0, a.organ.data(), int(a.lesion.size()),
                                        a.lesion.data(), 0, nullptr, nullptr, a.s.roi, &r);
    ExpectRecord(r, 7, 7, 7, 7);
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(), 0,
                                        a.lesion.data(), 0, nullptr, nullptr, a.s.roi, &r);
    ExpectRecord(r, 7, 7, 7, 7);
    // A null record is not written.
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(),
                                        int(a.lesion.size()), a.lesion.data(), 0, nullptr, nullptr, a.s.roi, nullptr);
}

TEST(ThyroidEntry, FailuresKeepThePresetRecord)
{
    Args a;
    const cv::Mat& img = a.s.image;
    ThyroidResult r{7, 7, 7, 7};
    // Negative lesion count passes the check and fails copying: preset 0, 3, 0, 0.
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(), -4,
                                        a.lesion.data(), 0, nullptr, nullptr, a.s.roi, &r);
    ExpectRecord(r, 0, 3, 0, 0);

    // A region reaching past the right edge (150 + 60 > 200).
    r = ThyroidResult{7, 7, 7, 7};
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(),
                                        int(a.lesion.size()), a.lesion.data(), 0, nullptr, nullptr,
                                        RoiCoor{150, 50, 60, 60}, &r);
    ExpectRecord(r, 0, 3, 0, 0);

    // Null point arrays with positive counts are never read.
    r = ThyroidResult{7, 7, 7, 7};
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(),
                                        int(a.lesion.size()), nullptr, 0, nullptr, nullptr, a.s.roi, &r);
    ExpectRecord(r, 0, 3, 0, 0);
    r = ThyroidResult{7, 7, 7, 7};
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, 5, nullptr, int(a.lesion.size()),
                                        a.lesion.data(), 0, nullptr, nullptr, a.s.roi, &r);
    ExpectRecord(r, 0, 3, 0, 0);
    r = ThyroidResult{7, 7, 7, 7};
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(),
                                        int(a.lesion.size()), a.lesion.data(), 2, nullptr, nullptr, a.s.roi, &r);
    ExpectRecord(r, 0, 3, 0, 0);

    // A negative model size fails while the model mask is drawn, before any verdict.
    const int sizes[] = {4, -1};
    const MyPoint model[] = {{90, 70}, {92, 70}, {92, 72}, {90, 72}};
    r = ThyroidResult{7, 7, 7, 7};
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(),
                                        int(a.lesion.size()), a.lesion.data(), 2, sizes, model, a.s.roi, &r);
    ExpectRecord(r, 0, 3, 0, 0);

    // A lesion outline that fills a single pixel gives an outline of one
    // point, too few for an ellipse: the initialiser fails.
    const MyPoint three[] = {{90, 80}, {90, 80}, {90, 80}};
    r = ThyroidResult{7, 7, 7, 7};
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(), 3,
                                        three, 0, nullptr, nullptr, a.s.roi, &r);
    ExpectRecord(r, 0, 3, 0, 0);
}

TEST(ThyroidEntry, ClippedGlandPointsAreWrittenBack)
{
    Args a;
    const cv::Mat& img = a.s.image;
    // Stretch the outline past every edge: x -5 -> 0, x 230 -> 199, y -3 -> 0, y 170 -> 159.
    a.organ = {{-5, 80}, {100, -3}, {230, 80}, {100, 170}};
    ThyroidResult r{7, 7, 7, 7};
    ThyroidDescriptionModelAfterProcess(img.data, 1, img.cols, img.rows, int(a.organ.size()), a.organ.data(),
                                        int(a.lesion.size()), a.lesion.data(), 0, nullptr, nullptr, a.s.roi, &r);
    EXPECT_EQ(a.organ[0].x, 0);
    EXPECT_EQ(a.organ[0].y, 80);
    EXPECT_EQ(a.organ[1].x, 100);
    EXPECT_EQ(a.organ[1].y, 0);
    EXPECT_EQ(a.organ[2].x, 199);
    EXPECT_EQ(a.organ[3].y, 159);
    // The lesion points are never written.
    EXPECT_EQ(a.lesion[0].x, 80);
    EXPECT_EQ(a.lesion[0].y, 65);
}

TEST(ThyroidEntry, NoModelContourLeavesCalcificationZeroAndGradesTheRest)
{
    // Nodule mean (25 + 35) / 2 = 30 against gland 120: r = 0.25 < 0.41 and
    // 30 <= 35, far from the muscle band (0.38..0.48): echo 0.
    thyscene::Scene s = thyscene::Make();
    const ThyroidResult r = s.Run();
    EXPECT_EQ(r.echo, 0);
    EXPECT_EQ(r.calcification, 0);
}

TEST(ThyroidEntry, ThreeChannelsUseTheBrightestPlaneAsItIs)
{
    // Plane 1 is the scene (mean above 60), planes 0 and 2 a flat 60.
    // On plane 1 alone the echo is 0 (see above). A BGR weighting would give
    // nodule (0.114 + 0.299) * 60 + 0.587 * {25, 35} = {39, 45}, gland 95:
    // r = 42 / 95 = 0.44, which the table never grades 0.
    thyscene::Scene s = thyscene::Make();
    const cv::Mat flat(s.image.size(), CV_8U, cv::Scalar(60));
    cv::Mat bgr;
    cv::merge(std::vector<cv::Mat>{flat, s.image, flat}, bgr);
    EXPECT_EQ(s.Run(3, bgr).echo, 0);
}

TEST(ThyroidEntry, FourthPlaneIsNeverAnalysed)
{
    thyscene::Scene s = thyscene::Make();
    const cv::Mat flat(s.image.size(), CV_8U, cv::Scalar(60));
    const cv::Mat white(s.image.size(), CV_8U, cv::Scalar(255));
    cv::Mat bgra;
    cv::merge(std::vector<cv::Mat>{flat, s.image, flat, white}, bgra);
    EXPECT_EQ(s.Run(4, bgra).echo, 0);
}
