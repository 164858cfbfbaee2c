// Grey level of the strap muscle that lies above the thyroid: the band just
// outside the gland meets the sides of the gland's bounding box; the band
// above the line through those two meeting points is the muscle.
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

namespace {

// First row from `top` to `bottom` - 1 where column `col` of `map` holds 200,
// if the row below it holds 200 too; -1 otherwise.
int MeetingRow(const cv::Mat& map, int col, int top, int bottom)
{
    for (int y = top; y < bottom; ++y) {
        if (map.at<uchar>(y, col) != 200)
            continue;
        // The row below the crossing must lie in the map.
        if (y + 1 >= map.rows)
            throw std::out_of_range("muscle crossing on the last row");
        return map.at<uchar>(y + 1, col) == 200 ? y : -1;
    }
    return -1;
}

} // namespace

float BUSFeature::ThyEchoEdgeFindMuscle()
{
    const cv::Mat organ = m_thyOrganMask.clone() / 255 * 100;

    // Band up to 2 pixels beside and 22 pixels above and below the gland.
    const cv::Mat strip = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(5, 45), cv::Point(-1, -1));
    cv::Mat grown;
    cv::dilate(organ, grown, strip, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    const cv::Mat band = grown - organ;

    const cv::Rect box = cv::boundingRect(m_thyCont1);
    const int bx = box.x;
    const int by = box.y;
    int bw = box.width;
    int bh = box.height;
    if (bx + bw >= m_fullWidth)
        bw = m_fullWidth - bx - 1;
    if (by + bh >= m_fullHeight)
        bh = m_fullHeight - by - 1;
    const int right = bx + bw;
    const int bottom = by + bh;

    cv::Mat frame = cv::Mat::zeros(organ.size(), CV_8U);
    cv::rectangle(frame, cv::Point(bx, by), cv::Point(right, bottom), cv::Scalar(100), 1, cv::LINE_8);

    // 80 where the nodule lies outside the gland.
    cv::Mat outside = cv::Mat::zeros(m_fullHeight, m_fullWidth, CV_8U);
    const cv::Mat label80 = m_label.clone() * 80;
    label80.copyTo(outside(cv::Rect(m_roi.x, m_roi.y, label80.cols, label80.rows)));
    outside = outside + organ;
    cv::threshold(outside, outside, 80, 255, cv::THRESH_TOZERO_INV);

    const cv::Mat map = band + frame - (outside / 80 * 100);

    const int left = bx < 0 ? 0 : bx;
    const int rightCol = right < map.cols ? right : map.cols - 1;
    if (bh < 1)
        return 0.0f;
    // Columns and rows scanned must lie in the map.
    if (left >= map.cols || rightCol < 0 || by < 0)
        throw std::out_of_range("muscle scan outside the image");
    const int yL = MeetingRow(map, left, by, bottom);
    const int yR = MeetingRow(map, rightCol, by, bottom);
    if (yL < 0 || yR < 0)
        return 0.0f;

    const float slope = static_cast<float>(yR - yL) / static_cast<float>(rightCol - left);
    cv::Mat above = cv::Mat::zeros(map.size(), CV_8U);
    const int xEnd = std::min(right, map.cols);
    const int yEnd = std::min(bottom, map.rows);
    for (int y = 0; y < yEnd; ++y) {
        const uchar* src = map.ptr<uchar>(y);
        uchar* dst = above.ptr<uchar>(y);
        for (int x = 0; x < xEnd; ++x)
            if (src[x] != 0 && static_cast<float>(y - yL) - static_cast<float>(x - left) * slope < 0.0f)
                dst[x] = 255;
    }

    cv::Mat region = m_fullSrcImg.mul(above / 255);
    cv::threshold(region, region, TruncToInt(m_thyFloat1), 1, cv::THRESH_TOZERO_INV);
    cv::Scalar mean, std;
    cv::meanStdDev(m_fullSrcImg, mean, std, region);
    return static_cast<float>(mean[0]);
}
