// Grey level of the strap muscle that lies above the thyroid: the band just
// outside the gland meets the sides of the gland's bounding box; the band
// above the line through those two meeting points is the muscle.
//
// Every mask here is zero away from the gland, so the work is confined to
// the gland's bounding box grown by the band's reach; the sums over that box
// equal those over the whole image.
#include <algorithm>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "BusFeature/RunDilation.h"

namespace {

// First row from `top` to `bottom` - 1 where column `col` of `map` holds 200,
// if the row below it holds 200 too; -1 otherwise. Rows and columns are in
// whole-image coordinates, `origin` is the map's top-left corner.
int MeetingRow(const cv::Mat& map, cv::Point origin, int col, int top, int bottom)
{
    const int c = col - origin.x;
    for (int y = top; y < bottom; ++y) {
        const int r = y - origin.y;
        // The column and both rows read must lie in the map.
        if (c < 0 || c >= map.cols || r < 0 || r + 1 >= map.rows)
            throw std::out_of_range("muscle scan outside the image");
        if (map.at<uchar>(r, c) != 200)
            continue;
        return map.at<uchar>(r + 1, c) == 200 ? y : -1;
    }
    return -1;
}

} // namespace

float BUSFeature::ThyEchoEdgeFindMuscle()
{
    const cv::Rect image(0, 0, m_fullWidth, m_fullHeight);
    if (m_thyOrganMask.size() != image.size() || m_fullSrcImg.size() != image.size())
        throw std::logic_error("gland mask and image differ in size");

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

    // Working window: the gland grown by the band's reach (2 across, 22 up
    // and down), and the box's outline with the row below it.
    const cv::Rect gland = cv::boundingRect(m_thyOrganMask);
    cv::Rect window = gland.empty() ? cv::Rect() : cv::Rect(gland.x - 2, gland.y - 22, gland.width + 4, gland.height + 44);
    window |= cv::Rect(cv::Point(bx, by), cv::Point(right + 1, bottom + 2));
    window &= image;
    const cv::Point origin = window.tl();

    const cv::Mat organ = m_thyOrganMask(window).clone() / 255 * 100;

    // Band up to 2 pixels beside and 22 pixels above and below the gland.
    const cv::Mat strip = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(5, 45), cv::Point(-1, -1));
    const cv::Mat band = rundilation::DilateTall(organ, strip) - organ;

    cv::Mat frame = cv::Mat::zeros(organ.size(), CV_8U);
    cv::rectangle(frame, cv::Point(bx, by) - origin, cv::Point(right, bottom) - origin, cv::Scalar(100), 1,
                  cv::LINE_8);

    // 80 where the nodule lies outside the gland.
    const cv::Rect placed(m_roi.x, m_roi.y, m_label.cols, m_label.rows);
    if (placed != (placed & image))
        throw std::out_of_range("lesion label leaves the image");
    cv::Mat outside = cv::Mat::zeros(organ.size(), CV_8U);
    const cv::Rect common = placed & window;
    if (!common.empty()) {
        const cv::Mat label80 = m_label(common - placed.tl()) * 80;
        label80.copyTo(outside(common - origin));
    }
    outside = outside + organ;
    cv::threshold(outside, outside, 80, 255, cv::THRESH_TOZERO_INV);

    const cv::Mat map = band + frame - (outside / 80 * 100);

    const int left = bx < 0 ? 0 : bx;
    const int rightCol = right < m_fullWidth ? right : m_fullWidth - 1;
    if (bh < 1)
        return 0.0f;
    const int yL = MeetingRow(map, origin, left, by, bottom);
    const int yR = MeetingRow(map, origin, rightCol, by, bottom);
    if (yL < 0 || yR < 0)
        return 0.0f;

    // The band above the line through the two meeting points.
    const float slope = static_cast<float>(yR - yL) / static_cast<float>(rightCol - left);
    cv::Mat above = cv::Mat::zeros(map.size(), CV_8U);
    const int xEnd = std::min(right, window.x + window.width);
    const int yEnd = std::min(bottom, window.y + window.height);
    for (int y = window.y; y < yEnd; ++y) {
        const uchar* src = map.ptr<uchar>(y - origin.y);
        uchar* dst = above.ptr<uchar>(y - origin.y);
        for (int x = window.x; x < xEnd; ++x)
            if (src[x - origin.x] != 0 && static_cast<float>(y - yL) - static_cast<float>(x - left) * slope < 0.0f)
                dst[x - origin.x] = 255;
    }

    // Its pixels no brighter than the thyroid ring.
    const cv::Mat source = m_fullSrcImg(window);
    cv::Mat region = source.mul(above / 255);
    cv::threshold(region, region, TruncToInt(m_thyFloat1), 1, cv::THRESH_TOZERO_INV);
    cv::Scalar mean, std;
    cv::meanStdDev(source, mean, std, region);
    return static_cast<float>(mean[0]);
}
