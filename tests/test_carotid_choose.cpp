// Choice of the vessel that holds the plaque among packed outlines.
#include <gtest/gtest.h>

#include <stdexcept>

#include "Tool/Tool.h"

namespace {

// Filled 4 x 4 plaque (x, y from 2 to 5): 16 pixels, limit (int)(0.25 * 16) = 4.
const std::vector<cv::Point> kPlaque = {cv::Point(2, 2), cv::Point(5, 2), cv::Point(5, 5), cv::Point(2, 5)};
// Filled 2 x 2 inside the plaque: overlap 4, exactly the limit.
const std::vector<cv::Point> kFour = {cv::Point(2, 2), cv::Point(3, 2), cv::Point(3, 3), cv::Point(2, 3)};
// Filled 2 x 3 inside the plaque: overlap 6.
const std::vector<cv::Point> kSix = {cv::Point(4, 2), cv::Point(5, 2), cv::Point(5, 4), cv::Point(4, 4)};
// Covers the whole plaque: overlap 16.
const std::vector<cv::Point> kAll = {cv::Point(0, 0), cv::Point(10, 0), cv::Point(10, 10), cv::Point(0, 10)};

std::vector<cv::Point> Pack(std::initializer_list<std::vector<cv::Point>> outlines)
{
    std::vector<cv::Point> packed;
    for (const auto& o : outlines)
        packed.insert(packed.end(), o.begin(), o.end());
    return packed;
}

} // namespace

TEST(CarotidChoose, OverlapMustExceedAQuarterOfThePlaque)
{
    std::vector<cv::Point> chosen;
    EXPECT_FALSE(ChooseOneOrgan(kPlaque, kFour, {4}, 20, 20, chosen)); // 4 is not above 4
    EXPECT_TRUE(chosen.empty());
    EXPECT_TRUE(ChooseOneOrgan(kPlaque, Pack({kFour, kSix}), {4, 4}, 20, 20, chosen)); // 6 is
    EXPECT_EQ(chosen, kSix);
}

TEST(CarotidChoose, FirstQualifyingOutlineWinsOverALargerOverlap)
{
    std::vector<cv::Point> chosen;
    EXPECT_TRUE(ChooseOneOrgan(kPlaque, Pack({kSix, kAll}), {4, 4}, 20, 20, chosen));
    EXPECT_EQ(chosen, kSix);
}

TEST(CarotidChoose, ThreePixelPlaqueIsHeldByOneOverlappingPixel)
{
    // The plaque fills (10..12, 10): 3 pixels, limit (int)(0.75) = 0.
    const std::vector<cv::Point> plaque = {cv::Point(10, 10), cv::Point(12, 10)};
    // This vessel shares only (12, 10) with it.
    const std::vector<cv::Point> vessel = {cv::Point(12, 10), cv::Point(15, 10), cv::Point(15, 13), cv::Point(12, 13)};
    std::vector<cv::Point> chosen;
    EXPECT_TRUE(ChooseOneOrgan(plaque, vessel, {4}, 20, 20, chosen));
    EXPECT_EQ(chosen, vessel);
}

TEST(CarotidChoose, SizeZeroTakesNoPointsAndMovesOn)
{
    // The empty outline overlaps nothing; the next size starts at point 0 again.
    std::vector<cv::Point> chosen;
    EXPECT_TRUE(ChooseOneOrgan(kPlaque, kAll, {0, 4}, 20, 20, chosen));
    EXPECT_EQ(chosen, kAll);
}

TEST(CarotidChoose, EmptySizeListChoosesNothing)
{
    std::vector<cv::Point> chosen = {cv::Point(7, 7)};
    EXPECT_FALSE(ChooseOneOrgan(kPlaque, kAll, {}, 20, 20, chosen));
    EXPECT_EQ(chosen, std::vector<cv::Point>{cv::Point(7, 7)});
}

TEST(CarotidChoose, SizesPastThePackedPointsAreRefused)
{
    std::vector<cv::Point> chosen;
    EXPECT_THROW(ChooseOneOrgan(kPlaque, kFour, {4, 1}, 20, 20, chosen), std::out_of_range);
    EXPECT_THROW(ChooseOneOrgan(kPlaque, kFour, {-1}, 20, 20, chosen), std::out_of_range);
}
