// Outline pixels reduced to ordered, thinned point lists, and the circular order.
#include <gtest/gtest.h>

#include <forward_list>
#include <stdexcept>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "Point2D/Point2D.h"
#include "PreprocessContours/PreprocessContours.h"

namespace {

std::vector<cv::Point> Order(const std::vector<cv::Point>& points)
{
    std::forward_list<Point2D> list;
    for (auto it = points.rbegin(); it != points.rend(); ++it)
        list.push_front(Point2D(it->x, it->y));
    OrdenamientoCircular(list);
    std::vector<cv::Point> out;
    for (const Point2D& p : list)
        out.emplace_back(p.GetX(), p.GetY());
    return out;
}

// A 1-row frame of `n` outline pixels: circular order runs left to right.
cv::Mat Row(int n) { return cv::Mat(1, n, CV_8UC1, cv::Scalar(255)); }

// The outline of a 51 x 51 square at (10, 10) in a 72 x 72 frame: 4 * 50 = 200 pixels.
cv::Mat Square()
{
    cv::Mat frame = cv::Mat::zeros(72, 72, CV_8UC1);
    cv::rectangle(frame, cv::Point(10, 10), cv::Point(60, 60), cv::Scalar(255), 1, 8, 0);
    return frame;
}

} // namespace

