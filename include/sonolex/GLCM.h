// Grey-level co-occurrence texture: one matrix per window and direction, and
// the four Haralick-style measures taken from it.
#pragma once

#include <opencv2/core.hpp>

#include "sonolex/Tool.h"

// Energy, contrast, homogeneity and entropy of one co-occurrence matrix.
struct TextureEValues {
    float energy;     // sum of p^2
    float contrast;   // sum of (i - j)^2 * p
    float homogenity; // sum of p / (|i - j| + 1)
    float entropy;    // -sum of p * log10(p)
};

// Quantisation of the 8-bit grey value: levels and right shift.
enum GrayLevel {
    GRAY_4 = 0,  // 4 levels, value >> 6
    GRAY_8 = 1,  // 8 levels, value >> 5
    GRAY_16 = 2, // 16 levels, value >> 4
};

// Pixel pair counted, (r, c) being row and column: first pixel -> second pixel.
enum GrayDirection {
    GRAY_VERTICAL = 0,   // (r - 1, c) -> (r, c)
    GRAY_DOWN_RIGHT = 1, // (r - 1, c) -> (r, c + 1)
    GRAY_HORIZONTAL = 2, // (r, c) -> (r, c + 1)
    GRAY_DOWN_LEFT = 3,  // (r - 1, c) -> (r, c - 1)
};

// Plane of a BGR image.
enum RGBChannel {
    CHANNEL_R = 0, // plane 2
    CHANNEL_G = 1, // plane 1
    CHANNEL_B = 2, // plane 0
};

class SONOLEX_EXPORT GLCM {
public:
    // A one-channel source is assigned to `out` as it stands; otherwise the
    // chosen plane. Any other `channel` value leaves `out` alone.
    void GetOneChannel(cv::Mat source, cv::Mat& out, RGBChannel channel);
    // Quantises the grey bytes (BGR converted to grey first) into `out`,
    // which must already be CV_8UC1 at the source's size. Any other level
    // writes nothing.
    void GrayMagnitude(cv::Mat source, cv::Mat& out, GrayLevel level);
    // `out` = source as CV_32F over its float sum (a sum of 0 counts as 1).
    void NormalizeMat(cv::Mat source, cv::Mat& out);
    // Normalised co-occurrence matrix (levels x levels, CV_32F) of the window
    // of `size` (even sizes act as the next odd one) centred on (row, column),
    // or of the 3 x 3 window held inside the image near its edges. The source
    // must hold quantised values below the level count. Counts are 8-bit and
    // wrap at 256.
    void CalcuOneGLCM(cv::Mat source, cv::Mat& out, int row, int column, int size, GrayLevel level,
                      GrayDirection direction);
    // The four measures of `matrix`. With `check`, a matrix whose float sum is
    // outside 0.99 to 1.01 leaves `values` untouched.
    void CalcuOneTextureEValue(cv::Mat matrix, TextureEValues& values, bool check);
    // Sum over every pixel of the mean of the four directions' measures (not
    // divided by the pixel count).
    void CalcuTextureEValue(cv::Mat source, TextureEValues& values, int size, GrayLevel level);
    // One CV_32FC1 image per measure, each pixel the mean of the four
    // directions; with `toBytes` each is stretched to 0..255 and made CV_8UC1.
    void CalcuTextureImages(cv::Mat source, cv::Mat& energy, cv::Mat& contrast, cv::Mat& homogenity,
                            cv::Mat& entropy, int size, GrayLevel level, bool toBytes);
};
