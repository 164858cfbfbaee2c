// Position of the plaque in the vessel section.
#include <gtest/gtest.h>

#include "BusFeature/BusFeature.h"

namespace {

// A feature object whose region starts at (100, 50); the vessel is given in
// whole-image coordinates, the plaque's bounding box in region coordinates.
BUSFeature VesselWithPlaque(const std::vector<cv::Point>& regionVessel, cv::Rect plaqueBox)
{
    BUSFeature feature(cv::Mat::zeros(60, 80, CV_8UC1), cv::Rect(100, 50, 80, 60), 400, 300);
    for (const cv::Point& p : regionVessel)
        feature.m_plaqueCont.push_back(p + cv::Point(100, 50));
    feature.m_lesionRect = plaqueBox;
    return feature;
}

} // namespace

TEST(CarotidPosition, UprightVesselPlaqueNearTheBottomIsOnTheLowerWall)
{
    // Box (10, 20, 41, 11); centre (20 + 10 / 2, 26 + 4 / 2) = (25, 28).
    // Ratio 41 / 11 = 3.7 is not square. upper = |28 - box.x 10| = 18, lower = |28 - 31| = 3.
    BUSFeature feature = VesselWithPlaque({{10, 20}, {50, 20}, {50, 30}, {10, 30}}, cv::Rect(20, 26, 10, 4));
    EXPECT_EQ(feature.GetCarotidPlaquePosition(), 2);
}

TEST(CarotidPosition, UprightVesselMeasuresTheUpperSideFromTheBoxsLeft)
{
    // Box (30, 20, 41, 11); centre (45, 28), near the bottom as before, but now
    // upper = |28 - box.x 30| = 2 and lower = |28 - 31| = 3: 2 is not above 3.
    BUSFeature feature = VesselWithPlaque({{30, 20}, {70, 20}, {70, 30}, {30, 30}}, cv::Rect(40, 26, 10, 4));
    EXPECT_EQ(feature.GetCarotidPlaquePosition(), 1);
}

TEST(CarotidPosition, SquareSectionWithCrossedSideDistancesIsTheSideWall)
{
    // Box (10, 10, 21, 21): ratio 1. Centre (11 + 2, 18 + 2) = (13, 20).
    // sideX = min(|13 - 31|, |13 - box.y 10|) = 3; sideY = min(|20 - 31|, |20 - box.x 10|) = 10 > 3.
    BUSFeature feature = VesselWithPlaque({{10, 10}, {30, 10}, {30, 30}, {10, 30}}, cv::Rect(11, 18, 4, 4));
    EXPECT_EQ(feature.GetCarotidPlaquePosition(), 3);
}

TEST(CarotidPosition, TiltedVesselComparesDistancesToItsFlatSides)
{
    // Rectangle (0,10) (30,0) (34,12) (4,22): sides of slope -1/3 (length 31.6) and 3 (12.6).
    // Flat sides: (0,10)-(30,0), mean y 5, upper; (4,22)-(34,12), mean y 17, lower.
    // Ratio 31.6 / 12.6 = 2.5 is not square.
    const std::vector<cv::Point> vessel = {{0, 10}, {30, 0}, {34, 12}, {4, 22}};
    // Centre (19, 15): upper |10*19 + 30*15 - 300| / sqrt(1000) = 340 / 31.6 = 10.8,
    // lower |10*19 + 30*15 - 700| / 31.6 = 60 / 31.6 = 1.9: nearer the lower side.
    BUSFeature low = VesselWithPlaque(vessel, cv::Rect(17, 13, 4, 4));
    EXPECT_EQ(low.GetCarotidPlaquePosition(), 2);
    // Centre (15, 8): upper |150 + 240 - 300| / 31.6 = 2.8, lower |150 + 240 - 700| / 31.6 = 9.8.
    BUSFeature high = VesselWithPlaque(vessel, cv::Rect(13, 6, 4, 4));
    EXPECT_EQ(high.GetCarotidPlaquePosition(), 1);
}
