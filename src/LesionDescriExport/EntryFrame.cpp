#include "LesionDescriExport/EntryFrame.h"

#include <stdexcept>

#include <opencv2/imgproc.hpp>

bool IsValidImage(const unsigned char* image, int channels)
{
    return image != nullptr && (channels == 1 || channels == 3 || channels == 4);
}

cv::Mat WrapImage(const unsigned char* image, int channels, int width, int height)
{
    return cv::Mat(height, width, (channels - 1) * 8, const_cast<unsigned char*>(image));
}

cv::Mat MakeGrey(const cv::Mat& wrapped)
{
    cv::Mat grey;
    if (wrapped.channels() == 1)
        grey = wrapped.clone();
    else
        cv::cvtColor(wrapped, grey, cv::COLOR_BGR2GRAY);
    return grey;
}

std::vector<cv::Point> CopyContour(const MyPoint* points, int count)
{
    // Points are read only from an array that exists.
    if (count > 0 && points == nullptr)
        throw std::invalid_argument("null point array with a positive count");
    // A negative count becomes a size past max_size(): std::length_error.
    std::vector<cv::Point> contour(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        contour[static_cast<size_t>(i)] = cv::Point(points[i].x, points[i].y);
    return contour;
}

std::vector<cv::Point> ShiftContour(const std::vector<cv::Point>& contour, int dx, int dy)
{
    std::vector<cv::Point> shifted(contour.size());
    for (size_t i = 0; i < contour.size(); ++i)
        shifted[i] = cv::Point(WrapSub(contour[i].x, dx), WrapSub(contour[i].y, dy));
    return shifted;
}
