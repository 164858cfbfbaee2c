// Edge strength measures on grey images.
#pragma once

#include <opencv2/core.hpp>

#include "Tool/Tool.h"

// Central differences of a CV_64FC1 matrix along the columns (x) or rows (y),
// one-sided on the first and last column or row.
SONOLEX_EXPORT cv::Mat GradientX(cv::Mat image);
SONOLEX_EXPORT cv::Mat GradientY(cv::Mat image);
