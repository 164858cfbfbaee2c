// Inputs at the edges of what a host can pass: coordinates near the int
// limits and empty images. Each call ends with a defined record.
#include <climits>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include "sonolex.h"

TEST(ExtremeInputs, BreastOutlineNearTheIntLimitsRunsToTheEnd)
{
    // The outline lies about 2^31 pixels above and left of the region, so
    // its masks are empty and the ring's box is cut to nothing without
    // wrapping. The host's axes are 40 and 40 long: 40 / 40 = 1 >= 0.8 gives
    // orientation 2, and the call goes on to the shape verdict.
    const std::vector<unsigned char> image(64 * 64, 100);
    const MyPoint lesion[6] = {{-2147483646, -2147483646}, {-2147483641, -2147483646}, {-2147483638, -2147483642},
                               {-2147483641, -2147483638}, {-2147483646, -2147483638}, {-2147483646, -2147483642}};
    const lesionAxisPointEnd axis = {{10, 30}, {50, 30}, {30, 10}, {30, 50}};
    BreastResult r = {9, 9, 9, 9, 9, 9};
    BreastDescription(image.data(), 1, 64, 64, RoiCoor{0, 0, 64, 64}, 6, lesion, axis, &r);
    EXPECT_EQ(r.orientation, 2);
    EXPECT_NE(r.shape, 0);
}

TEST(ExtremeInputs, EmptyImageOfAnyChannelCountKeepsTheThyroidPresets)
{
    // Zero columns or zero rows: the call stops after the presets
    // (shape 0, echo 3, margin 0, calcification 0), whatever the channels.
    const std::vector<unsigned char> buffer(64, 100);
    const MyPoint lesion[6] = {{2, 2}, {5, 2}, {6, 5}, {5, 8}, {2, 8}, {1, 5}};
    for (const int channels : {1, 3, 4})
        for (const cv::Size size : {cv::Size(0, 10), cv::Size(1, 0)}) {
            MyPoint organ[4] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
            ThyroidResult r = {9, 9, 9, 9};
            ThyroidDescriptionModelAfterProcess(buffer.data(), channels, size.width, size.height, 4, organ, 6, lesion,
                                                0, nullptr, nullptr, RoiCoor{0, 0, 0, 0}, &r);
            EXPECT_EQ(r.shape, 0) << channels << " channels, " << size;
            EXPECT_EQ(r.echo, 3) << channels << " channels, " << size;
            EXPECT_EQ(r.margin, 0) << channels << " channels, " << size;
            EXPECT_EQ(r.calcification, 0) << channels << " channels, " << size;
        }
}

TEST(ExtremeInputs, OutlinesReachingFarAboveTheImageKeepTheirRecords)
{
    const std::vector<unsigned char> image(200 * 150, 100);
    const lesionAxisPointEnd axis = {{10, 30}, {50, 30}, {30, 10}, {30, 50}};

    // A lesion with two points 2^30 rows above and below a 64 x 64 image:
    // axes 40 and 40 give orientation 2, and the call reaches shape.
    const MyPoint tall[7] = {{20, 20}, {40, 20}, {44, 30}, {40, 40}, {20, 40}, {0, -1073741824}, {0, 1073740824}};
    BreastResult breast = {9, 9, 9, 9, 9, 9};
    BreastDescription(image.data(), 1, 64, 64, RoiCoor{0, 0, 64, 64}, 7, tall, axis, &breast);
    EXPECT_EQ(breast.orientation, 2);
    EXPECT_NE(breast.shape, 0);

    // A region starting at row -2^31 does not lie inside the image: all 0.
    std::vector<MyPoint> ring;
    for (int i = 0; i < 12; ++i)
        ring.push_back({static_cast<int32_t>(std::lround(20 + 8 * std::cos(i * CV_PI / 6))),
                        static_cast<int32_t>(std::lround(32 + 8 * std::sin(i * CV_PI / 6)))});
    const MyPoint model[4] = {{2, -10}, {8, -10}, {8, 10}, {2, 10}};
    const int32_t modelSize = 4;
    BreastResult withModel = {9, 9, 9, 9, 9, 9};
    BreastDescriptionHaveModelProcess(image.data(), 1, 64, 64, RoiCoor{0, INT_MIN, 10, 10}, 12, ring.data(), 1,
                                      &modelSize, model, axis, &withModel);
    EXPECT_EQ(withModel.shape + withModel.orientation + withModel.echo + withModel.boundary + withModel.margin +
                  withModel.calcification,
              0);

    // A plaque 2^31 rows above a vessel in the image: the call still
    // measures the vessel's inner diameter, and `reserved` stays the host's.
    const MyPoint plaque[4] = {{90, -2147483647}, {100, -2147483647}, {100, -2147483587}, {90, -2147483587}};
    std::vector<MyPoint> vessel;
    for (int i = 0; i < 40; ++i)
        vessel.push_back({static_cast<int32_t>(std::lround(100 + 60 * std::cos(i * CV_PI / 20))),
                          static_cast<int32_t>(std::lround(75 + 25 * std::sin(i * CV_PI / 20)))});
    const int vesselSize = 40;
    PlaqueResult carotid = {9, 9, 9, 9, 9, 9, 9};
    CarotidPlaqueDescription(image.data(), 1, 200, 150, RoiCoor{0, 0, 0, 0}, 1, &vesselSize, 40, vessel.data(), 4,
                             plaque, &carotid);
    EXPECT_EQ(carotid.reserved, 9);
    EXPECT_NE(carotid.secondX, 9);
}
