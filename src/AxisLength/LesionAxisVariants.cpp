// Older forms of the axis searches: a fan of long-axis lines, axes re-laid
// through the crossing of two measurements, and the side and pairing rules
// of the older whole-axis forms.
#include <algorithm>
#include <cmath>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "AxisLength/AxisSides.h"
#include "AxisLength/AxisWalk.h"
#include "AxisLength/LesionAxis.h"

namespace {

constexpr float kRightAngle = 1.5707964f;

float PairLength(const cv::Point* pair)
{
    const float dx = static_cast<float>(WrapSub(pair[0].x, pair[1].x));
    const float dy = static_cast<float>(WrapSub(pair[0].y, pair[1].y));
    return std::sqrt(dx * dx + dy * dy);
}

cv::Vec4f Line(const MyPoint& a, const MyPoint& b)
{
    return cv::Vec4f(static_cast<float>(a.x), static_cast<float>(a.y), static_cast<float>(b.x),
                     static_cast<float>(b.y));
}

// Slope and angle of an axis; equal x stand for a vertical line.
void AxisDirection(const MyPoint& a, const MyPoint& b, float& slope, float& angle)
{
    slope = static_cast<float>(WrapSub(b.y, a.y)) / static_cast<float>(WrapSub(b.x, a.x));
    angle = a.x == b.x ? kRightAngle : std::atan(slope);
}

} // namespace

void LesionAxis::GetLongAxisPts1(cv::Mat image, std::vector<cv::Point> contour, cv::Rect box, cv::Point* out)
{
    int cx = 0, cy = 0;
    const float k = PrincipalSlope(contour, cx, cy);
    m_longAxisSlope = k;

    std::vector<std::pair<float, std::vector<cv::Point>>> trials;
    float angle = std::atan(k);
    for (int trial = 0; trial < 5; ++trial) {
        angle = static_cast<float>(static_cast<double>(angle) + (trial == 0 ? -0.1 : 0.05));
        const float slope = std::tan(angle);
        cv::Point p0, p1;
        if (angle == kRightAngle || angle == -kRightAngle) {
            p0 = cv::Point(cx, box.y);
            p1 = cv::Point(cx, WrapAdd(box.y, box.height));
        } else {
            const int x0 = box.x;
            const int x1 = WrapAdd(box.x, box.width);
            p0 = cv::Point(x0, RoundToInt(static_cast<float>(WrapSub(x0, cx)) * slope + static_cast<float>(cy)));
            p1 = cv::Point(x1, RoundToInt(static_cast<float>(WrapSub(x1, cx)) * slope + static_cast<float>(cy)));
        }
        cv::Point pair[2];
        WalkOutlineHits(image, p0, p1, contour, pair);
        trials.emplace_back(PairLength(pair), std::vector<cv::Point>{pair[0], pair[1]});
    }
    std::sort(trials.begin(), trials.end(), cmp1);
    out[0] = trials[0].second[0];
    out[1] = trials[0].second[1];
}

void CalcLineAndContourCrossPoint(cv::Mat image, std::vector<cv::Point> contour, cv::Rect box, float slope,
                                  float angle, cv::Point2f through, cv::Point* out)
{
    cv::Point p0, p1;
    if (angle == kRightAngle || angle == -kRightAngle) {
        const int x = RoundToInt(through.x);
        p0 = cv::Point(x, box.y);
        p1 = cv::Point(x, WrapAdd(box.y, box.height));
    } else if (std::fabs(slope) > 100.0f) {
        const int y0 = box.y;
        const int y1 = WrapAdd(box.y, box.height);
        p0 = cv::Point(RoundToInt((static_cast<float>(y0) - through.y) / slope + through.x), y0);
        p1 = cv::Point(RoundToInt((static_cast<float>(y1) - through.y) / slope + through.x), y1);
    } else {
        const int x0 = box.x;
        const int x1 = WrapAdd(box.x, box.width);
        p0 = cv::Point(x0, RoundToInt((static_cast<float>(x0) - through.x) * slope + through.y));
        p1 = cv::Point(x1, RoundToInt((static_cast<float>(x1) - through.x) * slope + through.y));
    }
    WalkOutlineHits(image, p0, p1, contour, out);
}

