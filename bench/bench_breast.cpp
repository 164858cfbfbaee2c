// Both breast entries on an 800 x 600 speckle image with a lesion of about
// 200 x 150 pixels outlined by 400 points, plain and with bright specks.
#include <vector>

#include <benchmark/benchmark.h>

#include "sonolex.h"
#include "synthetic.h"

namespace {

struct BreastCase {
    cv::Mat image;
    std::vector<MyPoint> lesion;
    std::vector<int> modelSizes;
    std::vector<MyPoint> modelPoints;
    RoiCoor roi{280, 205, 241, 191};
    lesionAxisPointEnd axes{{300, 300}, {500, 300}, {400, 225}, {400, 375}};
};

BreastCase MakeCase(bool specks)
{
    BreastCase c;
    c.image = synth::Speckle(800, 600, 11);
    const std::vector<cv::Point> outline = synth::Outline(cv::Point(400, 300), 100, 75, 400, 5, 0.06);
    synth::PaintRegion(c.image, outline, 60.0, 12, 20.0);
    c.lesion = synth::ToMyPoints(outline);
    std::vector<cv::Point> centres;
    if (specks) {
        cv::RNG rng(13);
        for (int i = 0; i < 40; ++i)
            centres.emplace_back(340 + rng.uniform(0, 120), 260 + rng.uniform(0, 80));
        synth::PaintSpecks(c.image, centres, 1, 245);
    }
    for (const cv::Point& centre : centres) {
        const std::vector<cv::Point> region = synth::Outline(centre, 2.0, 2.0, 12);
        c.modelSizes.push_back(static_cast<int>(region.size()));
        for (const cv::Point& p : region)
            c.modelPoints.push_back(MyPoint{p.x, p.y});
    }
    return c;
}

void RunDescription(benchmark::State& state, bool specks)
{
    const BreastCase c = MakeCase(specks);
    BreastResult result{};
    for (auto _ : state) {
        BreastDescription(c.image.data, 1, c.image.cols, c.image.rows, RoiCoor{0, 0, 0, 0},
                          static_cast<int>(c.lesion.size()), c.lesion.data(), c.axes, &result);
        benchmark::DoNotOptimize(result);
    }
}

void RunWithModel(benchmark::State& state, bool specks)
{
    const BreastCase c = MakeCase(specks);
    BreastResult result{};
    for (auto _ : state) {
        BreastDescriptionHaveModelProcess(c.image.data, 1, c.image.cols, c.image.rows, c.roi,
                                          static_cast<int>(c.lesion.size()), c.lesion.data(),
                                          static_cast<int>(c.modelSizes.size()), c.modelSizes.data(),
                                          c.modelPoints.data(), c.axes, &result);
        benchmark::DoNotOptimize(result);
    }
}

void BM_BreastDescription(benchmark::State& state) { RunDescription(state, false); }
void BM_BreastDescriptionSpecks(benchmark::State& state) { RunDescription(state, true); }
void BM_BreastWithModel(benchmark::State& state) { RunWithModel(state, false); }
void BM_BreastWithModelSpecks(benchmark::State& state) { RunWithModel(state, true); }

} // namespace

BENCHMARK(BM_BreastDescription)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BreastDescriptionSpecks)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BreastWithModel)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BreastWithModelSpecks)->Unit(benchmark::kMillisecond);
