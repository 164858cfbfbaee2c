// Grey-level co-occurrence matrices and their texture measures.
#include "GLCM/GLCM.h"

#include <cmath>
#include <stdexcept>
#include <vector>

#include <opencv2/imgproc.hpp>

namespace {

// Levels and right shift of each quantisation; 0 levels for an unknown value.
int LevelCount(GrayLevel level)
{
    switch (level) {
    case GRAY_4: return 4;
    case GRAY_8: return 8;
    case GRAY_16: return 16;
    }
    return 0;
}

int LevelShift(GrayLevel level)
{
    switch (level) {
    case GRAY_4: return 6;
    case GRAY_8: return 5;
    case GRAY_16: return 4;
    }
    return -1;
}

// First and last index of the 3 x 3 window along one axis of `count` pixels.
void SmallWindow(int at, int count, int& first, int& last)
{
    if (at < 2) {
        first = 0;
    } else if (at < count - 1) {
        first = at - 1;
    } else {
        first = count - 3;
    }
    last = first + 2;
}

// The four directions' measures at one pixel, summed per field and halved twice.
TextureEValues PixelTexture(GLCM& glcm, const cv::Mat& grey, int row, int col, int size, GrayLevel level)
{
    TextureEValues sum{0.0f, 0.0f, 0.0f, 0.0f};
    cv::Mat matrix;
    for (int d = 0; d < 4; ++d) {
        glcm.CalcuOneGLCM(grey, matrix, row, col, size, level, static_cast<GrayDirection>(d));
        glcm.NormalizeMat(matrix, matrix);
        TextureEValues one{0.0f, 0.0f, 0.0f, 0.0f};
        glcm.CalcuOneTextureEValue(matrix, one, false);
        sum.energy += one.energy;
        sum.contrast += one.contrast;
        sum.homogenity += one.homogenity;
        sum.entropy += one.entropy;
    }
    sum.energy *= 0.25f;
    sum.contrast *= 0.25f;
    sum.homogenity *= 0.25f;
    sum.entropy *= 0.25f;
    return sum;
}

cv::Mat GreyCopy(const cv::Mat& source)
{
    cv::Mat grey;
    if (source.channels() > 1)
        cv::cvtColor(source, grey, cv::COLOR_BGR2GRAY);
    else
        grey = source.clone();
    return grey;
}

} // namespace

void GLCM::GetOneChannel(cv::Mat source, cv::Mat& out, RGBChannel channel)
{
    if (source.channels() == 1) {
        out = source;
        return;
    }
    if (channel != CHANNEL_R && channel != CHANNEL_G && channel != CHANNEL_B)
        return;
    std::vector<cv::Mat> planes;
    cv::split(source, planes);
    // A source of two planes has no plane 2.
    out = planes.at(static_cast<size_t>(2 - static_cast<int>(channel)));
}

void GLCM::GrayMagnitude(cv::Mat source, cv::Mat& out, GrayLevel level)
{
    cv::Mat grey = source.clone();
    if (grey.channels() == 3)
        cv::cvtColor(grey, grey, cv::COLOR_BGR2GRAY);
    const int shift = LevelShift(level);
    if (shift < 0 || grey.empty())
        return;
    // Bytes are read and written: anything else would leave either matrix.
    if (grey.type() != CV_8UC1 || out.type() != CV_8UC1 || out.size() != grey.size())
        throw std::invalid_argument("GrayMagnitude needs 8-bit grey and an allocated output of the same size");
    for (int r = 0; r < grey.rows; ++r) {
        const uchar* src = grey.ptr<uchar>(r);
        uchar* dst = out.ptr<uchar>(r);
        for (int c = 0; c < grey.cols; ++c)
            dst[c] = static_cast<uchar>(src[c] >> shift);
    }
}

void GLCM::NormalizeMat(cv::Mat source, cv::Mat& out)
{
    cv::Mat values;
    source.convertTo(values, CV_32F);
    float sum = 0.0f;
    for (int r = 0; r < values.rows; ++r) {
        const float* p = values.ptr<float>(r);
        for (int c = 0; c < values.cols * values.channels(); ++c)
            sum += p[c];
    }
    if (sum == 0.0f)
        sum = 1.0f;
    for (int r = 0; r < values.rows; ++r) {
        float* p = values.ptr<float>(r);
        for (int c = 0; c < values.cols * values.channels(); ++c)
            p[c] /= sum;
    }
    values.copyTo(out);
}

