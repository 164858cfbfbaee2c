// Writes synthetic B-mode cases as the program reads them: a scan, a lesion
// mask, organ and model masks where the organ takes them, and cases.csv
// listing them. Everything is drawn in code from fixed seeds.
#include <cstdio>
#include <fstream>
#include <string>
#include <sys/stat.h>

#include <opencv2/imgcodecs.hpp>

#include "synthetic.h"

namespace {

using Outline = std::vector<cv::Point>;

cv::Mat Filled(cv::Size size, const std::vector<Outline>& outlines)
{
    cv::Mat mask = cv::Mat::zeros(size, CV_8U);
    cv::fillPoly(mask, outlines, cv::Scalar(255), cv::LINE_8);
    return mask;
}

struct Writer {
    std::string dir;
    std::ofstream manifest;
    explicit Writer(const std::string& d) : dir(d), manifest(d + "/cases.csv")
    {
        manifest << "Image,Mask,Organ,OrganMask,ModelMask,Roi,Case\n";
    }
    std::string Save(const std::string& name, const cv::Mat& image)
    {
        if (!cv::imwrite(dir + "/" + name, image))
            throw std::runtime_error("cannot write " + dir + "/" + name);
        return name;
    }
    void Row(const std::string& image, const std::string& mask, const char* organ, const std::string& organMask,
             const std::string& modelMask, const std::string& roi, const std::string& what)
    {
        manifest << image << ',' << mask << ',' << organ << ',' << organMask << ',' << modelMask << ",\"" << roi
                 << "\",\"" << what << "\"\n";
    }
};

void Breast(Writer& w)
{
    cv::Mat image = synth::Speckle(800, 600, 11, 110.0);
    const Outline oval = synth::Outline({400, 280}, 100, 75, 400);
    synth::PaintRegion(image, oval, 35.0, 12, 12.0);
    w.Row(w.Save("breast-oval.png", image), w.Save("breast-oval-mask.png", Filled(image.size(), {oval})), "breast",
          "", "", "", "smooth hypoechoic oval, 200 x 150 px");

    cv::Mat specked = synth::Speckle(800, 600, 13, 110.0);
    const Outline lobes = synth::Outline({400, 300}, 70, 100, 400, 7, 0.18);
    synth::PaintRegion(specked, lobes, 45.0, 14, 3.0);
    std::vector<cv::Point> specks;
    std::vector<Outline> model;
    for (int i = 0; i < 12; ++i) {
        const cv::Point c(370 + (i % 4) * 20, 260 + (i / 4) * 30);
        specks.push_back(c);
        model.push_back(synth::Outline(c, 3, 3, 12));
    }
    synth::PaintSpecks(specked, specks, 3);
    const std::string scan = w.Save("breast-lobulated.png", specked);
    const std::string mask = w.Save("breast-lobulated-mask.png", Filled(specked.size(), {lobes}));
    w.Row(scan, mask, "breast", "", "", "", "lobulated, taller than wide, twelve bright specks");
    w.Row(scan, mask, "breast", "", w.Save("breast-lobulated-model.png", Filled(specked.size(), model)), "",
          "the same with the host model's twelve speck regions");
}

void Thyroid(Writer& w)
{
    cv::Mat image = synth::Speckle(800, 600, 31, 60.0);
    const Outline gland = synth::Outline({400, 300}, 200, 100, 360);
    const Outline nodule = synth::Outline({380, 300}, 60, 45, 240, 5, 0.08);
    synth::PaintRegion(image, gland, 130.0, 32);
    synth::PaintRegion(image, nodule, 70.0, 33);
    std::vector<Outline> model;
    for (const cv::Point c : {cv::Point(360, 290), cv::Point(395, 310), cv::Point(370, 320)}) {
        synth::PaintSpecks(image, {c}, 2);
        model.push_back(synth::Outline(c, 3, 3, 12));
    }
    w.Row(w.Save("thyroid.png", image), w.Save("thyroid-mask.png", Filled(image.size(), {nodule})), "thyroid",
          w.Save("thyroid-gland.png", Filled(image.size(), {gland})),
          w.Save("thyroid-model.png", Filled(image.size(), model)), "190,190,420,220",
          "nodule 120 x 90 px with three bright deposits the model found");
}

void Liver(Writer& w)
{
    cv::Mat image = synth::Speckle(800, 600, 21, 40.0);
    const Outline liver = synth::Outline({400, 300}, 370, 270, 600);
    synth::PaintRegion(image, liver, 100.0, 22);
    const Outline lesion = synth::Outline({420, 280}, 75, 60, 300, 6, 0.06);
    synth::PaintRegion(image, lesion, 175.0, 23, 40.0);
    w.Row(w.Save("liver.png", image), w.Save("liver-mask.png", Filled(image.size(), {lesion})), "liver",
          w.Save("liver-organ.png", Filled(image.size(), {liver})), "", "300,180,240,200",
          "bright, slightly lobulated lesion, 150 x 120 px");
}

void Carotid(Writer& w)
{
    cv::Mat image = synth::Speckle(800, 600, 41, 100.0);
    const Outline upper = synth::Outline({400, 200}, 150, 40, 300);
    const Outline lower = synth::Outline({400, 420}, 150, 40, 300);
    synth::PaintRegion(image, upper, 15.0, 42, 8.0);
    synth::PaintRegion(image, lower, 15.0, 43, 8.0);
    const Outline plaque = synth::Outline({400, 232}, 30, 8, 80);
    synth::PaintRegion(image, plaque, 150.0, 44);
    w.Row(w.Save("carotid.png", image), w.Save("carotid-mask.png", Filled(image.size(), {plaque})), "carotid",
          w.Save("carotid-vessels.png", Filled(image.size(), {upper, lower})), "", "",
          "plaque on the far wall of the upper of two vessels");
}

void GallWall(Writer& w)
{
    cv::Mat image = synth::Speckle(640, 480, 51, 90.0);
    const Outline outer = synth::Outline({320, 240}, 150, 100, 500);
    const Outline lumen = synth::Outline({320, 242}, 140, 91, 400);
    synth::PaintRegion(image, outer, 170.0, 52);
    synth::PaintRegion(image, lumen, 10.0, 53, 6.0);
    const cv::Mat wall = Filled(image.size(), {outer}) - Filled(image.size(), {lumen});
    w.Row(w.Save("gallwall.png", image), w.Save("gallwall-mask.png", wall), "gallwall", "", "", "",
          "gall bladder with a wall of about 9 px");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: sonolex_demo_cases DIR\n");
        return 2;
    }
    const std::string dir = argv[1];
    mkdir(dir.c_str(), 0777);
    try {
        Writer w(dir);
        Breast(w);
        Thyroid(w);
        Liver(w);
        Carotid(w);
        GallWall(w);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "sonolex_demo_cases: %s\n", e.what());
        return 1;
    }
    std::printf("synthetic cases written to %s (cases.csv lists them)\n", dir.c_str());
    return 0;
}
