// Breast calcification: bright holes isolated inside the lesion and graded
// by size and contrast, or the host model's regions graded by size.
#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"
#include "LesionDescriExport/EntryFrame.h"
#include "RegionSelection/RegionSelection.h"
#include "Tool/OtsuInput.h"

namespace {

// Size class and contrast of the holes.
struct HoleCounters {
    int strongCount = 0;
    int bigCount = 0;
    int smallCount = 0;
    int validSmallCount = 0;
    float shareSum = 0.0f;
};

// One hole measured against the ring of pixels just around it. Only the
// hole's bounding box, one pixel wider on each side, can hold non-zero
// pixels of its filled mask and of its ring, so the work is done there.
void MeasureHole(const std::vector<cv::Point>& outline, const cv::Mat& image, int lesionPixNum,
                 HoleCounters& counters)
{
    const cv::Rect bounds = cv::boundingRect(outline);
    // The filled hole lies in its outline's box: one of 3 pixels or fewer
    // cannot hold the 4 a hole needs to count.
    if (static_cast<int64_t>(bounds.width) * bounds.height <= 3)
        return;
    const cv::Rect box = GrowWithin(bounds, 1, image.size());
    cv::Mat single = cv::Mat::zeros(box.height, box.width, CV_8UC1);
    SafeDrawContours(single, std::vector<std::vector<cv::Point>>(1, outline), 0, cv::Scalar(255), cv::FILLED,
                     cv::LINE_8, INT_MAX, cv::Point(-box.x, -box.y));
    const int area = cv::countNonZero(single);
    if (area <= 3)
        return;

    const cv::Mat boxImage = image(box);
    const double innerMean = cv::mean(boxImage, single)[0];
    const cv::Mat element = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(3, 3), cv::Point(-1, -1));
    cv::Mat dilated;
    cv::dilate(single, dilated, element, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
               cv::morphologyDefaultBorderValue());
    cv::Mat ring;
    cv::subtract(dilated, single, ring);
    // Ring pixels of grey 0 drop out of the mask.
    cv::Mat ringGrey;
    cv::bitwise_and(boxImage, ring, ringGrey);
    const double ringMean = cv::mean(boxImage, ringGrey)[0];

    constexpr double kContrast = 1.4;
    constexpr double kStrongShare = 0.004;
    constexpr float kBigShare = 0.008f;
    constexpr double kStrongBigShare = 0.01100000037997961; // 0.011f
    constexpr float kValidSmallShare = 0.001f;

    const float contrast = static_cast<float>(innerMean / ringMean);
    const float share = static_cast<float>(area) / static_cast<float>(lesionPixNum);
    if (static_cast<double>(contrast) > kContrast && (static_cast<double>(share) > kStrongShare || area > 100))
        ++counters.strongCount;
    if (share > kBigShare) {
        ++counters.bigCount;
        if (static_cast<double>(share) > kStrongBigShare)
            ++counters.strongCount;
    } else if (share > 0.0f) {
        ++counters.smallCount;
        if (share > kValidSmallShare || area > 100)
            ++counters.validSmallCount;
    }
    counters.shareSum += share;
}

} // namespace

