// Carotid plaque entry on an 800 x 600 scan with two vessel sections and a
// plaque on the lower wall of the second.
#include <benchmark/benchmark.h>

#include "sonolex.h"
#include "synthetic.h"

namespace {

struct CarotidScene {
    cv::Mat image;
    std::vector<int> sizes;
    std::vector<MyPoint> vessels;
    std::vector<MyPoint> plaque;
};

CarotidScene MakeScene()
{
    CarotidScene s;
    s.image = synth::Speckle(800, 600, 11, 90.0, 25.0);
    const std::vector<cv::Point> upper = synth::Outline(cv::Point(400, 170), 150.0, 40.0, 180);
    const std::vector<cv::Point> lower = synth::Outline(cv::Point(400, 420), 150.0, 40.0, 180);
    synth::PaintRegion(s.image, upper, 15.0, 12, 6.0);
    synth::PaintRegion(s.image, lower, 15.0, 13, 6.0);
    const std::vector<cv::Point> plaque = synth::Outline(cv::Point(420, 448), 45.0, 12.0, 60, 3, 0.1);
    synth::PaintRegion(s.image, plaque, 120.0, 14, 40.0);
    s.sizes = {static_cast<int>(upper.size()), static_cast<int>(lower.size())};
    for (const auto* v : {&upper, &lower})
        for (const MyPoint& p : synth::ToMyPoints(*v))
            s.vessels.push_back(p);
    s.plaque = synth::ToMyPoints(plaque);
    return s;
}

} // namespace

static void BM_CarotidPlaqueDescription(benchmark::State& state)
{
    const CarotidScene s = MakeScene();
    PlaqueResult result{};
    for (auto _ : state) {
        CarotidPlaqueDescription(s.image.data, 1, s.image.cols, s.image.rows, RoiCoor{0, 0, 0, 0},
                                 static_cast<int>(s.sizes.size()), s.sizes.data(), static_cast<int>(s.vessels.size()),
                                 s.vessels.data(), static_cast<int>(s.plaque.size()), s.plaque.data(), &result);
        benchmark::DoNotOptimize(result);
    }
    state.counters["echo"] = result.echo;
    state.counters["position"] = result.position;
    state.counters["firstX"] = result.firstX;
    state.counters["firstY"] = result.firstY;
    state.counters["secondX"] = result.secondX;
    state.counters["secondY"] = result.secondY;
}
BENCHMARK(BM_CarotidPlaqueDescription)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
