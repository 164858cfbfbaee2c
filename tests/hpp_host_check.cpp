// A C++17 host that sees only include/ and OpenCV: sonolex.hpp compiles on
// its own, its classes link from the shared library, and the record layout
// is the one sonolex.h pins for C.
#include "sonolex.hpp"

#include <cstddef>
#include <cstdio>
#include <vector>

static_assert(sizeof(GallBladderWallResult) == 32, "GallBladderWallResult is 32 bytes");
static_assert(offsetof(GallBladderWallResult, maxDistance) == 8 && offsetof(GallBladderWallResult, secondY) == 28,
              "GallBladderWallResult fields");

int main()
{
    int failures = 0;
    // Distances: (0,0) to (3,4) is 5.
    Hausdorff hausdorff;
    if (hausdorff.CalcPtsDistanceTest({cv::Point(0, 0)}, {cv::Point(3, 4)}) != 5.0f)
        ++failures;
    // Level set: the centre of a 3 x 3 delta convolved with itself.
    LBF lbf;
    cv::Mat delta = cv::Mat::zeros(3, 3, CV_64F);
    delta.at<double>(1, 1) = 1.0;
    if (lbf.Conv2(delta, delta).at<double>(1, 1) != 1.0)
        ++failures;
    // Helpers and the band the axis and the entry share.
    if (TruncToInt(2.9) != 2 || !IsAxisWorkingWidth(60) || IsAxisWorkingWidth(140))
        ++failures;
    // The verdict object and the entry.
    const cv::Mat grey(30, 40, CV_8UC1, cv::Scalar(90));
    Description description(grey, grey, cv::Rect(0, 0, 40, 30));
    if (description.GetGBWallSize().max != 0.0f)
        ++failures;
    GallBladderWallResult result{};
    result.wallVerdict = 5;
    const MyPoint organ[] = {{5, 5}, {30, 5}, {30, 20}, {5, 20}};
    GallBladderWallDescription(grey.data, 1, 40, 30, RoiCoor{0, 0, 40, 30}, 4, organ, &result);
    if (result.wallVerdict != 0)
        ++failures;
    // Texture: a flat 0 image puts every pair at (0, 0), energy 1 per pixel.
    GLCM glcm;
    TextureEValues texture{};
    glcm.CalcuTextureEValue(cv::Mat::zeros(3, 3, CV_8UC1), texture, 3, GRAY_4);
    if (texture.energy != 9.0f)
        ++failures;
    // Contour sampling: a 1 x 3 outline keeps all three pixels, left to right.
    PreprocessContours sampler;
    sampler._frame[1] = cv::Mat(1, 3, CV_8UC1, cv::Scalar(255));
    std::vector<cv::Point> samples;
    sampler.GetOriginalSamplePts(samples);
    if (samples.size() != 3 || samples.back() != cv::Point(2, 0))
        ++failures;
    // Edge analysis: a flat image has no edge.
    if (EVA({cv::Point(5, 5), cv::Point(20, 5), cv::Point(20, 20)}, grey) != 0.0)
        ++failures;
    if (failures != 0)
        std::fprintf(stderr, "%d checks failed\n", failures);
    return failures == 0 ? 0 : 1;
}
