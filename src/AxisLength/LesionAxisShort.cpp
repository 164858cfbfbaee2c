// Short axis: the longest chord across the long axis, over a band of lines
// through the middle half of a rotated rectangle, at three angles.
#include <algorithm>
#include <cmath>
#include <map>

#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"
#include "AxisLength/AxisWalk.h"
#include "AxisLength/LineSteps.h"
#include "AxisLength/OutlineProximity.h"

namespace {

cv::Point2f Midpoint(cv::Point2f a, cv::Point2f b) { return cv::Point2f((a.x + b.x) / 2.0f, (a.y + b.y) / 2.0f); }

cv::Point RoundPoint(cv::Point2f p) { return cv::Point(RoundToInt(p.x), RoundToInt(p.y)); }

// Shift that brings a negative quarter point of the near side back onto the canvas.
int NegativeShift(float a, float b)
{
    const int fromA = a < 0.0f ? RoundToInt(std::fabs(a)) : 0;
    const int fromB = b < 0.0f ? RoundToInt(std::fabs(b)) : 0;
    return std::max(fromA, fromB);
}

bool InRange(float v, int low, int span) { return float(low) <= v && v <= float(WrapAdd(low, span)); }

// The chord search at the perpendicular of the long axis, turned by each
// of `steps` in turn (degrees, cumulative); a pixel is on the outline when
// its distance is below 1, compared in double or in float.
void ShortAxisSearch(const LesionAxis& self, std::vector<cv::Point> contour, cv::RotatedRect ellipse, cv::Rect box,
                     cv::Point* out, const std::vector<float>& steps, bool doubleTest)
{
    if (contour.empty())
        return;
    int W = self.m_size.width;
    int H = self.m_size.height;
    if (W <= WrapAdd(box.x, box.width))
        W = WrapAdd(WrapAdd(box.x, box.width), 20);
    if (H <= WrapAdd(box.y, box.height))
        H = WrapAdd(WrapAdd(box.y, box.height), 20);

    const float base =
        static_cast<float>(static_cast<double>(std::atan(-1.0f / self.m_longAxisSlope)) * 57.29577951308232);
    cv::RotatedRect working(ellipse.center, ellipse.size, base);
    std::vector<std::pair<float, std::vector<cv::Point>>> candidates;

    for (const float step : steps) {
        working.angle += step;

        cv::Point2f p[4];
        working.points(p);
        const cv::Point2f m01 = Midpoint(p[0], p[1]);
        const cv::Point2f m23 = Midpoint(p[2], p[3]);
        const cv::Point2f q0 = Midpoint(p[0], m01);
        const cv::Point2f q1 = Midpoint(p[1], m01);
        const cv::Point2f q2 = Midpoint(p[2], m23);
        const cv::Point2f q3 = Midpoint(p[3], m23);

        // Only the near side is brought onto the canvas; the far side is clipped by the walk.
        const int offX = NegativeShift(q0.x, q1.x);
        const int offY = NegativeShift(q0.y, q1.y);
        std::vector<cv::Point> shifted(contour.size());
        for (size_t i = 0; i < contour.size(); ++i)
            shifted[i] = cv::Point(WrapAdd(contour[i].x, offX), WrapAdd(contour[i].y, offY));
        // The canvas and the box keep these shifts into the later passes.
        W = WrapAdd(W, offX);
        box.x = WrapAdd(box.x, offX);
        H = WrapAdd(H, offY);
        box.y = WrapAdd(box.y, offY);

        // Only the canvas's size is used, but a canvas too large to allocate still ends the call.
        const cv::Mat canvas(cv::Size(W, H), CV_8UC1);
        const cv::Point2f off(static_cast<float>(offX), static_cast<float>(offY));
        cv::LineIterator walkA(canvas, RoundPoint(q1 + off), RoundPoint(q0 + off), 8, false);
        if (walkA.count == 0)
            return;
        cv::LineIterator walkB(canvas, RoundPoint(q2 + off), RoundPoint(q3 + off), 8, false);
        if (walkB.count == 0)
            return;
        const int n = std::min(walkA.count, walkB.count);
        if (n < 1)
            return;

        const float bx = static_cast<float>(box.x), by = static_cast<float>(box.y);
        const float bx2 = static_cast<float>(WrapAdd(box.x, box.width));
        const float by2 = static_cast<float>(WrapAdd(box.y, box.height));
        const cv::Vec4f topSide(bx, by, bx2, by);
        const cv::Vec4f bottomSide(bx, by2, bx2, by2);
        const cv::Vec4f leftSide(bx, by, bx, by2);
        const cv::Vec4f rightSide(bx2, by, bx2, by2);
        const auto inX = [&](cv::Point2f c) { return InRange(c.x, box.x, box.width); };
        const auto inY = [&](cv::Point2f c) { return InRange(c.y, box.y, box.height); };

        const OutlineProximity near(shifted);
        cv::Rect nearBox;
        const bool bounded = near.Bounds(nearBox);
        std::map<float, std::pair<cv::Point, cv::Point>> chords; // the first of equal lengths stays
        for (int i = 0; i < n; ++i, ++walkA, ++walkB) {
            const cv::Point a = walkA.pos();
            const cv::Point b = walkB.pos();
            const cv::Vec4f L(static_cast<float>(a.x), static_cast<float>(a.y), static_cast<float>(b.x),
                              static_cast<float>(b.y));
            const cv::Point2f c1 = GetCrossPoint2(L, topSide);
            const cv::Point2f c2 = GetCrossPoint2(L, bottomSide);
            const cv::Point2f c3 = GetCrossPoint2(L, leftSide);
            const cv::Point2f c4 = GetCrossPoint2(L, rightSide);

            cv::Point2f start, end;
            if (inX(c1)) {
                start = c1;
                if (inX(c2))
                    end = c2;
                else if (inY(c3))
                    end = c3;
                else if (inY(c4))
                    end = c4;
                else
                    end = cv::Point2f(0.0f, 0.0f);
            } else if (!inY(c3)) {
                start = c4;
                end = c2;
            } else {
                start = c3;
                if (inX(c2))
                    end = c2;
                else if (inY(c4))
                    end = c4;
                else
                    end = cv::Point2f(0.0f, 0.0f);
            }

            cv::LineIterator chord(cv::Rect(0, 0, W, H), RoundPoint(start), RoundPoint(end), 8, true);
            if (chord.count == 0)
                return;
            // Only the steps inside the outline's reach are measured; the rest lie 1 or more away.
            const LineSteps steps(chord);
            int from = 0, to = chord.count - 1;
            if (bounded && !steps.Within(nearBox, from, to))
                continue;
            bool any = false;
            cv::Point first, last;
            for (int j = from; j <= to; ++j) {
                const cv::Point q = steps.At(j);
                if (near.WithinOne(q, !doubleTest)) {
                    if (!any)
                        first = q;
                    last = q;
                    any = true;
                }
            }
            if (any) {
                const float dx = static_cast<float>(WrapSub(first.x, last.x));
                const float dy = static_cast<float>(WrapSub(first.y, last.y));
                chords.emplace(std::sqrt(dx * dx + dy * dy), std::make_pair(first, last));
            }
        }
        if (chords.empty())
            return;

        const auto& best = *chords.rbegin();
        cv::Point first(WrapSub(best.second.first.x, offX), WrapSub(best.second.first.y, offY));
        const cv::Point second(WrapSub(best.second.second.x, offX), WrapSub(best.second.second.y, offY));
        if (first.x < 0)
            first.x = 0;
        if (first.y < 0)
            first.y = 0;
        candidates.emplace_back(best.first, std::vector<cv::Point>{first, second});
    }

    std::sort(candidates.begin(), candidates.end(), cmp1);
    out[0] = candidates[0].second[0];
    out[1] = candidates[0].second[1];
}

} // namespace

void LesionAxis::GetShortAxisPts1(cv::Mat /*image*/, std::vector<cv::Point> contour, cv::RotatedRect ellipse,
                                  cv::Rect box, cv::Point* out)
{
    ShortAxisSearch(*this, contour, ellipse, box, out, {-3.0f, 3.0f, 3.0f}, false);
}

void LesionAxis::GetShortAxisPts(cv::Mat /*image*/, std::vector<cv::Point> contour, cv::RotatedRect ellipse,
                                 cv::Rect box, cv::Point* out)
{
    ShortAxisSearch(*this, contour, ellipse, box, out, {0.0f}, true);
}
