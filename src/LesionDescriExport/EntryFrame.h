// Steps every entry point shares: validate, wrap the caller's buffer, make
// the grey image, copy the outlines, move them into region coordinates.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "sonolex.h"
#include "Tool/Tool.h"

// A non-null image of 1, 3 or 4 channels; anything else returns untouched.
bool IsValidImage(const unsigned char* image, int channels);
// The caller's buffer as a matrix of (channels - 1) * 8 type, without a copy.
cv::Mat WrapImage(const unsigned char* image, int channels, int width, int height);
// Grey image: the caller's buffer itself for one channel (never written),
// or BGR to grey for three and four.
cv::Mat MakeGrey(const cv::Mat& wrapped);
// The caller's points as a vector built at its final size. A negative count
// raises std::length_error; a null array with a positive count is refused.
std::vector<cv::Point> CopyContour(const MyPoint* points, int count);
// The region as a view of the grey image. A region not wholly inside is
// refused, as cv::Mat refuses it, but checked in 64 bits so that coordinates
// near the int limits cannot wrap past the test.
cv::Mat RegionView(const cv::Mat& grey, const cv::Rect& region);
// The host model's regions, packed as counts and points in whole-image
// coordinates, each filled with 51 into a zero mask of the region's size.
// A negative count draws nothing; a negative size raises std::length_error.
// A region not wholly inside an image of size `image` is refused first.
cv::Mat ModelMask(const RoiCoor& roi, const cv::Size& image, int count, const int* sizes, const MyPoint* points);
// The refusals of ModelMask alone, without the drawing.
void RequireModelContours(const RoiCoor& roi, const cv::Size& image, int count, const int* sizes,
                          const MyPoint* points);
// Every point less (dx, dy), into a new vector.
std::vector<cv::Point> ShiftContour(const std::vector<cv::Point>& contour, int dx, int dy);
