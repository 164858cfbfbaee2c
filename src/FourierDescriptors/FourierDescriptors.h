// Fourier descriptors of a closed outline, normalised for position, scale,
// rotation, start point and sense of traversal.
#pragma once

#include <complex>
#include <vector>

#include <opencv2/core.hpp>

#include "Tool/Tool.h"

// Fills `descriptors` with frequencies -count..count (2 * count + 1 values,
// frequency k at position count + k). `width` and `height` are not read.
// The outline needs more than `count` points.
SONOLEX_EXPORT void CalcuFourierDescriptors(std::vector<std::complex<double>>& descriptors,
                                            const std::vector<cv::Point>& contour, int count, int width,
                                            int height);
