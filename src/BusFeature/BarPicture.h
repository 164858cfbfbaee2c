// The picture of a grey histogram as 256 bars standing on the bottom row of
// a 256 x 256 image, closed by a 15 x 15 elliptical disc.
//
// Every column of the bar picture is filled from the bottom row up, and the
// disc's columns are vertical runs centred on its middle row, so dilation
// and erosion act on column heights alone: a column dilates to the highest
// of its neighbours' bars raised by the disc's half-height at that
// neighbour's offset, and erodes to the lowest such reach (a neighbour that
// fills its whole column does not bind, as the image's outside counts as set
// for erosion). The picture is drawn once, from the closed heights.
#pragma once

#include <algorithm>
#include <array>

#include <opencv2/imgproc.hpp>

#include "Tool/Tool.h"

namespace barpicture {

constexpr int kSide = 256;
constexpr int kDisc = 15;
constexpr int kReach = kDisc / 2;

// Rows above the middle that the disc's column at offset dx - kReach covers
// (-1 where the column is empty).
inline const std::array<int, kDisc>& DiscHalfHeights()
{
    static const std::array<int, kDisc> half = [] {
        const cv::Mat disc = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(kDisc, kDisc), cv::Point(-1, -1));
        std::array<int, kDisc> h{};
        for (int c = 0; c < kDisc; ++c) {
            h[size_t(c)] = -1;
            for (int r = 0; r < kDisc; ++r)
                if (disc.at<uchar>(r, c) != 0)
                    h[size_t(c)] = std::max(h[size_t(c)], kReach - r);
        }
        return h;
    }();
    return half;
}

// The bars of a 256-bin float histogram whose highest bin is `maxBin`: bar h
// stands from the bottom row up to row 256 - round(230 h / maxBin), at least
// one pixel high. An empty histogram divides by zero, and the wrapped x86
// result of the rounding fills the whole column.
inline std::array<int, kSide> Heights(const cv::Mat& hist, double maxBin)
{
    std::array<int, kSide> heights{};
    for (int h = 0; h < kSide; ++h) {
        const double bar = static_cast<double>(230.0f * hist.at<float>(h)) / maxBin;
        const int top = WrapSub(kSide, RoundToInt(bar));
        heights[size_t(h)] = kSide - std::min(std::max(top, 0), kSide - 1);
    }
    return heights;
}

// `heights[x]` set pixels at the bottom of column x (1 to 256) in, the
// closed picture (0/255) out.
inline cv::Mat Closed(const std::array<int, kSide>& heights)
{
    const std::array<int, kDisc>& half = DiscHalfHeights();
    std::array<int, kSide> dilated{};
    for (int x = 0; x < kSide; ++x) {
        int reach = 0;
        for (int d = 0; d < kDisc; ++d) {
            const int at = x + d - kReach;
            if (half[size_t(d)] >= 0 && at >= 0 && at < kSide)
                reach = std::max(reach, heights[size_t(at)] + half[size_t(d)]);
        }
        dilated[size_t(x)] = std::min(reach, kSide);
    }
    // Top row of each closed column (kSide when the column is empty).
    std::array<int, kSide> top{};
    for (int x = 0; x < kSide; ++x) {
        int lowest = 0;
        for (int d = 0; d < kDisc; ++d) {
            const int at = x + d - kReach;
            if (half[size_t(d)] < 0 || at < 0 || at >= kSide)
                continue;
            const int dilatedTop = kSide - dilated[size_t(at)];
            if (dilatedTop > 0)
                lowest = std::max(lowest, dilatedTop + half[size_t(d)]);
        }
        top[size_t(x)] = std::min(lowest, kSide);
    }
    cv::Mat picture(kSide, kSide, CV_8U);
    for (int y = 0; y < kSide; ++y) {
        uchar* row = picture.ptr<uchar>(y);
        for (int x = 0; x < kSide; ++x)
            row[x] = y >= top[size_t(x)] ? 255 : 0;
    }
    return picture;
}

} // namespace barpicture
