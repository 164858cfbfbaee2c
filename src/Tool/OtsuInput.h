// The Otsu level's input: the image made grey, and refused when it or the
// mask holds fewer bytes than the level reads (it addresses pixels without
// the row step). A caller that only needs the refusals calls this alone.
#pragma once

#include <stdexcept>

#include <opencv2/imgproc.hpp>

inline cv::Mat OtsuInput(cv::Mat image, const cv::Mat& mask)
{
    if (image.channels() > 1)
        cv::cvtColor(image, image, cv::COLOR_BGR2GRAY);
    const size_t span = static_cast<size_t>(image.channels()) * static_cast<size_t>(image.rows) *
                        static_cast<size_t>(image.cols);
    if (span > 0 && (image.data == nullptr || mask.data == nullptr ||
                     static_cast<size_t>(image.dataend - image.data) < span ||
                     static_cast<size_t>(mask.dataend - mask.data) < span))
        throw std::out_of_range("OtsuAlgThreshold: mask smaller than image");
    return image;
}
