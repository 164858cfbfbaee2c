// Thyroid calcification: the detection model's deposits, the acoustic shadow
// below them, and the fallback search for very bright enclosed spots.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "RegionSelection/RegionSelection.h"

namespace {

std::vector<std::vector<cv::Point>> External(const cv::Mat& binary)
{
    std::vector<std::vector<cv::Point>> contours;
    std::vector<cv::Vec4i> hierarchy;
    cv::findContours(binary, contours, hierarchy, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    return contours;
}

} // namespace

int BUSFeature::ThyCalcificationUseModelResult(cv::Mat modelMask, RoiCoor roi)
{
    cv::resize(modelMask, m_modelMask, cv::Size(roi.width, roi.height), 0, 0, cv::INTER_LINEAR);
    cv::Mat binary = m_modelMask.clone();
    cv::threshold(binary, binary, 0.5, 255, cv::THRESH_BINARY);
    m_calcMask = binary;
    m_lesionPixNum = cv::countNonZero(m_label);
    if (External(m_modelMask).empty())
        return 0;
    return ThyCalcificationModel(m_modelMask, roi);
}

int BUSFeature::ThyCalcificationModel(cv::Mat modelMask, RoiCoor roi)
{
    const float ratio = static_cast<float>(cv::countNonZero(modelMask)) / static_cast<float>(m_lesionPixNum);
    m_calcRatio = ratio;
    if (static_cast<double>(ratio) > 0.3)
        return 1;
    int modelBlobCount = 0;
    const int shadow = FindSoundShadowWithModel(modelMask, roi, modelBlobCount);
    if (shadow >= 1) {
        m_calcFlag = true;
        return 1;
    }
    if (modelBlobCount >= 10 && static_cast<double>(ratio) < 0.08)
        return 2;
    return ThyCalcuCalcification();
}

int BUSFeature::FindSoundShadowWithModel(cv::Mat modelMask, RoiCoor roi, int& modelBlobCount)
{
    // The shadow falls downwards: search a rectangle 1.2 times as wide and
    // 1.6 times as tall as the region, starting at its top.
    int w = TruncToInt(m_roi.width * 1.2);
    int h = TruncToInt(m_roi.height * 1.6);
    int x = TruncToInt(m_roi.x - w * 0.1);
    int y = m_roi.y;
    int right = 0;
    int bottom = 0;
    if (x < 0) {
        x = 0;
        right = w;
    } else {
        right = WrapAdd(x, w);
    }
    if (y < 0) {
        y = 0;
        bottom = h;
    } else {
        bottom = WrapAdd(y, h);
    }
    if (!(m_fullWidth - 1 > right))
        w = m_fullWidth - 1 - x;
    if (!(m_fullHeight - 1 > bottom))
        h = m_fullHeight - 1 - y;
    const cv::Rect search(x, y, w, h);
    // A rectangle that leaves the image has no pixels to read.
    if (w < 0 || h < 0 || search != (search & cv::Rect(0, 0, m_fullSrcImg.cols, m_fullSrcImg.rows)))
        throw std::out_of_range("shadow search rectangle leaves the image");

    const cv::Mat crop = m_fullSrcImg(search).clone();
    cv::Mat dark;
    cv::threshold(crop, dark, 20, 255, cv::THRESH_BINARY_INV);

    // The model mask placed in the whole image, seen through the search rectangle.
    cv::Mat modelCrop = cv::Mat::zeros(search.size(), CV_8U);
    const cv::Rect placed(roi.x, roi.y, modelMask.cols, modelMask.rows);
    if (placed != (placed & cv::Rect(0, 0, m_fullWidth, m_fullHeight)))
        throw std::out_of_range("model mask leaves the image");
    const cv::Rect common = placed & search;
    if (!common.empty())
        modelMask(common - placed.tl()).copyTo(modelCrop(common - search.tl()));

    const auto modelBlobs = External(modelCrop);
    const int blobCount = static_cast<int>(modelBlobs.size());
    const auto darkBlobs = External(dark);
    if (darkBlobs.empty())
        return 0;

    // The biggest dark blob; its area stays 0 when it is the first one.
    std::vector<double> areas(darkBlobs.size());
    for (size_t i = 0; i < darkBlobs.size(); ++i)
        areas[i] = SafeContourArea(darkBlobs[i], false);
    size_t best = 0;
    float bestArea = 0.0f;
    for (size_t i = 1; i < darkBlobs.size(); ++i) {
        if (areas[i] > areas[best]) {
            best = i;
            bestArea = static_cast<float>(areas[i]);
        }
    }

    cv::Mat shade = cv::Mat::zeros(dark.size(), CV_8U);
    DrawContour(shade, darkBlobs[best], cv::Scalar(255), cv::FILLED, cv::LINE_8);
    const cv::Mat disc = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(11, 11), cv::Point(-1, -1));
    cv::dilate(shade, shade, disc, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    const auto shadeOutline = External(shade);
    if (shadeOutline.empty())
        throw std::logic_error("dilated shadow has no outline");
    const cv::Rect s = cv::boundingRect(shadeOutline[0]);

    bool found = false;
    for (const auto& blob : modelBlobs) {
        const cv::Rect b = cv::boundingRect(blob);
        const int a = TruncToInt(SafeContourArea(blob, false));
        // The second test adds the blob's y to its width, as the measure has always done.
        if (b.y < s.y && (b.x < s.x + s.width || b.width + b.y > s.x) &&
            static_cast<double>(bestArea) > a * 2.7)
            found = true;
    }

    cv::Mat sum = modelCrop + shade;
    const int merged = static_cast<int>(External(sum).size());
    modelBlobCount = blobCount;
    return (found && merged <= blobCount) ? 1 : 0;
}

int BUSFeature::ThyCalcuCalcification()
{
    double minVal = 0.0;
    cv::minMaxIdx(m_srcImg, &minVal, nullptr, nullptr, nullptr, m_label);
    const int level1 = TruncToInt(static_cast<double>(2.0f * m_lesionStdGray) + minVal);

    if (m_label.size() != m_srcImg.size())
        throw std::logic_error("lesion label and region differ in size");
    cv::Mat brightPart = cv::Mat::zeros(m_height, m_width, CV_8U);
    cv::Mat darkPart = cv::Mat::zeros(m_height, m_width, CV_8U);
    for (int r = 0; r < m_label.rows; ++r) {
        const uchar* lab = m_label.ptr<uchar>(r);
        const uchar* src = m_srcImg.ptr<uchar>(r);
        uchar* bp = brightPart.ptr<uchar>(r);
        uchar* dp = darkPart.ptr<uchar>(r);
        for (int c = 0; c < m_label.cols; ++c) {
            if (lab[c] != 1)
                continue;
            if (src[c] >= level1)
                bp[c] = 1;
            else
                dp[c] = 1;
        }
    }

    cv::Scalar brightMean, brightStd;
    cv::meanStdDev(m_srcImg, brightMean, brightStd, brightPart);
    const int level2 = std::min(TruncToInt(2.4000000953674316 * brightStd[0] + brightMean[0]), 255);

    // The nodule without its very bright pixels, 0/255.
    cv::Mat rest = cv::Mat::zeros(m_height, m_width, CV_8U);
    for (int r = 0; r < rest.rows; ++r) {
        const uchar* src = m_srcImg.ptr<uchar>(r);
        const uchar* bp = brightPart.ptr<uchar>(r);
        const uchar* dp = darkPart.ptr<uchar>(r);
        uchar* out = rest.ptr<uchar>(r);
        for (int c = 0; c < rest.cols; ++c) {
            const int veryBright = (src[c] * bp[c] >= level2) ? 1 : 0;
            const int value = std::max(bp[c] - veryBright, 0) + dp[c];
            out[c] = cv::saturate_cast<uchar>(value * 255);
        }
    }

    cv::Mat filled;
    MyFillHole(rest, filled);
    const cv::Mat complement = 255 - rest;
    cv::Mat spots;
    cv::bitwise_and(filled, complement, spots);
    m_calcMask = spots;
    const int spotPixels = cv::countNonZero(spots);
    const auto contours = External(spots);
    const size_t n = contours.size();

    const cv::Mat organInRegion = m_thyOrganMask(m_roi);
    const cv::Mat dot = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(3, 3), cv::Point(-1, -1));
    int strong = 0, big = 0, small = 0, medium = 0;
    float total = 0.0f;
    // A spot and its one-pixel ring lie in the spot's box grown by one pixel,
    // so each is measured there when the images share the object's size (as
    // they do but for a caller's odd object): the same pixels and sums. A box
    // of 3 pixels or fewer cannot hold the 4 a spot needs to count.
    const cv::Size frame(m_width, m_height);
    const bool boxed = m_srcImg.size() == frame && organInRegion.size() == frame;
    for (size_t k = 0; k < n; ++k) {
        cv::Rect box(0, 0, m_width, m_height);
        cv::Mat blob;
        if (boxed) {
            const cv::Rect bounds = cv::boundingRect(contours[k]);
            if (static_cast<int64_t>(bounds.width) * bounds.height <= 3)
                continue;
            box = GrowWithin(bounds, 1, frame);
            blob = cv::Mat::zeros(box.height, box.width, CV_8U);
            SafeDrawContours(blob, std::vector<std::vector<cv::Point>>(1, contours[k]), 0, cv::Scalar(255),
                             cv::FILLED, cv::LINE_8, INT_MAX, cv::Point(-box.x, -box.y));
        } else {
            blob = cv::Mat::zeros(m_height, m_width, CV_8U);
            DrawContour(blob, contours[k], cv::Scalar(255), cv::FILLED, cv::LINE_8);
        }
        const int a = cv::countNonZero(blob);
        if (a <= 3)
            continue;
        const cv::Mat image = boxed ? m_srcImg(box) : m_srcImg;
        const double inside = cv::mean(image, blob)[0];
        cv::Mat grown;
        cv::dilate(blob, grown, dot, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
        cv::Mat ring;
        cv::bitwise_and(grown - blob, boxed ? organInRegion(box) : organInRegion, ring);
        const double outside = cv::mean(image, ring)[0];
        const float contrast = static_cast<float>(inside / outside);
        const float r = static_cast<float>(a) / static_cast<float>(m_lesionPixNum);
        if (static_cast<double>(contrast) > 1.4 && (static_cast<double>(r) > 0.004 || a > 100))
            ++strong;
        if (r > 0.008f) {
            ++big;
            if (static_cast<double>(r) > 0.01100000037997961) // 0.011f
                ++strong;
        } else if (r > 0.0f) {
            ++small;
            if (r > 0.001f)
                ++medium;
            else if (a > 100)
                ++medium;
        }
        total += r;
    }

    const double f = static_cast<double>(static_cast<float>(spotPixels) / static_cast<float>(m_lesionPixNum));
    bool pass = false;
    if (n == 0 || (f < 0.0095 && strong <= 1))
        pass = medium > 2;
    else
        pass = medium > 1 || big > 0;
    if (!pass)
        return 0;

    const float spotMean = static_cast<float>(cv::mean(m_srcImg, spots)[0]);
    if (spotMean - m_thyFloat1 < 25.0 || spotMean < 85.0 || total < 0.003f)
        return 0;
    if (big != 0 && static_cast<double>(total) > 0.015)
        return 1;
    const int limit = std::max(big, 2);
    if (small > limit && strong == 0)
        return 2;
    return 1;
}
