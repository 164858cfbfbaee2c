// Shared numeric helpers, texture statistics and contour sampling on inputs of typical size.
#include <benchmark/benchmark.h>

#include <opencv2/imgproc.hpp>

#include "GLCM/GLCM.h"
#include "PreprocessContours/PreprocessContours.h"
#include "Tool/Tool.h"
#include "synthetic.h"

static void BM_OtsuOnRegion(benchmark::State& state)
{
    const cv::Mat image = synth::Speckle(240, 190, 7);
    const cv::Mat mask(image.size(), CV_8U, cv::Scalar(1));
    for (auto _ : state)
        benchmark::DoNotOptimize(OtsuAlgThreshold(image, mask));
}
BENCHMARK(BM_OtsuOnRegion)->Unit(benchmark::kMicrosecond);

// Texture statistics of a 200 x 150 region at 16 levels, 5 x 5 windows.
static void BM_GlcmStatisticsOnRegion(benchmark::State& state)
{
    const cv::Mat image = synth::Speckle(200, 150, 11);
    GLCM glcm;
    cv::Mat levels(image.size(), CV_8UC1);
    glcm.GrayMagnitude(image, levels, GRAY_16);
    for (auto _ : state) {
        TextureEValues values{};
        glcm.CalcuTextureEValue(levels, values, 5, GRAY_16);
        benchmark::DoNotOptimize(values);
    }
}
BENCHMARK(BM_GlcmStatisticsOnRegion)->Unit(benchmark::kMillisecond);

// Circular-order sampling of a 400-pixel outline (a 101 x 101 square).
static void BM_ContourSamplingOf400Points(benchmark::State& state)
{
    cv::Mat frame = cv::Mat::zeros(120, 120, CV_8UC1);
    cv::rectangle(frame, cv::Point(10, 10), cv::Point(110, 110), cv::Scalar(255), 1, cv::LINE_8, 0);
    for (auto _ : state) {
        PreprocessContours sampler;
        sampler._frame[1] = frame;
        std::vector<cv::Point> out;
        sampler.GetOriginalSamplePts(out);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_ContourSamplingOf400Points)->Unit(benchmark::kMicrosecond);
