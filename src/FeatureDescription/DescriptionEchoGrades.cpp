// Echo grades of gall bladder and liver lesions from grey summaries.
#include <opencv2/imgproc.hpp>

#include "FeatureDescription/Description.h"

int Description::GallBladderEcho(BUSFeature feature)
{
    const float high = feature.GetLesionHighGray();
    const float bright = feature.GetBrightAvgGray();
    const float liver = feature.GetLiverAvgGray();
    const std::vector<float> p = feature.GetGbPosterEchoFeature();
    if (high >= bright - 26.0f)
        return 4;
    if (p.at(0) - p.at(1) > 50.0f)
        return 4;
    if (high > liver + 20.0f)
        return 3;
    if (high < liver - 15.0f)
        return 2;
    return 6;
}

int Description::GallBladderEcho2(BUSFeature feature)
{
    const float high = feature.GetLesionHighGray();
    const float bright = feature.GetBrightAvgGray();
    const float liver = feature.GetLiverAvgGray();
    const float avg = feature.GetLesionAvgGray();
    const std::vector<float> p = feature.GetGbPosterEchoFeature();
    if (avg <= 80.0f) {
        if (avg < liver - 15.0f)
            return 2;
        if (avg <= liver + 20.0f)
            return 6;
        return 3;
    }
    if (high >= bright - 26.0f)
        return 4;
    return p.at(0) - p.at(1) > 50.0f ? 4 : 3;
}

int Description::LiverEchoUseHist(BUSFeature feature, std::vector<cv::Point> organContour)
{
    std::vector<float> f = feature.GetEchoFeatureUseHist();
    const float ratio = feature.GetLesionAvgGray() / feature.GetLiverAvgGray();
    if (ratio > 1.1f) {
        float organArea = static_cast<float>(SafeContourArea(organContour, false));
        if (organArea == 0.0f)
            organArea += 1e-5f;
        return static_cast<double>(feature.GetLesionArea() / organArea) <= 0.01 ? 4 : 3;
    }
    if (f.at(1) == 0.0f)
        f[1] += 1e-5f;
    if (static_cast<double>(f.at(0) / f[1]) > 2.0)
        return 1;
    return static_cast<double>(f.at(2)) <= 10.0 ? 2 : 1;
}
