// Valley between the two highest peaks of a masked grey histogram, found
// geometrically: the histogram is drawn as bars, closed, reduced to corner
// points, near corners are merged, and the two highest are compared.
#include <algorithm>
#include <array>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BarPicture.h"
#include "BusFeature/BusFeature.h"

namespace {

// What the general and the thyroid forms of the search do differently.
struct ValleySearch {
    bool lowXStrict;  // low-x corner test: x < 0 (thyroid) instead of x <= 0
    bool dedupX;      // drop corners that share an x, keeping the higher one
    int mergeDist;    // corners this close in x are merged
    bool keepLeftmost; // merge keeps the leftmost (thyroid) instead of the highest
};

float HistogramValley(cv::Mat image, cv::Mat mask, const ValleySearch& how)
{
    if (image.channels() > 1)
        cv::cvtColor(image, image, cv::COLOR_BGR2GRAY);

    cv::Mat hist = GreyHistogram(image, mask);
    hist.at<float>(255) = 0.0f; // pure white never counts

    double maxBin = 0.0;
    cv::minMaxLoc(hist, nullptr, &maxBin);

    const cv::Mat picture = barpicture::Closed(barpicture::Heights(hist, maxBin));

    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(picture, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    std::vector<cv::Point> P;
    if (!contours.empty())
        cv::approxPolyDP(contours[0], P, 12.0, false);

    // The walk steps on after an erase too: the corner that slides into the
    // erased place is not examined.
    for (size_t i = 0; i < P.size(); ++i) {
        const bool lowX = how.lowXStrict ? P[i].x < 0 : P[i].x <= 0;
        if (lowX ? P[i].y > 100 : P[i].y > 230)
            P.erase(P.begin() + static_cast<long>(i));
    }

    std::sort(P.begin(), P.end(), compX);
    const size_t n0 = P.size();
    std::vector<cv::Point> Q = P;

    if (how.dedupX) {
        std::sort(Q.begin(), Q.end(), compX);
        std::vector<size_t> marks;
        for (size_t i = 0; i + 1 < Q.size(); ++i)
            if (Q[i].x == Q[i + 1].x)
                marks.push_back(Q[i].y <= Q[i + 1].y ? i + 1 : i);
        for (auto it = marks.rbegin(); it != marks.rend(); ++it) {
            // A position marked twice may have run past the shortened list.
            if (*it >= Q.size())
                throw std::out_of_range("histogram corner erased past the end");
            Q.erase(Q.begin() + static_cast<long>(*it));
        }
    } else if (n0 == 0) {
        return 0.0f;
    }

    for (size_t pass = 0; pass < n0; ++pass) {
        const size_t n = Q.size();
        std::vector<std::pair<size_t, size_t>> pairs;
        for (size_t i = 0; i + 1 < n && pairs.empty(); ++i)
            for (size_t j = i + 1; j < n; ++j)
                if (std::abs(Q[i].x - Q[j].x) <= how.mergeDist)
                    pairs.emplace_back(i, j);
        if (pairs.empty())
            continue;
        std::vector<cv::Point> near;
        for (const auto& pr : pairs) {
            near.push_back(Q[pr.first]);
            near.push_back(Q[pr.second]);
        }
        std::sort(near.begin(), near.end(), how.keepLeftmost ? compX : compY);
        const int kept = how.keepLeftmost ? near[0].x : near[0].y;
        const auto value = [&](const cv::Point& p) { return how.keepLeftmost ? p.x : p.y; };
        const size_t i = pairs[0].first;
        const size_t j = pairs[0].second;
        const bool dropI = value(Q[i]) != kept;
        const bool dropJ = value(Q[j]) != kept;
        if (dropJ)
            Q.erase(Q.begin() + static_cast<long>(j));
        if (dropI)
            Q.erase(Q.begin() + static_cast<long>(i));
    }

    std::sort(Q.begin(), Q.end(), compY);
    if (Q.size() < 3)
        return 0.0f;
    const int a = Q[0].x;
    const int b = Q[1].x;
    for (size_t k = 2; k < Q.size(); ++k)
        if ((a - Q[k].x) * (b - Q[k].x) < 0)
            return static_cast<float>((a + b) / 2);
    return 0.0f;
}

} // namespace

float BUSFeature::GetCalcificationHistMy(cv::Mat image, cv::Mat mask)
{
    return HistogramValley(image, mask, ValleySearch{false, false, 5, false});
}

float BUSFeature::ThyGetCalcificationHist(cv::Mat image, cv::Mat mask)
{
    return HistogramValley(image, mask, ValleySearch{true, true, 2, true});
}
