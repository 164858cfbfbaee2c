// The carotid plaque entry: vessel choice, region, record and failure paths.
#include <gtest/gtest.h>

#include <cstring>

#include <opencv2/imgproc.hpp>

#include "sonolex.h"

namespace {

// Two horizontal vessels 200 x 40 on a 400 x 400 scan of grey 30, and a
// plaque of grey 100 on the lower wall of the second.
const std::vector<MyPoint> kVesselA = {{100, 100}, {299, 100}, {299, 139}, {100, 139}};
const std::vector<MyPoint> kVesselB = {{100, 300}, {299, 300}, {299, 339}, {100, 339}};
const std::vector<MyPoint> kPlaque = {{180, 325}, {219, 325}, {219, 336}, {180, 336}};

cv::Mat Scan()
{
    cv::Mat image(400, 400, CV_8UC1, cv::Scalar(30));
    cv::rectangle(image, cv::Point(180, 325), cv::Point(219, 336), cv::Scalar(100), cv::FILLED);
    return image;
}

PlaqueResult Prefilled()
{
    PlaqueResult r;
    std::memset(&r, 0x5A, sizeof r);
    return r;
}

const int32_t kFill = 0x5A5A5A5A;

PlaqueResult Describe(const std::vector<int>& sizes, const std::vector<MyPoint>& vessels,
                      const std::vector<MyPoint>& plaque, RoiCoor roi = RoiCoor{0, 0, 0, 0}, int plaqueCount = -2)
{
    const cv::Mat image = Scan();
    PlaqueResult r = Prefilled();
    CarotidPlaqueDescription(image.data, 1, image.cols, image.rows, roi, static_cast<int>(sizes.size()),
                             sizes.empty() ? nullptr : sizes.data(), static_cast<int>(vessels.size()), vessels.data(),
                             plaqueCount == -2 ? static_cast<int>(plaque.size()) : plaqueCount, plaque.data(), &r);
    return r;
}

std::vector<MyPoint> Join(const std::vector<MyPoint>& a, const std::vector<MyPoint>& b)
{
    std::vector<MyPoint> all = a;
    all.insert(all.end(), b.begin(), b.end());
    return all;
}

bool Same(const PlaqueResult& a, const PlaqueResult& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

} // namespace

TEST(CarotidEntry, SingleVesselGivesVerdictsAndDiameterInImageCoordinates)
{
    const PlaqueResult r = Describe({}, kVesselB, kPlaque);
    // Region: (100, 300, 200, 40) widened by 10 -> (90, 290, 220, 60). In it the vessel box is
    // (10, 10, 200, 40) and the plaque box (90, 35, 40, 12), centre (110, 41).
    // Upright vessel, ratio 200 / 40 = 5: upper = |41 - 10| = 31 > lower = |41 - 50| = 9.
    EXPECT_EQ(r.position, 2);
    // The grey read under the plaque is 30 or 100; every plaque pixel (100) is at or
    // above the Otsu level, so bright = 1.0 > 0.65 with a mean of 100 > 60.
    EXPECT_EQ(r.echo, 2);
    EXPECT_EQ(r.reserved, kFill);
    // The longer axis runs along the vessel's row and is stretched to its left and right
    // walls at x = 100 and 299, give or take the outline's two-pixel width.
    EXPECT_EQ(r.firstY, r.secondY);
    EXPECT_GE(r.firstY, 300);
    EXPECT_LE(r.firstY, 339);
    EXPECT_GE(r.firstX, 98);
    EXPECT_LE(r.firstX, 102);
    EXPECT_GE(r.secondX, 297);
    EXPECT_LE(r.secondX, 301);
}

TEST(CarotidEntry, SeveralVesselsChooseTheOneHoldingThePlaque)
{
    const PlaqueResult alone = Describe({}, kVesselB, kPlaque);
    EXPECT_TRUE(Same(Describe({4, 4}, Join(kVesselA, kVesselB), kPlaque), alone));
    EXPECT_TRUE(Same(Describe({4, 4}, Join(kVesselB, kVesselA), kPlaque), alone));
}

TEST(CarotidEntry, NoVesselHoldingThePlaqueJoinsAllPoints)
{
    // A plaque between the two vessels, overlapping neither.
    const std::vector<MyPoint> between = {{180, 200}, {219, 200}, {219, 210}, {180, 210}};
    const std::vector<MyPoint> both = Join(kVesselA, kVesselB);
    const PlaqueResult joined = Describe({4, 4}, both, between);
    // The region spans both vessels and holds the plaque, so the verdicts are reached...
    EXPECT_NE(joined.echo, 0);
    EXPECT_NE(joined.position, 0);
    // ...and one count below 2 reads the same eight points as a single outline.
    EXPECT_TRUE(Same(joined, Describe({8}, both, between)));
}

TEST(CarotidEntry, CallersRegionIsIgnored)
{
    EXPECT_TRUE(Same(Describe({}, kVesselB, kPlaque, RoiCoor{5, 5, 10, 10}), Describe({}, kVesselB, kPlaque)));
    EXPECT_TRUE(Same(Describe({}, kVesselB, kPlaque, RoiCoor{-50, 900, 7, 0}), Describe({}, kVesselB, kPlaque)));
}

TEST(CarotidEntry, FailureBeforeTheRegionLeavesTheWholeRecord)
{
    const PlaqueResult untouched = Prefilled();
    EXPECT_TRUE(Same(Describe({}, kVesselB, kPlaque, RoiCoor{0, 0, 0, 0}, -1), untouched)); // negative count
    // The second size runs past the eight packed points; the plaque is in the second vessel.
    EXPECT_TRUE(Same(Describe({4, 100}, Join(kVesselA, kVesselB), kPlaque), untouched));

    const cv::Mat image = Scan();
    PlaqueResult r = Prefilled();
    CarotidPlaqueDescription(image.data, 1, 400, 400, RoiCoor{0, 0, 0, 0}, 1, nullptr, 4, nullptr, 4, kPlaque.data(),
                             &r);
    EXPECT_TRUE(Same(r, untouched)); // null vessel points with a positive count
}

TEST(CarotidEntry, FailureAfterTheRegionClearsOnlyEchoAndPosition)
{
    // A plaque outside the region fills nothing: the plaque mask stays empty and the
    // centroid fails. position and echo were cleared; bytes 8 to 27 keep the caller's value.
    const std::vector<MyPoint> outside = {{5, 5}, {10, 5}, {10, 10}, {5, 10}};
    const PlaqueResult r = Describe({}, kVesselB, outside);
    EXPECT_EQ(r.position, 0);
    EXPECT_EQ(r.echo, 0);
    EXPECT_EQ(r.reserved, kFill);
    EXPECT_EQ(r.firstX, kFill);
    EXPECT_EQ(r.secondY, kFill);
}

TEST(CarotidEntry, InvalidImageOrRecordWritesNothing)
{
    const cv::Mat image = Scan();
    PlaqueResult r = Prefilled();
    CarotidPlaqueDescription(nullptr, 1, 400, 400, RoiCoor{0, 0, 0, 0}, 1, nullptr, 4, kVesselB.data(), 4,
                             kPlaque.data(), &r);
    EXPECT_TRUE(Same(r, Prefilled()));
    for (int channels : {0, 2, 5}) {
        CarotidPlaqueDescription(image.data, channels, 400, 400, RoiCoor{0, 0, 0, 0}, 1, nullptr, 4, kVesselB.data(),
                                 4, kPlaque.data(), &r);
        EXPECT_TRUE(Same(r, Prefilled())) << channels;
    }
    CarotidPlaqueDescription(image.data, 1, 400, 400, RoiCoor{0, 0, 0, 0}, 1, nullptr, 4, kVesselB.data(), 4,
                             kPlaque.data(), nullptr);
}

TEST(CarotidEntry, ColourScanIsReadAsItsGrey)
{
    const cv::Mat grey = Scan();
    cv::Mat colour;
    cv::cvtColor(grey, colour, cv::COLOR_GRAY2BGR);
    PlaqueResult r = Prefilled();
    CarotidPlaqueDescription(colour.data, 3, 400, 400, RoiCoor{0, 0, 0, 0}, 1, nullptr, 4, kVesselB.data(), 4,
                             kPlaque.data(), &r);
    EXPECT_TRUE(Same(r, Describe({}, kVesselB, kPlaque)));
}
