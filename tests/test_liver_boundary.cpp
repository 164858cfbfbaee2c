// Boundary of a liver lesion: the grey step across the outline and the edge
// content along it.
#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "liver_scene.h"

using namespace liver_scene;

namespace {

// 100 x 100 liver of grey 100; lesion (30..69)^2, 40 x 40 = 1600 pixels.
// The 15 x 15 square takes 7 pixels: the inner band is 1600 - 26 * 26 = 924
// pixels, the outer band 54 * 54 - 1600 = 1316 pixels, all grey 100.
cv::Mat LesionScene(int grey)
{
    cv::Mat image = Scene(100, 100, 100);
    Paint(image, 30, 30, 69, 69, grey);
    return image;
}

// The lesion's outermost pixel ring at 200 and its inside at 80: a strong
// edge on both sides of the outline, yet an inner band mean of
// (156 * 200 + 768 * 80) / 924 = 92640 / 924 = 100.2597.
cv::Mat FramedScene()
{
    cv::Mat image = LesionScene(200);
    Paint(image, 31, 31, 68, 68, 80);
    return image;
}

int BoundaryOf(const cv::Mat& image)
{
    return Describe(image, WholeLiver(image, Box(30, 30, 69, 69))).boundary;
}

std::vector<float> DefinitionOf(const cv::Mat& image)
{
    BUSFeature f(image, 100, 100);
    std::vector<cv::Point> liver = BoxPoints(0, 0, 99, 99);
    std::vector<cv::Point> lesion = BoxPoints(30, 30, 69, 69);
    f.InitiLiverPara(liver, lesion, cv::Rect(0, 0, 100, 100));
    return f.GetDefinition(15);
}

} // namespace

TEST(LiverBoundary, GreyStepOfExactlyTenIsClear)
{
    // Outer 100 - inner 110 = -10: |-10| is not below 10 -> 1.
    const std::vector<float> d = DefinitionOf(LesionScene(110));
    EXPECT_EQ(d[0], -10.0f);
    EXPECT_EQ(BoundaryOf(LesionScene(110)), 1);
    // A step of 10 the other way too.
    EXPECT_EQ(BoundaryOf(LesionScene(90)), 1);
}

TEST(LiverBoundary, SmallStepWithoutEdgesIsUnclear)
{
    // Step 9: |-9| < 10. The Sobel response of a 9-grey step is at most
    // 4 * 9 = 36 along a side and 27 + 27 = 54 at a corner, below the high
    // Canny threshold 180: no edge, edge share 0 <= 0.19 -> 2.
    const std::vector<float> d = DefinitionOf(LesionScene(109));
    EXPECT_EQ(d[0], -9.0f);
    EXPECT_EQ(d[1], 0.0f);
    EXPECT_EQ(BoundaryOf(LesionScene(109)), 2);
}

TEST(LiverBoundary, SmallStepWithEdgesIsClear)
{
    const std::vector<float> d = DefinitionOf(FramedScene());
    // 100 - 100.2597 = -0.26: the grey test passes.
    EXPECT_NEAR(d[0], -0.2597f, 1e-3f);
    // Across a side the profile 100, 100, 200, 80, 80 has Sobel responses
    // 4 * 100 = 400, 4 * 20 = 80, 4 * 120 = 480: edges on the pixel outside the
    // frame and on the first pixel inside it. A line of thickness 3 covers five
    // pixels across in OpenCV, so two of five: about 0.4, far above 0.19.
    EXPECT_GT(d[1], 0.35f);
    EXPECT_EQ(BoundaryOf(FramedScene()), 1);
}
