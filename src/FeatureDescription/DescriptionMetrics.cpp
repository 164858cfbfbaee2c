// Contour metrics of the lesion against its fitted ellipse, and the
// regularity, shape, margin and echo verdicts built on them.
#include <algorithm>
#include <cmath>
#include <complex>

#include <opencv2/imgproc.hpp>

#include "BoundarySharpness/BoundarySharpness.h"
#include "FeatureDescription/Description.h"
#include "FeatureDescription/DescriptionMetrics.h"
#include "FourierDescriptors/FourierDescriptors.h"

namespace {

constexpr double kPi = 3.141592653589793;

// Roundish (2) or oval (1) by the ellipse's longer side over its shorter.
int AspectVerdict(const cv::RotatedRect& ellipse)
{
    const float longer = std::max(ellipse.size.width, ellipse.size.height);
    const float shorter = std::min(ellipse.size.width, ellipse.size.height);
    return static_cast<double>(longer / shorter) < 1.5 ? 2 : 1;
}

} // namespace

std::vector<cv::Point> EllipsePolygon(const cv::RotatedRect& ellipse)
{
    std::vector<cv::Point> polygon;
    cv::ellipse2Poly(cv::Point(RoundToInt(ellipse.center.x), RoundToInt(ellipse.center.y)),
                     cv::Size(TruncToInt(ellipse.size.width) / 2, TruncToInt(ellipse.size.height) / 2),
                     TruncToInt(ellipse.angle), 0, 360, 1, polygon);
    return polygon;
}

double Description::CalcuCircularity(const std::vector<cv::Point>& /*contour*/)
{
    const double perimeter = static_cast<double>(m_contourPerimeter);
    return static_cast<double>(4.0f * m_contourArea) * kPi / (perimeter * perimeter);
}

double Description::RoundnessMetric()
{
    if (m_contourPerimeter == 0.0f)
        return 0.0;
    const double perimeter = static_cast<double>(m_contourPerimeter);
    return static_cast<double>(m_contourArea) * 12.566370614359172 / (perimeter * perimeter);
}

double Description::TightMetric()
{
    if (m_contourArea == 0.0f)
        return 0.0;
    const double perimeter = static_cast<double>(m_contourPerimeter);
    return perimeter * perimeter / static_cast<double>(m_contourArea);
}

double Description::ConvexHullMetric(const std::vector<cv::Point>& contour)
{
    std::vector<cv::Point> hull;
    if (!contour.empty())
        cv::convexHull(contour, hull, false, true);
    return static_cast<double>(m_contourArea) / SafeContourArea(hull);
}

double Description::MatchContoursHu(const std::vector<cv::Point>& contour)
{
    m_ellipseAngle = m_ellipse.angle;
    return cv::matchShapes(contour, EllipsePolygon(m_ellipse), cv::CONTOURS_MATCH_I1, 0.0);
}

double Description::FourierDescriptors(const std::vector<cv::Point>& contour, cv::RotatedRect ellipse)
{
    std::vector<std::complex<double>> a, b;
    CalcuFourierDescriptors(a, contour, 10, m_regionImage.cols, m_regionImage.rows);
    CalcuFourierDescriptors(b, EllipsePolygon(ellipse), 10, m_regionImage.cols, m_regionImage.rows);
    double total = 0.0;
    for (size_t i = 0; i < b.size(); ++i)
        total += std::abs(a.at(i) - b[i]);
    return total;
}

double Description::NormRadialLength(const std::vector<cv::Point>& contour)
{
    return NormRadialSpread(contour, m_centroid);
}

double Description::NormRadialGradient(const std::vector<cv::Point>& contour, cv::Point centre, cv::Mat image)
{
    if (image.type() != CV_64FC1)
        image.convertTo(image, CV_64F, 1.0);
    const cv::Mat gx = GradientX(image);
    const cv::Mat gy = GradientY(image);
    double along = 0.0;
    double total = 0.0;
    for (const cv::Point& p : contour) {
        // A point outside the image has no gradient to read; it is left out.
        if (p.x < 0 || p.y < 0 || p.x >= image.cols || p.y >= image.rows)
            continue;
        const double dx = static_cast<double>(p.x) - centre.x;
        const double dy = static_cast<double>(p.y) - centre.y;
        const double r = std::sqrt(dx * dx + dy * dy);
        const double vx = gx.at<double>(p);
        const double vy = gy.at<double>(p);
        const double g = std::sqrt(vx * vx + vy * vy);
        along += dx / r * vx + dy / r * vy;
        total += std::sqrt((g + g) * g);
    }
    return along / total;
}

