// How far one point set lies from another: for each point of the first set
// the distance to its nearest point of the second, in pixels.
#pragma once

#include <utility>
#include <vector>

#include <opencv2/core.hpp>

#include "sonolex/Tool.h"

class SONOLEX_EXPORT Hausdorff {
public:
    // Mean and largest nearest-point distance from `first` to `second`; keeps
    // the pair that gives the largest (a point of `first`, its nearest point
    // of `second`) and returns the largest. The mean is added to and not
    // cleared, so an object measures once. Throws on an empty set.
    float CalcPtsDistanceTest(const std::vector<cv::Point>& first, const std::vector<cv::Point>& second);
    float GetMeanDistance();
    std::vector<cv::Point> GetPtsPair();
    // Largest nearest-point distance from `first` to `second` (999999 when
    // `second` is empty). Throws when `first` is empty.
    float CalcPtsDistance(const std::vector<cv::Point>& first, const std::vector<cv::Point>& second);
    // The larger of CalcPtsDistance both ways: the Hausdorff distance.
    float HausdDistance(std::vector<cv::Point> first, std::vector<cv::Point> second);
    // Float sum over `n`; 0 / n for n below 1.
    float MeanDistance(float* values, int n);
    // Ascending exchange sort in place.
    void Sort(float* values, int n);

    float m_meanDistance = 0.0f;
    float m_maxDistance = 0.0f;
    std::vector<cv::Point> m_ptsPair{cv::Point(0, 0), cv::Point(0, 0)};
};

// Larger distance first.
SONOLEX_EXPORT bool Descending(const std::pair<float, std::vector<cv::Point>>& a,
                               const std::pair<float, std::vector<cv::Point>>& b);
