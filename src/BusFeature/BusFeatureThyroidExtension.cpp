// Extrathyroidal extension: whether the nodule runs along the gland's outline.
// Rays from the nodule's centroid through its outline are probed for the
// gland's outline; the stretches where the two lie within 8 pixels are tested
// against an ellipse about the centroid, joined, and closed by a chord.
#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "AxisLength/OutlineProximity.h"
#include "BusFeature/BusFeature.h"

namespace {

constexpr int kWorkingWidth = 220; // columns of the reduced working scale

struct StretchEntry {
    float dist2;    // squared distance from the nodule's outline to the gland's
    cv::Point point; // nearest crossing on the gland's outline
};
using Run = std::vector<StretchEntry>;

std::vector<std::vector<cv::Point>> External(const cv::Mat& binary)
{
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(binary, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    return contours;
}

float SquaredDistance(cv::Point p, cv::Point q)
{
    const double dx = static_cast<double>(p.x) - q.x;
    const double dy = static_cast<double>(p.y) - q.y;
    return static_cast<float>(dx * dx + dy * dy);
}

// Squared distance of two entries' points, for joining stretches.
double JoinDistance(const StretchEntry& u, const StretchEntry& v)
{
    const double dx = static_cast<double>(u.point.x) - v.point.x;
    const double dy = static_cast<double>(u.point.y) - v.point.y;
    return dx * dx + dy * dy;
}

// The outline moved by (dx, dy) into whole-image coordinates.
std::vector<cv::Point> Shifted(const std::vector<cv::Point>& outline, int dx, int dy)
{
    std::vector<cv::Point> moved(outline.size());
    for (size_t i = 0; i < outline.size(); ++i)
        moved[i] = cv::Point(WrapAdd(outline[i].x, dx), WrapAdd(outline[i].y, dy));
    return moved;
}

void Append(Run& to, const Run& from) { to.insert(to.end(), from.begin(), from.end()); }
void AppendReversed(Run& to, const Run& from) { to.insert(to.end(), from.rbegin(), from.rend()); }

float MeanDistance(const Run& run)
{
    float sum = 0.0f;
    for (const StretchEntry& e : run)
        sum += e.dist2;
    return sum / static_cast<float>(run.size());
}

// Pixels within one pixel (8-neighbourhood) of an outline point: only these
// can lie closer than 1.0 to the outline, whose points are 8-connected.
cv::Mat NearOutline(const std::vector<cv::Point>& outline, cv::Size size)
{
    cv::Mat near = cv::Mat::zeros(size, CV_8U);
    for (const cv::Point& p : outline)
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const int x = p.x + dx;
                const int y = p.y + dy;
                if (x >= 0 && y >= 0 && x < size.width && y < size.height)
                    near.at<uchar>(y, x) = 1;
            }
    return near;
}

} // namespace

