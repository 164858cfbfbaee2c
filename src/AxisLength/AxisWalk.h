// Pieces of the long-axis search that its variants share.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

// Principal direction of the outline's points: slope dy/dx of the first
// eigenvector in float, and the mean rounded half to even into (cx, cy).
float PrincipalSlope(const std::vector<cv::Point>& contour, int& cx, int& cy);

// Walks p0 -> p1 (8-connected, clipped to `image`) and keeps the pixels
// closer than 1 to the outline: none gives (0,0) twice, one gives it and
// (0,0), two give both, more give the last and the first.
void WalkOutlineHits(const cv::Mat& image, cv::Point p0, cv::Point p1, const std::vector<cv::Point>& contour,
                     cv::Point* out);
