// Every entry on its typical scene, and at four lesion sizes (50 x 38 to
// 400 x 300) to show how the cost grows with the region.
#include <benchmark/benchmark.h>

#include "scenes.h"

namespace {

void RunScene(benchmark::State& state, const scenes::Scene& scene)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(scene.call());
}

void RegisterAll()
{
    for (const scenes::Scene& scene : scenes::Typical())
        benchmark::RegisterBenchmark(("BM_Typical/" + scene.entry).c_str(), RunScene, scene)
            ->Unit(benchmark::kMillisecond)
            ->Repetitions(5)
            ->ReportAggregatesOnly(true);
    for (int width : scenes::Widths())
        for (const scenes::Scene& scene : scenes::Sized(width))
            benchmark::RegisterBenchmark(("BM_Size/" + scene.entry + "/" + std::to_string(width)).c_str(), RunScene,
                                         scene)
                ->Unit(benchmark::kMillisecond)
                ->Repetitions(3)
                ->ReportAggregatesOnly(true);
}

const int registered = (RegisterAll(), 0);

} // namespace
