// Tiny liver scenes whose every pixel is known: a uniform background, a
// rectangular lesion of one grey, a rectangular liver outline.
#pragma once

#include <vector>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "sonolex.h"

namespace liver_scene {

// Corners of the pixel rectangle [x0, x1] x [y0, y1], clockwise. Filled, it
// covers (x1 - x0 + 1) * (y1 - y0 + 1) pixels; its outline encloses the
// area (x1 - x0) * (y1 - y0).
inline std::vector<MyPoint> Box(int x0, int y0, int x1, int y1)
{
    return {MyPoint{x0, y0}, MyPoint{x1, y0}, MyPoint{x1, y1}, MyPoint{x0, y1}};
}

inline std::vector<cv::Point> BoxPoints(int x0, int y0, int x1, int y1)
{
    return {cv::Point(x0, y0), cv::Point(x1, y0), cv::Point(x1, y1), cv::Point(x0, y1)};
}

inline cv::Mat Scene(int width, int height, int background)
{
    return cv::Mat(height, width, CV_8UC1, cv::Scalar(background));
}

inline void Paint(cv::Mat& image, int x0, int y0, int x1, int y1, int grey)
{
    image(cv::Rect(x0, y0, x1 - x0 + 1, y1 - y0 + 1)).setTo(cv::Scalar(grey));
}

struct Call {
    RoiCoor roi;
    std::vector<MyPoint> organ;
    std::vector<MyPoint> lesion;
};

// Runs LiverDescription on a grey image; the record starts filled with 7s
// so that untouched fields show.
inline LiverResult Describe(const cv::Mat& grey, const Call& call)
{
    LiverResult r{7, 7, 7, 7};
    LiverDescription(grey.data, 1, grey.cols, grey.rows, call.roi, static_cast<int>(call.organ.size()),
                     call.organ.data(), static_cast<int>(call.lesion.size()), call.lesion.data(), &r);
    return r;
}

// The whole image as region and as liver.
inline Call WholeLiver(const cv::Mat& grey, std::vector<MyPoint> lesion)
{
    return Call{RoiCoor{0, 0, grey.cols, grey.rows}, Box(0, 0, grey.cols - 1, grey.rows - 1), std::move(lesion)};
}

} // namespace liver_scene
