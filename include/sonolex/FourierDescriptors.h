// Fourier descriptors of a closed outline, normalised for position, scale,
// rotation, start point and sense of traversal.
#pragma once

#include <complex>
#include <vector>

#include <opencv2/core.hpp>

#include "sonolex/Tool.h"

// Fills `descriptors` with frequencies -count..count (2 * count + 1 values,
// frequency k at position count + k). `width` and `height` are not read.
// The outline needs more than `count` points.
SONOLEX_EXPORT void CalcuFourierDescriptors(std::vector<std::complex<double>>& descriptors,
                                            const std::vector<cv::Point>& contour, int count, int width,
                                            int height);

// Draws into `out` (rows x cols, CV_8UC1, 255 on 0) the closed outline of
// `length` points rebuilt by the inverse DFT of the descriptors (laid out as
// CalcuFourierDescriptors leaves them) times scale * length, shifted by
// `centre` (x real, y imaginary) and truncated. Throws std::invalid_argument
// when `length` is below 2 * count + 1 and std::out_of_range when
// `descriptors` holds fewer than 2 * count + 1 values.
SONOLEX_EXPORT void GetBackImageLi(cv::Mat& out, const std::vector<std::complex<double>>& descriptors,
                                   std::complex<double> centre, unsigned long length, int count, int cols, int rows,
                                   double scale);
