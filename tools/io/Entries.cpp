// One entry an organ: the arguments a host passes, the call, and the record
// read back as named fields.
#include <algorithm>
#include <climits>
#include <cstring>
#include <map>

#include <opencv2/imgproc.hpp>

#include "AxisLength/LesionAxis.h"
#include "sonolex_io.h"

namespace sonolex_io {

namespace {

// A record field: its byte, its meanings by value, its preset, whether the
// preset is itself a verdict, and its place in the order of writing.
struct FieldInfo {
    const char* name;
    int byte;
    std::map<int, const char*> meanings; // empty for a measured number
    int32_t preset;
    bool presetIsVerdict;
    int writeOrder;                      // -1: never written
    const char* note = nullptr;          // meaning of a measured number
    bool real = false;                   // a float, read from the word's bits
};

struct RecordTable {
    Organ organ;
    const char* name;
    std::vector<FieldInfo> fields;
};

constexpr int32_t kUnwritten = INT32_MIN; // preset of coordinates: no coordinate takes it

const std::vector<RecordTable>& Tables()
{
    static const std::vector<RecordTable> tables{
        {Organ::Breast,
         "breast",
         {{"shape", 0, {{1, "oval or elongated, few shallow indentations"}, {2, "round or oval, no indentation"},
                        {3, "irregular"}}, 0, false, 5},
          {"orientation", 4, {{0, "degenerate axes"}, {1, "parallel to the skin"}, {2, "not parallel"}}, 0, true, 4},
          {"echo", 8, {{1, "anechoic or uniform"}, {2, "heterogeneous or mixed"}}, 0, false, 0},
          {"boundary", 12, {{1, "abrupt interface"}, {2, "indistinct or halo"}}, 0, false, 1},
          {"margin", 16, {{1, "circumscribed"}, {2, "not circumscribed"}}, 0, false, 2},
          {"calcification", 20, {{1, "none"}, {2, "coarse"}, {3, "microcalcification"}}, 0, false, 3}}},
        {Organ::Thyroid,
         "thyroid",
         {{"shape", 0, {{0, "wider than tall"}, {1, "not wider than tall"}}, 0, true, 2},
          {"echo", 4, {{0, "anechoic"}, {1, "hyperechoic"}, {2, "isoechoic"}, {3, "hypoechoic"},
                       {4, "markedly hypoechoic"}}, 3, true, 1},
          {"margin", 8, {{0, "smooth, sharp step"}, {1, "smooth, soft step"}, {2, "irregular"}, {3, "lobulated"},
                         {4, "extrathyroidal extension"}}, 0, true, 3},
          {"calcification", 12, {{0, "none"}, {1, "macrocalcification"}, {2, "microcalcification"}}, 0, true, 0}}},
        {Organ::Liver,
         "liver",
         {{"shape", 0, {{1, "regular outline"}, {2, "irregular outline"}}, 0, false, 1},
          {"echo", 4, {{1, "hypoechoic"}, {2, "isoechoic"}, {3, "hyperechoic"}, {4, "markedly hyperechoic"}}, 0, false,
           0},
          {"boundary", 8, {{1, "clear border"}, {2, "unclear border"}}, 0, false, 2},
          {"echoTexture", 12, {{1, "homogeneous"}, {2, "heterogeneous"}}, 0, false, 3}}},
        {Organ::Carotid,
         "carotid",
         {{"position", 0, {{1, "near (upper) wall"}, {2, "far (lower) wall"}, {3, "side wall"}}, 0, false, 1},
          {"echo", 4, {{1, "low echo"}, {2, "uniformly bright"}, {3, "mixed echo"}}, 0, false, 0},
          {"reserved", 8, {}, 0, false, -1, "never written: the host's value stays"},
          {"firstX", 12, {}, kUnwritten, false, 2, "first end of the vessel's inner diameter, column"},
          {"firstY", 16, {}, kUnwritten, false, 2, "first end of the inner diameter, row"},
          {"secondX", 20, {}, kUnwritten, false, 2, "second end of the inner diameter, column"},
          {"secondY", 24, {}, kUnwritten, false, 2, "second end of the inner diameter, row"}}},
        {Organ::GallWall,
         "gallwall",
         {{"wallVerdict", 0, {{1, "normal wall"}, {2, "abnormal wall"}}, 0, false, 1},
          {"thickenVerdict", 4, {{1, "no thickening"}, {2, "diffuse thickening"}, {3, "focal thickening"}}, 0, false,
           0}}},
        {Organ::GallBladder,
         "gallbladder",
         {{"wallVerdict", 0, {{1, "lumen close to the organ outline"}, {2, "not close, or nothing to compare"}}, 0,
           false, 0},
          {"reserved", 4, {}, 0, false, -1, "never written: the host's value stays"},
          {"maxDistance", 8, {}, kUnwritten, false, 1, "largest lumen-to-outline distance, region pixels", true},
          {"meanDistance", 12, {}, kUnwritten, false, 1, "mean lumen-to-outline distance, region pixels", true},
          {"firstX", 16, {}, kUnwritten, false, 1, "lumen end of the largest distance, column"},
          {"firstY", 20, {}, kUnwritten, false, 1, "lumen end of the largest distance, row"},
          {"secondX", 24, {}, kUnwritten, false, 1, "outline end of the largest distance, column"},
          {"secondY", 28, {}, kUnwritten, false, 1, "outline end of the largest distance, row"}}},
    };
    return tables;
}

const RecordTable& RecordOf(Organ organ)
{
    for (const RecordTable& s : Tables())
        if (s.organ == organ)
            return s;
    throw std::logic_error("organ without a record table");
}

RoiCoor ToRoi(const cv::Rect& r) { return RoiCoor{r.x, r.y, r.width, r.height}; }

// The lesion's box widened by 20 pixels a side, within the image.
cv::Rect RegionAround(const Outline& lesion, cv::Size image)
{
    const cv::Rect box = cv::boundingRect(lesion);
    return cv::Rect(box.x - 20, box.y - 20, box.width + 40, box.height + 40) & cv::Rect(cv::Point(0, 0), image);
}

// Long and short axis as a host measures them: the library's own axis
// search on the outline, each axis stretched to where its line meets the
// outline, the longer one taken as the long axis. Where the search fails on
// an outline (its working copy too thin for an ellipse), the sides of the
// smallest enclosing rectangle through its centre serve instead.
lesionAxisPointEnd MeasureAxes(const Outline& lesion, cv::Size image, std::vector<std::string>& derived)
{
    cv::Point a[2] = {cv::Point(0, 0), cv::Point(0, 0)};
    cv::Point b[2] = {cv::Point(0, 0), cv::Point(0, 0)};
    try {
        LesionAxis axis;
        axis.m_contour = lesion;
        axis.m_size = image;
        axis.SetPara();
        float lengthA = 0.0f;
        float lengthB = 0.0f;
        axis.CalcLesionAxis(a, b, lengthA, lengthB);
        axis.CalcLesionAxisCorrect(a, b);
        derived.push_back("axis: long and short axis measured on the outline (the library's axis search)");
    } catch (const cv::Exception&) {
        const cv::RotatedRect box = cv::minAreaRect(lesion);
        cv::Point2f corner[4];
        box.points(corner);
        const cv::Point2f mid[4] = {(corner[0] + corner[1]) * 0.5f, (corner[1] + corner[2]) * 0.5f,
                                    (corner[2] + corner[3]) * 0.5f, (corner[3] + corner[0]) * 0.5f};
        a[0] = cv::Point(cvRound(mid[0].x), cvRound(mid[0].y));
        a[1] = cv::Point(cvRound(mid[2].x), cvRound(mid[2].y));
        b[0] = cv::Point(cvRound(mid[1].x), cvRound(mid[1].y));
        b[1] = cv::Point(cvRound(mid[3].x), cvRound(mid[3].y));
        derived.push_back("axis: the sides of the outline's smallest enclosing rectangle (the axis search "
                          "failed on this outline)");
    }
    const double spanA = cv::norm(a[1] - a[0]);
    const double spanB = cv::norm(b[1] - b[0]);
    const cv::Point* longer = spanA >= spanB ? a : b;
    const cv::Point* shorter = spanA >= spanB ? b : a;
    return lesionAxisPointEnd{{longer[0].x, longer[0].y}, {longer[1].x, longer[1].y},
                              {shorter[0].x, shorter[0].y}, {shorter[1].x, shorter[1].y}};
}

Outline ImageFrame(cv::Size image)
{
    return {cv::Point(0, 0), cv::Point(image.width - 1, 0), cv::Point(image.width - 1, image.height - 1),
            cv::Point(0, image.height - 1)};
}

std::vector<MyPoint> Flat(const Outline& outline)
{
    std::vector<MyPoint> points;
    points.reserve(outline.size());
    for (const cv::Point& p : outline)
        points.push_back(MyPoint{p.x, p.y});
    return points;
}

struct Packed {
    std::vector<int> sizes;
    std::vector<MyPoint> points;
};

Packed Pack(const std::vector<Outline>& outlines)
{
    Packed packed;
    for (const Outline& o : outlines) {
        packed.sizes.push_back(int(o.size()));
        for (const cv::Point& p : o)
            packed.points.push_back(MyPoint{p.x, p.y});
    }
    return packed;
}

template <typename Record>
std::vector<int32_t> Words(const Record& record)
{
    std::vector<int32_t> words(sizeof(Record) / sizeof(int32_t));
    std::memcpy(words.data(), &record, sizeof(Record));
    return words;
}

template <typename Record>
Record FromWords(const std::vector<int32_t>& words)
{
    Record record;
    if (words.size() != sizeof(Record) / sizeof(int32_t))
        throw std::logic_error("preset of the wrong size");
    std::memcpy(&record, words.data(), sizeof(Record));
    return record;
}

} // namespace

std::optional<Organ> OrganFromName(const std::string& name)
{
    for (const RecordTable& s : Tables())
        if (name == s.name)
            return s.organ;
    return std::nullopt;
}

const char* OrganName(Organ organ) { return RecordOf(organ).name; }

const std::vector<std::string>& OrganNames()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> n;
        for (const RecordTable& s : Tables())
            n.push_back(s.name);
        return n;
    }();
    return names;
}

