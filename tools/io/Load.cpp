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

std::vector<Outline> MaskOutlines(const cv::Mat& labels, const std::string& name, int label)
{
    std::vector<Outline> outlines = ComponentOutlines(SelectLabel(labels, label));
    if (outlines.empty())
        throw InputError(ErrorKind::EmptyMask, name,
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

std::vector<Case> CasesFromMasks(Organ organ, const cv::Mat& image, const Masks& m)
{
    Case base;
    base.organ = organ;
    base.image = image;
    base.roi = m.roi;
    base.axes = m.axes;
    if (!m.organ.empty()) {
        base.organ_outlines = MaskOutlines(m.organ, m.organ_name, -1);
        base.organ_given = true;
        if (organ != Organ::Carotid)
            base.organ_outlines.resize(1); // the largest: one gland, liver or gall bladder
    } else if (!m.organ_outlines.empty()) {
        base.organ_outlines = m.organ_outlines;
        base.organ_given = true;
    }
    if (!m.model.empty()) {
        base.model = ComponentOutlines(SelectLabel(m.model, -1));
        base.model_given = true;
    } else if (!m.model_outlines.empty()) {
        base.model = m.model_outlines;
        base.model_given = true;
    }

    std::vector<Outline> lesions;
    if (m.lesion.empty()) {
        lesions.push_back(m.outline);
    } else if (organ == Organ::GallWall && !base.organ_given) {
        // A wall mask: its outer outline and the lumen inside it.
        const cv::Mat wall = SelectLabel(m.lesion, m.label);
        const std::vector<Outline> outer = ComponentOutlines(wall);
        if (outer.empty())
            throw InputError(ErrorKind::EmptyMask, m.lesion_name, "the wall mask is empty");
        Outline lumen = LargestHole(wall);
        if (lumen.empty())
            throw InputError(ErrorKind::EmptyMask, m.lesion_name,
                             "the wall mask encloses no lumen; give the outer outline as the organ mask");
        base.organ_outlines = {outer.front()};
        lesions.push_back(lumen);
    } else {
        lesions = MaskOutlines(m.lesion, m.lesion_name, m.label);
        if (!m.all_components)
            lesions.resize(1);
    }
    std::vector<Case> cases;
    for (Outline& lesion : lesions) {
        Case c = base;
        c.lesion = std::move(lesion);
        cases.push_back(std::move(c));
    }
    return cases;
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

    Masks m;
    m.label = s.label;
    m.all_components = s.all_components;
    m.roi = s.roi;
    m.axes = s.axes;
    if (!s.outline.empty())
        m.outline = ReadOutlineJson(s.outline);
    else
        m.lesion = ReadMask(s.mask, size);
    m.lesion_name = s.mask;
    if (!s.organ_mask.empty())
        m.organ = ReadMask(s.organ_mask, size);
    m.organ_name = s.organ_mask;
    if (!s.model_mask.empty())
        m.model = ReadMask(s.model_mask, size);
    m.model_name = s.model_mask;
    loaded.cases = CasesFromMasks(*organ, loaded.image, m);
    loaded.decode_seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return loaded;
}

} // namespace sonolex_io
