// The compiled half of the Python package: numpy arrays in, the shared
// front-end layer (outlines from masks, derived arguments, the call by organ,
// the record in words) and a few exported classes out. Arguments are checked
// here before anything reaches the library, and the GIL is released while it
// works, so Python threads run cases side by side.
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "sonolex/GLCM.h"
#include "sonolex/Hausdorff.h"
#include "sonolex/LesionAxis.h"
#include "sonolex_io.h"

namespace py = pybind11;
using sonolex_io::Outline;

namespace {

[[noreturn]] void Fail(const std::string& argument, const std::string& problem)
{
    throw py::value_error(argument + ": " + problem);
}

// An 8-bit scan: H x W, H x W x 3 (BGR) or H x W x 4, copied into a cv::Mat.
cv::Mat ToImage(const py::array& a, const std::string& name)
{
    if (!py::isinstance<py::array_t<uint8_t>>(a) || a.dtype().kind() != 'u' || a.itemsize() != 1)
        Fail(name, "must be a uint8 array, not " + std::string(py::str(a.dtype())));
    if (a.ndim() != 2 && !(a.ndim() == 3 && (a.shape(2) == 1 || a.shape(2) == 3 || a.shape(2) == 4)))
        Fail(name, "must be H x W, H x W x 3 (BGR) or H x W x 4");
    if (a.shape(0) < 1 || a.shape(1) < 1)
        Fail(name, "is empty");
    if (a.shape(0) > std::numeric_limits<int>::max() / 8 || a.shape(1) > std::numeric_limits<int>::max() / 8)
        Fail(name, "is too large");
    const auto c = py::array_t<uint8_t, py::array::c_style | py::array::forcecast>::ensure(a);
    const int channels = a.ndim() == 2 ? 1 : int(a.shape(2));
    const cv::Mat view(int(a.shape(0)), int(a.shape(1)), CV_8UC(channels), const_cast<uint8_t*>(c.data()));
    return view.clone();
}

bool IsInteger(const py::array& a) { return a.dtype().kind() == 'i' || a.dtype().kind() == 'u' || a.dtype().kind() == 'b'; }

// A label picture of the scan's size as CV_32S (bool and any integer type).
cv::Mat ToLabels(const py::array& a, cv::Size size, const std::string& name)
{
    if (!IsInteger(a))
        Fail(name, "a mask must be a bool or integer array, not " + std::string(py::str(a.dtype())));
    if (a.ndim() != 2)
        Fail(name, "a mask must be H x W");
    if (a.shape(0) != size.height || a.shape(1) != size.width)
        Fail(name, "the mask is " + std::to_string(a.shape(0)) + " x " + std::to_string(a.shape(1)) +
                       ", the image " + std::to_string(size.height) + " x " + std::to_string(size.width));
    const auto n = py::array_t<int64_t, py::array::c_style | py::array::forcecast>::ensure(a);
    cv::Mat labels(size, CV_32S);
    const int64_t* src = n.data();
    for (int y = 0; y < size.height; ++y) {
        int32_t* row = labels.ptr<int32_t>(y);
        for (int x = 0; x < size.width; ++x) {
            const int64_t v = src[int64_t(y) * size.width + x];
            row[x] = v > std::numeric_limits<int32_t>::max() || v < std::numeric_limits<int32_t>::min() ? 1 : int32_t(v);
        }
    }
    return labels;
}

// An (N, 2) array of integer x, y.
Outline ToOutline(const py::array& a, const std::string& name)
{
    if (!IsInteger(a) || a.dtype().kind() == 'b')
        Fail(name, "outline points must be integers, not " + std::string(py::str(a.dtype())) + "; round them first");
    if (a.ndim() != 2 || a.shape(1) != 2)
        Fail(name, "an outline must be an (N, 2) array of x, y");
    const auto n = py::array_t<int64_t, py::array::c_style | py::array::forcecast>::ensure(a);
    Outline out(size_t(a.shape(0)));
    for (size_t i = 0; i < out.size(); ++i) {
        const int64_t x = n.data()[2 * i], y = n.data()[2 * i + 1];
        if (x < std::numeric_limits<int32_t>::min() || x > std::numeric_limits<int32_t>::max() ||
            y < std::numeric_limits<int32_t>::min() || y > std::numeric_limits<int32_t>::max())
            Fail(name, "point " + std::to_string(i) + " is outside the 32-bit range");
        out[i] = cv::Point(int(x), int(y));
    }
    return out;
}

std::vector<Outline> ToOutlines(const py::list& list, const std::string& name)
{
    std::vector<Outline> out;
    for (size_t i = 0; i < list.size(); ++i)
        out.push_back(ToOutline(py::array::ensure(list[i]), name + "[" + std::to_string(i) + "]"));
    return out;
}

py::dict ToPython(const sonolex_io::Description& d)
{
    py::list fields;
    for (const sonolex_io::Field& f : d.fields) {
        py::object reached = f.reached ? py::object(py::bool_(*f.reached)) : py::object(py::none());
        py::object value = f.real ? py::object(py::float_(sonolex_io::AsFloat(f.value))) : py::object(py::int_(f.value));
        fields.append(py::make_tuple(f.name, value, f.meaning, reached, f.categorical, f.value));
    }
    py::dict out;
    out["organ"] = sonolex_io::OrganName(d.organ);
    out["entry"] = d.arguments.entry;
    out["derived"] = d.derived;
    out["fields"] = fields;
    return out;
}

sonolex_io::Organ ToOrgan(const std::string& name)
{
    const auto organ = sonolex_io::OrganFromName(name);
    if (!organ) {
        std::string known;
        for (const std::string& n : sonolex_io::OrganNames())
            known += (known.empty() ? "" : ", ") + n;
        Fail("organ", "\"" + name + "\" is not one of " + known);
    }
    return *organ;
}

// Runs the layer with the GIL released; its input errors become ValueError.
template <class F> auto Unlocked(F&& f)
{
    try {
        py::gil_scoped_release release;
        return f();
    } catch (const sonolex_io::InputError& e) {
        throw py::value_error(e.what());
    }
}

// One case from arrays. `lesion` is an outline or a mask; `organ` and
// `model` are lists of outlines or a mask (None: not given).
py::dict DescribeArrays(const std::string& organName, const py::array& imageArray, const py::object& lesion,
                        const py::object& organ, const py::object& model, int label,
                        std::optional<std::vector<int>> roi, std::optional<std::vector<int>> axes,
                        const std::string& lesionName, const std::string& organArg, const std::string& modelArg)
{
    const sonolex_io::Organ which = ToOrgan(organName);
    const cv::Mat image = ToImage(imageArray, "image");
    sonolex_io::Masks m;
    m.label = label;
    m.lesion_name = lesionName;
    m.organ_name = organArg;
    m.model_name = modelArg;
    if (roi) {
        if (roi->size() != 4)
            Fail("roi", "must be (x, y, width, height)");
        m.roi = cv::Rect((*roi)[0], (*roi)[1], (*roi)[2], (*roi)[3]);
    }
    if (axes) {
        if (axes->size() != 8)
            Fail("axes", "must be 8 numbers: x1, y1, x2, y2 (long axis), x3, y3, x4, y4 (short axis)");
        const std::vector<int>& v = *axes;
        m.axes = lesionAxisPointEnd{{v[0], v[1]}, {v[2], v[3]}, {v[4], v[5]}, {v[6], v[7]}};
    }
    const py::array lesionArray = py::array::ensure(lesion);
    if (!lesionArray)
        Fail(lesionName, "must be an (N, 2) outline or a mask array");
    if (lesionArray.ndim() == 2 && lesionArray.shape(1) == 2 && !(lesionArray.shape(0) == image.rows && image.cols == 2))
        m.outline = ToOutline(lesionArray, lesionName);
    else
        m.lesion = ToLabels(lesionArray, image.size(), lesionName);
    if (!organ.is_none()) {
        if (py::isinstance<py::list>(organ) || py::isinstance<py::tuple>(organ)) {
            m.organ_outlines = ToOutlines(py::list(organ), organArg);
            if (m.organ_outlines.empty())
                Fail(organArg, "no outline given");
        } else {
            m.organ = ToLabels(py::array::ensure(organ), image.size(), organArg);
        }
    }
    bool modelGiven = false;
    if (!model.is_none()) {
        modelGiven = true;
        if (py::isinstance<py::list>(model) || py::isinstance<py::tuple>(model))
            m.model_outlines = ToOutlines(py::list(model), modelArg);
        else
            m.model = ToLabels(py::array::ensure(model), image.size(), modelArg);
    }
    return ToPython(Unlocked([&]() {
        std::vector<sonolex_io::Case> cases = sonolex_io::CasesFromMasks(which, image, m);
        sonolex_io::Case& c = cases.front();
        c.model_given = modelGiven; // an empty list of regions still chooses the model entry
        return sonolex_io::Describe(c);
    }));
}

// One manifest row, its files read here (on whichever worker runs it).
py::list DescribeFiles(const std::string& organ, const std::string& image, const std::string& mask,
                       const std::string& organMask, const std::string& modelMask, int label, const std::string& roi,
                       const std::string& axes, bool allComponents)
{
    sonolex_io::Sources s;
    s.organ = organ;
    s.image = image;
    s.mask = mask;
    s.organ_mask = organMask;
    s.model_mask = modelMask;
    s.label = label;
    s.all_components = allComponents;
    const std::vector<sonolex_io::Description> described = Unlocked([&]() {
        if (!roi.empty())
            s.roi = sonolex_io::ParseRoi(roi, "Roi");
        if (!axes.empty())
            s.axes = sonolex_io::ParseAxes(axes, "Axes");
        const sonolex_io::Loaded loaded = sonolex_io::Load(s);
        std::vector<sonolex_io::Description> out;
        for (const sonolex_io::Case& c : loaded.cases)
            out.push_back(sonolex_io::Describe(c));
        return out;
    });
    py::list out;
    for (const auto& d : described)
        out.append(ToPython(d));
    return out;
}

py::array_t<uint8_t> FromImage(const cv::Mat& image)
{
    std::vector<py::ssize_t> shape{image.rows, image.cols};
    if (image.channels() > 1)
        shape.push_back(image.channels());
    py::array_t<uint8_t> out(shape);
    const cv::Mat c = image.isContinuous() ? image : image.clone();
    std::memcpy(out.mutable_data(), c.data, c.total() * c.elemSize());
    return out;
}

py::array_t<float> FromFloat(const cv::Mat& m)
{
    cv::Mat f;
    m.convertTo(f, CV_32F);
    py::array_t<float> out({f.rows, f.cols});
    for (int y = 0; y < f.rows; ++y)
        std::memcpy(out.mutable_data(y, 0), f.ptr<float>(y), sizeof(float) * size_t(f.cols));
    return out;
}

py::array_t<int32_t> FromPoints(const std::vector<cv::Point>& points)
{
    py::array_t<int32_t> out({py::ssize_t(points.size()), py::ssize_t(2)});
    for (size_t i = 0; i < points.size(); ++i) {
        out.mutable_at(i, 0) = points[i].x;
        out.mutable_at(i, 1) = points[i].y;
    }
    return out;
}

cv::Mat GreyImage(const py::array& a, const std::string& name)
{
    const cv::Mat m = ToImage(a, name);
    if (m.channels() != 1)
        Fail(name, "must be one grey channel (H x W)");
    return m;
}

} // namespace

