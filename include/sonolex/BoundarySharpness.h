// Edge strength measures on grey images.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "sonolex/Tool.h"

// Central differences of a CV_64FC1 matrix along the columns (x) or rows (y),
// one-sided on the first and last column or row.
SONOLEX_EXPORT cv::Mat GradientX(cv::Mat image);
SONOLEX_EXPORT cv::Mat GradientY(cv::Mat image);

// Mean normalised gradient strength over the band from an 11 x 11 elliptic
// erosion to the dilation of the filled `contour`: the strength summed over
// the band (the image's outer frame left out), over the outline area the
// dilation gains on the erosion. Single-channel images only: a colour
// image throws cv::Exception. 0 on a flat image.
SONOLEX_EXPORT double EVA(const std::vector<cv::Point>& contour, const cv::Mat& image);
// Edge indicator from the squared gradient |g|^2 of `image` (as CV_64F):
// mode 1 gives 1 / (1 + |g|^2), mode 2 gives exp(-|g|^2); any other mode
// leaves `out` alone.
SONOLEX_EXPORT void CalcuEdgeIndicator(cv::Mat image, cv::Mat& out, int mode);
// Correlation with `kernel` (anchor at its centre, the upper-left one for
// even sizes), borders reflected, at the depth of `source`.
SONOLEX_EXPORT cv::Mat Correlation(const cv::Mat& source, const cv::Mat& kernel);
// True convolution with `kernel`, zero outside the image (as MATLAB's conv2 'same').
SONOLEX_EXPORT cv::Mat Conv2(const cv::Mat& source, const cv::Mat& kernel);
// Grey image as CV_64F convolved with the size x size Gaussian of `sigma`.
SONOLEX_EXPORT cv::Mat GaussSmooth(cv::Mat image, int size, double sigma);
