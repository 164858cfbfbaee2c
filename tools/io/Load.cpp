// A case from the files a command line or a manifest row names.
#include <chrono>
#include <sstream>

#include "sonolex_io.h"

namespace sonolex_io {

namespace {

std::vector<int> Numbers(const std::string& text, size_t count, const std::string& what, const char* form)
{
    std::vector<int> values;
    std::stringstream in(text);
    std::string item;
    while (std::getline(in, item, ',')) {
        try {
            size_t used = 0;
            values.push_back(std::stoi(item, &used));
            if (item.find_first_not_of(" \t", used) != std::string::npos)
                throw std::invalid_argument(item);
        } catch (const std::exception&) {
            values.clear();
            break;
        }
    }
    if (values.size() != count)
        throw InputError(ErrorKind::Usage, what, "\"" + text + "\" is not " + form);
    return values;
}

std::vector<Outline> MaskOutlines(const std::string& path, cv::Size size, int label)
{
    const cv::Mat labels = ReadMask(path, size);
    std::vector<Outline> outlines = ComponentOutlines(SelectLabel(labels, label));
    if (outlines.empty())
        throw InputError(ErrorKind::EmptyMask, path,
                         label < 0 ? "the mask is empty (no non-zero pixel)"
                                   : "the mask has no pixel of label " + std::to_string(label));
    return outlines;
}

} // namespace

cv::Rect ParseRoi(const std::string& text, const std::string& what)
{
    const std::vector<int> v = Numbers(text, 4, what, "x,y,width,height");
    return cv::Rect(v[0], v[1], v[2], v[3]);
}

lesionAxisPointEnd ParseAxes(const std::string& text, const std::string& what)
{
    const std::vector<int> v = Numbers(text, 8, what, "x1,y1,x2,y2,x3,y3,x4,y4 (long axis, then short)");
    return lesionAxisPointEnd{{v[0], v[1]}, {v[2], v[3]}, {v[4], v[5]}, {v[6], v[7]}};
}

Loaded Load(const Sources& s)
{
    const auto start = std::chrono::steady_clock::now();
    const std::optional<Organ> organ = OrganFromName(s.organ);
    if (!organ)
        throw InputError(ErrorKind::Usage, "--organ", "\"" + s.organ + "\" is not an organ this library describes");
    if (s.mask.empty() == s.outline.empty())
        throw InputError(ErrorKind::Usage, s.image, "give either a mask or an outline (--outline), not both or neither");
    Loaded loaded;
    loaded.image = ReadImage(s.image, s.frame);
    const cv::Size size = loaded.image.size();

    Case base;
    base.organ = *organ;
    base.image = loaded.image;
    base.roi = s.roi;
    base.axes = s.axes;
    if (!s.organ_mask.empty()) {
        base.organ_outlines = MaskOutlines(s.organ_mask, size, -1);
        base.organ_given = true;
        if (*organ != Organ::Carotid)
            base.organ_outlines.resize(1); // the largest: one gland, liver or gall bladder
    }
    if (!s.model_mask.empty()) {
        const cv::Mat labels = ReadMask(s.model_mask, size);
        base.model = ComponentOutlines(SelectLabel(labels, -1));
        base.model_given = true;
    }

    std::vector<Outline> lesions;
    if (!s.outline.empty()) {
        lesions.push_back(ReadOutlineJson(s.outline));
    } else if (*organ == Organ::GallWall && !base.organ_given) {
        // A wall mask: its outer outline and the lumen inside it.
        const cv::Mat wall = SelectLabel(ReadMask(s.mask, size), s.label);
        const std::vector<Outline> outer = ComponentOutlines(wall);
        if (outer.empty())
            throw InputError(ErrorKind::EmptyMask, s.mask, "the wall mask is empty");
        Outline lumen = LargestHole(wall);
        if (lumen.empty())
            throw InputError(ErrorKind::EmptyMask, s.mask,
                             "the wall mask encloses no lumen; give the outer outline with --organ-mask");
        base.organ_outlines = {outer.front()};
        lesions.push_back(lumen);
    } else {
        lesions = MaskOutlines(s.mask, size, s.label);
        if (!s.all_components)
            lesions.resize(1);
    }
    loaded.decode_seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    for (Outline& lesion : lesions) {
        Case c = base;
        c.lesion = std::move(lesion);
        loaded.cases.push_back(std::move(c));
    }
    return loaded;
}

} // namespace sonolex_io
