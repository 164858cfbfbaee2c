// Gradient strength along an outline, edge indicator images, and the
// filters behind them.
#include <climits>

#include <opencv2/imgproc.hpp>

#include "BoundarySharpness/BoundarySharpness.h"

namespace {

double FirstOutlineArea(const cv::Mat& binary64)
{
    cv::Mat bytes;
    binary64.convertTo(bytes, CV_8U, 255.0);
    std::vector<std::vector<cv::Point>> found;
    cv::findContours(bytes, found, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    return found.empty() ? 0.0 : SafeContourArea(found[0]);
}

} // namespace

double EVA(const std::vector<cv::Point>& contour, const cv::Mat& image)
{
    const int rows = image.rows;
    const int cols = image.cols;
    if (image.channels() > 1) {
        // Grey written back into the read-only argument: its type is fixed,
        // so OpenCV refuses the conversion.
        cv::cvtColor(image, cv::_OutputArray(image), cv::COLOR_BGR2GRAY);
    }
    cv::Mat img;
    if (image.type() == CV_64FC1)
        img = image.clone();
    else
        image.convertTo(img, CV_64F, 1.0);

    const cv::Mat gx = GradientX(img);
    const cv::Mat gy = GradientY(img);
    cv::Mat magnitude, strength;
    cv::magnitude(gx, gy, magnitude);
    cv::normalize(magnitude, strength, 0.0, 1.0, cv::NORM_MINMAX);

    cv::Mat filled = cv::Mat::zeros(rows, cols, CV_64F);
    DrawContour(filled, contour, cv::Scalar(1.0), -1, cv::LINE_8);
    const cv::Mat element = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(11, 11), cv::Point(-1, -1));
    cv::Mat inner, outer;
    cv::morphologyEx(filled, inner, cv::MORPH_ERODE, element, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
                     cv::morphologyDefaultBorderValue());
    cv::morphologyEx(filled, outer, cv::MORPH_DILATE, element, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
                     cv::morphologyDefaultBorderValue());
    const cv::Mat band = outer - inner;
    const double innerArea = FirstOutlineArea(inner);
    const double outerArea = FirstOutlineArea(outer);

    const cv::Mat weighted = band.mul(strength);
    double sum = 0.0;
    for (int r = 1; r < rows - 1; ++r) {
        const double* w = weighted.ptr<double>(r);
        for (int c = 1; c < cols - 1; ++c)
            sum += w[c];
    }
    if (outerArea - innerArea != 0.0)
        sum /= outerArea - innerArea;
    return sum;
}

void CalcuEdgeIndicator(cv::Mat image, cv::Mat& out, int mode)
{
    if (image.type() != CV_64FC1)
        image.convertTo(image, CV_64F, 1.0);
    const cv::Mat gx = GradientX(image);
    const cv::Mat gy = GradientY(image);
    const cv::Mat ones = cv::Mat::ones(image.size(), CV_64F);
    cv::Mat squared = gy.mul(gy) + gx.mul(gx);
    if (mode == 1) {
        cv::add(squared, ones, squared);
        cv::divide(ones, squared, out);
    } else if (mode == 2) {
        cv::exp(-1.0 * squared, out);
    }
}

cv::Mat Correlation(const cv::Mat& source, const cv::Mat& kernel)
{
    const cv::Point anchor(kernel.cols - kernel.cols / 2 - 1, kernel.rows - kernel.rows / 2 - 1);
    cv::Mat out;
    cv::filter2D(source.clone(), out, source.depth(), kernel.clone(), anchor, 0, cv::BORDER_DEFAULT);
    return out;
}

cv::Mat Conv2(const cv::Mat& source, const cv::Mat& kernel)
{
    cv::Mat flipped;
    cv::flip(kernel, flipped, -1);
    const cv::Point anchor(flipped.cols - flipped.cols / 2 - 1, flipped.rows - flipped.rows / 2 - 1);
    cv::Mat out;
    cv::filter2D(source, out, source.depth(), flipped, anchor, 0, cv::BORDER_CONSTANT);
    return out;
}

cv::Mat GaussSmooth(cv::Mat image, int size, double sigma)
{
    if (image.channels() > 1)
        cv::cvtColor(image, image, cv::COLOR_BGR2GRAY);
    if (image.type() != CV_64FC1)
        image.convertTo(image, CV_64F, 1.0);
    const cv::Mat g = cv::getGaussianKernel(size, sigma, CV_64F);
    return Conv2(image, g * g.t());
}
