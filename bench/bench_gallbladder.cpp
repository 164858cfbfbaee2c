// Gall bladder wall against the organ axis: the level set on a 102 x 80
// region (the working width), and the whole wall measure on an organ at that
// scale, given as it is (arg 0) or from a 204 x 160 region scaled down (arg 1).
#include <benchmark/benchmark.h>

#include "BusFeature/BusFeature.h"
#include "FeatureDescription/Description.h"
#include "LocalBinaryFitting/LBF.h"
#include "synthetic.h"

namespace {

struct OrganScene {
    cv::Mat region;
    cv::Mat mask;
    std::vector<cv::Point> outline;
};

// A dark lumen inside an ellipse of organ tissue filling most of the region.
OrganScene MakeOrganScene(int width, int height)
{
    OrganScene scene;
    scene.region = synth::Speckle(width, height, 21);
    const cv::Point centre(width / 2, height / 2);
    scene.outline = synth::Outline(centre, width * 0.40, height * 0.35, 720);
    synth::PaintRegion(scene.region, scene.outline, 140.0, 22);
    synth::PaintRegion(scene.region, synth::Outline(centre, width * 0.33, height * 0.27, 720), 25.0, 23, 6.0);
    scene.mask = cv::Mat::zeros(height, width, CV_8UC1);
    cv::drawContours(scene.mask, std::vector<std::vector<cv::Point>>{scene.outline}, 0, cv::Scalar(255), cv::FILLED,
                     cv::LINE_8);
    return scene;
}

} // namespace

static void BM_RunLBF(benchmark::State& state)
{
    const OrganScene scene = MakeOrganScene(102, 80);
    LBF lbf;
    for (auto _ : state) {
        std::vector<cv::Point> out;
        lbf.RunLBF(scene.region, scene.mask, out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(BM_RunLBF)->Unit(benchmark::kMillisecond);

static void BM_CalcGallBladderWall(benchmark::State& state)
{
    const bool resized = state.range(0) != 0;
    const OrganScene scene = resized ? MakeOrganScene(204, 160) : MakeOrganScene(102, 80);
    BUSFeature feature(scene.region, scene.region.cols, scene.region.rows);
    feature.m_organMaskB = scene.mask;
    feature.m_organCont3 = scene.outline;
    // The long axis through the middle, end to end of the organ.
    const int y = scene.region.rows / 2;
    const cv::Point axis[2] = {cv::Point(scene.region.cols / 10, y), cv::Point(scene.region.cols * 9 / 10, y)};
    cv::Mat sized;
    if (resized)
        cv::resize(scene.region, sized, cv::Size(102, 80), 0, 0, cv::INTER_LINEAR);
    int verdict = 0;
    for (auto _ : state) {
        Description description(scene.region, scene.region, cv::Rect(0, 0, scene.region.cols, scene.region.rows));
        if (resized)
            description.SetNewSize(sized);
        description.SetAxisPts(axis);
        verdict = description.CalcGallBladderWall(feature, resized);
        benchmark::DoNotOptimize(verdict);
    }
    state.counters["verdict"] = verdict;
}
BENCHMARK(BM_CalcGallBladderWall)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
