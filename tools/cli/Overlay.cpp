// A picture of what was measured: outlines, region, axes and the verdicts.
#include <cstdio>
#include <unistd.h>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "cli/cli.h"

namespace cli {

namespace {

const cv::Scalar kLesion(0, 255, 0);      // green
const cv::Scalar kRegion(0, 255, 255);    // yellow
const cv::Scalar kOrgan(255, 160, 0);     // blue
const cv::Scalar kModel(0, 0, 255);       // red
const cv::Scalar kLongAxis(255, 0, 255);  // magenta
const cv::Scalar kShortAxis(255, 255, 0); // cyan
const cv::Scalar kDiameter(0, 140, 255);  // orange
const cv::Scalar kText(255, 255, 255);
const cv::Scalar kDim(170, 170, 170);

std::vector<cv::Point> Scaled(const sonolex_io::Outline& outline, int zoom)
{
    std::vector<cv::Point> out;
    for (const cv::Point& p : outline)
        out.push_back(p * zoom + cv::Point(zoom / 2, zoom / 2));
    return out;
}

cv::Point At(const MyPoint& p, int zoom) { return cv::Point(p.x, p.y) * zoom + cv::Point(zoom / 2, zoom / 2); }

struct Legend {
    std::vector<std::pair<std::string, cv::Scalar>> lines;
    void Add(const std::string& text, const cv::Scalar& colour = kText) { lines.emplace_back(text, colour); }
};

} // namespace

void WriteOverlay(const cv::Mat& image, const std::vector<Outcome>& outcomes, const std::string& path)
{
    // Small scans are enlarged by whole pixels so that lines and words stay apart.
    const int zoom = std::max(1, (480 + image.rows - 1) / std::max(1, image.rows));
    cv::Mat canvas;
    if (image.channels() == 1)
        cv::cvtColor(image, canvas, cv::COLOR_GRAY2BGR);
    else if (image.channels() == 4)
        cv::cvtColor(image, canvas, cv::COLOR_BGRA2BGR);
    else
        canvas = image.clone();
    cv::resize(canvas, canvas, cv::Size(), zoom, zoom, cv::INTER_NEAREST);
    const int thick = std::max(1, canvas.rows / 400);

    Legend legend;
    bool drawn[7] = {false, false, false, false, false, false, false}; // in the order of the key below
    for (const Outcome& o : outcomes) {
        legend.Add(o.organ + (o.component >= 0 ? ", component " + std::to_string(o.component) : ""));
        if (!o.description) {
            legend.Add("  error: " + o.error, kModel);
            continue;
        }
        const sonolex_io::Description& d = *o.description;
        const sonolex_io::Arguments& a = d.arguments;
        legend.Add("  " + a.entry, kDim);
        for (const sonolex_io::Outline& m : a.model)
            cv::polylines(canvas, Scaled(m, zoom), true, kModel, thick, cv::LINE_AA);
        drawn[3] = drawn[3] || !a.model.empty();
        for (const sonolex_io::Outline& organ : a.organ)
            cv::polylines(canvas, Scaled(organ, zoom), true, kOrgan, thick, cv::LINE_AA);
        drawn[2] = drawn[2] || !a.organ.empty();
        if (a.roi && a.roi->width > 0 && a.roi->height > 0) {
            cv::rectangle(canvas, cv::Rect(a.roi->x * zoom, a.roi->y * zoom, a.roi->width * zoom, a.roi->height * zoom),
                          kRegion, thick, cv::LINE_8);
            drawn[1] = true;
        }
        if (!a.lesion.empty())
            cv::polylines(canvas, Scaled(a.lesion, zoom), true, kLesion, thick + 1, cv::LINE_AA);
        drawn[0] = drawn[0] || !a.lesion.empty();
        if (a.axis) {
            cv::line(canvas, At(a.axis->longStart, zoom), At(a.axis->longEnd, zoom), kLongAxis, thick, cv::LINE_AA);
            cv::line(canvas, At(a.axis->shortStart, zoom), At(a.axis->shortEnd, zoom), kShortAxis, thick,
                     cv::LINE_AA);
            drawn[4] = drawn[5] = true;
        }
        int32_t diameter[4] = {0, 0, 0, 0};
        bool hasDiameter = false;
        for (const sonolex_io::Field& f : d.fields) {
            const char* names[4] = {"firstX", "firstY", "secondX", "secondY"};
            for (int k = 0; k < 4; ++k)
                if (f.name == names[k] && f.reached == true) {
                    diameter[k] = f.value;
                    hasDiameter = true;
                }
            if (f.categorical)
                legend.Add("  " + f.name + ": " + std::to_string(f.value) + "  " + f.meaning,
                           f.reached == false ? kDim : kText);
        }
        if (hasDiameter) {
            const MyPoint p{diameter[0], diameter[1]}, q{diameter[2], diameter[3]};
            cv::line(canvas, At(p, zoom), At(q, zoom), kDiameter, thick + 1, cv::LINE_AA);
            drawn[6] = true;
            legend.Add("  inner diameter: (" + std::to_string(p.x) + ", " + std::to_string(p.y) + ") to (" +
                       std::to_string(q.x) + ", " + std::to_string(q.y) + ")");
        }
        std::string derived;
        for (const std::string& text : d.derived)
            derived += (derived.empty() ? "" : ", ") + text.substr(0, text.find_first_of(" :"));
        if (!derived.empty())
            legend.Add("  derived by the program: " + derived, kDim);
    }
    legend.Add("");
    const std::string organ = outcomes.empty() ? "" : outcomes.front().organ;
    const char* lesionKey = organ == "gallwall"      ? "lumen outline"
                            : organ == "carotid"     ? "plaque outline"
                            : organ == "gallbladder" ? "organ outline"
                                                     : "lesion outline";
    const char* organKey = organ == "gallwall" ? "outer outline" : organ == "carotid" ? "vessel outlines"
                                                                                     : "organ outline";
    const char* keys[7] = {lesionKey, "region passed to the entry", organKey, "model regions",
                           "long axis", "short axis", "vessel's inner diameter"};
    const cv::Scalar colours[7] = {kLesion, kRegion, kOrgan, kModel, kLongAxis, kShortAxis, kDiameter};
    for (int k = 0; k < 7; ++k)
        if (drawn[k])
            legend.Add(keys[k], colours[k]);

    const double scale = 0.5;
    const int lineHeight = 20;
    int panelWidth = 240;
    for (const auto& line : legend.lines) {
        int base = 0;
        const cv::Size s = cv::getTextSize(line.first, cv::FONT_HERSHEY_SIMPLEX, scale, 1, &base);
        panelWidth = std::max(panelWidth, s.width + 20);
    }
    const int rows = std::max(canvas.rows, int(legend.lines.size()) * lineHeight + 20);
    cv::Mat out(rows, canvas.cols + panelWidth, CV_8UC3, cv::Scalar(24, 24, 24));
    canvas.copyTo(out(cv::Rect(0, 0, canvas.cols, canvas.rows)));
    int y = 22;
    for (const auto& line : legend.lines) {
        cv::putText(out, line.first, cv::Point(canvas.cols + 10, y), cv::FONT_HERSHEY_SIMPLEX, scale, line.second, 1,
                    cv::LINE_AA);
        y += lineHeight;
    }

    // Written beside the target and renamed, so that no half-written picture stays.
    const size_t slash = path.find_last_of('/');
    const std::string dir = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    const size_t dot = path.find_last_of('.');
    const std::string extension = dot == std::string::npos || dot < dir.size() ? ".png" : path.substr(dot);
    const std::string temporary = dir + ".sonolex-" + std::to_string(getpid()) + "-" +
                                  std::to_string(reinterpret_cast<uintptr_t>(&out)) + extension;
    bool written = false;
    try {
        written = cv::imwrite(temporary, out);
    } catch (const cv::Exception&) {
        written = false;
    }
    if (!written || std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        throw WriteError(path + ": cannot write the overlay");
    }
}

} // namespace cli
