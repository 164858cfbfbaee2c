// Shared numeric helpers on a region of typical size.
#include <benchmark/benchmark.h>

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
