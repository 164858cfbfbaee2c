#include "RegionSelection/RegionSelection.h"

#include <map>

#include <opencv2/imgproc.hpp>

cv::RNG rng(12345);

namespace {

std::vector<std::vector<cv::Point>> ExternalContours(const cv::Mat& image)
{
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(image, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    return contours;
}

// Moments of a point set; an empty set has all moments zero.
cv::Moments PointMoments(const std::vector<cv::Point>& points)
{
    return points.empty() ? cv::Moments() : cv::moments(points, false);
}

bool HasZeroMoment(const cv::Moments& m) { return m.m00 == 0.0 || m.m10 == 0.0 || m.m01 == 0.0; }

} // namespace

void MyFillHole(cv::Mat src, cv::Mat& dst)
{
    cv::Mat framed = cv::Mat::zeros(src.rows + 2, src.cols + 2, src.type());
    src.copyTo(framed(cv::Rect(1, 1, src.cols, src.rows)));
    cv::floodFill(framed, cv::Point(0, 0), cv::Scalar(255), nullptr, cv::Scalar(), cv::Scalar(), 4);
    cv::Mat inner = framed(cv::Rect(1, 1, src.cols, src.rows)).clone();
    cv::Mat inverted;
    cv::bitwise_not(inner, inverted);
    dst = src | inverted;
}

void GetTargetRegion(cv::Mat image, std::vector<cv::Point>& out)
{
    const auto contours = ExternalContours(image);
    if (contours.size() == 1) {
        out = contours[0];
    } else if (contours.empty()) {
        out.push_back(cv::Point(0, 0));
    } else {
        std::map<float, std::vector<cv::Point>> byArea;
        for (const auto& c : contours)
            byArea.emplace(static_cast<float>(SafeContourArea(c, false)), c);
        out = byArea.rbegin()->second;
    }
}

void GetTargetRegion1(cv::Mat image, const std::vector<cv::Point>& reference, std::vector<cv::Point>& out)
{
    auto contours = ExternalContours(image);
    if (contours.size() == 1) {
        out = contours[0];
        return;
    }
    if (contours.empty()) {
        out = std::vector<cv::Point>(1, cv::Point(0, 0));
        return;
    }

    const cv::Moments ref = PointMoments(reference);
    cv::Point2f centre;
    if (HasZeroMoment(ref))
        centre = cv::Point2f(static_cast<float>(image.cols / 2), static_cast<float>(image.rows / 2));
    else
        centre = cv::Point2f(static_cast<float>(ref.m10 / ref.m00), static_cast<float>(ref.m01 / ref.m00));

    std::vector<float> dists, areas;
    float sumD = 0.0f, sumA = 0.0f;
    for (size_t i = 0; i < contours.size();) {
        const cv::Moments m = PointMoments(contours[i]);
        if (HasZeroMoment(m)) {
            contours.erase(contours.begin() + static_cast<long>(i));
            continue;
        }
        const float dx = static_cast<float>(m.m10 / m.m00) - centre.x;
        const float dy = static_cast<float>(m.m01 / m.m00) - centre.y;
        const float d = dx * dx + dy * dy;
        const float a = static_cast<float>(SafeContourArea(contours[i], false));
        dists.push_back(d);
        areas.push_back(a);
        sumD += d;
        sumA += a;
        ++i;
    }
    // Every contour degenerate: no candidate, answered like an empty image.
    if (contours.empty()) {
        out = std::vector<cv::Point>(1, cv::Point(0, 0));
        return;
    }
    std::map<float, std::vector<cv::Point>> byScore;
    for (size_t i = 0; i < contours.size(); ++i)
        byScore.emplace((areas[i] / sumA) * (sumD / dists[i]), contours[i]);
    out = byScore.rbegin()->second;
}

void GetTargetRegion(const cv::Mat& src, cv::Mat& dst)
{
    dst = cv::Mat::zeros(src.size(), CV_8UC1);
    const cv::Mat work = src.clone();
    const auto contours = ExternalContours(work);
    if (contours.size() == 1) {
        dst = work;
    } else if (contours.size() > 1) {
        size_t largest = 0;
        double largestArea = -1.0;
        for (size_t i = 0; i < contours.size(); ++i) {
            const double area = SafeContourArea(contours[i], false);
            if (area > largestArea) {
                largestArea = area;
                largest = i;
            }
        }
        SafeDrawContours(dst, contours, static_cast<int>(largest), cv::Scalar(255), cv::FILLED, cv::LINE_8);
    }
}

cv::Point CalcLesionCenter(cv::Mat image, std::vector<cv::Point> contour)
{
    cv::Mat filled = cv::Mat::zeros(image.size(), CV_32S);
    DrawContour(filled, contour, cv::Scalar(1), cv::FILLED, cv::LINE_8);
    return WeightedCentroid(filled, filled.rows, filled.cols, static_cast<float>(SafeContourArea(contour, false)));
}

void SelectShapeArea(cv::Mat image, cv::Mat& drawing, std::vector<std::vector<cv::Point>> contours,
                     std::vector<std::vector<cv::Point>>& kept, float lower, float upper)
{
    drawing = cv::Mat::zeros(image.size(), CV_8UC1);
    for (const auto& c : contours) {
        const float area = static_cast<float>(SafeContourArea(c, false));
        if (area > lower && area < upper)
            kept.push_back(c);
    }
    for (size_t i = 0; i < kept.size(); ++i)
        SafeDrawContours(drawing, kept, static_cast<int>(i), cv::Scalar(255), 1, cv::LINE_8);
}

std::vector<std::vector<cv::Point>> GetTargetShapeRegion(cv::Mat src, cv::Mat& dst)
{
    auto contours = ExternalContours(src);
    for (size_t i = 0; i < contours.size();) {
        if (SafeContourArea(contours[i], false) < 10.0)
            contours.erase(contours.begin() + static_cast<long>(i));
        else
            ++i;
    }
    cv::Mat drawing = cv::Mat::zeros(src.size(), CV_8UC1);
    if (contours.size() == 1) {
        SafeDrawContours(drawing, contours, 0, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    } else if (contours.size() > 1) {
        for (size_t i = 0; i < contours.size();) {
            if (HasZeroMoment(PointMoments(contours[i])))
                contours.erase(contours.begin() + static_cast<long>(i));
            else
                ++i;
        }
        const float cx = static_cast<float>(src.cols * 0.5);
        const float cy = static_cast<float>(src.rows * 0.5);
        int nearest = -1;
        float nearestDist = 0.0f;
        for (size_t i = 0; i < contours.size(); ++i) {
            const cv::Moments m = PointMoments(contours[i]);
            const float dx = static_cast<float>(m.m10 / m.m00) - cx;
            const float dy = static_cast<float>(m.m01 / m.m00) - cy;
            const float d = dx * dx + dy * dy;
            if (nearest < 0 || d < nearestDist) {
                nearest = static_cast<int>(i);
                nearestDist = d;
            }
        }
        if (nearest >= 0)
            SafeDrawContours(drawing, contours, nearest, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    }
    dst = drawing;
    return ExternalContours(dst);
}

cv::Vec3b RandomColor(int value)
{
    const int n = value % 255;
    if (n == 0)
        return cv::Vec3b(0, 0, 0);
    const unsigned a = rng.next();
    const unsigned b = rng.next();
    const unsigned c = rng.next();
    return cv::Vec3b(static_cast<uchar>(a % static_cast<unsigned>(n)), static_cast<uchar>(b % static_cast<unsigned>(n)),
                     static_cast<uchar>(c % static_cast<unsigned>(n)));
}