int BUSFeature::BreastCalcification()
{
    // Every lesion pixel, and so every pixel any step below can set, lies in
    // the outline's bounding box; outside it all masks stay 0, and a hole can
    // never touch the box's edge. The work is done on the box, which gives the
    // same numbers as on the whole region.
    cv::Rect box = cv::boundingRect(m_lesionCont) & cv::Rect(0, 0, m_width, m_height);
    if (box.empty())
        box = cv::Rect(0, 0, m_width, m_height);
    const cv::Mat grey = m_srcImg(box);
    const cv::Mat label = m_label(box);

    double low = 0.0;
    cv::minMaxIdx(grey, &low, nullptr, nullptr, nullptr, label);
    // The lesion's Otsu level is not used further; only its refusals are
    // kept, so that a lesion it cannot measure ends the call where it always has.
    (void)OtsuInput(m_srcImg, m_label);
    const int firstLimit = TruncToInt(static_cast<double>(2.0f * m_lesionStdGray) + low);

    // Split the lesion at the first limit: lowMask below, highMask at or above.
    cv::Mat highMask = cv::Mat::zeros(box.height, box.width, CV_8UC1);
    cv::Mat lowMask = cv::Mat::zeros(box.height, box.width, CV_8UC1);
    for (int r = 0; r < box.height; ++r) {
        const uchar* g = grey.ptr<uchar>(r);
        const uchar* l = label.ptr<uchar>(r);
        uchar* high = highMask.ptr<uchar>(r);
        uchar* lowRow = lowMask.ptr<uchar>(r);
        for (int c = 0; c < box.width; ++c) {
            if (l[c] != 1)
                continue;
            if (g[c] < firstLimit)
                lowRow[c] = 1;
            else
                high[c] = 1;
        }
    }

    cv::Scalar mean, deviation;
    cv::meanStdDev(grey, mean, deviation, highMask);
    constexpr double kBrightFactor = 2.4000000953674316; // 2.4f
    int secondLimit = TruncToInt(kBrightFactor * deviation[0] + mean[0]);
    if (secondLimit > 255)
        secondLimit = 255;

    // The brightest pixels of the upper part. A limit of 0 or less marks every
    // pixel, but only those of the upper part reach the rest below.
    cv::Mat brightMask = cv::Mat::zeros(box.height, box.width, CV_8UC1);
    for (int r = 0; r < box.height; ++r) {
        const uchar* g = grey.ptr<uchar>(r);
        const uchar* high = highMask.ptr<uchar>(r);
        uchar* bright = brightMask.ptr<uchar>(r);
        for (int c = 0; c < box.width; ++c)
            if (static_cast<int>(g[c]) * static_cast<int>(high[c]) >= secondLimit)
                bright[c] = 1;
    }

    // The lesion without its brightest pixels, 0/255; the holes are what it encloses.
    cv::Mat rest;
    cv::subtract(highMask, brightMask, rest);
    cv::add(rest, lowMask, rest);
    rest = rest * 255;
    cv::Mat filled = cv::Mat::zeros(box.height, box.width, CV_8UC1);
    MyFillHole(rest, filled);
    cv::Mat inverse;
    cv::subtract(cv::Scalar(255), rest, inverse);
    cv::Mat holes;
    cv::bitwise_and(filled, inverse, holes);
    m_calcMask = cv::Mat::zeros(m_height, m_width, CV_8UC1);
    holes.copyTo(m_calcMask(box));

    const int holeCount = cv::countNonZero(holes);
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(holes, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(box.x, box.y));
    const size_t contourCount = contours.size();

    HoleCounters counters;
    for (const std::vector<cv::Point>& outline : contours)
        MeasureHole(outline, m_srcImg, m_lesionPixNum, counters);

    const float holeShare = static_cast<float>(holeCount) / static_cast<float>(m_lesionPixNum);
    if (contourCount == 0 || (static_cast<double>(holeShare) < 0.0095 && counters.strongCount <= 1)) {
        if (!(counters.validSmallCount > 2))
            return 1;
    } else if (!(counters.validSmallCount > 1 || counters.bigCount > 0)) {
        return 1;
    }

    const float holeMean = static_cast<float>(cv::mean(grey, holes)[0]);
    if (holeMean - m_ringAvgGray < 25.0f)
        return 1;
    if (holeMean < 85.0f)
        return 1;
    if (counters.shareSum < 0.003f)
        return 1;

    if (counters.bigCount != 0 && static_cast<double>(counters.shareSum) > 0.015)
        return 2;
    const int limit = std::max(counters.bigCount, 2);
    if (counters.smallCount <= limit)
        return 2;
    return counters.strongCount == 0 ? 3 : 2;
}

int BUSFeature::CalcuCalcificationUseModelResult(RoiCoor roi, int modelContourCount, const int* modelContourSizes,
                                                 const MyPoint* modelPoints)
{
    cv::Mat sum = cv::Mat::zeros(roi.height, roi.width, CV_8UC1);
    // A negative count raises std::length_error here.
    std::vector<int> areas(static_cast<size_t>(modelContourCount), 0);
    if (modelContourCount > 0 && modelContourSizes == nullptr)
        throw std::invalid_argument("null model sizes with a positive count");

    size_t offset = 0;
    for (int i = 0; i < modelContourCount; ++i) {
        const int size = modelContourSizes[i];
        const std::vector<cv::Point> region =
            ShiftContour(CopyContour(modelPoints == nullptr ? nullptr : modelPoints + offset, size), roi.x, roi.y);
        offset += region.size();
        // A filled outline sets no pixel beyond its bounding box, so it is
        // drawn, counted and added within that box, cut to the region. The
        // box's edges are the region's own wherever the outline is clipped.
        const cv::Rect box =
            region.empty() ? cv::Rect() : cv::boundingRect(region) & cv::Rect(0, 0, sum.cols, sum.rows);
        if (box.empty())
            continue;
        cv::Mat single = cv::Mat::zeros(box.height, box.width, CV_8UC1);
        SafeDrawContours(single, std::vector<std::vector<cv::Point>>(1, region), 0, cv::Scalar(51), cv::FILLED,
                         cv::LINE_8, INT_MAX, cv::Point(-box.x, -box.y));
        areas[static_cast<size_t>(i)] = cv::countNonZero(single);
        cv::Mat target = sum(box);
        cv::add(target, single, target);
    }

    cv::resize(sum, m_modelMask, cv::Size(roi.width, roi.height), 0.0, 0.0, cv::INTER_LINEAR);
    cv::Mat binary = m_modelMask.clone();
    cv::threshold(binary, binary, 0.5, 255, cv::THRESH_BINARY);
    m_calcMask = binary;
    const int covered = cv::countNonZero(binary);
    m_lesionPixNum = cv::countNonZero(m_label);

    if (modelContourCount == 0)
        return 1;
    m_calcRatio = static_cast<float>(covered) / static_cast<float>(m_lesionPixNum);
    if (static_cast<double>(m_calcRatio) > 0.3)
        return 2;

    constexpr double kSmallShare = 0.006;
    bool anySmall = false;
    for (int area : areas) {
        const float share = static_cast<float>(area) / static_cast<float>(m_lesionPixNum);
        if (static_cast<double>(share) < kSmallShare || area < 100)
            anySmall = true;
    }
    return anySmall ? 3 : 2;
}

int BUSFeature::BreastCalcificationModel(cv::Mat mask, RoiCoor /*roi*/)
{
    m_calcRatio = static_cast<float>(cv::countNonZero(mask)) / static_cast<float>(m_lesionPixNum);
    if (static_cast<double>(m_calcRatio) > 0.3)
        return 2;
    if (static_cast<double>(m_calcRatio) < 0.06)
        return 3;
    return 2;
}