bool BUSFeature::GetThyroidalExtensionMy()
{
    // Stage 1: lesion and gland masks at the working scale.
    // The gland mask is copied where it is used as it is (the chord below
    // draws into it); scaling makes a new one anyway.
    cv::Mat organ;
    cv::Mat lesion = cv::Mat::zeros(m_fullHeight, m_fullWidth, CV_8U);
    std::vector<cv::Point> lesionCont;
    std::vector<cv::Point> organCont;
    if (m_fullWidth <= kWorkingWidth) {
        organ = m_thyOrganMask.clone();
        lesionCont = m_lesionCont;
        organCont = m_thyCont1;
    } else {
        DrawContour(lesion, Shifted(m_lesionCont, m_roi.x, m_roi.y), cv::Scalar(255), cv::FILLED, cv::LINE_8);
        const float scaledHeight = 220.0f / static_cast<float>(m_fullWidth) * static_cast<float>(m_fullHeight);
        const cv::Size working(kWorkingWidth, RoundToInt(scaledHeight));
        cv::resize(lesion, lesion, working, 0, 0, cv::INTER_LINEAR);
        cv::resize(m_thyOrganMask, organ, working, 0, 0, cv::INTER_LINEAR);
        // Every pixel the interpolation touched becomes set.
        lesion.convertTo(lesion, CV_8U, 255.0);
        organ.convertTo(organ, CV_8U, 255.0);
        const auto lesionOutlines = External(lesion);
        const auto organOutlines = External(organ);
        if (lesionOutlines.empty() || organOutlines.empty())
            return false;
        lesionCont = lesionOutlines[0];
        organCont = organOutlines[0];
    }
    if (!JudgeLesion(lesion, organ))
        return false;

    // Stage 2: probe from the centroid through every third outline point.
    const cv::Point c = CalcCentroid(lesion, lesionCont);
    const cv::Rect box = cv::boundingRect(organCont);
    const int n = static_cast<int>(lesionCont.size());
    if (n < 1)
        return false;
    const cv::Mat nearOutline = NearOutline(organCont, organ.size());
    const OutlineProximity proximity(organCont);
    const cv::Rect frame(0, 0, organ.cols, organ.rows);

    int near = 0;
    int gaps = 0;
    Run run;
    std::vector<Run> runs;
    for (int i = 0; i < n; i += 3) {
        const cv::Point p = lesionCont[static_cast<size_t>(i)];
        cv::Point start, end;
        // The centroid may be INT_MIN (an empty lesion): differences wrap as on x86.
        if (p.x == c.x) {
            start = cv::Point(c.x, box.y);
            end = cv::Point(c.x, WrapAdd(box.y, box.height));
        } else {
            const float s = static_cast<float>(WrapSub(p.y, c.y)) / static_cast<float>(WrapSub(p.x, c.x));
            const int right = WrapAdd(box.x, box.width);
            start = cv::Point(box.x, RoundToInt(static_cast<float>(WrapSub(box.x, c.x)) * s + static_cast<float>(c.y)));
            end = cv::Point(right, RoundToInt(static_cast<float>(WrapSub(right, c.x)) * s + static_cast<float>(c.y)));
        }

        std::vector<cv::Point> crossings;
        cv::LineIterator it(frame, start, end, 8, true);
        for (int k = 0; k < it.count; ++k, ++it) {
            const cv::Point q = it.pos();
            if (!nearOutline.at<uchar>(q))
                continue;
            if (proximity.WithinOne(q))
                crossings.push_back(q);
        }
        if (crossings.empty())
            continue;
        cv::Point a, b;
        if (crossings.size() == 1) {
            a = b = crossings[0];
        } else if (crossings.size() == 2) {
            a = crossings[0];
            b = crossings[1];
        } else {
            a = crossings.back();
            b = crossings.front();
        }
        const float d1 = SquaredDistance(p, a);
        const float d2 = SquaredDistance(p, b);
        const float m = d1 < d2 ? d1 : d2;
        const cv::Point q = d1 < d2 ? a : b;
        if (m <= 64.0f) {
            ++near;
            run.push_back({m, q});
        } else {
            // More than 8 pixels from the gland's outline.
            if (near > 1)
                ++gaps;
            if (gaps > 3) {
                if (!run.empty()) {
                    runs.push_back(run);
                    run.clear();
                }
                i += 3;
                gaps = 0;
            }
        }
    }
    if (!run.empty())
        runs.push_back(run);
    if (runs.empty())
        return false;
    runs.erase(std::remove_if(runs.begin(), runs.end(), [](const Run& r) { return r.size() < 5; }), runs.end());
    const size_t R = runs.size();

    // Stage 3: do the near-outline points lie on an ellipse about the centroid?
    Run all;
    for (const Run& r : runs)
        Append(all, r);
    if (all.size() < 6)
        return false;
    std::vector<cv::Point> pts;
    pts.reserve(all.size());
    for (const StretchEntry& e : all)
        pts.push_back(e.point);

    cv::Mat coefficients;
    FitPolynomialCurve(pts, 9, coefficients);
    std::vector<cv::Point> curve;
    curve.reserve(800);
    for (int x = 0; x < 800; ++x) {
        double y = 0.0;
        for (int k = 0; k < coefficients.rows; ++k)
            y += coefficients.at<double>(k) * std::pow(static_cast<double>(x), k);
        curve.emplace_back(x, TruncToInt(y));
    }
    cv::polylines(organ, std::vector<std::vector<cv::Point>>{curve}, false, cv::Scalar(200), 1, cv::LINE_8);

    const cv::RotatedRect e = cv::fitEllipse(pts);
    // A fit that degenerates to no finite ellipse cannot be drawn.
    if (!std::isfinite(e.center.x) || !std::isfinite(e.center.y) || !std::isfinite(e.size.width) ||
        !std::isfinite(e.size.height) || !std::isfinite(e.angle))
        throw std::domain_error("stretch points fit no finite ellipse");
    cv::Mat outline = cv::Mat::zeros(organ.size(), CV_8U);
    cv::ellipse(outline, e, cv::Scalar(50), 1, cv::LINE_8);
    const int outlineCount = cv::countNonZero(outline);
    cv::ellipse(outline, e, cv::Scalar(50), 3, cv::LINE_8);
    cv::Mat marks = cv::Mat::zeros(organ.size(), CV_8U);
    for (const cv::Point& p : pts)
        marks.at<uchar>(p) = 50;
    cv::Mat both = marks + outline;
    cv::threshold(both, both, 99, 255, cv::THRESH_BINARY);
    const int onEllipse = cv::countNonZero(both);

    const float longSide = std::max(e.size.width, e.size.height);
    const float shortSide = std::min(e.size.width, e.size.height);
    if (longSide > 30.0f * shortSide)
        return false;
    if (std::fabs(e.center.x - static_cast<float>(c.x)) <= 3.0f &&
        std::fabs(e.center.y - static_cast<float>(c.y)) <= 3.0f && onEllipse > 14 &&
        static_cast<float>(onEllipse) / static_cast<float>(all.size()) > 0.5f &&
        static_cast<double>(static_cast<float>(onEllipse) / static_cast<float>(outlineCount)) > 0.1)
        return true;

    // Stage 4: join the stretches that meet within 7 pixels.
    constexpr double kJoin = 49.0;
    Run merged;
    if (R == 1) {
        merged = runs[0];
    } else if (R == 2) {
        if (JoinDistance(runs[0].front(), runs[1].back()) <= kJoin) {
            AppendReversed(merged, runs[0]);
            AppendReversed(merged, runs[1]);
        } else if (MeanDistance(runs[0]) <= MeanDistance(runs[1])) {
            Append(merged, runs[0]);
        } else {
            Append(merged, runs[1]);
        }
        if (JoinDistance(runs[0].back(), runs[1].front()) <= kJoin) {
            merged = runs[0];
            Append(merged, runs[1]);
        }
    } else if (R == 3) {
        bool join01 = false;
        bool join12 = false;
        if (JoinDistance(runs[0].back(), runs[1].front()) <= kJoin) {
            merged = runs[0];
            Append(merged, runs[1]);
            join01 = true;
        }
        if (JoinDistance(runs[1].back(), runs[2].front()) <= kJoin) {
            if (merged.empty()) {
                merged = runs[1];
                Append(merged, runs[2]);
            } else {
                Append(merged, runs[2]);
            }
            join12 = true;
        }
        if (JoinDistance(runs[2].back(), runs[0].front()) <= kJoin) {
            if (merged.empty()) {
                AppendReversed(merged, runs[0]);
                AppendReversed(merged, runs[2]);
            }
            if (join12 && !join01)
                Append(merged, runs[0]);
            else if (join01 && !join12)
                Append(merged, runs[2]);
        }
    }
    if (merged.empty())
        return false;

    // Stage 5: close the joined stretch with a chord and see which side the centroid falls.
    const cv::Point u = merged.front().point;
    const cv::Point v = merged.back().point;
    cv::line(organ, u, v, cv::Scalar(0), 2, cv::LINE_8);
    std::vector<std::vector<cv::Point>> parts = External(organ);
    std::sort(parts.begin(), parts.end(), descendSort);
    size_t removed = 0;
    while (parts.size() > 2) {
        parts.pop_back();
        ++removed;
        if (parts.size() <= removed)
            break;
    }
    if (parts.size() == 2) {
        const double t = cv::pointPolygonTest(parts[1], cv::Point2f(static_cast<float>(c.x), static_cast<float>(c.y)),
                                              true);
        if (t >= 0.0 || std::fabs(t) - 1.0 < 3.0)
            return true;
    }
    const float dy = static_cast<float>(v.y - u.y);
    const float dx = static_cast<float>(u.x - v.x);
    const float k = static_cast<float>(WrapSub(WrapMul(v.x, u.y), WrapMul(v.y, u.x)));
    const float offset = std::fabs(static_cast<float>(c.x) * dy + static_cast<float>(c.y) * dx + k);
    return offset / std::sqrt(dy * dy + dx * dx) < 3.0f;
}
