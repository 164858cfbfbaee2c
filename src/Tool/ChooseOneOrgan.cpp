// Choice of the vessel that holds the plaque among several packed outlines.
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "Tool/Tool.h"
#include "Tool/PointsBox.h"

bool ChooseOneOrgan(std::vector<cv::Point> lesionContour, std::vector<cv::Point> organPoints,
                    std::vector<int> contourSizes, int width, int height, std::vector<cv::Point>& chosen)
{
    // Filled areas are drawn at 50, so only where two overlap does the sum
    // pass 80. Both are counted on the plaque's box, outside which its mask,
    // and so any overlap, is 0.
    cv::Mat lesionMask = cv::Mat::zeros(height, width, CV_8UC1);
    DrawContour(lesionMask, lesionContour, cv::Scalar(50), cv::FILLED, cv::LINE_8);
    const cv::Rect box = PointsBox(lesionContour, lesionMask.size(), 0);
    const int lesionCount = box.empty() ? 0 : cv::countNonZero(lesionMask(box));
    const int limit = TruncToInt(0.25f * static_cast<float>(lesionCount));

    // One canvas for the candidates: only its part in the box is read, and
    // that is cleared before each is drawn.
    cv::Mat organMask = cv::Mat::zeros(height, width, CV_8UC1);
    size_t next = 0;
    for (const int size : contourSizes) {
        if (!box.empty())
            organMask(box).setTo(0);
        // Sizes that run past the packed points (or go backwards) would read outside them.
        if (size < 0 || static_cast<size_t>(size) > organPoints.size() - next)
            throw std::out_of_range("vessel outline sizes exceed the packed points");
        const std::vector<cv::Point> candidate(organPoints.begin() + static_cast<long>(next),
                                               organPoints.begin() + static_cast<long>(next + size));
        next += static_cast<size_t>(size);
        DrawContour(organMask, candidate, cv::Scalar(50), cv::FILLED, cv::LINE_8);
        int overlap = 0;
        if (!box.empty()) {
            cv::Mat sum = organMask(box) + lesionMask(box);
            cv::threshold(sum, sum, 80, 255, cv::THRESH_BINARY);
            overlap = cv::countNonZero(sum);
        }
        if (overlap > limit) {
            chosen.insert(chosen.end(), candidate.begin(), candidate.end());
            return true;
        }
    }
    return false;
}
