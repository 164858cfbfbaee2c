// Shared by the metric family's files.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

// Polygon of an ellipse: centre rounded half to even, half axes the
// truncated sides over 2, the angle truncated, one vertex a degree.
std::vector<cv::Point> EllipsePolygon(const cv::RotatedRect& ellipse);
