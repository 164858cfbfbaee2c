// Gall bladder wall: the lumen found by the level set, its outline repaired,
// and its distance from the organ outline on one side of the organ axis.
#include <algorithm>

#include <opencv2/imgproc.hpp>

#include "FeatureDescription/Description.h"
#include "Hausdorff/Hausdorff.h"
#include "LocalBinaryFitting/LBF.h"
#include "RegionSelection/RegionSelection.h"

namespace {

constexpr double kDepthScale = 0.00390625; // convexity-defect depths are in 1/256 pixel
constexpr double kMinDefectDepth = 3.0;
constexpr double kMaxGapOfAxis = 0.3;
constexpr float kMaxWallRatio = 0.25f;
constexpr float kFar = 999999.0f; // start of every nearest-point search

// Pops from the back: one at least, while fewer than `count` are gone and
// more than one remains. A single point is kept.
void TrimBack(std::vector<cv::Point>& points, int count)
{
    if (points.size() < 2)
        return;
    int removed = 0;
    do {
        points.pop_back();
        ++removed;
    } while (removed < count && points.size() > 1);
}

// Drops from the front: one at least, while fewer than `count` are gone and
// points remain.
void TrimFront(std::vector<cv::Point>& points, int count)
{
    if (points.empty())
        return;
    int removed = 0;
    do {
        points.erase(points.begin());
        ++removed;
    } while (removed < count && !points.empty());
}

// Index of the point nearest to `to`; the first of equal distances stands.
size_t Nearest(const std::vector<cv::Point>& points, cv::Point to)
{
    float best = kFar;
    size_t index = 0;
    for (size_t i = 0; i < points.size(); ++i) {
        const float d = DoubleDistance(points[i], to);
        if (d < best) {
            best = d;
            index = i;
        }
    }
    return index;
}

// The side of the axis p0-p1 that is compared: left of a vertical axis,
// otherwise where y - p0.y < (x - p0.x) * k in float, the product rounded
// before the subtraction.
struct AxisSide {
    cv::Point p0;
    bool vertical;
    float k;
    bool operator()(cv::Point p) const
    {
        if (vertical)
            return static_cast<float>(p.x) < static_cast<float>(p0.x);
        const float along = (static_cast<float>(p.x) - static_cast<float>(p0.x)) * k;
        return (static_cast<float>(p.y) - static_cast<float>(p0.y)) - along < 0.0f;
    }
};

std::vector<cv::Point> OnSide(const std::vector<cv::Point>& points, const AxisSide& side)
{
    std::vector<cv::Point> kept;
    for (const cv::Point& p : points)
        if (side(p))
            kept.push_back(p);
    return kept;
}

} // namespace

