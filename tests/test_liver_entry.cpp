// LiverDescription as a host sees it: what a call writes, what a failed
// call leaves, and how the region and the liver outline are taken.
#include <climits>

#include <gtest/gtest.h>

#include "Tool/Tool.h"
#include "liver_scene.h"
#include "sonolex.h"

using namespace liver_scene;

namespace {

// 100 x 100 grey 100, liver over the whole image, lesion (40..59)^2 of grey 150.
cv::Mat BrightLesionScene()
{
    cv::Mat image = Scene(100, 100, 100);
    Paint(image, 40, 40, 59, 59, 150);
    return image;
}

void ExpectRecord(const LiverResult& r, int shape, int echo, int boundary, int echoTexture)
{
    EXPECT_EQ(r.shape, shape);
    EXPECT_EQ(r.echo, echo);
    EXPECT_EQ(r.boundary, boundary);
    EXPECT_EQ(r.echoTexture, echoTexture);
}

} // namespace

TEST(LiverEntry, FullCallOnKnownSceneWritesAllFour)
{
    const cv::Mat image = BrightLesionScene();
    const LiverResult r = Describe(image, WholeLiver(image, Box(40, 40, 59, 59)));
    // echo: 150 / 100 = 1.5f, not below 1.5f, below 2.0f; lesion area 19 * 19 = 361
    //   over liver area 99 * 99 = 9801 is 0.037 > 0.005; no pixel at 200 or more -> 3.
    // shape: a rectangle has no concavity -> 1.
    // boundary: outer band 100 - inner band 150 = -50, |-50| >= 10 -> 1.
    // echoTexture: deviation 0, so the limit is trunc(0 * 1.8 + 150) = 150 and every
    //   lesion pixel (150 > 149) is very bright; the mask's edges (columns and rows
    //   39 and 59) grown by 2 cut away the outline, leaving about the 15 x 15 core
    //   (42..56): 225 / 400 = 0.56 >= 0.035 -> 2.
    ExpectRecord(r, 1, 3, 1, 2);
}

TEST(LiverEntry, InvalidImageLeavesRecordUntouched)
{
    const cv::Mat image = BrightLesionScene();
    const Call call = WholeLiver(image, Box(40, 40, 59, 59));
    for (int channels : {0, 2, 5, -1}) {
        LiverResult r{7, 7, 7, 7};
        LiverDescription(image.data, channels, 100, 100, call.roi, 4, call.organ.data(), 4, call.lesion.data(), &r);
        ExpectRecord(r, 7, 7, 7, 7);
    }
    LiverResult r{7, 7, 7, 7};
    LiverDescription(nullptr, 1, 100, 100, call.roi, 4, call.organ.data(), 4, call.lesion.data(), &r);
    ExpectRecord(r, 7, 7, 7, 7);
}

TEST(LiverEntry, NullRecordReturnsQuietly)
{
    const cv::Mat image = BrightLesionScene();
    const Call call = WholeLiver(image, Box(40, 40, 59, 59));
    LiverDescription(image.data, 1, 100, 100, call.roi, 4, call.organ.data(), 4, call.lesion.data(), nullptr);
    SUCCEED();
}

// Each row fails somewhere after the record is cleared: all four fields 0.
TEST(LiverEntry, FailuresLeaveRecordZero)
{
    const cv::Mat image = BrightLesionScene();
    const std::vector<MyPoint> organ = Box(0, 0, 99, 99);
    const std::vector<MyPoint> lesion = Box(40, 40, 59, 59);
    const std::vector<MyPoint> tiny = Box(50, 50, 51, 51); // 2 x 2 pixels: outline of 4 points
    struct Case {
        const char* what;
        RoiCoor roi;
        int organCount;
        const MyPoint* organPoints;
        int lesionCount;
        const MyPoint* lesionPoints;
    };
    const Case cases[] = {
        {"negative lesion count", {0, 0, 100, 100}, 4, organ.data(), -1, lesion.data()},
        {"negative liver count", {0, 0, 100, 100}, -3, organ.data(), 4, lesion.data()},
        {"null lesion points", {0, 0, 100, 100}, 4, organ.data(), 4, nullptr},
        {"null liver points", {0, 0, 100, 100}, 4, nullptr, 4, lesion.data()},
        {"outline of fewer than five points", {0, 0, 100, 100}, 4, organ.data(), 4, tiny.data()},
        {"region past the right edge", {10, 0, 91, 100}, 4, organ.data(), 4, lesion.data()},
        {"region past the bottom edge", {0, 1, 100, 100}, 4, organ.data(), 4, lesion.data()},
        {"region left of the image", {-1, 0, 50, 50}, 4, organ.data(), 4, lesion.data()},
        {"region whose right edge wraps", {INT_MAX - 5, 0, 10, 100}, 4, organ.data(), 4, lesion.data()},
        {"lesion outside the region", {0, 0, 30, 30}, 4, organ.data(), 4, lesion.data()},
    };
    for (const Case& c : cases) {
        for (int channels : {1, 3, 4}) {
            cv::Mat wide;
            if (channels == 1)
                wide = image;
            else
                cv::cvtColor(image, wide, channels == 3 ? cv::COLOR_GRAY2BGR : cv::COLOR_GRAY2BGRA);
            LiverResult r{7, 7, 7, 7};
            LiverDescription(wide.data, channels, 100, 100, c.roi, c.organCount, c.organPoints, c.lesionCount,
                             c.lesionPoints, &r);
            SCOPED_TRACE(c.what);
            ExpectRecord(r, 0, 0, 0, 0);
        }
    }
}

