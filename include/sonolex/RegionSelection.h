// Turning a binary image into one region: hole filling and the choice of
// one contour out of several.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "sonolex/Tool.h"

// Random generator for display colours, seeded once at load time.
SONOLEX_EXPORT extern cv::RNG rng;

// dst = src with every hole that does not reach the image edge filled with 255.
SONOLEX_EXPORT void MyFillHole(cv::Mat src, cv::Mat& dst);
// The one external contour, the largest of several, or (0, 0) appended when there is none.
SONOLEX_EXPORT void GetTargetRegion(cv::Mat image, std::vector<cv::Point>& out);
// The contour that is large and close to the centre of `reference`.
SONOLEX_EXPORT void GetTargetRegion1(cv::Mat image, const std::vector<cv::Point>& reference,
                                     std::vector<cv::Point>& out);
// dst keeps only the largest external region of src.
SONOLEX_EXPORT void GetTargetRegion(const cv::Mat& src, cv::Mat& dst);
SONOLEX_EXPORT cv::Point CalcLesionCenter(cv::Mat image, std::vector<cv::Point> contour);
SONOLEX_EXPORT void SelectShapeArea(cv::Mat image, cv::Mat& drawing, std::vector<std::vector<cv::Point>> contours,
                                    std::vector<std::vector<cv::Point>>& kept, float lower, float upper);
SONOLEX_EXPORT std::vector<std::vector<cv::Point>> GetTargetShapeRegion(cv::Mat src, cv::Mat& dst);
SONOLEX_EXPORT cv::Vec3b RandomColor(int value);
