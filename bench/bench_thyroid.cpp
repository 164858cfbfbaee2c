// The thyroid entry on a typical frame and on a narrow frame that runs the
// extrathyroidal extension probing.
#include <benchmark/benchmark.h>

#include "sonolex.h"
#include "synthetic.h"

namespace {

struct Frame {
    cv::Mat image;
    std::vector<MyPoint> organ;
    std::vector<MyPoint> lesion;
    std::vector<int> sizes;
    std::vector<MyPoint> model;
    RoiCoor roi;
};

// 800 x 600: gland about 400 x 200, nodule about 120 x 90 with five bright
// deposits outlined by the model.
Frame Typical()
{
    Frame f;
    f.image = synth::Speckle(800, 600, 11, 60.0, 20.0);
    const auto gland = synth::Outline({400, 300}, 200, 100, 400);
    const auto nodule = synth::Outline({420, 300}, 60, 45, 200, 5, 0.08);
    synth::PaintRegion(f.image, gland, 120.0, 12);
    synth::PaintRegion(f.image, nodule, 70.0, 13);
    const std::vector<cv::Point> deposits = {{400, 290}, {430, 300}, {440, 280}, {410, 315}, {450, 305}};
    synth::PaintSpecks(f.image, deposits, 2, 230);
    f.organ = synth::ToMyPoints(gland);
    f.lesion = synth::ToMyPoints(nodule);
    for (const cv::Point& c : deposits) {
        const auto outline = synth::ToMyPoints(synth::Outline(c, 3, 3, 12));
        f.sizes.push_back(static_cast<int>(outline.size()));
        f.model.insert(f.model.end(), outline.begin(), outline.end());
    }
    f.roi = RoiCoor{340, 235, 160, 130};
    return f;
}

// 224 x 180: a nodule filling the gland, so the overlap test at the
// 220-column working scale passes and the radial probing runs.
Frame Narrow()
{
    Frame f;
    f.image = synth::Speckle(224, 180, 21, 60.0, 20.0);
    const auto gland = synth::Outline({112, 90}, 90, 50, 300);
    const auto nodule = synth::Outline({112, 90}, 89, 49, 300);
    synth::PaintRegion(f.image, gland, 120.0, 22);
    synth::PaintRegion(f.image, nodule, 70.0, 23);
    f.organ = synth::ToMyPoints(gland);
    f.lesion = synth::ToMyPoints(nodule);
    f.roi = RoiCoor{10, 30, 204, 122};
    return f;
}

void Run(benchmark::State& state, Frame f)
{
    for (auto _ : state) {
        ThyroidResult r{};
        ThyroidDescriptionModelAfterProcess(f.image.data, 1, f.image.cols, f.image.rows,
                                            static_cast<int>(f.organ.size()), f.organ.data(),
                                            static_cast<int>(f.lesion.size()), f.lesion.data(),
                                            static_cast<int>(f.sizes.size()), f.sizes.data(), f.model.data(), f.roi,
                                            &r);
        benchmark::DoNotOptimize(r);
    }
}

void BM_ThyroidTypicalFrame(benchmark::State& state) { Run(state, Typical()); }
void BM_ThyroidNarrowFrameWithExtension(benchmark::State& state) { Run(state, Narrow()); }

} // namespace

BENCHMARK(BM_ThyroidTypicalFrame)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ThyroidNarrowFrameWithExtension)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
