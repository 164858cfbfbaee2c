// Setup of the axis object and the long-axis search along the outline's
// principal direction.
#include <cmath>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"
#include "AxisLength/AxisWalk.h"
#include "AxisLength/OutlineProximity.h"

void LesionAxis::SetCentroid(cv::Point centroid) { m_centroid = centroid; }
void LesionAxis::SetNewSize(cv::Size size) { m_newSize = size; }
void LesionAxis::SetMask(cv::Mat mask) { m_mask = mask; }

void LesionAxis::SetPara()
{
    m_mask = cv::Mat::zeros(m_size.height, m_size.width, CV_8UC1);
    // The same vector as source and destination: the outline comes back doubled.
    if (ConnectionMaskCv(m_contour, m_mask, m_contour)) {
        m_ellipse = cv::fitEllipse(m_contour);
        m_area = static_cast<float>(SafeContourArea(m_contour, false));
        m_centroid = CalcCentroid();
    }
}

bool LesionAxis::ConnectionMaskCv(std::vector<cv::Point>& contour, cv::Mat& mask, std::vector<cv::Point>& out)
{
    return FillAndTakeOutline(contour, out, mask);
}

cv::Point LesionAxis::CalcCentroid()
{
    const int W = m_size.width;
    const int H = m_size.height;
    cv::Mat scaled = m_mask / 255.0;
    cv::Mat label;
    scaled.convertTo(label, CV_32S);
    m_centroid = WeightedCentroid(label, H, W, m_area);
    return m_centroid;
}

void LesionAxis::GetLongAxisPts(cv::Mat image, std::vector<cv::Point> contour, cv::Rect box, cv::Point* out)
{
    int cx = 0, cy = 0;
    const float k = PrincipalSlope(contour, cx, cy);
    m_longAxisSlope = k;

    cv::Point p0, p1;
    const double angle = static_cast<double>(std::atan(k));
    if (angle == 1.5707963267948966 || angle == -1.5707963267948966) {
        // A widened float never equals these; kept for the vertical line it stands for.
        p0 = cv::Point(cx, box.y);
        p1 = cv::Point(cx, WrapAdd(box.y, box.height));
    } else {
        const int x0 = box.x;
        const int x1 = WrapAdd(box.x, box.width);
        const float y0 = static_cast<float>(WrapSub(x0, cx)) * k + static_cast<float>(cy);
        const float y1 = static_cast<float>(WrapSub(x1, cx)) * k + static_cast<float>(cy);
        p0 = cv::Point(x0, RoundToInt(y0));
        p1 = cv::Point(x1, RoundToInt(y1));
    }

    WalkOutlineHits(image, p0, p1, contour, out);
}

void LesionAxis::getStraightLineAllPoint(int x0, int y0, int x1, int y1, std::vector<cv::Point>& out)
{
    if (x0 == x1 && y0 != y1) {
        const int step = y1 > y0 ? 1 : -1;
        for (int y = y0; y != y1; y += step)
            out.push_back(cv::Point(x0, y));
    } else if (y0 == y1 && x0 != x1) {
        const int step = x1 > x0 ? 1 : -1;
        for (int x = x0; x != x1; x += step)
            out.push_back(cv::Point(x, y0));
    }
}

void WalkOutlineHits(const cv::Mat& image, cv::Point p0, cv::Point p1, const std::vector<cv::Point>& contour,
                     cv::Point* out)
{
    cv::LineIterator walk(image, p0, p1, 8, true);
    if (walk.count < 1) {
        out[0] = cv::Point(0, 0);
        out[1] = cv::Point(0, 0);
        return;
    }
    const OutlineProximity near(contour);
    std::vector<cv::Point> hits;
    for (int i = 0; i < walk.count; ++i, ++walk) {
        const cv::Point p = walk.pos();
        if (near.WithinOne(p))
            hits.push_back(p);
    }
    if (hits.empty()) {
        out[0] = cv::Point(0, 0);
        out[1] = cv::Point(0, 0);
    } else if (hits.size() == 1) {
        out[0] = hits[0];
        out[1] = cv::Point(0, 0);
    } else if (hits.size() == 2) {
        out[0] = hits[0];
        out[1] = hits[1];
    } else {
        // Three or more hits always give the last and the first, whichever
        // neighbouring pair lies furthest apart.
        out[0] = hits.back();
        out[1] = hits.front();
    }
}

float PrincipalSlope(const std::vector<cv::Point>& contour, int& cx, int& cy)
{
    cv::Mat data(static_cast<int>(contour.size()), 2, CV_64F);
    for (int i = 0; i < data.rows; ++i) {
        data.at<double>(i, 0) = contour[static_cast<size_t>(i)].x;
        data.at<double>(i, 1) = contour[static_cast<size_t>(i)].y;
    }
    cv::PCA pca(data, cv::Mat(), cv::PCA::DATA_AS_ROW, 0);
    cx = RoundToInt(static_cast<float>(pca.mean.at<double>(0, 0)));
    cy = RoundToInt(static_cast<float>(pca.mean.at<double>(0, 1)));
    const float k = static_cast<float>(pca.eigenvectors.at<double>(0, 1) / pca.eigenvectors.at<double>(0, 0));
    return k;
}