void LesionAxis::CorrectLesionAxis(lesionAxisPointEnd first, lesionAxisPointEnd second, cv::Mat image,
                                   std::vector<cv::Point> contour, cv::Rect box, lesionAxisPointEnd& out)
{
    const cv::Point2f longCross =
        GetCrossPoint2(Line(first.longStart, first.longEnd), Line(second.longStart, second.longEnd));
    const cv::Point2f shortCross =
        GetCrossPoint2(Line(first.shortStart, first.shortEnd), Line(second.shortStart, second.shortEnd));
    const double apart = static_cast<double>(distance(longCross, shortCross));
    const double limit = std::min(0.15 * image.rows, 0.15 * image.cols);
    const cv::Point2f through = apart < limit ? longCross : shortCross;

    float slope = 0.0f, angle = 0.0f;
    cv::Point ends[2];
    AxisDirection(first.longStart, first.longEnd, slope, angle);
    CalcLineAndContourCrossPoint(image, contour, box, slope, angle, through, ends);
    out.longStart = MyPoint{ends[0].x, ends[0].y};
    out.longEnd = MyPoint{ends[1].x, ends[1].y};
    AxisDirection(first.shortStart, first.shortEnd, slope, angle);
    CalcLineAndContourCrossPoint(image, contour, box, slope, angle, through, ends);
    out.shortStart = MyPoint{ends[0].x, ends[0].y};
    out.shortEnd = MyPoint{ends[1].x, ends[1].y};
}

bool OnRectSide(cv::Point p, cv::Point c0, cv::Point c1)
{
    const float side = static_cast<float>(WrapSub(c1.y, c0.y)) / static_cast<float>(WrapSub(c1.x, c0.x));
    const float toFirst = static_cast<float>(WrapSub(c0.y, p.y)) / static_cast<float>(WrapSub(c0.x, p.x));
    const float toSecond = static_cast<float>(WrapSub(c1.y, p.y)) / static_cast<float>(WrapSub(c1.x, p.x));
    // Written so that NaN (a corner, or an infinite side) never holds.
    return std::fabs(toFirst - side) <= kSideSlopeTolerance && std::fabs(toSecond - side) <= kSideSlopeTolerance;
}

RectSides SortOntoRectSides(const std::vector<cv::Point>& contour, const cv::RotatedRect& rect)
{
    RectSides sides;
    cv::Point2f corners[4];
    rect.points(corners);
    for (int i = 0; i < 4; ++i)
        sides.corners[i] = cv::Point(RoundToInt(corners[i].x), RoundToInt(corners[i].y));
    for (int i = 0; i < 4; ++i) {
        const cv::Point& c0 = sides.corners[i];
        const cv::Point& c1 = sides.corners[(i + 1) % 4];
        if (WrapAbs(WrapSub(c1.x, c0.x)) < kSideMinSpread || WrapAbs(WrapSub(c1.y, c0.y)) < kSideMinSpread)
            return sides;
    }
    sides.sorted = true;
    for (const cv::Point& p : contour)
        for (int i = 0; i < 4; ++i)
            if (OnRectSide(p, sides.corners[i], sides.corners[(i + 1) % 4]))
                sides.side[i].push_back(p);
    return sides;
}

bool PairedAcross(cv::Point a, cv::Point b, float k)
{
    const float slope = static_cast<float>(WrapSub(b.y, a.y)) / static_cast<float>(WrapSub(b.x, a.x));
    return std::fabs(1.0 - static_cast<double>(slope) * static_cast<double>(k)) < kPairProductLimit;
}

bool WidestPairAcross(const std::vector<cv::Point>& contour, float k, cv::Point* pair)
{
    const double kd = static_cast<double>(k);
    bool found = false;
    double bestAcross = 0.0;
    double bestAlong = 0.0;
    // A point repeated right after itself (SetPara lists each twice) can
    // never beat its first showing, so the repeat is passed over.
    for (size_t i = 0; i < contour.size(); ++i) {
        if (i > 0 && contour[i] == contour[i - 1])
            continue;
        for (size_t j = i + 1; j < contour.size(); ++j) {
            if (contour[j] == contour[j - 1] || !PairedAcross(contour[i], contour[j], k))
                continue;
            const double dx = static_cast<double>(contour[j].x) - static_cast<double>(contour[i].x);
            const double dy = static_cast<double>(contour[j].y) - static_cast<double>(contour[i].y);
            const double across = std::fabs(dy - kd * dx);
            const double along = std::fabs(dx + kd * dy);
            if (!found || across > bestAcross || (across == bestAcross && along < bestAlong)) {
                found = true;
                bestAcross = across;
                bestAlong = along;
                pair[0] = contour[i];
                pair[1] = contour[j];
            }
        }
    }
    return found;
}
