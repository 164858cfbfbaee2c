// The benchmark scenes of every entry, shared by the timing benchmarks and
// the instruction counter. Each scene is an 800 x 600 scan (640 x 480 for
// the gall wall) drawn from fixed seeds around a lesion of a given width;
// its height is three quarters of that. `Scene::call` makes the entry's
// call once and gives the record's words.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "sonolex.h"
#include "synthetic.h"

namespace scenes {

struct Scene {
    std::string entry;
    cv::Mat image;
    std::function<std::vector<int32_t>()> call;
};

template <typename Record>
std::vector<int32_t> Words(const Record& r)
{
    std::vector<int32_t> words(sizeof r / sizeof(int32_t));
    std::memcpy(words.data(), &r, sizeof r);
    return words;
}

// The four lesion widths of the size series: 50 x 38 up to 400 x 300.
inline const std::vector<int>& Widths()
{
    static const std::vector<int> widths = {50, 100, 200, 400};
    return widths;
}

inline int HeightOf(int width) { return (width * 3 + 2) / 4; }

// The lesion's box grown by `margin` and cut to the image.
inline RoiCoor RoiAround(const std::vector<cv::Point>& outline, int margin, cv::Size image)
{
    const cv::Rect box = cv::boundingRect(outline);
    const cv::Rect grown(box.x - margin, box.y - margin, box.width + 2 * margin, box.height + 2 * margin);
    const cv::Rect cut = grown & cv::Rect(0, 0, image.width, image.height);
    return RoiCoor{cut.x, cut.y, cut.width, cut.height};
}

inline void AddOutline(const std::vector<cv::Point>& outline, std::vector<int>& sizes, std::vector<MyPoint>& points)
{
    sizes.push_back(static_cast<int>(outline.size()));
    for (const MyPoint& p : synth::ToMyPoints(outline))
        points.push_back(p);
}

// Breast: a lobulated lesion centred in the scan; with `model`, 40 bright
// specks inside it, each outlined by the model, and the lesion's box grown
// by 20 as the region. Width 200 is the typical case.
inline Scene Breast(int width, bool model)
{
    Scene s;
    s.entry = model ? "breast_model" : "breast";
    s.image = synth::Speckle(800, 600, 11);
    const int height = HeightOf(width);
    const auto outline = synth::Outline({400, 300}, width / 2.0, height / 2.0, std::max(100, 2 * width), 5, 0.06);
    synth::PaintRegion(s.image, outline, 60.0, 12, 20.0);
    std::vector<cv::Point> specks;
    std::vector<int> sizes;
    std::vector<MyPoint> points;
    if (model) {
        cv::RNG rng(13);
        for (int i = 0; i < 40; ++i)
            specks.emplace_back(400 - width * 3 / 10 + rng.uniform(0, width * 6 / 10),
                                300 - height * 4 / 15 + rng.uniform(0, height * 8 / 15));
        synth::PaintSpecks(s.image, specks, 1, 245);
        for (const cv::Point& c : specks)
            AddOutline(synth::Outline(c, 2.0, 2.0, 12), sizes, points);
    }
    const std::vector<MyPoint> lesion = synth::ToMyPoints(outline);
    const lesionAxisPointEnd axes{{400 - width / 2, 300}, {400 + width / 2, 300}, {400, 300 - height / 2},
                                  {400, 300 + height / 2}};
    const RoiCoor roi = width == 200 ? RoiCoor{280, 205, 241, 191} : RoiAround(outline, 20, s.image.size());
    const cv::Mat image = s.image;
    if (model)
        s.call = [image, lesion, sizes, points, axes, roi] {
            BreastResult r{};
            BreastDescriptionHaveModelProcess(image.data, 1, image.cols, image.rows, roi,
                                              static_cast<int>(lesion.size()), lesion.data(),
                                              static_cast<int>(sizes.size()), sizes.data(), points.data(), axes, &r);
            return Words(r);
        };
    else
        s.call = [image, lesion, axes] {
            BreastResult r{};
            BreastDescription(image.data, 1, image.cols, image.rows, RoiCoor{0, 0, 0, 0},
                              static_cast<int>(lesion.size()), lesion.data(), axes, &r);
            return Words(r);
        };
    return s;
}

inline Scene ThyroidCall(const std::string& entry, const cv::Mat& image, const std::vector<cv::Point>& gland,
                         const std::vector<cv::Point>& nodule, std::vector<int> sizes, std::vector<MyPoint> model,
                         RoiCoor roi)
{
    Scene s;
    s.entry = entry;
    s.image = image;
    std::vector<MyPoint> organ = synth::ToMyPoints(gland);
    const std::vector<MyPoint> lesion = synth::ToMyPoints(nodule);
    s.call = [image, organ, lesion, sizes, model, roi]() mutable {
        ThyroidResult r{};
        ThyroidDescriptionModelAfterProcess(image.data, 1, image.cols, image.rows, static_cast<int>(organ.size()),
                                            organ.data(), static_cast<int>(lesion.size()), lesion.data(),
                                            static_cast<int>(sizes.size()), sizes.data(), model.data(), roi, &r);
        return Words(r);
    };
    return s;
}

// Thyroid: a nodule in a gland about three times as wide (at least 400 x
// 200), five bright deposits outlined by the model. Width 120 is the
// typical case (region 160 x 130).
inline Scene Thyroid(int width)
{
    cv::Mat image = synth::Speckle(800, 600, 11, 60.0, 20.0);
    const int height = HeightOf(width);
    const auto gland = synth::Outline({400, 300}, std::min(390, std::max(200, width / 2 + 60)),
                                      std::min(290, std::max(100, height / 2 + 40)), 400);
    const auto nodule = synth::Outline({420, 300}, width / 2.0, height / 2.0, std::max(200, width), 5, 0.08);
    synth::PaintRegion(image, gland, 120.0, 12);
    synth::PaintRegion(image, nodule, 70.0, 13);
    const int dx = width / 12, dy = height / 9;
    const std::vector<cv::Point> deposits = {
        {420 - 2 * dx, 300 - dy}, {420 + dx, 300}, {420 + 2 * dx, 300 - 2 * dy}, {420 - dx, 300 + dy * 3 / 2}, {420 + 3 * dx, 300 + dy / 2}};
    synth::PaintSpecks(image, deposits, 2, 230);
    std::vector<int> sizes;
    std::vector<MyPoint> model;
    for (const cv::Point& c : deposits)
        AddOutline(synth::Outline(c, 3, 3, 12), sizes, model);
    const RoiCoor roi = width == 120 ? RoiCoor{340, 235, 160, 130} : RoiAround(nodule, 20, image.size());
    return ThyroidCall("thyroid", image, gland, nodule, sizes, model, roi);
}

// Thyroid on a 224 x 180 frame whose nodule fills the gland, so that the
// extension probing runs.
inline Scene ThyroidNarrow()
{
    cv::Mat image = synth::Speckle(224, 180, 21, 60.0, 20.0);
    const auto gland = synth::Outline({112, 90}, 90, 50, 300);
    const auto nodule = synth::Outline({112, 90}, 89, 49, 300);
    synth::PaintRegion(image, gland, 120.0, 22);
    synth::PaintRegion(image, nodule, 70.0, 23);
    return ThyroidCall("thyroid_narrow", image, gland, nodule, {}, {}, RoiCoor{10, 30, 204, 122});
}

// Liver: the organ over most of the scan, a bright lesion; the region is the
// lesion's box grown by 30. Width 150 is the typical case.
inline Scene Liver(int width)
{
    Scene s;
    s.entry = "liver";
    s.image = synth::Speckle(800, 600, 11);
    const int height = width == 150 ? 120 : HeightOf(width);
    const auto liver = synth::Outline({400, 300}, 370, 270, 360);
    const auto nodule = synth::Outline({430, 320}, width / 2.0, height / 2.0, std::max(120, width * 4 / 5), 5, 0.08);
    synth::PaintRegion(s.image, nodule, 150.0, 12);
    const std::vector<MyPoint> organ = synth::ToMyPoints(liver);
    const std::vector<MyPoint> lesion = synth::ToMyPoints(nodule);
    const RoiCoor roi = width == 150 ? RoiCoor{325, 230, 211, 181} : RoiAround(nodule, 30, s.image.size());
    const cv::Mat image = s.image;
    s.call = [image, organ, lesion, roi] {
        LiverResult r{};
        LiverDescription(image.data, 1, image.cols, image.rows, roi, static_cast<int>(organ.size()), organ.data(),
                         static_cast<int>(lesion.size()), lesion.data(), &r);
        return Words(r);
    };
    return s;
}

// Carotid: two vessel sections, a plaque on the lower wall of the second.
// Width 90 is the typical case; wider plaques get a taller second vessel.
inline Scene Carotid(int width)
{
    Scene s;
    s.entry = "carotid";
    s.image = synth::Speckle(800, 600, 11, 90.0, 25.0);
    const int height = width == 90 ? 24 : HeightOf(width);
    const bool typical = width == 90;
    const cv::Point upperCentre = typical ? cv::Point(400, 170) : cv::Point(400, 80);
    const double upperB = typical ? 40.0 : 30.0;
    const int lowerB = typical ? 40 : std::min(235, std::max(40, height / 2 + 80));
    const cv::Point lowerCentre = typical ? cv::Point(400, 420) : cv::Point(400, 360);
    const auto upper = synth::Outline(upperCentre, 150.0, upperB, 180);
    const auto lower = synth::Outline(lowerCentre, std::max(150.0, 0.6 * width), lowerB, 180);
    synth::PaintRegion(s.image, upper, 15.0, 12, 6.0);
    synth::PaintRegion(s.image, lower, 15.0, 13, 6.0);
    const auto plaque = synth::Outline({420, lowerCentre.y + lowerB - height / 2}, width / 2.0,
                                       height / 2.0, std::max(60, width * 2 / 3), 3, 0.1);
    synth::PaintRegion(s.image, plaque, 120.0, 14, 40.0);
    std::vector<int> sizes;
    std::vector<MyPoint> vessels;
    AddOutline(upper, sizes, vessels);
    AddOutline(lower, sizes, vessels);
    const std::vector<MyPoint> points = synth::ToMyPoints(plaque);
    const cv::Mat image = s.image;
    s.call = [image, sizes, vessels, points] {
        PlaqueResult r{};
        CarotidPlaqueDescription(image.data, 1, image.cols, image.rows, RoiCoor{0, 0, 0, 0},
                                 static_cast<int>(sizes.size()), sizes.data(), static_cast<int>(vessels.size()),
                                 vessels.data(), static_cast<int>(points.size()), points.data(), &r);
        return Words(r);
    };
    return s;
}

// Gall wall on a 640 x 480 scan: the outer outline `width` wide, the lumen
// 8 px shorter on each end and shifted right by 4, so the wall is 4 px on
// the right and 12 on the left. Width 300 is the typical case.
inline Scene GallWall(int width)
{
    Scene s;
    s.entry = "gallwall";
    s.image = synth::Speckle(640, 480, 11);
    const double a = width / 2.0, b = width == 300 ? 100.0 : HeightOf(width) / 2.0;
    const cv::Point centre(320, 240);
    const auto outer = synth::Outline(centre, a, b, 360);
    const auto inner = synth::Outline(centre + cv::Point(4, 0), a - 8, b - 8, 360);
    synth::PaintRegion(s.image, outer, 150.0, 12);
    synth::PaintRegion(s.image, inner, 20.0, 13, 8.0);
    const std::vector<MyPoint> outerPoints = synth::ToMyPoints(outer), innerPoints = synth::ToMyPoints(inner);
    const cv::Mat image = s.image;
    s.call = [image, outerPoints, innerPoints] {
        GallWallResult r{0, 0};
        GallWallDescription(image.data, 1, image.cols, image.rows, static_cast<int>(outerPoints.size()),
                            outerPoints.data(), static_cast<int>(innerPoints.size()), innerPoints.data(), &r);
        return Words(r);
    };
    return s;
}

// Gall bladder wall against the organ axis: an organ with a dark lumen, the
// region its box grown by 10. Width 200 is the typical case.
inline Scene GallBladder(int width)
{
    Scene s;
    s.entry = "gallbladder";
    s.image = synth::Speckle(800, 600, 21);
    const int height = HeightOf(width);
    const cv::Point centre(400, 300);
    const auto organ = synth::Outline(centre, width / 2.0, height / 2.0, 720);
    synth::PaintRegion(s.image, organ, 140.0, 22);
    synth::PaintRegion(s.image, synth::Outline(centre, width * 0.41, height * 0.39, 720), 25.0, 23, 6.0);
    const std::vector<MyPoint> points = synth::ToMyPoints(organ);
    const RoiCoor roi = RoiAround(organ, 10, s.image.size());
    const cv::Mat image = s.image;
    s.call = [image, points, roi] {
        GallBladderWallResult r{};
        GallBladderWallDescription(image.data, 1, image.cols, image.rows, roi, static_cast<int>(points.size()),
                                   points.data(), &r);
        return Words(r);
    };
    return s;
}

// The typical case of every entry, by entry name.
inline std::vector<Scene> Typical()
{
    return {Breast(200, false), Breast(200, true), Thyroid(120), ThyroidNarrow(), Liver(150),
            Carotid(90),        GallWall(300),     GallBladder(200)};
}

// Every entry at lesion width `width` (the narrow thyroid frame excepted).
inline std::vector<Scene> Sized(int width)
{
    return {Breast(width, false), Breast(width, true), Thyroid(width), Liver(width),
            Carotid(width),       GallWall(width),     GallBladder(width)};
}

} // namespace scenes