PYBIND11_MODULE(_core, mod)
{
    mod.doc() = "Compiled core of sonolex: the entries on numpy arrays, and LesionAxis, Hausdorff and GLCM.";

    mod.def("organs", &sonolex_io::OrganNames);
    mod.def("field_names", [](const std::string& organ) { return sonolex_io::FieldNames(ToOrgan(organ)); });
    mod.def("describe_arrays", &DescribeArrays, py::arg("organ"), py::arg("image"), py::arg("lesion"),
            py::arg("organ_outlines") = py::none(), py::arg("model") = py::none(), py::arg("label") = -1,
            py::arg("roi") = py::none(), py::arg("axes") = py::none(), py::arg("lesion_name") = "mask",
            py::arg("organ_name") = "organ_mask", py::arg("model_name") = "model_mask");
    mod.def("describe_files", &DescribeFiles, py::arg("organ"), py::arg("image"), py::arg("mask"),
            py::arg("organ_mask") = "", py::arg("model_mask") = "", py::arg("label") = -1, py::arg("roi") = "",
            py::arg("axes") = "", py::arg("all_components") = false);
    mod.def(
        "read_image",
        [](const std::string& path, int frame) {
            return FromImage(Unlocked([&]() { return sonolex_io::ReadImage(path, frame); }));
        },
        py::arg("path"), py::arg("frame") = 0,
        "A scan as uint8 (H x W grey or H x W x 3 BGR); PNG, JPEG, BMP, TIFF or DICOM (frame of a cine).");
    mod.def(
        "mask_outlines",
        [](const py::array& mask, int label) {
            if (mask.ndim() != 2)
                Fail("mask", "a mask must be H x W");
            const cv::Mat labels = ToLabels(mask, cv::Size(int(mask.shape(1)), int(mask.shape(0))), "mask");
            const std::vector<Outline> outlines = Unlocked(
                [&]() { return sonolex_io::ComponentOutlines(sonolex_io::SelectLabel(labels, label)); });
            py::list out;
            for (const Outline& o : outlines)
                out.append(FromPoints(o));
            return out;
        },
        py::arg("mask"), py::arg("label") = -1,
        "Outer outlines of a mask's components (8-connected, every pixel), the largest first.");

    mod.def(
        "write_image",
        [](const std::string& path, const py::array& image) {
            const cv::Mat m = ToImage(image, "image");
            const bool ok = Unlocked([&]() { return cv::imwrite(path, m); });
            if (!ok)
                Fail("path", "cannot write " + path);
        },
        py::arg("path"), py::arg("image"), "Writes a uint8 image (PNG, JPEG, BMP or TIFF by the file's extension).");
    mod.def(
        "fill_outline",
        [](const py::array& outline, std::pair<int, int> shape, int value) {
            const Outline o = ToOutline(outline, "outline");
            if (shape.first < 1 || shape.second < 1)
                Fail("shape", "must be a (height, width) of at least one pixel");
            cv::Mat mask = cv::Mat::zeros(shape.first, shape.second, CV_8UC1);
            if (!o.empty())
                cv::fillPoly(mask, std::vector<Outline>{o}, cv::Scalar(value));
            return FromImage(mask);
        },
        py::arg("outline"), py::arg("shape"), py::arg("value") = 255,
        "A uint8 mask of `shape` (height, width) with the outline filled with `value`.");
    mod.def(
        "lesion_axes",
        [](const py::array& outline, std::pair<int, int> shape) {
            const Outline contour = ToOutline(outline, "outline");
            if (contour.size() < 5)
                Fail("outline", "needs at least 5 points for the lesion's ellipse");
            if (shape.first < 1 || shape.second < 1)
                Fail("shape", "must be the image's (height, width)");
            cv::Point a[2], b[2];
            float lengthA = 0.0f, lengthB = 0.0f;
            bool corrected = false;
            try {
                py::gil_scoped_release release;
                LesionAxis axis;
                axis.m_contour = contour;
                axis.m_size = cv::Size(shape.second, shape.first);
                axis.SetPara();
                axis.CalcLesionAxis(a, b, lengthA, lengthB);
                corrected = axis.CalcLesionAxisCorrect(a, b);
            } catch (const cv::Exception& e) {
                throw py::value_error(std::string("outline: the axis search failed: ") + e.what());
            } catch (const std::exception& e) {
                throw py::value_error(std::string("outline: the axis search failed: ") + e.what());
            }
            return py::make_tuple(FromPoints({a[0], a[1]}), FromPoints({b[0], b[1]}), lengthA, lengthB, corrected);
        },
        py::arg("outline"), py::arg("shape"),
        "LesionAxis on an outline: (axis_a, axis_b, length_a, length_b, corrected), each axis a (2, 2) "
        "array of its ends, the more level one first, both corrected to cross near the middle.");

    mod.def(
        "hausdorff",
        [](const py::array& first, const py::array& second) {
            const Outline a = ToOutline(first, "first"), b = ToOutline(second, "second");
            if (a.empty())
                Fail("first", "is empty");
            if (b.empty())
                Fail("second", "is empty");
            py::gil_scoped_release release;
            Hausdorff h;
            const float largest = h.CalcPtsDistanceTest(a, b);
            const float mean = h.GetMeanDistance();
            const std::vector<cv::Point> pair = h.GetPtsPair();
            const float both = Hausdorff().HausdDistance(a, b);
            py::gil_scoped_acquire again;
            return py::make_tuple(largest, mean, FromPoints(pair), both);
        },
        py::arg("first"), py::arg("second"),
        "(largest, mean, pair, hausdorff): the largest and mean nearest-point distance from `first` to "
        "`second`, the pair giving the largest, and the symmetric Hausdorff distance.");

    py::enum_<GrayLevel>(mod, "GrayLevel")
        .value("GRAY_4", GRAY_4)
        .value("GRAY_8", GRAY_8)
        .value("GRAY_16", GRAY_16);
    py::enum_<GrayDirection>(mod, "GrayDirection")
        .value("VERTICAL", GRAY_VERTICAL)
        .value("DOWN_RIGHT", GRAY_DOWN_RIGHT)
        .value("HORIZONTAL", GRAY_HORIZONTAL)
        .value("DOWN_LEFT", GRAY_DOWN_LEFT);
    mod.def(
        "glcm",
        [](const py::array& image, int row, int column, int size, GrayLevel level, GrayDirection direction) {
            const cv::Mat grey = GreyImage(image, "image");
            if (row < 0 || column < 0 || row >= grey.rows || column >= grey.cols)
                Fail("row, column", "lie outside the image");
            if (size < 1)
                Fail("size", "must be at least 1");
            cv::Mat quantised(grey.size(), CV_8UC1), out;
            {
                py::gil_scoped_release release;
                GLCM g;
                g.GrayMagnitude(grey, quantised, level);
                g.CalcuOneGLCM(quantised, out, row, column, size, level, direction);
            }
            return FromFloat(out);
        },
        py::arg("image"), py::arg("row"), py::arg("column"), py::arg("size"), py::arg("level"), py::arg("direction"),
        "Normalised co-occurrence matrix of the window of `size` centred on (row, column) of a grey "
        "uint8 image, quantised to `level`.");
    mod.def(
        "texture_values",
        [](const py::array& image, int size, GrayLevel level) {
            const cv::Mat grey = GreyImage(image, "image");
            if (size < 1)
                Fail("size", "must be at least 1");
            TextureEValues v{0.0f, 0.0f, 0.0f, 0.0f};
            {
                py::gil_scoped_release release;
                cv::Mat quantised(grey.size(), CV_8UC1);
                GLCM g;
                g.GrayMagnitude(grey, quantised, level);
                g.CalcuTextureEValue(quantised, v, size, level);
            }
            py::dict out;
            out["energy"] = v.energy;
            out["contrast"] = v.contrast;
            out["homogeneity"] = v.homogenity;
            out["entropy"] = v.entropy;
            return out;
        },
        py::arg("image"), py::arg("size"), py::arg("level"),
        "Energy, contrast, homogeneity and entropy summed over every pixel's window (each the mean of "
        "the four directions) of a grey uint8 image.");
}
