// Grey thresholds at the valleys between the highest crests of a histogram.
#include <algorithm>
#include <stdexcept>
#include <vector>

#include <opencv2/core.hpp>

#include "FeatureDescription/Description.h"

namespace {

std::vector<float> Bins(const cv::Mat& hist)
{
    if (hist.total() != 256 || hist.type() != CV_32FC1)
        throw std::invalid_argument("a histogram of 256 float bins is needed");
    cv::Mat flat = hist.reshape(1, 1).clone();
    return std::vector<float>(flat.begin<float>(), flat.end<float>());
}

// The `count` highest crests, in grey order; fewer when there are not so many.
std::vector<int> HighestCrests(const std::vector<float>& bins, size_t count)
{
    std::vector<int> crests;
    for (int i = 0; i < 256; ++i) {
        const bool aboveLeft = i == 0 || bins[size_t(i)] > bins[size_t(i - 1)];
        const bool notBelowRight = i == 255 || bins[size_t(i)] >= bins[size_t(i + 1)];
        if (aboveLeft && notBelowRight && bins[size_t(i)] > 0.0f)
            crests.push_back(i);
    }
    std::stable_sort(crests.begin(), crests.end(),
                     [&](int a, int b) { return bins[size_t(a)] > bins[size_t(b)]; });
    if (crests.size() > count)
        crests.resize(count);
    std::sort(crests.begin(), crests.end());
    return crests;
}

int Valley(const std::vector<float>& bins, int from, int to)
{
    int lowest = from;
    for (int i = from; i <= to; ++i)
        if (bins[size_t(i)] < bins[size_t(lowest)])
            lowest = i;
    return lowest;
}

} // namespace

int GetThreshold2Crest(const cv::Mat& hist)
{
    const std::vector<float> bins = Bins(hist);
    const std::vector<int> crests = HighestCrests(bins, 2);
    if (crests.size() < 2)
        return -1;
    return Valley(bins, crests[0], crests[1]);
}

bool GetThreshold3Crest(const cv::Mat& hist, int& low, int& high)
{
    const std::vector<float> bins = Bins(hist);
    const std::vector<int> crests = HighestCrests(bins, 3);
    if (crests.size() < 3)
        return false;
    low = Valley(bins, crests[0], crests[1]);
    high = Valley(bins, crests[1], crests[2]);
    return true;
}