double Description::EllipticMetric(const std::vector<cv::Point>& contour)
{
    const double ellipseArea = kPi / 4.0 * static_cast<double>(m_ellipse.size.width) *
                               static_cast<double>(m_ellipse.size.height);
    return SafeContourArea(contour) / ellipseArea;
}

int Description::MarginDescription(float a, float b)
{
    const float value = a * 10.0f + b;
    return 3.4 < static_cast<double>(value) ? 2 : 1;
}

int Description::MarginDescription2(const std::vector<float>& values)
{
    return MarginDescription(values.at(0), values.at(1));
}

int Description::JudgeEchoType(cv::Mat image, float limit, float& peakRatio)
{
    cv::Mat grey = image;
    if (image.channels() > 1)
        cv::cvtColor(image, grey, cv::COLOR_BGR2GRAY);
    cv::Mat hist = GreyHistogram(grey, cv::Mat());
    hist.at<float>(255) = 0.0f;
    double peak = 0.0;
    cv::Point peakAt;
    cv::minMaxLoc(hist, nullptr, &peak, nullptr, &peakAt);
    const int peakIndex = peakAt.y;
    float sum = 0.0f;
    float count = 0.0f;
    for (int i = 1; i < 256; ++i) {
        const float v = hist.at<float>(i);
        if (static_cast<double>(v) > 2.0 && i != peakIndex) {
            sum += v;
            count += 1.0f;
        }
    }
    const float average = sum / count; // no such bin: 0 / 0, NaN
    peakRatio = static_cast<float>(peak);
    if (average != 0.0f)
        peakRatio /= average;
    return peakRatio < limit ? 2 : 1;
}

int Description::ContourRegularity(const std::vector<cv::Point>& contour)
{
    const double r = RoundnessMetric();
    const double h = ConvexHullMetric(contour);
    const double t = TightMetric();
    const double m = ((1.0 - r) + (1.0 - h) + t / 100.0) / 3.0;
    m_regularity = FourierDescriptors(contour, m_ellipse);
    if (m_regularity >= 0.38 && m >= 0.3)
        return 3;
    return AspectVerdict(m_ellipse);
}

int Description::ContourRegularity1(const std::vector<cv::Point>& contour)
{
    const double r = RoundnessMetric();
    const double h = ConvexHullMetric(contour);
    const double t = TightMetric();
    const double m = ((1.0 - r) + (1.0 - h) + t / 100.0) / 3.0;
    m_regularity = FourierDescriptors(contour, m_ellipse);
    m_regularity2 = NormRadialGradient(contour, m_centroid, m_regionImage);
    if (std::isnan(m) || std::isnan(m_regularity))
        return 0;
    if (m_regularity2 <= 0.35 || m >= 0.3 || m_regularity >= 0.4)
        return 3;
    return AspectVerdict(m_ellipse);
}

int Description::ContourRegularity2(const std::vector<cv::Point>& contour, double limit)
{
    m_regularity = MatchContoursSC(contour);
    if (m_regularity > limit)
        return 3;
    return AspectVerdict(m_ellipse);
}

int Description::ShapeDescriptionOld(const std::vector<cv::Point>& contour, int& regularity)
{
    regularity = ContourRegularity(contour);
    return std::fabs(m_ellipseAngle - 90.0f) > 19.0f ? 2 : 1;
}

int Description::ShapeDescription(const std::vector<cv::Point>& contour)
{
    int regularity = 0;
    return ShapeDescriptionOld(contour, regularity);
}

int Description::BoundaryDescription(float value, float limit)
{
    // Written as "not at most" so that NaN, like a flat image's 0 / 0, is abrupt.
    return value <= limit ? 2 : 1;
}

int Description::BoundaryDescription2(const std::vector<cv::Point>& contour)
{
    cv::Mat label = cv::Mat::zeros(m_regionImage.size(), CV_8UC1);
    DrawContour(label, contour, cv::Scalar(1), -1, cv::LINE_8);
    return BoundaryDescription2(GrayAvgsep(label, m_regionImage, 15));
}