std::vector<std::string> FieldNames(Organ organ)
{
    std::vector<std::string> names;
    for (const FieldInfo& f : RecordOf(organ).fields)
        names.push_back(f.name);
    return names;
}

bool IsCategorical(Organ organ, const std::string& field)
{
    for (const FieldInfo& f : RecordOf(organ).fields)
        if (field == f.name)
            return !f.meanings.empty();
    return false;
}

Arguments Prepare(const Case& c, std::vector<std::string>& derived)
{
    const cv::Size size = c.image.size();
    Arguments a;
    a.channels = c.image.channels();
    a.width = c.image.cols;
    a.height = c.image.rows;
    a.lesion = c.lesion;
    a.lesion_name = "lesionPoints";
    for (const FieldInfo& f : RecordOf(c.organ).fields)
        a.preset.push_back(f.preset);

    auto region = [&]() {
        if (c.roi)
            return ToRoi(*c.roi);
        derived.push_back("roi: the lesion's bounding box widened by 20 pixels a side, within the image");
        return ToRoi(RegionAround(c.lesion, size));
    };
    auto organOrFrame = [&](const char* what) {
        if (c.organ_given)
            return c.organ_outlines;
        derived.push_back(std::string(what) + ": the image frame (no organ mask given)");
        return std::vector<Outline>{ImageFrame(size)};
    };

    switch (c.organ) {
    case Organ::Breast:
        a.entry = c.model_given ? "BreastDescriptionHaveModelProcess" : "BreastDescription";
        a.roi = region();
        if (c.axes) {
            a.axis = c.axes;
        } else {
            a.axis = MeasureAxes(c.lesion, size, derived);
        }
        a.takes_model = c.model_given;
        a.model = c.model;
        break;
    case Organ::Thyroid:
        a.entry = "ThyroidDescriptionModelAfterProcess";
        a.organ_name = "organPoints";
        a.organ = organOrFrame("organPoints (gland outline)");
        a.organ.resize(1);
        a.takes_model = true;
        a.model = c.model;
        a.roi = region();
        break;
    case Organ::Liver:
        a.entry = "LiverDescription";
        a.organ_name = "organPoints";
        a.organ = organOrFrame("organPoints (liver outline)");
        a.organ.resize(1);
        a.roi = region();
        break;
    case Organ::Carotid:
        a.entry = "CarotidPlaqueDescription";
        a.organ_name = "organPoints";
        if (c.organ_outlines.empty())
            throw InputError(ErrorKind::Usage, "--organ-mask", "carotid needs the vessel outlines (--organ-mask)");
        a.organ = c.organ_outlines;
        a.roi = c.roi ? ToRoi(*c.roi) : RoiCoor{0, 0, 0, 0};
        break;
    case Organ::GallWall:
        a.entry = "GallWallDescription";
        a.lesion_name = "innerPoints";
        a.organ_name = "outerPoints";
        if (c.organ_outlines.empty())
            throw InputError(ErrorKind::Usage, "--organ-mask", "gallwall needs the outer outline of the gall bladder");
        a.organ = {c.organ_outlines.front()};
        break;
    case Organ::GallBladder:
        a.entry = "GallBladderWallDescription";
        a.lesion_name = "organPoints";
        a.roi = region();
        break;
    }
    return a;
}

