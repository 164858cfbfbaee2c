// LiverDescription on a typical scan: 800 x 600 speckle, a liver outline
// over most of the image, a lesion of about 150 x 120 pixels.
#include <benchmark/benchmark.h>

#include "sonolex.h"
#include "synthetic.h"

static void BM_LiverDescription(benchmark::State& state)
{
    cv::Mat image = synth::Speckle(800, 600, 11);
    const std::vector<cv::Point> liver = synth::Outline(cv::Point(400, 300), 370, 270, 360);
    const std::vector<cv::Point> lesion = synth::Outline(cv::Point(430, 320), 75, 60, 120, 5, 0.08);
    synth::PaintRegion(image, lesion, 150.0, 12);
    const std::vector<MyPoint> organPoints = synth::ToMyPoints(liver);
    const std::vector<MyPoint> lesionPoints = synth::ToMyPoints(lesion);
    // The lesion's bounding box (355..505, 260..380) with a margin of 30.
    const RoiCoor roi{325, 230, 211, 181};
    LiverResult result{};
    for (auto _ : state) {
        LiverDescription(image.data, 1, image.cols, image.rows, roi, static_cast<int>(organPoints.size()),
                         organPoints.data(), static_cast<int>(lesionPoints.size()), lesionPoints.data(), &result);
        benchmark::DoNotOptimize(result);
    }
    if (result.echo == 0 || result.echoTexture == 0)
        state.SkipWithError("the call did not reach every verdict");
}
BENCHMARK(BM_LiverDescription)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
