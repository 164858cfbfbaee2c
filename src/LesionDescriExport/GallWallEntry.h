// Working region of the gall bladder wall entry.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "Tool/Tool.h"

// The outer outline's bounding box widened by 8 pixels a side. A side clipped
// at the left or top keeps its full width, so the margin moves to the far
// side; only the right and bottom are cut at the image edge.
SONOLEX_EXPORT cv::Rect GallWallRegion(const std::vector<cv::Point>& outer, int width, int height);
