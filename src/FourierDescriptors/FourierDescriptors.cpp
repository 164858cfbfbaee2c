// Fourier descriptors of a closed outline.
#include "FourierDescriptors/FourierDescriptors.h"

#include <algorithm>
#include <cmath>
#include <climits>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

void CalcuFourierDescriptors(std::vector<std::complex<double>>& descriptors, const std::vector<cv::Point>& contour,
                             int count, int /*width*/, int /*height*/)
{
    const size_t n = contour.size();
    // The spectrum must hold frequencies -count..count without wrapping onto itself.
    if (count < 1 || n <= static_cast<size_t>(count))
        throw std::out_of_range("outline too short for its Fourier descriptors");

    // The outline as x + iy about its mean.
    double sumX = 0.0, sumY = 0.0;
    for (const cv::Point& p : contour) {
        sumX += static_cast<double>(p.x);
        sumY += static_cast<double>(p.y);
    }
    const double meanX = sumX / static_cast<double>(n);
    const double meanY = sumY / static_cast<double>(n);
    std::vector<std::complex<double>> sequence(n);
    for (size_t i = 0; i < n; ++i)
        sequence[i] = std::complex<double>(static_cast<double>(contour[i].x) - meanX,
                                           static_cast<double>(contour[i].y) - meanY);

    std::vector<std::complex<double>> spectrum;
    cv::dft(sequence, spectrum, cv::DFT_COMPLEX_OUTPUT);
    for (std::complex<double>& term : spectrum)
        term /= static_cast<double>(n);

    // Frequencies -count..-1, the constant term zeroed, then 1..count.
    const size_t c = static_cast<size_t>(count);
    descriptors.clear();
    for (size_t i = n - c; i < n; ++i)
        descriptors.push_back(spectrum[i]);
    descriptors.push_back(std::complex<double>(0.0, 0.0));
    for (size_t i = 1; i <= c; ++i)
        descriptors.push_back(spectrum[i]);

    // Sense of traversal: the stronger first harmonic goes to +1.
    if (std::abs(descriptors[c - 1]) > std::abs(descriptors[c + 1]))
        std::reverse(descriptors.begin(), descriptors.end());

    // Scale.
    const double scale = std::abs(descriptors[c + 1]);
    for (std::complex<double>& d : descriptors)
        d /= scale;

    // Start point and rotation.
    const double phi = std::arg(descriptors[c - 1] * descriptors[c + 1]);
    const double theta = std::arg(descriptors[c + 1]);
    for (size_t i = 0; i < descriptors.size(); ++i) {
        const double k = static_cast<double>(static_cast<int>(i) - count);
        descriptors[i] *= std::exp(std::complex<double>(0.0, -phi / 2.0 - k * theta));
    }
}

void GetBackImageLi(cv::Mat& out, const std::vector<std::complex<double>>& descriptors, std::complex<double> centre,
                    unsigned long length, int count, int cols, int rows, double scale)
{
    const size_t half = count > 0 ? static_cast<size_t>(count) : 0;
    // Fewer points than descriptors leave no room for both halves.
    if (length < 2 * half + 1 || length > static_cast<unsigned long>(INT_MAX))
        throw std::invalid_argument("GetBackImageLi: length below 2 * count + 1");
    const double factor = scale * static_cast<double>(length);
    cv::Mat spectrum = cv::Mat::zeros(static_cast<int>(length), 1, CV_64FC2);
    for (size_t k = 1; k <= half; ++k) {
        const std::complex<double> positive = descriptors.at(half + k) * factor;
        spectrum.at<cv::Vec2d>(static_cast<int>(k)) = cv::Vec2d(positive.real(), positive.imag());
        const std::complex<double> negative = descriptors.at(half - k) * factor;
        spectrum.at<cv::Vec2d>(static_cast<int>(length - k)) = cv::Vec2d(negative.real(), negative.imag());
    }
    cv::Mat points;
    cv::dft(spectrum, points, cv::DFT_INVERSE | cv::DFT_SCALE);
    std::vector<cv::Point> outline;
    outline.reserve(length);
    for (int i = 0; i < points.rows; ++i) {
        const cv::Vec2d z = points.at<cv::Vec2d>(i);
        outline.emplace_back(TruncToInt(centre.real() + z[0]), TruncToInt(centre.imag() + z[1]));
    }
    out = cv::Mat::zeros(rows, cols, CV_8UC1);
    DrawContour(out, outline, cv::Scalar(255), 1, cv::LINE_8);
}
