#include "LesionDescriExport/EntryFrame.h"

#include <cstdint>
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
    // One channel is already grey: the caller's buffer serves as it is, as
    // nothing in the library writes into the grey image or its region.
    if (wrapped.channels() == 1)
        return wrapped;
    cv::Mat grey;
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

namespace {

void RequireInside(const cv::Rect& region, const cv::Size& image)
{
    const int64_t right = int64_t(region.x) + region.width;
    const int64_t bottom = int64_t(region.y) + region.height;
    if (region.x < 0 || region.y < 0 || region.width < 0 || region.height < 0 || right > image.width ||
        bottom > image.height)
        throw std::out_of_range("region outside the image");
}

} // namespace

cv::Mat RegionView(const cv::Mat& grey, const cv::Rect& region)
{
    RequireInside(region, grey.size());
    return cv::Mat(grey, region);
}

void RequireModelContours(const RoiCoor& roi, const cv::Size& image, int count, const int* sizes,
                          const MyPoint* points)
{
    // The region is cut from the image right after the model's mask; refusing
    // it here ends the call the same way, before a mask the size of a region
    // far larger than the image is made.
    RequireInside(cv::Rect(roi.x, roi.y, roi.width, roi.height), image);
    // Sizes are read only from an array that exists.
    if (count > 0 && sizes == nullptr)
        throw std::invalid_argument("null model size array with a positive count");
    for (int i = 0; i < count; ++i) {
        const int size = sizes[i];
        // As copying the outline would: a negative size is past max_size(),
        // and points are read only from an array that exists.
        if (size < 0)
            throw std::length_error("negative model outline size");
        if (size > 0 && points == nullptr)
            throw std::invalid_argument("null point array with a positive count");
    }
}

cv::Mat ModelMask(const RoiCoor& roi, const cv::Size& image, int count, const int* sizes, const MyPoint* points)
{
    // Every refusal comes before any drawing, which cannot fail.
    RequireModelContours(roi, image, count, sizes, points);
    cv::Mat mask = cv::Mat::zeros(roi.height, roi.width, CV_8U);
    size_t start = 0;
    for (int i = 0; i < count; ++i) {
        const int size = sizes[i];
        const std::vector<cv::Point> contour =
            ShiftContour(CopyContour(size > 0 ? points + start : points, size), roi.x, roi.y);
        DrawContour(mask, contour, cv::Scalar(51), cv::FILLED, cv::LINE_8);
        start += contour.size();
    }
    return mask;
}

std::vector<cv::Point> ShiftContour(const std::vector<cv::Point>& contour, int dx, int dy)
{
    std::vector<cv::Point> shifted(contour.size());
    for (size_t i = 0; i < contour.size(); ++i)
        shifted[i] = cv::Point(WrapSub(contour[i].x, dx), WrapSub(contour[i].y, dy));
    return shifted;
}
