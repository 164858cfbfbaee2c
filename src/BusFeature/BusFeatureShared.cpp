// Measures that several organs share: centroids, outlines tidied through a
// mask, the normalised radial gradient and the convexity defects.
#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BoundarySharpness/BoundarySharpness.h"
#include "BusFeature/BusFeature.h"

cv::Point BUSFeature::CalcCentroid(bool useOrgan)
{
    cv::Mat mask32;
    (useOrgan ? m_organLabel : m_label).convertTo(mask32, CV_32S, 1.0);
    const float divisor = useOrgan ? m_organArea : m_lesionArea;
    m_centroid = WeightedCentroid(mask32, m_height, m_width, divisor);
    return m_centroid;
}

cv::Point BUSFeature::CalcCentroid(cv::Mat mask, std::vector<cv::Point> contour)
{
    cv::Mat mask32;
    mask.convertTo(mask32, CV_32S, 1.0);
    mask32.convertTo(mask32, CV_32S, 0.00392156862745098);
    const float divisor = static_cast<float>(SafeContourArea(contour, false));
    m_centroid = WeightedCentroid(mask32, mask32.rows, mask32.cols, divisor);
    return m_centroid;
}

bool BUSFeature::ConnectionMaskCv(std::vector<cv::Point>& contour, std::vector<cv::Point>& copy, cv::Mat mask)
{
    return FillAndTakeOutline(contour, copy, mask);
}

void BUSFeature::ConectionMask(const std::vector<cv::Point>& contour, std::vector<cv::Point>& closed, cv::Mat& mask)
{
    size_t n = contour.size();
    closed.resize(n);
    if (n == 0)
        return;
    for (size_t i = 0; i < n; ++i) {
        const cv::Point& p = contour[i];
        // Points are written without a check otherwise; one outside the mask is refused.
        if (p.x < 0 || p.y < 0 || p.x >= mask.cols || p.y >= mask.rows)
            throw std::out_of_range("ConectionMask: contour point outside the mask");
        mask.at<uchar>(p) = 255;
        closed[i] = p;
    }
    struct Candidate {
        cv::Point p;
        float dist;
    };
    for (size_t i = 0; i < n; ++i) {
        const cv::Point a = closed[i];
        const cv::Point b = closed[i + 1 < n ? i + 1 : 0];
        if (distance(cv::Point2f(a), cv::Point2f(b)) <= 1.42f)
            continue;
        std::vector<Candidate> candidates;
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const cv::Point q(a.x + dx, a.y + dy);
                if (q.y < 0 || q.y >= mask.rows - 1 || q.x < 0 || q.x >= mask.cols - 1)
                    continue;
                if (mask.at<uchar>(q) == 255)
                    continue;
                candidates.push_back({q, distance(cv::Point2f(q), cv::Point2f(b))});
            }
        }
        // Every neighbour already set: nothing to insert, go on to the next point.
        if (candidates.empty())
            continue;
        std::stable_sort(candidates.begin(), candidates.end(),
                         [](const Candidate& l, const Candidate& r) { return l.dist < r.dist; });
        mask.at<uchar>(candidates[0].p) = 255;
        closed.insert(closed.begin() + static_cast<long>(i) + 1, candidates[0].p);
        ++n;
    }
}

double BUSFeature::NormRadialGradient(const std::vector<cv::Point>& contour, cv::Point centre, cv::Mat image)
{
    if (image.type() != CV_64FC1)
        image.convertTo(image, CV_64F, 1.0, 0.0);
    const cv::Mat gx = GradientX(image);
    const cv::Mat gy = GradientY(image);
    double radial = 0.0;
    double magnitude = 0.0;
    for (const cv::Point& p : contour) {
        // A point outside the region has no gradient to read; it is left out.
        if (p.x < 0 || p.y < 0 || p.x >= image.cols || p.y >= image.rows)
            continue;
        const double dx = static_cast<double>(p.x) - centre.x;
        const double dy = static_cast<double>(p.y) - centre.y;
        const double r = std::sqrt(dx * dx + dy * dy);
        const double vx = gx.at<double>(p);
        const double vy = gy.at<double>(p);
        radial += (dx / r) * vx + (dy / r) * vy;
        magnitude += std::sqrt(vx * vx + vy * vy);
    }
    return radial / magnitude;
}

void BUSFeature::CalcuNrg() { m_nrg = static_cast<float>(NormRadialGradient(m_lesionCont, m_centroid, m_srcImg)); }

DefectDepths DeepDefects(const std::vector<cv::Point>& contour, double floor)
{
    std::vector<int> hull;
    std::vector<cv::Vec4i> defects;
    cv::convexHull(contour, hull, false, false);
    cv::convexityDefects(contour, hull, defects);
    DefectDepths deep;
    for (const cv::Vec4i& d : defects) {
        const float depth = static_cast<float>(d[3] * 0.00390625);
        if (depth > floor) {
            deep.count += 1.0f;
            deep.sum += depth;
            deep.greatest = std::max(deep.greatest, depth);
        }
    }
    return deep;
}

float Circularity(float area, float perimeter)
{
    if (perimeter == 0.0f)
        return 1.0f;
    return static_cast<float>(static_cast<double>(area) * 12.566370614359172 /
                              (static_cast<double>(perimeter) * perimeter));
}

std::vector<float> BUSFeature::GetShapeFeatureMy()
{
    const DefectDepths deep = DeepDefects(m_lesionCont, 5.0);
    float mean = deep.count > 0.0f ? deep.sum / deep.count : 0.0f;
    float greatest = deep.greatest;
    const double half = 0.5 * std::min(m_majorAxisLength, m_minorAxisLength);
    if (half > 0.0) {
        mean = static_cast<float>(mean / half);
        greatest = static_cast<float>(greatest / half);
    }
    m_circularity = Circularity(m_lesionArea, m_lesionPerimeter);
    return {mean, greatest, deep.count};
}

std::vector<float> BUSFeature::ThyGetMarginFeatureMy() { return GetShapeFeatureMy(); }