TEST(CircularOrder, PoleIsLowestThenLeftmostAndTiesGoNearestFirst)
{
    const struct {
        std::vector<cv::Point> in;
        std::vector<cv::Point> out;
        const char* why;
    } rows[] = {
        {{{3, 3}, {1, 1}, {2, 2}, {0, 0}}, {{0, 0}, {1, 1}, {2, 2}, {3, 3}},
         "one line through the pole: cross 0 everywhere, nearer first"},
        {{{5, 0}, {2, 0}, {0, 4}}, {{2, 0}, {5, 0}, {0, 4}},
         "equal y 0: x 2 is the pole; (3,0) x (-2,4) = 12 > 0, so (5,0) first"},
        {{{4, 4}, {0, 1}, {4, 1}, {8, 5}}, {{0, 1}, {4, 1}, {8, 5}, {4, 4}},
         "pole (0,1): (4,0) x (8,4) = 16 > 0; (8,4) x (4,3) = 24 - 16 = 8 > 0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Order(row.in), row.out) << row.why;
        EXPECT_EQ(reference.GetX(), row.out[0].x) << "the pole stays in the global";
        EXPECT_EQ(reference.GetY(), row.out[0].y);
    }
    std::forward_list<Point2D> empty;
    OrdenamientoCircular(empty);
    EXPECT_TRUE(empty.empty());
}

TEST(ContourSampling, OriginalSampleStrideByPixelCount)
{
    // Strides: 1 below 101, 2 from 101 to 499, 6 from 500; a row keeps x = i * stride.
    const struct {
        int pixels;
        size_t count;
        int stride;
    } rows[] = {{100, 100, 1}, {101, 51, 2}, {199, 100, 2}, {200, 100, 2}, {500, 84, 6}};
    for (const auto& row : rows) {
        PreprocessContours pc;
        pc._frame[1] = Row(row.pixels);
        std::vector<cv::Point> out;
        pc.GetOriginalSamplePts(out);
        ASSERT_EQ(out.size(), row.count) << row.pixels << " pixels";
        EXPECT_EQ(pc._sampleCount, static_cast<int>(row.count));
        EXPECT_EQ(out.back(), cv::Point(int(row.count - 1) * row.stride, 0)) << row.pixels << " pixels";
    }
}

TEST(ContourSampling, CornerPathFromTwoHundredPixels)
{
    // 200 pixels: the square's four corners. 199 (one pixel gone): circular path, stride 2 -> 100.
    PreprocessContours square;
    square._frame[1] = Square();
    std::vector<cv::Point> corners;
    square.GetOriginalCornerPts(corners);
    ASSERT_EQ(square._pixels[1].size(), 200u);
    ASSERT_EQ(corners.size(), 4u);
    for (const cv::Point& c : corners) {
        const bool nearCorner = (std::abs(c.x - 10) <= 2 || std::abs(c.x - 60) <= 2) &&
                                (std::abs(c.y - 10) <= 2 || std::abs(c.y - 60) <= 2);
        EXPECT_TRUE(nearCorner) << c;
    }

    PreprocessContours open;
    open._frame[1] = Square();
    open._frame[1].at<uchar>(35, 60) = 0;
    std::vector<cv::Point> samples;
    open.GetOriginalCornerPts(samples);
    EXPECT_EQ(samples.size(), 100u);
    EXPECT_EQ(samples.front(), cv::Point(10, 10)) << "the pole: top row, leftmost";
}

TEST(ContourSampling, SimpleContourTakesEveryFifthIntoBothLists)
{
    std::vector<cv::Point> points;
    for (int i = 0; i < 11; ++i)
        points.emplace_back(i, 2 * i);
    PreprocessContours pc;
    pc.SimpleContour(points, 0);
    const std::vector<cv::Point> expected = {{0, 0}, {5, 10}, {10, 20}};
    EXPECT_EQ(pc._samples[0], expected);
    EXPECT_EQ(pc._samples[1], expected);
    EXPECT_EQ(pc._sampleCount, 3);
}

TEST(ContourSampling, NearestNeighbourChainStepsBackOnlyOnce)
{
    // From (0,0): (1,0) at 1. From (1,0), skipping (0,0): (2,0) at 1.
    // From (2,0), skipping (1,0): (0,0) at 4 -> the chain runs back.
    PreprocessContours pc;
    std::vector<cv::Point> out;
    pc.SortContourPts({{0, 0}, {2, 0}, {1, 0}}, out);
    EXPECT_EQ(out, (std::vector<cv::Point>{{1, 0}, {2, 0}, {0, 0}}));
    // Ties go to the later point: (0,1) and (1,0) are both at 1 from (0,0).
    out.clear();
    pc.SortContourPts({{0, 0}, {0, 1}, {1, 0}}, out);
    EXPECT_EQ(out.front(), cv::Point(1, 0));
    // Nothing within 1000: the start repeats.
    out.clear();
    pc.SortContourPts({{0, 0}, {2000, 0}}, out);
    EXPECT_EQ(out, (std::vector<cv::Point>{{0, 0}, {0, 0}}));
}

TEST(ContourSampling, EllipseSamplesAreBroughtToTheCount)
{
    // Ten pixels in a row: stride 10 / n + 1.
    const struct {
        int n;
        std::vector<int> strided;
        const char* why;
    } rows[] = {
        {4, {0, 3, 6, 9}, "stride 3: exactly 4"},
        {3, {0, 4, 8}, "stride 4: exactly 3"},
        {6, {0, 2, 4, 6, 8}, "stride 2: 5, the sixth from the shuffled row"},
    };
    for (const auto& row : rows) {
        cv::theRNG().state = 12345;
        PreprocessContours pc;
        pc._frame[0] = Row(10);
        std::vector<cv::Point> out;
        pc.GetEllipseSamplePts(out, row.n);
        ASSERT_EQ(out.size(), size_t(row.n)) << row.why;
        for (size_t i = 0; i < row.strided.size(); ++i)
            EXPECT_EQ(out[i], cv::Point(row.strided[i], 0)) << row.why;
        EXPECT_EQ(out.back().y, 0) << row.why;
    }
    PreprocessContours pc;
    pc._frame[0] = Row(10);
    std::vector<cv::Point> out;
    EXPECT_THROW(pc.GetEllipseSamplePts(out, 0), std::invalid_argument);
}

TEST(ContourSampling, ScansAppendAndOnBorderReadsZero)
{
    PreprocessContours pc;
    pc._frame[0] = (cv::Mat_<uchar>(2, 3) << 0, 255, 0, 255, 7, 255);
    EXPECT_EQ(pc.GetContoursPixels(0), 3);
    EXPECT_EQ(pc._pixels[0], (std::vector<cv::Point>{{1, 0}, {0, 1}, {2, 1}}));
    EXPECT_EQ(pc.GetContoursPixels(0), 6) << "a second scan doubles the list";
    EXPECT_TRUE(pc.OnBorder(0, 0, 0));
    EXPECT_FALSE(pc.OnBorder(0, 1, 1)) << "7 is not 0";
    EXPECT_THROW(pc.GetContoursPixels(2), std::out_of_range);
}

TEST(ContourSamplingDeathTest, OnBorderOutsideTheFrameAborts)
{
    PreprocessContours pc;
    pc._frame[0] = cv::Mat::zeros(2, 3, CV_8UC1);
    EXPECT_DEATH(pc.OnBorder(0, 2, 0), "0 <= row && row < _frame\\[which\\].rows");
    EXPECT_DEATH(pc.OnBorder(0, 0, -1), "0 <= column && column < _frame\\[which\\].cols");
}

TEST(ContourSampling, SamplePts2HoldsBothFramesInBothLists)
{
    PreprocessContours pc;
    pc._frame[0] = Row(3);
    pc._frame[1] = Row(2);
    std::vector<cv::Point> first, second;
    pc.GetSamplePts2(first, second);
    // Frame 0 chain from (0,0): (1,0), (2,0), back to (1,0): every fifth -> (1,0).
    // Frame 1 chain from (0,0): (1,0), then (0,0) is skipped and (1,0) is itself: (1,0) repeats -> (1,0).
    const std::vector<cv::Point> expected = {{1, 0}, {1, 0}};
    EXPECT_EQ(first, expected);
    EXPECT_EQ(second, expected);
}

TEST(ContourSampling, NearestNeighbourSamplesMatchTheCornerCount)
{
    // Frame 0, ten pixels in a row, chained from (0,0): (1,0) .. (9,0), then
    // back to (7,0) (the step back to (8,0) is barred). Frame 1: the square's 4 corners.
    const std::vector<cv::Point> strided = {{1, 0}, {4, 0}, {7, 0}, {7, 0}};
    PreprocessContours pc;
    pc._frame[0] = Row(10);
    pc._frame[1] = Square();
    std::vector<cv::Point> first, second;
    pc.GetSamplePts(first, second);
    ASSERT_EQ(second.size(), 4u);
    EXPECT_EQ(pc._sampleCount, 4);
    EXPECT_EQ(first, strided) << "stride ceil(10 / 4) = 3: indices 0, 3, 6, 9";

    // n = 4: stride 10 / 4 + 1 = 3, the same four.
    PreprocessContours single;
    single._frame[0] = Row(10);
    std::vector<cv::Point> out;
    single.GetEllipseSamplePts0(out, 4);
    EXPECT_EQ(out, strided);

    // No corner in frame 1 leaves no stride to take.
    PreprocessContours none;
    none._frame[0] = Row(10);
    none._frame[1] = cv::Mat::zeros(20, 20, CV_8UC1);
    EXPECT_THROW(none.GetSamplePts(first, second), std::invalid_argument);
}
