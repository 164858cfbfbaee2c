// Report categories of a liver lesion: echo against the surrounding liver,
// shape, boundary and echo texture. Each takes its own copy of the feature
// object.
#include <cmath>

#include "FeatureDescription/Description.h"

int Description::LiverEcho(BUSFeature feature, std::vector<cv::Point> organContour)
{
    const std::vector<float> echo = feature.GetEchoCysticFeature();
    const float weightedSum = echo.at(0);
    const float brightFraction = echo.at(1);

    // With no liver in the ring the liver mean is 0 and the ratio infinite
    // (lesion grey above 0) or not a number (both 0); the tree takes both.
    const float lesionAvg = feature.GetLesionAvgGray();
    const float liverAvg = feature.GetLiverAvgGray();
    const float ratio = lesionAvg / liverAvg;

    if (ratio > 1.1f) {
        float organArea = static_cast<float>(SafeContourArea(organContour, false));
        if (organArea == 0.0f)
            organArea += 1e-5f;
        const float lesionArea = feature.GetLesionArea();
        if (ratio < 1.5f)
            return 3;
        if (ratio >= 2.0f)
            return lesionAvg >= 80.0f ? 4 : 3;
        if (lesionArea / organArea <= 0.005f)
            return 4;
        return static_cast<double>(brightFraction) > 0.1 ? 4 : 3;
    }

    const double wide = static_cast<double>(ratio);
    if (wide > 0.7)
        return 2;
    if (wide < 0.6)
        return 1;
    return weightedSum > 1e7f ? 2 : 1;
}

int Description::LiverShape(BUSFeature feature)
{
    const std::vector<float> s = feature.GetShapeFeatureMy();
    if (s.at(0) > 0.1f)
        return 2;
    return s.at(1) > 0.22f ? 2 : 1;
}

int Description::LiverBoundary(BUSFeature feature)
{
    const std::vector<float> d = feature.GetDefinition(15);
    if (std::fabs(d.at(0)) < 10.0f)
        return static_cast<double>(d.at(1)) <= 0.19 ? 2 : 1;
    return 1;
}

int Description::LiverEchotexture(BUSFeature feature)
{
    const std::vector<float> t = feature.GetEchotexture();
    const bool wide = t.at(5) > 150.0f;
    const bool tall = t.at(6) > 150.0f;
    double threshold = 0.035;
    if (wide && tall)
        threshold = 0.025;
    else if (wide || tall)
        threshold = 0.03;
    return static_cast<double>(t.at(3)) >= threshold ? 2 : 1;
}
