// Fourier descriptors of a closed outline.
#include "FourierDescriptors/FourierDescriptors.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

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
