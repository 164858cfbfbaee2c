// Shape of a liver lesion: concavities of the outline, measured in pixels
// because the liver path never sets the ellipse's axis lengths.
#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"
#include "liver_scene.h"

using namespace liver_scene;

namespace {

// 300 x 250 liver of grey 100; lesion (50..249, 50..199), 200 by 150 pixels,
// grey 140, with a V notch in its top side whose tip lies `depth` rows down.
std::vector<MyPoint> Notched(int depth)
{
    return {MyPoint{50, 50},          MyPoint{140, 50}, MyPoint{150, 50 + depth}, MyPoint{160, 50},
            MyPoint{249, 50},         MyPoint{249, 199}, MyPoint{50, 199}};
}

cv::Mat NotchedScene(int depth)
{
    cv::Mat image = Scene(300, 250, 100);
    const std::vector<MyPoint> outline = Notched(depth);
    std::vector<cv::Point> points;
    for (const MyPoint& p : outline)
        points.emplace_back(p.x, p.y);
    cv::fillPoly(image, std::vector<std::vector<cv::Point>>{points}, cv::Scalar(140), cv::LINE_8);
    return image;
}

int ShapeOf(int depth)
{
    const cv::Mat image = NotchedScene(depth);
    return Describe(image, WholeLiver(image, Notched(depth))).shape;
}

} // namespace

TEST(LiverShape, DepthsStayInPixelsWithUnsetAxes)
{
    // Tip 6 rows below the top side: one defect of depth 6 > 5, mean 6 and
    // greatest 6 in pixels. Half the minor axis is 0.5 * 0 = 0 on this path,
    // so no division: 6 > 0.1 -> 2. (Divided by half of 150 it would be
    // 0.08, below both 0.1 and 0.22, and the verdict 1.)
    EXPECT_EQ(ShapeOf(6), 2);

    const cv::Mat image = NotchedScene(6);
    BUSFeature f(image, 300, 250);
    std::vector<cv::Point> liver = BoxPoints(0, 0, 299, 249);
    std::vector<cv::Point> lesion;
    for (const MyPoint& p : Notched(6))
        lesion.emplace_back(p.x, p.y);
    f.InitiLiverPara(liver, lesion, cv::Rect(0, 0, 300, 250));
    EXPECT_EQ(f.GetShapeFeatureMy(), (std::vector<float>{6.0f, 6.0f, 1.0f}));
}

TEST(LiverShape, ConcavityOfFivePixelsDoesNotCount)
{
    // Depth 5 is not above 5: no defect, mean and greatest 0 -> 1.
    EXPECT_EQ(ShapeOf(5), 1);
    EXPECT_EQ(ShapeOf(0), 1); // straight top side
}
