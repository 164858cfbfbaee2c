// Nearest-point distances between two point sets.
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "Hausdorff/Hausdorff.h"

namespace {

struct DistanceRow {
    std::vector<cv::Point> first;
    std::vector<cv::Point> second;
    float max;
    float mean;
    cv::Point pairFirst;
    cv::Point pairSecond;
    const char* why;
};

} // namespace

TEST(Hausdorff, MeanLargestAndPairFromFirstToSecond)
{
    const std::vector<DistanceRow> rows = {
        {{{0, 0}, {10, 0}}, {{0, 1}, {10, 3}}, 3.0f, 2.0f, {10, 0}, {10, 3}, "nearest 1 and 3: mean 2, largest 3"},
        {{{0, 0}}, {{3, 4}, {4, 3}, {5, 0}}, 5.0f, 5.0f, {0, 0}, {3, 4},
         "three nearest at 5: the first of second stands; one point: mean = largest"},
        {{{0, 0}}, {{30000, 40000}}, 50000.0f, 50000.0f, {0, 0}, {30000, 40000},
         "9e8 + 1.6e9 = 2.5e9 > 2^31: squared in double, sqrt = 50000"},
        {{{-40000, 0}}, {{20000, 0}, {30000, 0}}, 60000.0f, 60000.0f, {-40000, 0}, {20000, 0},
         "spans of 60000 and 70000: 3.6e9 < 4.9e9"},
    };
    for (const DistanceRow& row : rows) {
        Hausdorff h;
        EXPECT_EQ(h.CalcPtsDistanceTest(row.first, row.second), row.max) << row.why;
        EXPECT_EQ(h.m_maxDistance, row.max) << row.why;
        EXPECT_EQ(h.GetMeanDistance(), row.mean) << row.why;
        const std::vector<cv::Point> pair = h.GetPtsPair();
        ASSERT_EQ(pair.size(), 2u);
        EXPECT_EQ(pair[0], row.pairFirst) << row.why;
        EXPECT_EQ(pair[1], row.pairSecond) << row.why;
    }
}

TEST(Hausdorff, IdenticalSetsAreZeroAndTheMeanIsNotCleared)
{
    const std::vector<cv::Point> set = {{0, 0}, {3, 4}, {7, 1}};
    Hausdorff h;
    EXPECT_EQ(h.CalcPtsDistanceTest(set, set), 0.0f);
    EXPECT_EQ(h.GetMeanDistance(), 0.0f);
    // Second use: the old mean 0 plus the new sum 5, over one point.
    h.CalcPtsDistanceTest({{0, 0}}, {{3, 4}});
    EXPECT_EQ(h.GetMeanDistance(), 5.0f);
    // A third: (5 + 5) / 1 = 10, no longer a mean of anything.
    h.CalcPtsDistanceTest({{0, 0}}, {{3, 4}});
    EXPECT_EQ(h.GetMeanDistance(), 10.0f);
}

TEST(Hausdorff, EmptySetsAreRefused)
{
    Hausdorff h;
    EXPECT_THROW(h.CalcPtsDistanceTest({}, {{1, 1}}), std::invalid_argument);
    EXPECT_THROW(h.CalcPtsDistanceTest({{1, 1}}, {}), std::invalid_argument);
    EXPECT_THROW(h.CalcPtsDistance({}, {{1, 1}}), std::invalid_argument);
    // An empty second set leaves every nearest distance at its start.
    EXPECT_EQ(h.CalcPtsDistance({{1, 1}}, {}), 999999.0f);
}

TEST(Hausdorff, SymmetricDistanceTakesTheLargerWay)
{
    // Forward: (0,0) lies on second, 0. Backward: (0,7) is 7 from (0,0).
    Hausdorff h;
    EXPECT_EQ(h.HausdDistance({{0, 0}}, {{0, 0}, {0, 7}}), 7.0f);
}
