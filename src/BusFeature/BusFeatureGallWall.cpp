// Gall bladder wall: organ and lumen masks, the wall band between them, the
// thickening grade and the wall grade.
#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BusFeature/BusFeature.h"

namespace {

constexpr float kEnlarge = 1.5f;       // small regions are measured at 3/2 size
constexpr float kShrink = 0.6666667f;  // large regions at 2/3 size
constexpr double kSurvivingThin = 0.15;   // wall share left by erosion below which it is thin
constexpr double kFocalRatio = 0.1;       // thinnest over thickest radial measure for focal thickening
constexpr double kFocalThickest = 35.0;   // pixels the thickest radial measure must exceed
constexpr double kBrightSpread = 1.7999999523162842; // 1.8f
constexpr double kThickSurvivor = 0.12;
constexpr double kBrightShare = 0.095;
constexpr double kChordShare = 0.33;
constexpr int kRayCount = 40;

// Wall pixels crossed by the chord through `s` parallel to the short side
// q0-qn of the lumen's bounding box, in the order the crossing gives them.
std::vector<cv::Point> ChordCrossings(BUSFeature& feature, const cv::Mat& wall, cv::Point q0, cv::Point qn,
                                      cv::Point s)
{
    cv::Mat band = wall / 5.0; // 0/51
    std::vector<cv::Point> crossings;
    if (qn.x == q0.x) {
        cv::Mat line = cv::Mat::zeros(wall.size(), CV_8UC1);
        cv::line(line, cv::Point(s.x, 0), cv::Point(s.x, wall.rows - 1), cv::Scalar(50), 1, cv::LINE_8, 0);
        cv::Mat sum;
        cv::add(band, line, sum);
        cv::threshold(sum, sum, 51, 255, cv::THRESH_BINARY);
        cv::findNonZero(sum, crossings);
        std::sort(crossings.begin(), crossings.end(), compY);
    } else {
        cv::Point side[2] = {q0, qn};
        feature.CalcIntersection2(band, side, s, band.cols - 1, band.rows - 1, crossings);
    }
    return crossings;
}

} // namespace

void BUSFeature::InitiGBOrganPara(std::vector<cv::Point>& first, std::vector<cv::Point>& second)
{
    m_organMaskB = cv::Mat::zeros(m_height, m_width, CV_8UC1);
    m_gbOrganMask = cv::Mat::zeros(m_height, m_width, CV_8UC1);
    ConnectionMaskCv(first, m_gbCont1, m_organMaskB);
    ConnectionMaskCv(second, m_gbCont2, m_gbOrganMask);
    m_organLabel = m_organMaskB / 255.0;
    m_gbWallLabel = m_gbOrganMask / 255.0;
    m_gbWallMask = m_organLabel - m_gbWallLabel; // saturates at 0 outside the organ
    m_ellipse = cv::fitEllipse(m_gbCont1);
    m_organArea = static_cast<float>(SafeContourArea(m_gbCont1, false));
}

