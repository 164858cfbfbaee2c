// Writes the records of many calls, one line a call, so that two builds of
// the library can be compared record for record:
//
//   sonolex_records N > before.txt   (against the earlier libsonolex.so.0,
//   LD_LIBRARY_PATH=new/ sonolex_records N > after.txt    via LD_LIBRARY_PATH)
//   cmp before.txt after.txt
//
// For every entry: the typical and size-series scenes, then N calls, half
// of them synthetic scans drawn with random sizes, places, greys, outlines
// and regions, and half decoded from random bytes as the fuzz targets do.
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "fuzz_calls.h"
#include "scenes.h"

namespace {

void Print(const std::string& entry, const std::string& name, const std::vector<int32_t>& words)
{
    std::printf("%s %s", entry.c_str(), name.c_str());
    for (int32_t w : words)
        std::printf(" %d", w);
    std::printf("\n");
}

struct Drawn {
    cv::Mat image; // grey, BGR or BGRA
    std::vector<MyPoint> lesion, organ, model, vessels, inner;
    std::vector<int> modelSizes, vesselSizes;
    RoiCoor roi{0, 0, 0, 0};
    lesionAxisPointEnd axes{};
};

// A synthetic scan: a lesion of random size and shape, an organ around it,
// bright specks outlined as a model would, vessels for the carotid and a
// lumen for the gall wall, in grey or colour, with a random region.
Drawn Draw(cv::RNG& rng)
{
    Drawn d;
    const int w = rng.uniform(160, 801), h = rng.uniform(120, 601);
    cv::Mat grey = synth::Speckle(w, h, rng.next(), rng.uniform(30.0, 150.0), rng.uniform(5.0, 40.0));
    const cv::Point centre(rng.uniform(w / 4, w * 3 / 4 + 1), rng.uniform(h / 4, h * 3 / 4 + 1));
    const double a = rng.uniform(6.0, w / 3.0), b = rng.uniform(5.0, h / 3.0);
    const double grow = rng.uniform(1.05, 2.5);
    const auto organ = synth::Outline(centre, a * grow, b * grow, rng.uniform(12, 400));
    synth::PaintRegion(grey, organ, rng.uniform(40.0, 180.0), rng.next(), rng.uniform(5.0, 40.0));
    const auto lesion = synth::Outline(centre, a, b, rng.uniform(8, 400), rng.uniform(0, 7), rng.uniform(0.0, 0.15));
    synth::PaintRegion(grey, lesion, rng.uniform(10.0, 220.0), rng.next(), rng.uniform(5.0, 40.0));
    const auto inner = synth::Outline(centre + cv::Point(rng.uniform(-4, 5), rng.uniform(-4, 5)),
                                      std::max(1.0, a * grow - rng.uniform(2.0, 15.0)),
                                      std::max(1.0, b * grow - rng.uniform(2.0, 15.0)), rng.uniform(12, 360));
    if (rng.uniform(0, 2) == 0)
        synth::PaintRegion(grey, inner, rng.uniform(5.0, 40.0), rng.next(), 6.0);
    std::vector<cv::Point> specks;
    for (int k = rng.uniform(0, 30); k > 0; --k)
        specks.emplace_back(centre.x + int(rng.uniform(-a, a) * 0.7), centre.y + int(rng.uniform(-b, b) * 0.7));
    synth::PaintSpecks(grey, specks, rng.uniform(1, 3), rng.uniform(200, 256));
    for (const cv::Point& c : specks)
        scenes::AddOutline(synth::Outline(c, 2.0, 2.0, 12), d.modelSizes, d.model);
    // Vessels: the organ outline, and one or two more sections elsewhere.
    scenes::AddOutline(organ, d.vesselSizes, d.vessels);
    for (int k = rng.uniform(0, 3); k > 0; --k)
        scenes::AddOutline(synth::Outline(cv::Point(rng.uniform(0, w), rng.uniform(0, h)), rng.uniform(10.0, w / 3.0),
                                          rng.uniform(8.0, h / 4.0), rng.uniform(12, 180)),
                           d.vesselSizes, d.vessels);
    d.lesion = synth::ToMyPoints(lesion);
    d.organ = synth::ToMyPoints(organ);
    d.inner = synth::ToMyPoints(inner);
    const int region = rng.uniform(0, 4);
    if (region == 1)
        d.roi = RoiCoor{0, 0, w, h};
    else if (region >= 2)
        d.roi = scenes::RoiAround(region == 2 ? lesion : organ, rng.uniform(0, 41), cv::Size(w, h));
    const int jitter = 3;
    auto near = [&](int x, int y) { return MyPoint{x + rng.uniform(-jitter, jitter + 1), y + rng.uniform(-jitter, jitter + 1)}; };
    d.axes = {near(centre.x - int(a), centre.y), near(centre.x + int(a), centre.y), near(centre.x, centre.y - int(b)),
              near(centre.x, centre.y + int(b))};
    const int channels = rng.uniform(0, 4);
    if (channels == 1)
        cv::cvtColor(grey, d.image, cv::COLOR_GRAY2BGR);
    else if (channels == 2)
        cv::cvtColor(grey, d.image, cv::COLOR_GRAY2BGRA);
    else
        d.image = grey;
    return d;
}

std::vector<int32_t> CallDrawn(const std::string& entry, Drawn& d)
{
    const unsigned char* im = d.image.data;
    const int ch = d.image.channels(), w = d.image.cols, h = d.image.rows;
    const int nl = int(d.lesion.size());
    if (entry == "breast") {
        BreastResult r{};
        BreastDescription(im, ch, w, h, d.roi, nl, d.lesion.data(), d.axes, &r);
        return scenes::Words(r);
    }
    if (entry == "breast_model") {
        BreastResult r{};
        BreastDescriptionHaveModelProcess(im, ch, w, h, d.roi, nl, d.lesion.data(), int(d.modelSizes.size()),
                                          d.modelSizes.data(), d.model.data(), d.axes, &r);
        return scenes::Words(r);
    }
    if (entry == "thyroid") {
        ThyroidResult r{};
        ThyroidDescriptionModelAfterProcess(im, ch, w, h, int(d.organ.size()), d.organ.data(), nl, d.lesion.data(),
                                            int(d.modelSizes.size()), d.modelSizes.data(), d.model.data(), d.roi, &r);
        return scenes::Words(r);
    }
    if (entry == "liver") {
        LiverResult r{};
        LiverDescription(im, ch, w, h, d.roi, int(d.organ.size()), d.organ.data(), nl, d.lesion.data(), &r);
        return scenes::Words(r);
    }
    if (entry == "carotid") {
        PlaqueResult r{};
        CarotidPlaqueDescription(im, ch, w, h, d.roi, int(d.vesselSizes.size()), d.vesselSizes.data(),
                                 int(d.vessels.size()), d.vessels.data(), nl, d.lesion.data(), &r);
        return scenes::Words(r);
    }
    if (entry == "gallwall") {
        GallWallResult r{0, 0};
        GallWallDescription(im, ch, w, h, int(d.organ.size()), d.organ.data(), int(d.inner.size()), d.inner.data(),
                            &r);
        return scenes::Words(r);
    }
    GallBladderWallResult r{};
    GallBladderWallDescription(im, ch, w, h, d.roi, int(d.organ.size()), d.organ.data(), &r);
    return scenes::Words(r);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CALLS_PER_ENTRY\n", argv[0]);
        return 2;
    }
    const int calls = std::atoi(argv[1]);
    setenv("SONOLEX_FUZZ_LIMIT_MS", "1000000", 0);

    std::vector<scenes::Scene> fixed = scenes::Typical();
    for (int width : scenes::Widths())
        for (scenes::Scene& s : scenes::Sized(width))
            fixed.push_back(std::move(s));
    for (size_t i = 0; i < fixed.size(); ++i)
        Print(fixed[i].entry, "scene-" + std::to_string(i), fixed[i].call());

    for (const std::string& entry : fuzzcalls::EntryNames()) {
        std::mt19937 random(20261124u);
        cv::RNG rng(20261124u);
        for (int i = 0; i < calls; ++i) {
            if (i % 2 == 0) {
                Drawn d = Draw(rng);
                const cv::Mat before = d.image.clone();
                std::vector<int32_t> words = CallDrawn(entry, d);
                if (cv::norm(before, d.image, cv::NORM_INF) != 0.0)
                    words.push_back(-999999); // the call wrote into the caller's image
                Print(entry, "drawn-" + std::to_string(i), words);
                continue;
            }
            std::vector<uint8_t> bytes(256);
            for (uint8_t& b : bytes)
                b = uint8_t(random());
            Print(entry, std::to_string(i), fuzzcalls::Run(entry, bytes.data(), bytes.size()));
        }
    }
    return 0;
}