void GLCM::CalcuOneGLCM(cv::Mat source, cv::Mat& out, int row, int column, int size, GrayLevel level,
                        GrayDirection direction)
{
    if (source.cols == 0 || source.rows == 0)
        return;
    const int half = (size | 1) / 2;
    int r0, r1, c0, c1;
    if (half + row < source.rows && std::min(row, column) >= half && half + column < source.cols) {
        r0 = row - half;
        r1 = row + half;
        c0 = column - half;
        c1 = column + half;
    } else {
        // A 3 x 3 window does not fit an image under 3 pixels on a side.
        if (source.rows < 3 || source.cols < 3)
            throw std::out_of_range("CalcuOneGLCM needs at least 3 x 3 pixels");
        SmallWindow(row, source.rows, r0, r1);
        SmallWindow(column, source.cols, c0, c1);
    }
    if (source.type() != CV_8UC1)
        throw std::invalid_argument("CalcuOneGLCM needs a quantised CV_8UC1 source");

    const int levels = LevelCount(level);
    cv::Mat counts = levels > 0 ? cv::Mat::zeros(levels, levels, CV_8UC1) : cv::Mat();
    // Offsets of the first pixel from the second one, (row, column).
    int dr = -1, dc = 0;
    switch (direction) {
    case GRAY_VERTICAL: dr = -1; dc = 0; break;
    case GRAY_DOWN_RIGHT: dr = -1; dc = -1; break;
    case GRAY_HORIZONTAL: dr = 0; dc = -1; break;
    case GRAY_DOWN_LEFT: dr = -1; dc = 1; break;
    default: break; // no pair is counted
    }
    const bool known = direction >= GRAY_VERTICAL && direction <= GRAY_DOWN_LEFT;
    for (int r = r0; known && r <= r1; ++r) {
        for (int c = c0; c <= c1; ++c) {
            const int fr = r + dr;
            const int fc = c + dc;
            if (fr < r0 || fr > r1 || fc < c0 || fc > c1)
                continue;
            const int first = source.at<uchar>(fr, fc);
            const int second = source.at<uchar>(r, c);
            // A value of the level count or more has no row in the matrix.
            if (first >= levels || second >= levels)
                throw std::out_of_range("CalcuOneGLCM: grey value beyond the level count");
            ++counts.at<uchar>(first, second); // 8-bit counter, wraps at 256
        }
    }
    NormalizeMat(counts, out);
}

void GLCM::CalcuOneTextureEValue(cv::Mat matrix, TextureEValues& values, bool check)
{
    cv::Mat p32;
    matrix.convertTo(p32, CV_32F);
    if (check) {
        float sum = 0.0f;
        for (int i = 0; i < p32.rows; ++i)
            for (int j = 0; j < p32.cols; ++j)
                sum += p32.at<float>(i, j);
        if (static_cast<double>(sum) < 0.99 || static_cast<double>(sum) > 1.01)
            return;
    }
    values = TextureEValues{0.0f, 0.0f, 0.0f, 0.0f};
    for (int i = 0; i < p32.rows; ++i) {
        for (int j = 0; j < p32.cols; ++j) {
            const float p = p32.at<float>(i, j);
            const float d = static_cast<float>(i - j);
            values.energy += p * p;
            values.contrast += d * d * p;
            values.homogenity = static_cast<float>(static_cast<double>(values.homogenity) +
                                                   static_cast<double>(p) / (std::fabs(static_cast<double>(d)) + 1.0));
            if (p != 0.0f)
                values.entropy -= p * log10f(p);
        }
    }
}

void GLCM::CalcuTextureEValue(cv::Mat source, TextureEValues& values, int size, GrayLevel level)
{
    values = TextureEValues{0.0f, 0.0f, 0.0f, 0.0f};
    const cv::Mat grey = GreyCopy(source);
    for (int r = 0; r < grey.rows; ++r) {
        for (int c = 0; c < grey.cols; ++c) {
            const TextureEValues t = PixelTexture(*this, grey, r, c, size, level);
            values.energy += t.energy;
            values.contrast += t.contrast;
            values.homogenity += t.homogenity;
            values.entropy += t.entropy;
        }
    }
}

void GLCM::CalcuTextureImages(cv::Mat source, cv::Mat& energy, cv::Mat& contrast, cv::Mat& homogenity,
                              cv::Mat& entropy, int size, GrayLevel level, bool toBytes)
{
    energy.create(source.size(), CV_32FC1);
    contrast.create(source.size(), CV_32FC1);
    homogenity.create(source.size(), CV_32FC1);
    entropy.create(source.size(), CV_32FC1);
    const cv::Mat grey = GreyCopy(source);
    for (int r = 0; r < grey.rows; ++r) {
        for (int c = 0; c < grey.cols; ++c) {
            const TextureEValues t = PixelTexture(*this, grey, r, c, size, level);
            energy.at<float>(r, c) = t.energy;
            contrast.at<float>(r, c) = t.contrast;
            homogenity.at<float>(r, c) = t.homogenity;
            entropy.at<float>(r, c) = t.entropy;
        }
    }
    if (!toBytes)
        return;
    for (cv::Mat* image : {&energy, &contrast, &homogenity, &entropy}) {
        cv::normalize(*image, *image, 0.0, 255.0, cv::NORM_MINMAX, -1, cv::noArray());
        image->convertTo(*image, CV_8UC1);
    }
}