std::vector<int32_t> CallEntry(const cv::Mat& image, const Arguments& a)
{
    const cv::Mat pixels = image.isContinuous() ? image : image.clone();
    const std::vector<MyPoint> lesion = Flat(a.lesion);
    const int lesionCount = int(lesion.size());
    const RoiCoor roi = a.roi.value_or(RoiCoor{0, 0, 0, 0});
    if (a.entry == "BreastDescription" || a.entry == "BreastDescriptionHaveModelProcess") {
        auto record = FromWords<BreastResult>(a.preset);
        const lesionAxisPointEnd axis = a.axis.value_or(lesionAxisPointEnd{});
        if (a.takes_model) {
            const Packed model = Pack(a.model);
            BreastDescriptionHaveModelProcess(pixels.data, a.channels, a.width, a.height, roi, lesionCount,
                                              lesion.data(), int(model.sizes.size()), model.sizes.data(),
                                              model.points.data(), axis, &record);
        } else {
            BreastDescription(pixels.data, a.channels, a.width, a.height, roi, lesionCount, lesion.data(), axis,
                              &record);
        }
        return Words(record);
    }
    if (a.entry == "ThyroidDescriptionModelAfterProcess") {
        auto record = FromWords<ThyroidResult>(a.preset);
        std::vector<MyPoint> organ = Flat(a.organ.at(0)); // the entry writes clipped points back
        const Packed model = Pack(a.model);
        ThyroidDescriptionModelAfterProcess(pixels.data, a.channels, a.width, a.height, int(organ.size()),
                                            organ.data(), lesionCount, lesion.data(), int(model.sizes.size()),
                                            model.sizes.data(), model.points.data(), roi, &record);
        return Words(record);
    }
    if (a.entry == "LiverDescription") {
        auto record = FromWords<LiverResult>(a.preset);
        const std::vector<MyPoint> organ = Flat(a.organ.at(0));
        LiverDescription(pixels.data, a.channels, a.width, a.height, roi, int(organ.size()), organ.data(),
                         lesionCount, lesion.data(), &record);
        return Words(record);
    }
    if (a.entry == "CarotidPlaqueDescription") {
        auto record = FromWords<PlaqueResult>(a.preset);
        const Packed vessels = Pack(a.organ);
        CarotidPlaqueDescription(pixels.data, a.channels, a.width, a.height, roi, int(vessels.sizes.size()),
                                 vessels.sizes.data(), int(vessels.points.size()), vessels.points.data(),
                                 lesionCount, lesion.data(), &record);
        return Words(record);
    }
    if (a.entry == "GallWallDescription") {
        auto record = FromWords<GallWallResult>(a.preset);
        const std::vector<MyPoint> outer = Flat(a.organ.at(0));
        GallWallDescription(pixels.data, a.channels, a.width, a.height, int(outer.size()), outer.data(),
                            lesionCount, lesion.data(), &record);
        return Words(record);
    }
    if (a.entry == "GallBladderWallDescription") {
        auto record = FromWords<GallBladderWallResult>(a.preset);
        GallBladderWallDescription(pixels.data, a.channels, a.width, a.height, roi, lesionCount, lesion.data(),
                                   &record);
        return Words(record);
    }
    throw std::logic_error("no entry named " + a.entry);
}

