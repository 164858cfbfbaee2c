// Reduces the outline pixels of two binary pictures to point lists: all
// pixels of a frame, walked in circular or nearest-neighbour order, then
// thinned to a wanted count or taken at detected corners.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "sonolex/Point2D.h"
#include "sonolex/Tool.h"

class SONOLEX_EXPORT PreprocessContours {
public:
    // Appends (column, row) of every pixel of _frame[which] equal to 255,
    // row by row, to _pixels[which] and returns its size. Earlier entries
    // stay, so a second call doubles them. Rows are taken as `cols` bytes
    // apart from the start of the data: the frame must be continuous.
    int GetContoursPixels(int which);
    // True when that pixel of _frame[which] is 0. A row or column outside the
    // frame is a failed assertion, checked in every build: the message goes to
    // stderr and the process aborts.
    bool OnBorder(int which, int row, int column);
    // Chains `points` by nearest neighbour from the first, appending n points
    // to `out` (never excluding visited points but the one just left; ties go
    // to the later point). When nothing lies within 1000 pixels the previous
    // point is repeated; in the first round that is points[0].
    void SortContourPts(const std::vector<cv::Point>& points, std::vector<cv::Point>& out);
    // Appends every fifth point (0, 5, 10, ...) of `points` to both _samples
    // vectors; _sampleCount becomes the size of _samples[1]. The int is not read.
    void SimpleContour(const std::vector<cv::Point>& points, int which);
    // cv::goodFeaturesToTrack of `image`: at most the size of _pixels[1]
    // corners (none found yet means no limit, as OpenCV has it), quality
    // 0.01, at least 10 pixels apart, block 3, Shi-Tomasi. The size is not read.
    void CornerDectect(const cv::Mat& image, std::vector<cv::Point2f>& corners, cv::Size size);
    // Corners of frame 1, each coordinate + 0.5 truncated.
    void FindCorner(std::vector<cv::Point>& out);
    // Frame 1 from 200 outline pixels on: its corners; below: the circular
    // order, every pixel up to 100 pixels, every second one from 101.
    // _samples[1] and `out` hold the result.
    void GetOriginalCornerPts(std::vector<cv::Point>& out);
    // Frame 1 in circular order, every pixel up to 100 pixels, every second
    // one from 101 to 499, every sixth from 500; appended to _samples[1],
    // which `out` receives.
    void GetOriginalSamplePts(std::vector<cv::Point>& out);
    // Frame 0 in nearest-neighbour order, thinned and brought to exactly `n`
    // points as GetEllipseSamplePts does.
    void GetEllipseSamplePts0(std::vector<cv::Point>& out, int n);
    // Frame 0 in circular order, every (size / n + 1)-th point, then brought
    // to `n`: missing points come from a shuffle of the ordered pixels (when
    // there are at least n), surplus ones are shuffled and dropped from the
    // back. The shuffles draw from cv::theRNG(): seed it for a fixed result.
    // Throws std::invalid_argument for n <= 0.
    void GetEllipseSamplePts(std::vector<cv::Point>& out, int n);
    // `second` takes the corners of frame 1; `first` takes frame 0 in
    // nearest-neighbour order at a stride of ceil(pixels / corners), brought
    // to the corner count as above (shuffles from cv::theRNG()). Throws
    // std::invalid_argument with no corner and std::out_of_range when frame 0
    // has fewer pixels than frame 1 has corners.
    void GetSamplePts(std::vector<cv::Point>& first, std::vector<cv::Point>& second);
    // Each frame in nearest-neighbour order through SimpleContour; as that
    // appends to both vectors, `first` and `second` both hold the thinned
    // points of frame 0 followed by those of frame 1.
    void GetSamplePts2(std::vector<cv::Point>& first, std::vector<cv::Point>& second);

    // Members in their fixed order. Default-construct, then assign the frames.
    cv::Mat _frame[2];                   // CV_8UC1, outline pixels at 255, continuous
    std::vector<cv::Point> _pixels[2];   // pixels found in each frame (grow on every scan)
    std::vector<cv::Point> _samples[2];  // thinned list of each frame (grow on every sampling)
    int _sampleCount = 0;                // size of the _samples vector last finished
};
