// Nearest-point distances between two point sets, by exhaustive search.
#include <algorithm>
#include <stdexcept>

#include "Hausdorff/Hausdorff.h"

namespace {

constexpr float kFar = 999999.0f; // start of every nearest-point search

} // namespace

bool Descending(const std::pair<float, std::vector<cv::Point>>& a, const std::pair<float, std::vector<cv::Point>>& b)
{
    return a.first > b.first;
}

float Hausdorff::CalcPtsDistanceTest(const std::vector<cv::Point>& first, const std::vector<cv::Point>& second)
{
    // Each point is paired with a point of `second`, and the largest record
    // is read back: neither exists for an empty set.
    if (first.empty() || second.empty())
        throw std::invalid_argument("CalcPtsDistanceTest: empty point set");
    std::vector<std::pair<float, std::vector<cv::Point>>> records;
    records.reserve(first.size());
    for (const cv::Point& a : first) {
        float best = kFar;
        size_t bestIndex = 0;
        for (size_t j = 0; j < second.size(); ++j) {
            const float d = DoubleDistance(a, second[j]);
            if (d < best) {
                best = d;
                bestIndex = j;
            }
        }
        records.emplace_back(best, std::vector<cv::Point>{a, second[bestIndex]});
        m_meanDistance += best;
    }
    m_meanDistance /= static_cast<float>(first.size());
    std::sort(records.begin(), records.end(), Descending);
    m_maxDistance = records[0].first;
    m_ptsPair = records[0].second;
    return m_maxDistance;
}

float Hausdorff::GetMeanDistance() { return m_meanDistance; }

std::vector<cv::Point> Hausdorff::GetPtsPair() { return m_ptsPair; }

float Hausdorff::CalcPtsDistance(const std::vector<cv::Point>& first, const std::vector<cv::Point>& second)
{
    // The answer is the last of the sorted distances; there is none for an empty set.
    if (first.empty())
        throw std::invalid_argument("CalcPtsDistance: empty first set");
    std::vector<float> nearest(first.size());
    for (size_t i = 0; i < first.size(); ++i) {
        float best = kFar;
        for (const cv::Point& b : second)
            best = std::min(best, DoubleDistance(first[i], b));
        nearest[i] = best;
    }
    Sort(nearest.data(), static_cast<int>(nearest.size()));
    return nearest.back();
}

float Hausdorff::HausdDistance(std::vector<cv::Point> first, std::vector<cv::Point> second)
{
    const float forward = CalcPtsDistance(first, second);
    const float backward = CalcPtsDistance(second, first);
    return forward > backward ? forward : backward;
}

float Hausdorff::MeanDistance(float* values, int n)
{
    float sum = 0.0f;
    for (int i = 0; i < n; ++i)
        sum += values[i];
    return sum / static_cast<float>(n);
}

void Hausdorff::Sort(float* values, int n)
{
    for (int i = 0; i < n; ++i)
        for (int j = i + 1; j < n; ++j)
            if (values[j] < values[i])
                std::swap(values[i], values[j]);
}