int Description::CalcGallBladderWall(BUSFeature feature, bool resized)
{
    // Segmentation
    const cv::Mat organMask = feature.GetOrganMask(ORGAN_GALLBLADDER);
    LBF lbf;
    std::vector<cv::Point> target;
    cv::Mat region;
    if (!resized) {
        lbf.RunLBF(m_regionImage, organMask, target);
        region = cv::Mat::zeros(m_regionImage.size(), CV_8UC1);
        DrawContour(region, target, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    } else {
        cv::Mat sizedMask;
        cv::resize(organMask, sizedMask, cv::Size(m_newWidth, m_newHeight), 0, 0, cv::INTER_LINEAR);
        lbf.RunLBF(m_sizedImage, sizedMask, target);
        region = cv::Mat::zeros(sizedMask.size(), CV_8UC1);
        DrawContour(region, target, cv::Scalar(255), cv::FILLED, cv::LINE_8);
        cv::resize(region, region, m_regionImage.size(), 0, 0, cv::INTER_LINEAR);
        // Only the upper half of the interpolated edge is set; the rest keeps its grey.
        region.setTo(cv::Scalar(255), region > 50);
    }
    cv::bitwise_and(region, organMask, region);
    const cv::Mat disc = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(5, 5), cv::Point(-1, -1));
    cv::morphologyEx(region, region, cv::MORPH_CLOSE, disc, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
                     cv::morphologyDefaultBorderValue());
    target.clear();
    GetTargetRegion(region, target);

    // Repairing the outline: a deep indentation with a narrow mouth is closed.
    const cv::Point p0 = m_axisPts[0];
    const cv::Point p1 = m_axisPts[1];
    const float axisLength = DoubleDistance(p0, p1);
    std::vector<int> hull;
    std::vector<cv::Vec4i> defects;
    cv::convexHull(target, hull, false, false);
    cv::convexityDefects(target, hull, defects);
    for (const cv::Vec4i& d : defects) {
        const float depth = static_cast<float>(static_cast<double>(d[3]) * kDepthScale);
        if (!(depth > kMinDefectDepth))
            continue;
        const cv::Point s = target.at(static_cast<size_t>(d[0]));
        const cv::Point e = target.at(static_cast<size_t>(d[1]));
        const float gap = DoubleDistance(s, e);
        if (static_cast<double>(gap) < static_cast<double>(axisLength) * kMaxGapOfAxis)
            cv::line(region, s, e, cv::Scalar(255), 1, cv::LINE_8, 0);
    }
    MyFillHole(region, region);
    target.clear();
    GetTargetRegion(region, target);

    // Splitting at the axis
    const std::vector<cv::Point> organCont = feature.GetOrganCont(ORGAN_GALLBLADDER);
    AxisSide side{p0, p1.x == p0.x, 0.0f};
    if (!side.vertical)
        side.k = static_cast<float>(WrapSub(p1.y, p0.y)) / static_cast<float>(WrapSub(p1.x, p0.x));
    std::vector<cv::Point> organSide = OnSide(organCont, side);
    std::vector<cv::Point> innerSide = OnSide(target, side);
    // An empty side has no ends to trim and nothing to compare.
    if (organSide.empty() || innerSide.empty())
        return 2;

    // Trimming the ends: the fractions differ by list and by end on purpose.
    TrimBack(organSide, TruncToInt(static_cast<float>(organSide.size()) / 2.5));
    TrimFront(organSide, TruncToInt(static_cast<float>(organSide.size()) / 3.5));
    TrimBack(innerSide, TruncToInt(static_cast<float>(innerSide.size()) / 2.5));
    TrimFront(innerSide, static_cast<int>(innerSide.size() / 5));
    if (organSide.empty() || innerSide.empty())
        return 2;

    // Aligning the ends
    const float frontGap = DoubleDistance(innerSide.front(), organSide.front());
    const float backGap = DoubleDistance(innerSide.back(), organSide.back());
    std::vector<cv::Point>& frontTrimmed = Nearest(organSide, innerSide.front()) != 0 ? organSide : innerSide;
    TrimFront(frontTrimmed, TruncToInt(frontGap));
    if (frontTrimmed.empty())
        return 2;
    const bool backAtEnd = Nearest(organSide, innerSide.back()) == organSide.size() - 1;
    TrimBack(backAtEnd ? innerSide : organSide, TruncToInt(backGap));

    // Measuring
    Hausdorff hausdorff;
    m_wallMax = hausdorff.CalcPtsDistanceTest(innerSide, organSide);
    m_wallMean = hausdorff.GetMeanDistance();
    const std::vector<cv::Point> pair = hausdorff.GetPtsPair();
    m_wallFirst = pair[0];
    m_wallSecond = pair[1];

    cv::LineIterator it(region, p0, p1, 8, false);
    if (it.count == 0)
        return 2;
    std::vector<cv::Point> axisLine;
    axisLine.reserve(static_cast<size_t>(it.count));
    for (int i = 0; i < it.count; ++i, ++it)
        axisLine.push_back(it.pos());
    float sum = 0.0f;
    for (const cv::Point& p : organSide) {
        float best = kFar;
        for (const cv::Point& q : axisLine)
            best = std::min(best, DoubleDistance(p, q));
        sum += best;
    }
    const float axisMean = sum / static_cast<float>(organSide.size());
    const float ratio = m_wallMax / axisMean;
    return ratio > kMaxWallRatio ? 2 : 1;
}
