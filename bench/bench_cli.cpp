// A case as the sonolex program handles it: an 800 x 600 PNG scan and its
// lesion mask decoded, the outline taken from the mask, the region and axes
// derived, and BreastDescription called; and the decoding alone.
#include <cstdlib>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>
#include <opencv2/imgcodecs.hpp>

#include "io/sonolex_io.h"
#include "synthetic.h"

namespace {

struct Files {
    std::string dir, scan, mask;
    ~Files() { std::filesystem::remove_all(dir); }
    Files()
    {
        char pattern[] = "/tmp/sonolex-bench-XXXXXX";
        dir = mkdtemp(pattern);
        cv::Mat image = synth::Speckle(800, 600, 11);
        const std::vector<cv::Point> outline = synth::Outline(cv::Point(400, 300), 100, 75, 400, 5, 0.06);
        synth::PaintRegion(image, outline, 60.0, 12, 20.0);
        cv::Mat mask = cv::Mat::zeros(image.size(), CV_8U);
        cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{outline}, cv::Scalar(255), cv::LINE_8);
        scan = dir + "/scan.png";
        this->mask = dir + "/mask.png";
        cv::imwrite(scan, image);
        cv::imwrite(this->mask, mask);
    }
};

const Files& TheFiles()
{
    static const Files files;
    return files;
}

void BM_ProgramCaseBreastPng(benchmark::State& state)
{
    sonolex_io::Sources s;
    s.image = TheFiles().scan;
    s.mask = TheFiles().mask;
    s.organ = "breast";
    for (auto _ : state) {
        const sonolex_io::Loaded loaded = sonolex_io::Load(s);
        benchmark::DoNotOptimize(sonolex_io::Describe(loaded.cases.front()));
    }
}
BENCHMARK(BM_ProgramCaseBreastPng)->Unit(benchmark::kMillisecond);

void BM_ProgramDecodeOnly(benchmark::State& state)
{
    sonolex_io::Sources s;
    s.image = TheFiles().scan;
    s.mask = TheFiles().mask;
    s.organ = "breast";
    for (auto _ : state)
        benchmark::DoNotOptimize(sonolex_io::Load(s));
}
BENCHMARK(BM_ProgramDecodeOnly)->Unit(benchmark::kMillisecond);

} // namespace