TEST(LiverEntry, FourChannelImageIsReadAsBlueGreenRed)
{
    const cv::Mat grey = BrightLesionScene();
    cv::Mat bgra;
    cv::cvtColor(grey, bgra, cv::COLOR_GRAY2BGRA);
    // The fourth byte is ignored: scramble it.
    for (int r = 0; r < bgra.rows; ++r)
        for (int c = 0; c < bgra.cols; ++c)
            bgra.at<cv::Vec4b>(r, c)[3] = static_cast<uchar>((r * 31 + c * 17) & 0xff);
    const Call call = WholeLiver(grey, Box(40, 40, 59, 59));
    LiverResult r{7, 7, 7, 7};
    LiverDescription(bgra.data, 4, 100, 100, call.roi, 4, call.organ.data(), 4, call.lesion.data(), &r);
    // Equal blue, green and red give that grey exactly: the record of the grey call.
    const LiverResult g = Describe(grey, call);
    ExpectRecord(r, g.shape, g.echo, g.boundary, g.echoTexture);
    EXPECT_EQ(g.echo, 3);
}

// Lesion (60..79)^2, liver only (0..19)^2: the ring around the lesion (about
// ten pixels wide, columns and rows 50..89) holds no liver, so the liver grey is 0.
TEST(LiverEntry, LesionOutsideLiverComparesAgainstZero)
{
    cv::Mat image = Scene(100, 100, 100);
    Paint(image, 60, 60, 79, 79, 150);
    Call call{RoiCoor{0, 0, 100, 100}, Box(0, 0, 19, 19), Box(60, 60, 79, 79)};
    // 150 / 0 = +inf >= 2.0f and 150 >= 80 -> 4.
    EXPECT_EQ(Describe(image, call).echo, 4);

    Paint(image, 60, 60, 79, 79, 60);
    // 60 / 0 = +inf >= 2.0f but 60 < 80 -> 3.
    EXPECT_EQ(Describe(image, call).echo, 3);

    Paint(image, 60, 60, 79, 79, 0);
    // 0 / 0 is not a number: the lower branch, neither above 0.7 nor below 0.6;
    // grey 0 adds 0 * 0 * 400 = 0 to the weighted sum, not above 1e7 -> 1.
    EXPECT_EQ(Describe(image, call).echo, 1);
}

TEST(LiverEntry, EmptyLiverOutlineStillDescribes)
{
    cv::Mat image = Scene(100, 100, 100);
    Paint(image, 40, 40, 59, 59, 150);
    const Call call{RoiCoor{0, 0, 100, 100}, {}, Box(40, 40, 59, 59)};
    const LiverResult r = Describe(image, call);
    // No liver: liver grey 0, 150 / 0 = +inf, lesion grey 150 >= 80 -> 4.
    EXPECT_EQ(r.echo, 4);
    EXPECT_EQ(r.shape, 1);
    EXPECT_EQ(r.boundary, 1);
    EXPECT_EQ(r.echoTexture, 2); // as in the full call: only the liver pixel count differs
}

// The lesion is passed in whole-image coordinates and moved into the region;
// the liver outline stays where it is. Region (20, 30, 60, 50); lesion
// (40..49, 45..54), i.e. (20..29, 15..24) in the region; liver only over
// columns 0..44, so the part of the ring in the liver is left of column 45.
TEST(LiverEntry, LesionMovesIntoRegionLiverStaysInImage)
{
    cv::Mat image = Scene(100, 100, 200);
    Paint(image, 0, 0, 44, 99, 100); // liver tissue grey 100, the rest 200
    Paint(image, 40, 45, 49, 54, 110);
    const Call call{RoiCoor{20, 30, 60, 50}, Box(0, 0, 44, 99), Box(40, 45, 49, 54)};
    // Ring pixels inside the liver are all grey 100: 110 / 100 = 1.1f, not above
    // 1.1f; widened it is above 0.7 -> 2. Had the liver been shifted by the
    // region's corner too, the ring would reach the grey-200 tissue or no liver.
    EXPECT_EQ(Describe(image, call).echo, 2);
}

// A region as wide as the image: the call runs and writes every field.
TEST(LiverEntry, RegionEndingOnImageEdgeIsAccepted)
{
    const cv::Mat image = BrightLesionScene();
    const Call call{RoiCoor{30, 30, 70, 70}, Box(0, 0, 99, 99), Box(40, 40, 59, 59)};
    const LiverResult r = Describe(image, call);
    EXPECT_EQ(r.echo, 3);
    EXPECT_EQ(r.shape, 1);
}

// An outline that touches itself: its convex hull indices are not in order
// along the outline, and the concavity measure of the shape verdict raises.
// The echo, stored first, stays; the three later fields stay 0.
TEST(LiverEntry, FailureAfterEchoKeepsEchoAlone)
{
    const std::vector<MyPoint> outline{{67, 67}, {46, 33}, {69, 65}, {32, 51}, {33, 38}, {34, 39}};
    cv::Mat image = Scene(100, 100, 100);
    std::vector<cv::Point> points;
    for (const MyPoint& p : outline)
        points.emplace_back(p.x, p.y);
    DrawContour(image, points, cv::Scalar(200), cv::FILLED, cv::LINE_8);
    const LiverResult r = Describe(image, WholeLiver(image, outline));
    // Lesion exactly the filled outline at 200, ring at 100: 2.0f, and 200 >= 80 -> 4.
    ExpectRecord(r, 0, 4, 0, 0);
}
