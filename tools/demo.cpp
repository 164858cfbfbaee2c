// Describes synthetic B-mode samples drawn in code, one per entry point, and
// prints every record field with its name and what its value means.
#include <cstdio>
#include <string>
#include <vector>

#include "sonolex.h"
#include "synthetic.h"

namespace {

struct Field {
    const char* name;
    int value;
    std::vector<const char*> meanings; // indexed by value
    const char* note = nullptr;         // for a measured number instead
};

void Print(const char* title, const std::vector<Field>& fields)
{
    std::printf("\n%s\n", title);
    for (const Field& f : fields) {
        const char* meaning = f.note != nullptr ? f.note : "";
        if (f.note == nullptr)
            meaning = (f.value >= 0 && static_cast<size_t>(f.value) < f.meanings.size()) ? f.meanings[f.value]
                                                                                       : "(outside the table)";
        std::printf("  %-15s %6d  %s\n", f.name, f.value, meaning);
    }
}

struct Flat {
    std::vector<int> sizes;
    std::vector<MyPoint> points;
    void Add(const std::vector<cv::Point>& outline)
    {
        sizes.push_back(static_cast<int>(outline.size()));
        for (const cv::Point& p : outline)
            points.push_back(MyPoint{p.x, p.y});
    }
};

const std::vector<const char*> kBreastShape{"not reached", "oval or elongated, few shallow indentations",
                                            "round or oval, no indentation", "irregular"};
const std::vector<const char*> kBreastOrientation{"degenerate axes", "parallel to the skin", "not parallel"};
const std::vector<const char*> kBreastEcho{"not reached", "anechoic or uniform", "heterogeneous or mixed"};
const std::vector<const char*> kBreastBoundary{"not reached", "abrupt interface", "indistinct or halo"};
const std::vector<const char*> kBreastMargin{"not reached", "circumscribed", "not circumscribed"};
const std::vector<const char*> kBreastCalcification{"not reached", "none", "coarse", "microcalcification"};

void PrintBreast(const char* title, const BreastResult& r)
{
    Print(title, {{"shape", r.shape, kBreastShape},
                  {"orientation", r.orientation, kBreastOrientation},
                  {"echo", r.echo, kBreastEcho},
                  {"boundary", r.boundary, kBreastBoundary},
                  {"margin", r.margin, kBreastMargin},
                  {"calcification", r.calcification, kBreastCalcification}});
}

void BreastSamples()
{
    // A smooth dark oval, wider than tall.
    cv::Mat image = synth::Speckle(800, 600, 11, 110.0);
    const auto oval = synth::Outline({400, 280}, 100, 75, 400);
    synth::PaintRegion(image, oval, 35.0, 12, 12.0);
    const auto lesion = synth::ToMyPoints(oval);
    const lesionAxisPointEnd axis{{300, 280}, {500, 280}, {400, 205}, {400, 355}};
    BreastResult r;
    BreastDescription(image.data, 1, image.cols, image.rows, RoiCoor{0, 0, 0, 0}, static_cast<int>(lesion.size()),
                      lesion.data(), axis, &r);
    PrintBreast("Breast lesion, smooth hypoechoic oval of 200 x 150 px (BreastDescription, region derived):", r);

    // A lobulated lesion, taller than wide, with bright specks inside.
    cv::Mat specked = synth::Speckle(800, 600, 13, 110.0);
    const auto lobes = synth::Outline({400, 300}, 70, 100, 400, 7, 0.18);
    synth::PaintRegion(specked, lobes, 45.0, 14, 3.0);
    std::vector<cv::Point> specks;
    Flat model;
    for (int i = 0; i < 12; ++i) {
        const cv::Point c(370 + (i % 4) * 20, 260 + (i / 4) * 30);
        specks.push_back(c);
        model.Add(synth::Outline(c, 3, 3, 12));
    }
    synth::PaintSpecks(specked, specks, 3);
    const auto lobed = synth::ToMyPoints(lobes);
    const lesionAxisPointEnd upright{{400, 195}, {405, 405}, {325, 300}, {475, 300}};
    BreastDescription(specked.data, 1, specked.cols, specked.rows, RoiCoor{0, 0, 0, 0},
                      static_cast<int>(lobed.size()), lobed.data(), upright, &r);
    PrintBreast("Breast lesion, lobulated, taller than wide, even dark echo with twelve bright specks (BreastDescription):", r);
    BreastDescriptionHaveModelProcess(specked.data, 1, specked.cols, specked.rows, RoiCoor{300, 170, 200, 260},
                                      static_cast<int>(lobed.size()), lobed.data(),
                                      static_cast<int>(model.sizes.size()), model.sizes.data(), model.points.data(),
                                      upright, &r);
    PrintBreast("The same lesion with the host model's twelve speck regions (BreastDescriptionHaveModelProcess):", r);
}

void LiverSample()
{
    cv::Mat image = synth::Speckle(800, 600, 21, 40.0);
    const auto liver = synth::Outline({400, 300}, 370, 270, 600);
    synth::PaintRegion(image, liver, 100.0, 22);
    const auto lesionOutline = synth::Outline({420, 280}, 75, 60, 300, 6, 0.06);
    synth::PaintRegion(image, lesionOutline, 175.0, 23, 40.0);
    const auto organ = synth::ToMyPoints(liver);
    const auto lesion = synth::ToMyPoints(lesionOutline);
    LiverResult r;
    LiverDescription(image.data, 1, image.cols, image.rows, RoiCoor{300, 180, 240, 200},
                     static_cast<int>(organ.size()), organ.data(), static_cast<int>(lesion.size()), lesion.data(),
                     &r);
    Print("Liver lesion, bright and slightly lobulated, 150 x 120 px (LiverDescription):",
          {{"shape", r.shape, {"not reached", "regular outline", "irregular outline"}},
           {"echo", r.echo, {"not reached", "hypoechoic", "isoechoic", "hyperechoic", "markedly hyperechoic"}},
           {"boundary", r.boundary, {"not reached", "clear border", "unclear border"}},
           {"echoTexture", r.echoTexture, {"not reached", "homogeneous", "heterogeneous"}}});
}

void ThyroidSample()
{
    cv::Mat image = synth::Speckle(800, 600, 31, 60.0);
    const auto gland = synth::Outline({400, 300}, 200, 100, 360);
    const auto nodule = synth::Outline({380, 300}, 60, 45, 240, 5, 0.08);
    synth::PaintRegion(image, gland, 130.0, 32);
    synth::PaintRegion(image, nodule, 70.0, 33);
    Flat model;
    for (const cv::Point c : {cv::Point(360, 290), cv::Point(395, 310), cv::Point(370, 320)}) {
        synth::PaintSpecks(image, {c}, 2);
        model.Add(synth::Outline(c, 3, 3, 12));
    }
    auto organ = synth::ToMyPoints(gland);
    const auto lesion = synth::ToMyPoints(nodule);
    ThyroidResult r;
    ThyroidDescriptionModelAfterProcess(image.data, 1, image.cols, image.rows, static_cast<int>(organ.size()),
                                        organ.data(), static_cast<int>(lesion.size()), lesion.data(),
                                        static_cast<int>(model.sizes.size()), model.sizes.data(), model.points.data(),
                                        RoiCoor{190, 190, 420, 220}, &r);
    Print("Thyroid nodule, 120 x 90 px, with three bright deposits the host's model found "
          "(ThyroidDescriptionModelAfterProcess):",
          {{"shape", r.shape, {"wider than tall", "not wider than tall"}},
           {"echo", r.echo, {"anechoic", "hyperechoic", "isoechoic", "hypoechoic", "markedly hypoechoic"}},
           {"margin", r.margin, {"smooth, sharp step", "smooth, soft step", "irregular", "lobulated",
                                 "extrathyroidal extension"}},
           {"calcification", r.calcification, {"none", "macrocalcification", "microcalcification"}}});
}

void CarotidSample()
{
    cv::Mat image = synth::Speckle(800, 600, 41, 100.0);
    const auto upper = synth::Outline({400, 200}, 150, 40, 300);
    const auto lower = synth::Outline({400, 420}, 150, 40, 300);
    synth::PaintRegion(image, upper, 15.0, 42, 8.0);
    synth::PaintRegion(image, lower, 15.0, 43, 8.0);
    const auto plaque = synth::Outline({400, 232}, 30, 8, 80);
    synth::PaintRegion(image, plaque, 150.0, 44);
    Flat vessels;
    vessels.Add(upper);
    vessels.Add(lower);
    const auto lesion = synth::ToMyPoints(plaque);
    PlaqueResult r{};
    r.reserved = 12345;
    CarotidPlaqueDescription(image.data, 1, image.cols, image.rows, RoiCoor{0, 0, 0, 0}, 2, vessels.sizes.data(),
                             static_cast<int>(vessels.points.size()), vessels.points.data(),
                             static_cast<int>(lesion.size()), lesion.data(), &r);
    Print("Carotid plaque on the far wall of the upper of two vessels (CarotidPlaqueDescription):",
          {{"position", r.position, {"not reached", "near (upper) wall", "far (lower) wall", "side wall"}},
           {"echo", r.echo, {"not reached", "low echo", "uniformly bright", "mixed echo"}},
           {"reserved", r.reserved, {}, "never written: the host's value stays"},
           {"firstX", r.firstX, {}, "first end of the vessel's inner diameter, column"},
           {"firstY", r.firstY, {}, "first end, row"},
           {"secondX", r.secondX, {}, "second end, column"},
           {"secondY", r.secondY, {}, "second end, row"}});
}

void GallWallSample()
{
    cv::Mat image = synth::Speckle(640, 480, 51, 90.0);
    const auto outer = synth::Outline({320, 240}, 150, 100, 500);
    const auto lumen = synth::Outline({320, 242}, 140, 91, 400);
    synth::PaintRegion(image, outer, 170.0, 52);
    synth::PaintRegion(image, lumen, 10.0, 53, 6.0);
    const auto o = synth::ToMyPoints(outer);
    const auto i = synth::ToMyPoints(lumen);
    GallWallResult r{};
    GallWallDescription(image.data, 1, image.cols, image.rows, static_cast<int>(o.size()), o.data(),
                        static_cast<int>(i.size()), i.data(), &r);
    Print("Gall bladder with a wall of about 9 px (GallWallDescription):",
          {{"wallVerdict", r.wallVerdict, {"not reached", "normal wall", "abnormal wall"}},
           {"thickenVerdict", r.thickenVerdict, {"(host's value)", "no thickening", "diffuse thickening",
                                                 "focal thickening"}}});
}

} // namespace

int main()
{
    std::printf("sonolex: synthetic B-mode samples, drawn in code from fixed seeds.\n"
                "0 in a field means the call did not reach that verdict, unless its table gives 0 a meaning.\n");
    BreastSamples();
    ThyroidSample();
    LiverSample();
    CarotidSample();
    GallWallSample();
    return 0;
}