int BUSFeature::GetGBThicken()
{
    const int rows = m_srcImg.rows;
    const int cols = m_srcImg.cols;

    // Working scale of the erosion test: a side of 110 to 150 keeps the full
    // size; otherwise small regions are enlarged and large ones shrunk, and
    // regions small one way and large the other keep the full size.
    float scale = 1.0f;
    bool doResize = false;
    const bool midCols = cols >= 110 && cols <= 150;
    const bool midRows = rows >= 110 && rows <= 150;
    if (!midCols && !midRows) {
        if (cols < 110 && rows < 110) {
            scale = kEnlarge;
            doResize = true;
        } else if (cols > 150 && rows > 150) {
            scale = kShrink;
            doResize = true;
        }
    }

    const cv::Mat wall = m_gbWallMask * 255; // 0/255
    const cv::Point centre(TruncToInt(m_ellipse.center.x), TruncToInt(m_ellipse.center.y));

    // Share of the wall left after three 3x3 erosions: a thin wall vanishes.
    cv::Mat work;
    if (doResize) {
        const cv::Size target(TruncToInt(static_cast<float>(cols) * scale), TruncToInt(static_cast<float>(rows) * scale));
        cv::resize(wall, work, target, 3.0, 0.0, cv::INTER_LINEAR);
        cv::threshold(work, work, 50, 255, cv::THRESH_BINARY);
    } else {
        work = wall.clone();
    }
    const int before = cv::countNonZero(work);
    const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(3, 3), cv::Point(-1, -1));
    for (int i = 0; i < 3; ++i)
        cv::erode(work, work, kernel, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
    const int after = cv::countNonZero(work);
    const float ratio1 = static_cast<float>(after) / static_cast<float>(before);

    // Radial wall measures from the ellipse centre through about 40 lumen
    // outline points. Fewer than 40 points give a stride of 0, which would
    // measure the first ray for ever.
    const int n = static_cast<int>(m_gbCont2.size());
    const int stride = n / kRayCount;
    if (stride == 0)
        throw std::length_error("lumen outline of fewer than 40 points");
    const cv::Mat outline = DrawGBOuterOutline(); // the same picture for every ray
    std::vector<float> rays;
    for (int index = 0; index < n; index += stride)
        rays.push_back(CalcLineIntersectionOn(outline, centre, m_gbCont2[static_cast<size_t>(index)]));
    std::sort(rays.begin(), rays.end());

    // Chords across the lumen's bounding box, parallel to its short side, at
    // a quarter, half and three quarters of its long side.
    cv::Point2f corners[4];
    cv::minAreaRect(m_gbCont2).points(corners);
    const float d3 = distance(corners[0], corners[3]);
    const float d1 = distance(corners[0], corners[1]);
    const cv::Point2f nearCorner = d1 <= d3 ? corners[1] : corners[3];
    const cv::Point2f farCorner = d1 <= d3 ? corners[3] : corners[1];
    const cv::Point q0(RoundToInt(corners[0].x), RoundToInt(corners[0].y));
    const cv::Point qn(RoundToInt(nearCorner.x), RoundToInt(nearCorner.y));
    const cv::Point qf(RoundToInt(farCorner.x), RoundToInt(farCorner.y));

    float ratio2 = 0.0f;
    for (const double t : {0.25, 0.5, 0.75}) {
        const cv::Point s(TruncToInt(t * static_cast<double>(WrapSub(qf.x, q0.x)) + static_cast<double>(q0.x)),
                          TruncToInt(t * static_cast<double>(WrapSub(qf.y, q0.y)) + static_cast<double>(q0.y)));
        const std::vector<cv::Point> crossings = ChordCrossings(*this, wall, q0, qn, s);
        // A chord that meets no wall has no ends to measure between.
        if (crossings.empty())
            throw std::range_error("chord crosses no wall pixel");
        const float density =
            static_cast<float>(crossings.size()) / distance(crossings.front(), crossings.back());
        if (density > ratio2)
            ratio2 = density;
    }

    m_gbThickRatio1 = ratio1;
    m_gbThickRatio2 = ratio2;

    if (!(static_cast<double>(ratio1) >= kSurvivingThin))
        return 1;
    const float lowest = rays.front();
    const float highest = rays.back();
    if (static_cast<double>(lowest / highest) < kFocalRatio && static_cast<double>(highest) > kFocalThickest)
        return 3;
    return 2;
}

int BUSFeature::GetGBWall()
{
    const cv::Mat gray = m_srcImg.mul(m_gbWallMask, 1.0); // 0 outside the wall band
    cv::Scalar mean, stddev;
    cv::meanStdDev(m_srcImg, mean, stddev, m_gbWallMask);
    int level = TruncToInt(stddev[0] * kBrightSpread + mean[0]);
    if (level > 255)
        level = 255;
    const int wallCount = cv::countNonZero(m_gbWallMask);
    cv::Mat bright = gray.clone();
    cv::threshold(bright, bright, static_cast<double>(level) - 1.0, 255, cv::THRESH_BINARY);
    const int brightCount = cv::countNonZero(bright);
    const float brightRatio = static_cast<float>(brightCount) / static_cast<float>(wallCount);

    if (!(static_cast<double>(m_gbThickRatio1) < kThickSurvivor))
        return 2;
    if (static_cast<double>(brightRatio) > kBrightShare)
        return 2;
    if (static_cast<double>(m_gbThickRatio2) > kChordShare)
        return 2;
    return 1;
}

float BUSFeature::GetHomogeneity(cv::Mat image, cv::Mat mask)
{
    // Every image pixel looks up its mask byte; both must be bytes of one size.
    if (!image.empty() && (image.type() != CV_8UC1 || mask.type() != CV_8UC1 || mask.size() != image.size()))
        throw std::invalid_argument("GetHomogeneity: image and mask differ");
    float sum = 0.0f;
    int count = 0;
    for (int r = 0; r < image.rows; ++r) {
        const uchar* pixels = image.ptr<uchar>(r);
        const uchar* set = mask.ptr<uchar>(r);
        for (int c = 0; c < image.cols; ++c) {
            if (set[c] == 0)
                continue;
            // Integer weight: 1 on the main diagonal, 0 elsewhere.
            const int64_t d = static_cast<int64_t>(r) - c;
            const int weight = static_cast<int>(1 / (d * d + 1));
            sum += static_cast<float>(weight * pixels[c]);
            ++count;
        }
    }
    return sum / static_cast<float>(count);
}
