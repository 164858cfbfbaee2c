// Masks and outline files into outlines, in whole-image coordinates.
#include <algorithm>
#include <fstream>

#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "sonolex_io.h"

namespace sonolex_io {

InputError::InputError(ErrorKind k, const std::string& f, const std::string& p)
    : std::runtime_error(f + ": " + p), kind(k), file(f), problem(p)
{
}

cv::Mat ReadMask(const std::string& path, cv::Size size)
{
    cv::Mat raw;
    if (IsDicom(path)) {
        raw = ReadImage(path);
    } else {
        try {
            raw = cv::imread(path, cv::IMREAD_UNCHANGED);
        } catch (const cv::Exception&) {
            raw.release();
        }
    }
    if (raw.empty())
        throw InputError(ErrorKind::Unreadable, path, "cannot read the mask (missing file or not an image)");
    if (raw.size() != size)
        throw InputError(ErrorKind::SizeMismatch, path,
                         "mask is " + std::to_string(raw.cols) + " x " + std::to_string(raw.rows) +
                             ", the image " + std::to_string(size.width) + " x " + std::to_string(size.height));
    if (raw.depth() == CV_32F || raw.depth() == CV_64F)
        throw InputError(ErrorKind::Unreadable, path, "a mask of floating-point pixels; labels must be integers");
    std::vector<cv::Mat> planes;
    cv::split(raw, planes);
    cv::Mat labels;
    planes[0].convertTo(labels, CV_32S);
    // A colour mask: a pixel is set where any plane is; its label is the first plane's.
    for (size_t i = 1; i < planes.size(); ++i) {
        cv::Mat plane;
        planes[i].convertTo(plane, CV_32S);
        cv::Mat onlyHere = (labels == 0) & (plane != 0);
        plane.copyTo(labels, onlyHere);
    }
    return labels;
}

cv::Mat SelectLabel(const cv::Mat& labels, int label)
{
    cv::Mat binary = label < 0 ? (labels != 0) : (labels == label);
    return binary;
}

std::vector<Outline> ComponentOutlines(const cv::Mat& binary)
{
    std::vector<Outline> outlines;
    cv::findContours(binary.clone(), outlines, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
    std::vector<double> areas;
    for (const Outline& o : outlines)
        areas.push_back(cv::contourArea(o));
    std::vector<size_t> order(outlines.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        if (areas[a] != areas[b])
            return areas[a] > areas[b];
        return outlines[a].size() > outlines[b].size();
    });
    std::vector<Outline> sorted;
    for (size_t i : order)
        sorted.push_back(outlines[i]);
    return sorted;
}

Outline LargestHole(const cv::Mat& binary)
{
    const std::vector<Outline> components = ComponentOutlines(binary);
    if (components.empty())
        return {};
    // Only the largest component, so that a hole of another one is not taken.
    cv::Mat component = cv::Mat::zeros(binary.size(), CV_8U);
    cv::drawContours(component, std::vector<Outline>{components[0]}, 0, cv::Scalar(255), cv::FILLED, cv::LINE_8);
    component &= binary;
    std::vector<Outline> contours;
    std::vector<cv::Vec4i> hierarchy;
    cv::findContours(component, contours, hierarchy, cv::RETR_CCOMP, cv::CHAIN_APPROX_NONE);
    Outline best;
    double bestArea = -1.0;
    for (size_t i = 0; i < contours.size(); ++i) {
        if (hierarchy[i][3] < 0)
            continue; // an outer outline, not a hole
        const double area = cv::contourArea(contours[i]);
        if (area > bestArea) {
            bestArea = area;
            best = contours[i];
        }
    }
    return best;
}

namespace {

cv::Point PointFromJson(const nlohmann::json& p)
{
    if (p.is_array() && p.size() >= 2)
        return cv::Point(p.at(0).get<int>(), p.at(1).get<int>());
    if (p.is_object())
        return cv::Point(p.at("x").get<int>(), p.at("y").get<int>());
    throw std::invalid_argument("a point is neither [x, y] nor {\"x\": .., \"y\": ..}");
}

} // namespace

Outline ReadOutlineJson(const std::string& path)
{
    std::ifstream in(path);
    if (!in)
        throw InputError(ErrorKind::Unreadable, path, "cannot open the outline file");
    Outline outline;
    try {
        nlohmann::json doc = nlohmann::json::parse(in);
        const nlohmann::json* list = &doc;
        if (doc.is_object()) {
            list = nullptr;
            for (const char* key : {"contour", "points", "outline"})
                if (doc.contains(key)) {
                    list = &doc[key];
                    break;
                }
            if (list == nullptr)
                throw std::invalid_argument("no \"contour\", \"points\" or \"outline\" list");
        }
        if (!list->is_array())
            throw std::invalid_argument("the outline is not a list of points");
        for (const nlohmann::json& p : *list)
            outline.push_back(PointFromJson(p));
    } catch (const std::exception& e) {
        throw InputError(ErrorKind::Unreadable, path, std::string("not an outline: ") + e.what());
    }
    if (outline.empty())
        throw InputError(ErrorKind::EmptyMask, path, "the outline has no points");
    return outline;
}

} // namespace sonolex_io
