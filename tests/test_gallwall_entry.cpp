// GallWallDescription through its exported entry: record layout, failure
// paths, the working region and whole grades on walls drawn pixel by pixel.
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "LesionDescriExport/GallWallEntry.h"
#include "sonolex.h"

namespace {

constexpr int kKeep = 77; // a thickening grade the host left in the record

// Closed rectangle outline through its four corners.
std::vector<MyPoint> Box(int left, int top, int right, int bottom)
{
    return {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
}

// A 200x150 scan: black, with columns of alternating grey 100 (even x) and 0
// (odd x), so every wall band below has as many grey as black pixels.
std::vector<unsigned char> StripedScan(int width = 200, int height = 150, int channels = 1)
{
    std::vector<unsigned char> image(static_cast<size_t>(width * height * channels), 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; x += 2)
            for (int c = 0; c < channels; ++c)
                image[static_cast<size_t>((y * width + x) * channels + c)] = 100;
    return image;
}

GallWallResult Grade(const std::vector<unsigned char>& image, int channels, int width, int height,
                   const std::vector<MyPoint>& outer, const std::vector<MyPoint>& inner)
{
    GallWallResult result{kKeep, kKeep};
    GallWallDescription(image.data(), channels, width, height, static_cast<int>(outer.size()), outer.data(),
                        static_cast<int>(inner.size()), inner.data(), &result);
    return result;
}

} // namespace

TEST(GallWallRecord, LayoutIsTwoInts)
{
    EXPECT_EQ(sizeof(GallWallResult), 8u);
    EXPECT_EQ(offsetof(GallWallResult, wallVerdict), 0u);
    EXPECT_EQ(offsetof(GallWallResult, thickenVerdict), 4u);
}

TEST(GallWallEntry, BadImageArgumentsWriteNothing)
{
    const std::vector<unsigned char> image = StripedScan();
    const std::vector<MyPoint> outer = Box(20, 20, 139, 99);
    const std::vector<MyPoint> inner = Box(24, 24, 135, 95);
    GallWallResult result{kKeep, kKeep};
    GallWallDescription(nullptr, 1, 200, 150, 4, outer.data(), 4, inner.data(), &result);
    EXPECT_EQ(result.wallVerdict, kKeep);
    EXPECT_EQ(result.thickenVerdict, kKeep);
    for (int channels : {0, 2, 5}) {
        GallWallDescription(image.data(), channels, 200, 150, 4, outer.data(), 4, inner.data(), &result);
        EXPECT_EQ(result.wallVerdict, kKeep) << channels;
        EXPECT_EQ(result.thickenVerdict, kKeep) << channels;
    }
    GallWallDescription(image.data(), 1, 200, 150, 4, outer.data(), 4, inner.data(), nullptr); // no crash
}

// Failures before grading clear only wallVerdict; thickenVerdict keeps the
// host's value.
TEST(GallWallEntry, FailuresBeforeGradingKeepTheHostsThickening)
{
    const std::vector<unsigned char> image = StripedScan();
    const std::vector<MyPoint> outer = Box(20, 20, 139, 99);
    const std::vector<MyPoint> inner = Box(24, 24, 135, 95);
    const std::vector<MyPoint> none;
    GallWallResult result{kKeep, kKeep};

    // Negative counts: the outline vectors cannot be built.
    GallWallDescription(image.data(), 1, 200, 150, -1, outer.data(), 4, inner.data(), &result);
    EXPECT_EQ(result.wallVerdict, 0);
    EXPECT_EQ(result.thickenVerdict, kKeep);
    result = {kKeep, kKeep};
    GallWallDescription(image.data(), 1, 200, 150, 4, outer.data(), -4, inner.data(), &result);
    EXPECT_EQ(result.wallVerdict, 0);
    EXPECT_EQ(result.thickenVerdict, kKeep);

    // Null outlines with positive counts are refused, not read.
    result = {kKeep, kKeep};
    GallWallDescription(image.data(), 1, 200, 150, 4, nullptr, 4, inner.data(), &result);
    EXPECT_EQ(result.wallVerdict, 0);
    EXPECT_EQ(result.thickenVerdict, kKeep);
    result = {kKeep, kKeep};
    GallWallDescription(image.data(), 1, 200, 150, 4, outer.data(), 4, nullptr, &result);
    EXPECT_EQ(result.wallVerdict, 0);
    EXPECT_EQ(result.thickenVerdict, kKeep);

    // No outer points: region (0,0,16,16), nothing to fit an ellipse to.
    result = Grade(image, 1, 200, 150, none, inner);
    EXPECT_EQ(result.wallVerdict, 0);
    EXPECT_EQ(result.thickenVerdict, kKeep);

    // A one-pixel outer outline fills to one pixel: too few points for an ellipse.
    result = Grade(image, 1, 200, 150, {{50, 50}}, inner);
    EXPECT_EQ(result.wallVerdict, 0);
    EXPECT_EQ(result.thickenVerdict, kKeep);

    // Outer outline right of the image: x0 = 300 - 8 = 292, w0 = 200 - 292 < 0.
    result = Grade(image, 1, 200, 150, Box(300, 20, 340, 60), inner);
    EXPECT_EQ(result.wallVerdict, 0);
    EXPECT_EQ(result.thickenVerdict, kKeep);

    // Outer outline below the image: y0 = 400 - 8 = 392, h0 = 150 - 392 < 0.
    result = Grade(image, 1, 200, 150, Box(20, 400, 60, 440), inner);
    EXPECT_EQ(result.wallVerdict, 0);
    EXPECT_EQ(result.thickenVerdict, kKeep);
}

// A lumen outline fills to an outline of 2*(11+11)-4 = 40 pixels for an
// 11x11 square; cutting one corner pixel leaves 39. Forty give a stride of 1
// and a full grade; 39 give a stride of 0, which ends the call.
TEST(GallWallEntry, LumenOfThirtyNineOutlinePointsEndsTheCall)
{
    const std::vector<unsigned char> image = StripedScan();
    const std::vector<MyPoint> outer = Box(30, 30, 69, 69);
    const std::vector<MyPoint> square = Box(45, 45, 55, 55);
    const std::vector<MyPoint> cutCorner = {{46, 45}, {55, 45}, {55, 55}, {45, 55}, {45, 46}};

    GallWallResult result = Grade(image, 1, 200, 150, outer, square);
    EXPECT_NE(result.wallVerdict, 0);
    EXPECT_NE(result.thickenVerdict, kKeep);

    result = Grade(image, 1, 200, 150, outer, cutCorner);
    EXPECT_EQ(result.wallVerdict, 0);
    EXPECT_EQ(result.thickenVerdict, kKeep);
}

// Outer box x 20..139, y 20..99 (120x80 = 9600 pixels); region x0 = y0 = 12,
// 136x96, so the erosion works at full scale (136 columns lie in 110..150).
// Lumen 4 px inside: x 24..135, y 24..95 (112x72 = 8064); wall 1536 pixels.
// Three 3x3 erosions need 7 wall pixels across: none survive, ratio 0 -> 1.
// Wall grey: half 100, half 0 -> mean 50, sd 50, level trunc(50*1.8f + 50)
// = trunc(139.99999...) = 139; no wall pixel exceeds 138 -> bright share 0.
// Chords are columns across the lumen's box (its short side is vertical):
// rows 20..23 and 96..99 in the wall, 8 pixels over a span of 99 - 20 = 79,
// density 8/79 = 0.101 <= 0.33 -> normal wall.
TEST(GallWallEntry, ThinEvenWallIsNormalWithoutThickening)
{
    const std::vector<unsigned char> image = StripedScan();
    const GallWallResult result = Grade(image, 1, 200, 150, Box(20, 20, 139, 99), Box(24, 24, 135, 95));
    EXPECT_EQ(result.wallVerdict, 1);
    EXPECT_EQ(result.thickenVerdict, 1);
}

// Same outer box, lumen 8 px inside: x 28..131, y 28..91 (104x64 = 6656);
// wall 9600 - 6656 = 2944. After three erosions a pixel must be 3 px from
// anything outside the wall: inside x 23..136, y 23..96 (114x74 = 8436), and
// outside x 25..134, y 25..94 (110x70 = 7700): 736 survive, 736/2944 = 0.25.
// 0.25 >= 0.15 -> thickened; every radial measure is about 8 to 12 px, far
// below 35, so not focal -> diffuse (2); 0.25 >= 0.12 -> abnormal wall (2).
TEST(GallWallEntry, ThickEvenWallIsDiffuselyThickened)
{
    const std::vector<unsigned char> image = StripedScan();
    const GallWallResult result = Grade(image, 1, 200, 150, Box(20, 20, 139, 99), Box(28, 28, 131, 91));
    EXPECT_EQ(result.wallVerdict, 2);
    EXPECT_EQ(result.thickenVerdict, 2);
}

// Colour input is greyed blue-green-red; with equal channels the grey is the
// same as the one-channel scan, and so are the grades. The fourth channel is ignored.
TEST(GallWallEntry, ColourScansGradeLikeTheirGrey)
{
    for (int channels : {3, 4}) {
        std::vector<unsigned char> image = StripedScan(200, 150, channels);
        if (channels == 4)
            for (size_t i = 3; i < image.size(); i += 4)
                image[i] = 255;
        const GallWallResult thick = Grade(image, channels, 200, 150, Box(20, 20, 139, 99), Box(28, 28, 131, 91));
        EXPECT_EQ(thick.wallVerdict, 2) << channels;
        EXPECT_EQ(thick.thickenVerdict, 2) << channels;
        const GallWallResult thin = Grade(image, channels, 200, 150, Box(20, 20, 139, 99), Box(24, 24, 135, 95));
        EXPECT_EQ(thin.wallVerdict, 1) << channels;
        EXPECT_EQ(thin.thickenVerdict, 1) << channels;
    }
}

// Outer box x 4..139, y 20..159 in a 200x200 scan: bx - 8 is below 1, so
// x0 = 0 while w0 stays 136 + 16 = 152 (the left clip moves the margin to the
// right); y0 = 12, h0 = 140 + 16 = 156. Above 150 both ways, the wall is
// eroded at 2/3 size: the 8 px wall becomes about 5 px and three 3x3
// erosions (7 px across) leave nothing -> no thickening (1). The wall grey is
// half 100, half 0 -> no bright pixels; chords run along rows (the lumen box,
// 120x124, has its short side horizontal) and meet 16 wall pixels over a
// span of 135: 0.12 <= 0.33 -> normal (1). A symmetric margin (4 + 136 + 8 =
// 148 wide, inside 110..150) would erode at full size, keep 0.25 of the wall
// and grade both 2. (The box stays off column 0: a wall on the image border
// is not eroded from outside.)
TEST(GallWallEntry, OuterOutlineNearTheLeftEdgeKeepsItsWidth)
{
    const std::vector<unsigned char> image = StripedScan(200, 200);
    const GallWallResult result = Grade(image, 1, 200, 200, Box(4, 20, 139, 159), Box(12, 28, 131, 151));
    EXPECT_EQ(result.thickenVerdict, 1);
    EXPECT_EQ(result.wallVerdict, 1);
}

TEST(GallWallRegion, MarginOfEightOnEachSide)
{
    // Bounds (50, 40, 30, 20) -> (42, 32, 46, 36).
    const cv::Rect r = GallWallRegion({{50, 40}, {79, 40}, {79, 59}, {50, 59}}, 200, 150);
    EXPECT_EQ(r, cv::Rect(42, 32, 46, 36));
}

TEST(GallWallRegion, LeftAndTopClipsKeepTheFullWidth)
{
    // Bounds (3, 0, 20, 10): x 3 - 8 < 1 -> 0, y -8 -> 0; width 20 + 16 = 36,
    // height 10 + 16 = 26, both unshortened by the clip.
    EXPECT_EQ(GallWallRegion({{3, 0}, {22, 0}, {22, 9}, {3, 9}}, 200, 150), cv::Rect(0, 0, 36, 26));
    // bx - 8 = 1 is kept: only values below 1 become 0.
    EXPECT_EQ(GallWallRegion({{9, 9}, {18, 18}}, 200, 150), cv::Rect(1, 1, 26, 26));
    // bx - 8 = 0 becomes 0 anyway.
    EXPECT_EQ(GallWallRegion({{8, 8}, {17, 17}}, 200, 150), cv::Rect(0, 0, 26, 26));
}

TEST(GallWallRegion, RightAndBottomClipsEndAtTheImageEdge)
{
    // Bounds (180, 140, 20, 10) in a 200x150 image: x0 172, w0 36 -> 200 - 172
    // = 28, ending at column 200; y0 132, h0 26 -> 150 - 132 = 18.
    EXPECT_EQ(GallWallRegion({{180, 140}, {199, 140}, {199, 149}, {180, 149}}, 200, 150), cv::Rect(172, 132, 28, 18));
    // Exactly fitting: bounds (100, 100, 92, 42): x0 + w0 = 92 + 108 = 200 is kept.
    EXPECT_EQ(GallWallRegion({{100, 100}, {191, 141}}, 200, 150), cv::Rect(92, 92, 108, 58));
}

TEST(GallWallRegion, NoOuterPointsGiveTheTopLeftCorner)
{
    // Empty bounds: x0 = y0 = 0, 16x16, cut to a smaller image.
    EXPECT_EQ(GallWallRegion({}, 200, 150), cv::Rect(0, 0, 16, 16));
    EXPECT_EQ(GallWallRegion({}, 10, 12), cv::Rect(0, 0, 10, 12));
}
