// The level set: its convolution, border mirror, gradients and RunLBF's outline.
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "LocalBinaryFitting/LBF.h"

namespace {

cv::Mat Delta(int rows, int cols, cv::Point at)
{
    cv::Mat m = cv::Mat::zeros(rows, cols, CV_64F);
    m.at<double>(at) = 1.0;
    return m;
}

} // namespace

TEST(LbfConv2, TrueConvolutionAnchoredAsMatlabSame)
{
    LBF lbf;
    // Even 2 x 2 kernel: anchor (2 - 1 - 1, 2 - 1 - 1) = (0, 0) on the flipped
    // kernel, so out(y, x) = sum k(1 - i, 1 - j) * src(y + i, x + j): a delta at
    // (1, 1) puts k(0, 0) at (0, 0) and k(1, 1) at (1, 1). The centred anchor
    // (1, 1) would put the kernel one step down and right.
    const cv::Mat even = (cv::Mat_<double>(2, 2) << 1, 2, 3, 4);
    const cv::Mat evenOut = lbf.Conv2(Delta(3, 3, {1, 1}), even);
    const cv::Mat evenWant = (cv::Mat_<double>(3, 3) << 1, 2, 0, 3, 4, 0, 0, 0, 0);
    EXPECT_EQ(cv::countNonZero(evenOut != evenWant), 0) << evenOut;

    // Odd 3 x 3: a delta at the centre gives the kernel itself, not its mirror.
    const cv::Mat odd = (cv::Mat_<double>(3, 3) << 1, 2, 3, 4, 5, 6, 7, 8, 9);
    const cv::Mat oddOut = lbf.Conv2(Delta(3, 3, {1, 1}), odd);
    EXPECT_EQ(cv::countNonZero(oddOut != odd), 0) << oddOut;

    // 29 x 29 with its only 1 at (0, 0): anchor (14, 14), so out(y, x) =
    // src(y + 14, x + 14): the delta at (20, 20) lands at (6, 6). A kernel this
    // large is applied through the DFT, so the values are 1 and 0 to rounding.
    cv::Mat wide = Delta(29, 29, {0, 0});
    const cv::Mat wideOut = lbf.Conv2(Delta(40, 40, {20, 20}), wide);
    cv::Point peak;
    cv::minMaxLoc(wideOut, nullptr, nullptr, nullptr, &peak);
    EXPECT_EQ(peak, cv::Point(6, 6));
    EXPECT_NEAR(wideOut.at<double>(6, 6), 1.0, 1e-12);
    EXPECT_NEAR(cv::sum(wideOut)[0], 1.0, 1e-12);
}

TEST(LbfNeumann, MirrorsTheRingInPlaceOneCopyAfterAnother)
{
    LBF lbf;
    // 1 2 3 / 4 5 6 / 7 8 9. Corners: (0,0) <- (2,2) = 9; (2,0) <- (0,2) = 3;
    // (0,2) <- (2,0), now 3; (2,2) <- (0,0), now 9. Row 0 <- row 2 at column 1:
    // 8, then row 2 <- row 0: 8. Column 0 <- column 2 at row 1: 6, then back: 6.
    cv::Mat u = (cv::Mat_<double>(3, 3) << 1, 2, 3, 4, 5, 6, 7, 8, 9);
    const cv::Mat out = lbf.NeumannBoundCond(u);
    const cv::Mat want = (cv::Mat_<double>(3, 3) << 9, 8, 3, 6, 5, 6, 3, 8, 9);
    EXPECT_EQ(cv::countNonZero(u != want), 0) << u;
    EXPECT_EQ(out.data, u.data); // a header of the same pixels
}

TEST(LbfGradient, CentralInsideOneSidedAtTheEnds)
{
    LBF lbf;
    // 1 2 4 8: 2 - 1 = 1; (4 - 1) / 2 = 1.5; (8 - 2) / 2 = 3; 8 - 4 = 4.
    cv::Mat row = (cv::Mat_<double>(1, 4) << 1, 2, 4, 8);
    cv::Mat column = row.t();
    const cv::Mat want = (cv::Mat_<double>(1, 4) << 1, 1.5, 3, 4);
    EXPECT_EQ(cv::countNonZero(lbf.GradientX(row) != want), 0);
    EXPECT_EQ(cv::countNonZero(lbf.GradientY(column) != want.t()), 0);

    // Flat: both gradients 0, so the unit normal is 0 / 0 = NaN everywhere.
    cv::Mat flat(4, 4, CV_64F, cv::Scalar(2.0));
    const cv::Mat curv = lbf.CurvatureCentral(flat);
    EXPECT_TRUE(std::isnan(curv.at<double>(0, 0)));
    EXPECT_TRUE(std::isnan(curv.at<double>(3, 3)));
}

TEST(LbfGuards, MatricesTooSmallToReadAreRefused)
{
    LBF lbf;
    cv::Mat twoRows(2, 3, CV_64F, cv::Scalar(0.0));
    cv::Mat twoCols(3, 2, CV_64F, cv::Scalar(0.0));
    cv::Mat oneCol(3, 1, CV_64F, cv::Scalar(0.0));
    cv::Mat oneRow(1, 3, CV_64F, cv::Scalar(0.0));
    EXPECT_THROW(lbf.NeumannBoundCond(twoRows), std::out_of_range);
    EXPECT_THROW(lbf.NeumannBoundCond(twoCols), std::out_of_range);
    EXPECT_THROW(lbf.GradientX(oneCol), std::out_of_range);
    EXPECT_THROW(lbf.GradientY(oneRow), std::out_of_range);

    // A starting mask without an outline has no reference to choose by.
    std::vector<cv::Point> out;
    EXPECT_THROW(lbf.RunLBF(cv::Mat(16, 20, CV_8UC1, cv::Scalar(90)), cv::Mat::zeros(16, 20, CV_8UC1), out),
                 std::invalid_argument);
}

TEST(LbfRun, TheLevelSetTurnsNanAndTheOutlineIsTheWholeFrame)
{
    // The mirror makes both central gradients 0 at (1, 1), the curvature there
    // NaN after one step, and the 29 x 29 window spreads it to every pixel.
    // NaN counts as inside, so the region is the frame: its outline runs along
    // the border, 2 * (19 + 15) = 68 points from (0, 0), whatever the image.
    LBF lbf;
    for (int channels : {1, 3}) {
        cv::Mat image(16, 20, CV_8UC(channels), cv::Scalar::all(40));
        cv::rectangle(image, cv::Rect(6, 4, 8, 6), cv::Scalar::all(200), cv::FILLED);
        cv::Mat mask = cv::Mat::zeros(16, 20, CV_8UC1);
        cv::rectangle(mask, cv::Rect(5, 3, 10, 8), cv::Scalar(255), cv::FILLED);
        std::vector<cv::Point> out = {cv::Point(99, 99)};
        lbf.RunLBF(image, mask, out);
        ASSERT_EQ(out.size(), 68u) << channels;
        EXPECT_EQ(out[0], cv::Point(0, 0));
        EXPECT_EQ(cv::boundingRect(out), cv::Rect(0, 0, 20, 16));
    }
}