std::vector<Field> ReadRecord(Organ organ, const std::vector<int32_t>& words)
{
    const std::vector<FieldInfo>& tables = RecordOf(organ).fields;
    // The last field in the order of writing that holds something other
    // than its preset: it and every field written before it were reached.
    int lastWritten = -1;
    for (size_t i = 0; i < tables.size(); ++i)
        if (tables[i].writeOrder >= 0 && words.at(i) != tables[i].preset)
            lastWritten = std::max(lastWritten, tables[i].writeOrder);
    std::vector<Field> fields;
    for (size_t i = 0; i < tables.size(); ++i) {
        const FieldInfo& s = tables[i];
        Field f;
        f.name = s.name;
        f.byte = s.byte;
        f.value = words[i];
        f.categorical = !s.meanings.empty();
        f.real = s.real;
        if (s.writeOrder < 0) {
            f.reached = false;
        } else if (s.writeOrder <= lastWritten) {
            f.reached = true;
        } else {
            // Not reached for sure when it, or a field written between the
            // last one seen and it, still holds a preset that is no verdict.
            bool surelyNot = false;
            for (const FieldInfo& t : tables)
                if (t.writeOrder > lastWritten && t.writeOrder <= s.writeOrder && !t.presetIsVerdict)
                    surelyNot = true;
            if (surelyNot)
                f.reached = false;
        }
        if (f.reached == false) {
            f.meaning = s.writeOrder < 0 ? s.note : "not reached";
        } else if (!f.categorical) {
            f.meaning = s.note;
        } else {
            const auto it = s.meanings.find(f.value);
            f.meaning = it != s.meanings.end() ? it->second : "(outside the table)";
            if (!f.reached.has_value())
                f.meaning += " (or not reached: the preset)";
        }
        fields.push_back(f);
    }
    return fields;
}

Description Describe(const Case& c)
{
    Description d;
    d.organ = c.organ;
    d.arguments = Prepare(c, d.derived);
    d.fields = ReadRecord(c.organ, CallEntry(c.image, d.arguments));
    return d;
}

} // namespace sonolex_io
