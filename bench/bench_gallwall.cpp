// Gall bladder wall grading on a 640x480 scan: outer outline about 300x200,
// wall band from 4 to 12 pixels thick.
#include <benchmark/benchmark.h>

#include "sonolex.h"
#include "synthetic.h"

namespace {

struct GallScene {
    cv::Mat image;
    std::vector<MyPoint> outer;
    std::vector<MyPoint> inner;
};

GallScene MakeGallScene()
{
    GallScene scene;
    scene.image = synth::Speckle(640, 480, 11);
    const cv::Point centre(320, 240);
    const std::vector<cv::Point> outer = synth::Outline(centre, 150.0, 100.0, 360);
    // The lumen is shifted to the right by 4 px so the wall is 4 px on the
    // right and 12 px on the left, and it is 8 px shorter on both ends.
    const std::vector<cv::Point> inner = synth::Outline(centre + cv::Point(4, 0), 142.0, 92.0, 360);
    synth::PaintRegion(scene.image, outer, 150.0, 12);
    synth::PaintRegion(scene.image, inner, 20.0, 13, 8.0);
    scene.outer = synth::ToMyPoints(outer);
    scene.inner = synth::ToMyPoints(inner);
    return scene;
}

} // namespace

static void BM_GallWallDescription(benchmark::State& state)
{
    const GallScene scene = MakeGallScene();
    GallWallResult result{0, 0};
    for (auto _ : state) {
        GallWallDescription(scene.image.data, 1, scene.image.cols, scene.image.rows,
                            static_cast<int>(scene.outer.size()), scene.outer.data(),
                            static_cast<int>(scene.inner.size()), scene.inner.data(), &result);
        benchmark::DoNotOptimize(result);
    }
    state.counters["wall"] = result.wallVerdict;
    state.counters["thicken"] = result.thickenVerdict;
}
BENCHMARK(BM_GallWallDescription)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
