// Dilation of an 8-bit plane by a structuring element whose rows are each a
// single run of set cells (or empty), as the ellipses and rectangles of
// cv::getStructuringElement are. Row i of the element, with its run from
// column j0 to j1, lifts every output pixel (x, y) to the largest input pixel
// of row y + i - anchor.y from column x + j0 - anchor.x to x + j1 - anchor.x.
// So the input is first spread rightwards over 0, 1, 2, ... columns, and each
// element row takes the spread of its run's length, shifted by the run's
// start and the row's offset. Pixels outside the image add nothing, as under
// cv::dilate's constant border. Same pixels as cv::dilate, in a fraction of
// its time for a large ellipse (a tall narrow one, whose many rows would
// each cost a pass, goes through DilateTall).
#pragma once

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include <opencv2/imgproc.hpp>

namespace rundilation {

inline cv::Mat Dilate(const cv::Mat& image, const cv::Mat& element);

// A tall element has few columns: dilating the transposed image by the
// transposed element, whose rows are those columns, costs fewer passes.
// The anchors correspond, as each is the element's middle.
inline cv::Mat DilateTall(const cv::Mat& image, const cv::Mat& element)
{
    cv::Mat flipped, kernel, out;
    cv::transpose(image, flipped);
    cv::transpose(element, kernel);
    cv::transpose(Dilate(flipped, kernel), out);
    return out;
}

// One element row's run, relative to the anchor (the element's middle).
struct Run {
    int dy;     // row offset
    int start;  // first column's offset
    int length; // columns less one: the spread's width
};

inline std::vector<Run> ElementRuns(const cv::Mat& element)
{
    if (element.type() != CV_8UC1)
        throw std::invalid_argument("run dilation takes 8-bit planes");
    const cv::Point anchor(element.cols / 2, element.rows / 2);
    std::vector<Run> runs;
    for (int i = 0; i < element.rows; ++i) {
        const uchar* row = element.ptr<uchar>(i);
        int j0 = 0;
        while (j0 < element.cols && row[j0] == 0)
            ++j0;
        if (j0 == element.cols)
            continue;
        int j1 = j0;
        while (j1 + 1 < element.cols && row[j1 + 1] != 0)
            ++j1;
        for (int j = j1 + 1; j < element.cols; ++j)
            if (row[j] != 0)
                throw std::logic_error("element row is not a single run");
        runs.push_back({i - anchor.y, j0 - anchor.x, j1 - j0});
    }
    return runs;
}

// For an element whose runs are centred on the anchor column, as an odd
// ellipse's are: the image is spread sideways by 0, 1, 2, ... pixels, each
// spread one step wider than the last, and each element row takes the
// spread of its half width, shifted by the row's offset. Fewer passes than
// the general form for a small disc.
inline cv::Mat DilateCentred(const cv::Mat& image, const cv::Mat& element)
{
    if (image.type() != CV_8UC1)
        throw std::invalid_argument("run dilation takes 8-bit planes");
    const std::vector<Run> runs = ElementRuns(element);
    int widest = -1;
    for (const Run& r : runs) {
        if (r.length != -2 * r.start)
            throw std::logic_error("element row is not a run centred on the anchor");
        widest = std::max(widest, -r.start);
    }
    std::vector<cv::Mat> spreads;
    spreads.push_back(image.clone());
    for (int w = 1; w <= widest; ++w) {
        const cv::Mat& previous = spreads.back();
        cv::Mat next = previous.clone();
        if (image.cols > 1) {
            const int n = image.cols;
            cv::Mat right = next.colRange(1, n);
            cv::max(right, previous.colRange(0, n - 1), right);
            cv::Mat left = next.colRange(0, n - 1);
            cv::max(left, previous.colRange(1, n), left);
        }
        spreads.push_back(next);
    }
    cv::Mat out = cv::Mat::zeros(image.size(), CV_8UC1);
    for (const Run& r : runs) {
        // Output row y takes image row y + dy.
        const int from = std::max(0, -r.dy);
        const int to = std::min(image.rows, image.rows - r.dy);
        if (from >= to)
            continue;
        cv::Mat target = out.rowRange(from, to);
        cv::max(target, spreads[static_cast<size_t>(-r.start)].rowRange(from + r.dy, to + r.dy), target);
    }
    return out;
}

inline cv::Mat Dilate(const cv::Mat& image, const cv::Mat& element)
{
    if (image.type() != CV_8UC1)
        throw std::invalid_argument("run dilation takes 8-bit planes");
    const std::vector<Run> runs = ElementRuns(element);
    int pad = 0, widest = 0;
    for (const Run& r : runs) {
        pad = std::max(pad, -r.start);
        widest = std::max(widest, r.length);
    }

    cv::Mat out = cv::Mat::zeros(image.size(), CV_8UC1);
    if (image.empty() || runs.empty())
        return out;
    // The image with `pad` zero columns on the left, so that every run starts
    // at a column of the padded image.
    const int cols = image.cols + pad;
    cv::Mat padded = cv::Mat::zeros(image.rows, cols, CV_8UC1);
    image.copyTo(padded.colRange(pad, cols));
    // spreads[w](x) = the largest of padded(x .. x + w) within the image,
    // for the widths the runs need. Widths 2^k - 1 come by doubling, and
    // any other width w from the two overlapping spreads of the largest
    // such width p below it: padded(x .. x + p) and padded(x + w - p .. x + w).
    const auto shiftedMax = [cols](const cv::Mat& a, const cv::Mat& b, int by) {
        if (by >= cols)
            return a.clone();
        cv::Mat out(a.size(), CV_8UC1);
        cv::Mat head = out.colRange(0, cols - by);
        cv::max(a.colRange(0, cols - by), b.colRange(by, cols), head);
        a.colRange(cols - by, cols).copyTo(out.colRange(cols - by, cols));
        return out;
    };
    std::vector<cv::Mat> doubled = {padded}; // doubled[k]: width 2^k - 1
    while ((2 << (doubled.size() - 1)) - 1 <= widest) {
        const int p = (1 << (doubled.size() - 1)) - 1;
        doubled.push_back(shiftedMax(doubled.back(), doubled.back(), p + 1));
    }
    std::vector<cv::Mat> spreads(size_t(widest) + 1);
    for (const Run& r : runs) {
        const int w = r.length;
        if (!spreads[size_t(w)].empty())
            continue;
        size_t k = 0;
        while (k + 1 < doubled.size() && (1 << (k + 1)) - 1 <= w)
            ++k;
        const int p = (1 << k) - 1;
        spreads[size_t(w)] = w == p ? doubled[k] : shiftedMax(doubled[k], doubled[k], w - p);
    }
    for (const Run& r : runs) {
        // Output (x, y) takes spread (x + start + pad, y + dy).
        const int from = std::max(0, -r.dy);
        const int to = std::min(image.rows, image.rows - r.dy);
        const int shift = r.start + pad; // 0 or more
        const int width = std::min(image.cols, cols - shift);
        if (from >= to || width <= 0)
            continue;
        cv::Mat target = out(cv::Range(from, to), cv::Range(0, width));
        cv::max(target, spreads[size_t(r.length)](cv::Range(from + r.dy, to + r.dy), cv::Range(shift, shift + width)),
                target);
    }
    return out;
}

// The same dilation, done on the mask's set pixels' box grown by the
// element's reach: nothing outside it can change, so the rest stays 0.
inline cv::Mat DilateAround(const cv::Mat& mask, const cv::Mat& element)
{
    if (mask.type() != CV_8UC1)
        throw std::invalid_argument("run dilation takes 8-bit planes");
    const cv::Rect set = cv::boundingRect(mask);
    if (set.empty())
        return cv::Mat::zeros(mask.size(), CV_8UC1);
    const int reach = std::max(element.cols, element.rows);
    const int x0 = std::max(set.x - reach, 0), y0 = std::max(set.y - reach, 0);
    const int x1 = std::min(set.x + set.width + reach, mask.cols);
    const int y1 = std::min(set.y + set.height + reach, mask.rows);
    const cv::Rect box(x0, y0, x1 - x0, y1 - y0);
    cv::Mat out = cv::Mat::zeros(mask.size(), CV_8UC1);
    Dilate(mask(box), element).copyTo(out(box));
    return out;
}

} // namespace rundilation
