// Inputs at the edges of what a host can pass: coordinates near the int
// limits and empty images. Each call ends with a defined record.
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
