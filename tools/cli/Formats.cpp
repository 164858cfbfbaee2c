// JSON and CSV forms of a described case.
#include <algorithm>

#include <opencv2/imgproc.hpp>

#include "cli/cli.h"

namespace cli {

namespace {

Json PointJson(const MyPoint& p) { return Json::array({p.x, p.y}); }

Json OutlineJson(const sonolex_io::Outline& outline, bool points)
{
    Json j;
    j["count"] = outline.size();
    if (!outline.empty()) {
        const cv::Rect b = cv::boundingRect(outline);
        j["bounds"] = Json::array({b.x, b.y, b.width, b.height});
    }
    if (points) {
        Json list = Json::array();
        for (const cv::Point& p : outline)
            list.push_back(Json::array({p.x, p.y}));
        j["points"] = list;
    }
    return j;
}

Json ArgumentsJson(const sonolex_io::Arguments& a, bool points)
{
    Json j;
    j["channels"] = a.channels;
    j["width"] = a.width;
    j["height"] = a.height;
    if (a.roi)
        j["roi"] = Json{{"x", a.roi->x}, {"y", a.roi->y}, {"width", a.roi->width}, {"height", a.roi->height}};
    if (a.axis)
        j["axis"] = Json{{"longStart", PointJson(a.axis->longStart)},
                         {"longEnd", PointJson(a.axis->longEnd)},
                         {"shortStart", PointJson(a.axis->shortStart)},
                         {"shortEnd", PointJson(a.axis->shortEnd)}};
    j[a.lesion_name] = OutlineJson(a.lesion, points);
    if (!a.organ_name.empty()) {
        Json list = Json::array();
        for (const sonolex_io::Outline& o : a.organ)
            list.push_back(OutlineJson(o, points));
        j[a.organ_name] = list;
    }
    if (a.takes_model) {
        Json list = Json::array();
        for (const sonolex_io::Outline& o : a.model)
            list.push_back(OutlineJson(o, points));
        j["modelContours"] = list;
    }
    j["resultPreset"] = a.preset;
    return j;
}

std::string Joined(const std::vector<std::string>& items, const char* separator)
{
    std::string out;
    for (const std::string& s : items)
        out += (out.empty() ? "" : separator) + s;
    return out;
}

} // namespace

std::string OneLine(const std::string& text)
{
    std::string line = text;
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.pop_back();
    std::replace(line.begin(), line.end(), '\n', ' ');
    std::replace(line.begin(), line.end(), '\r', ' ');
    return line;
}

Json ToJson(const Outcome& o, bool points)
{
    Json j;
    j["image"] = o.image;
    j["mask"] = o.mask;
    j["organ"] = o.organ;
    if (o.component >= 0)
        j["component"] = o.component;
    if (!o.description) {
        j["status"] = "error";
        j["error"] = o.error;
        return j;
    }
    const sonolex_io::Description& d = *o.description;
    j["status"] = "ok";
    j["entry"] = d.arguments.entry;
    j["arguments"] = ArgumentsJson(d.arguments, points);
    j["derived"] = d.derived;
    Json record;
    for (const sonolex_io::Field& f : d.fields) {
        Json field;
        field["byte"] = f.byte;
        if (f.real)
            field["value"] = sonolex_io::AsFloat(f.value);
        else
            field["value"] = f.value;
        field["meaning"] = f.meaning;
        field["reached"] = f.reached ? Json(*f.reached) : Json(nullptr);
        record[f.name] = field;
    }
    j["record"] = record;
    return j;
}

namespace {

// A list of numbers, or of lists of numbers: written on one line.
bool IsFlat(const Json& value)
{
    if (!value.is_array())
        return false;
    for (const Json& item : value)
        if (item.is_structured() && !(item.is_array() && std::all_of(item.begin(), item.end(), [](const Json& x) {
                                          return x.is_primitive();
                                      })))
            return false;
    return true;
}

} // namespace

// Paths need not be UTF-8: bytes that are not are replaced, not refused.
std::string Dump(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

std::string Pretty(const Json& value, int indent)
{
    if (!value.is_structured() || IsFlat(value) || value.empty())
        return Dump(value);
    if (value.is_object() && std::all_of(value.begin(), value.end(), [](const Json& x) { return !x.is_object(); }) &&
        std::all_of(value.begin(), value.end(), [](const Json& x) { return !x.is_array() || IsFlat(x); })) {
        std::string text = "{";
        for (auto it = value.begin(); it != value.end(); ++it)
            text += (it == value.begin() ? "" : ", ") + Dump(Json(it.key())) + ": " + Dump(*it);
        return text + "}";
    }
    const std::string inner(size_t(indent + 2), ' '), outer(size_t(indent), ' ');
    std::string text = value.is_object() ? "{\n" : "[\n";
    bool first = true;
    for (auto it = value.begin(); it != value.end(); ++it) {
        text += first ? "" : ",\n";
        first = false;
        text += inner;
        if (value.is_object())
            text += Dump(Json(it.key())) + ": ";
        text += Pretty(*it, indent + 2);
    }
    return text + "\n" + outer + (value.is_object() ? "}" : "]");
}

std::vector<std::string> FieldColumns(const std::vector<sonolex_io::Organ>& organs)
{
    std::vector<std::string> columns;
    for (sonolex_io::Organ organ : organs)
        for (const std::string& name : sonolex_io::FieldNames(organ)) {
            if (std::find(columns.begin(), columns.end(), name) != columns.end())
                continue;
            columns.push_back(name);
            bool categorical = false;
            for (sonolex_io::Organ other : organs)
                categorical = categorical || sonolex_io::IsCategorical(other, name);
            if (categorical)
                columns.push_back(name + "_meaning");
        }
    return columns;
}

std::vector<std::string> OutcomeHeader(const std::vector<std::string>& fieldColumns)
{
    std::vector<std::string> header{"image", "mask", "organ", "component", "status", "error", "entry", "derived"};
    header.insert(header.end(), fieldColumns.begin(), fieldColumns.end());
    return header;
}

std::vector<std::string> OutcomeCells(const Outcome& o, const std::vector<std::string>& fieldColumns)
{
    std::vector<std::string> cells{o.image, o.mask, o.organ, o.component >= 0 ? std::to_string(o.component) : ""};
    if (!o.description) {
        cells.insert(cells.end(), {"error", o.error, "", ""});
        cells.resize(cells.size() + fieldColumns.size());
        return cells;
    }
    const sonolex_io::Description& d = *o.description;
    cells.insert(cells.end(), {"ok", "", d.arguments.entry, Joined(d.derived, "; ")});
    for (const std::string& column : fieldColumns) {
        std::string cell;
        for (const sonolex_io::Field& f : d.fields) {
            if (column == f.name)
                cell = f.real ? Json(sonolex_io::AsFloat(f.value)).dump() : std::to_string(f.value);
            else if (column == f.name + "_meaning")
                cell = f.meaning;
        }
        cells.push_back(cell);
    }
    return cells;
}

std::string CsvLine(const std::vector<std::string>& cells)
{
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        const std::string& c = cells[i];
        if (i > 0)
            line += ',';
        if (c.find_first_of(",\"\r\n") == std::string::npos) {
            line += c;
            continue;
        }
        line += '"';
        for (char ch : c) {
            if (ch == '"')
                line += '"';
            line += ch;
        }
        line += '"';
    }
    return line + '\n';
}

std::vector<std::vector<std::string>> ParseCsv(const std::string& text)
{
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> row;
    std::string cell;
    bool quoted = false, any = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char ch = text[i];
        if (quoted) {
            if (ch == '"' && i + 1 < text.size() && text[i + 1] == '"') {
                cell += '"';
                ++i;
            } else if (ch == '"') {
                quoted = false;
            } else {
                cell += ch;
            }
            continue;
        }
        if (ch == '"') {
            quoted = true;
            any = true;
        } else if (ch == ',') {
            row.push_back(cell);
            cell.clear();
            any = true;
        } else if (ch == '\n' || ch == '\r') {
            if (ch == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
            if (any || !cell.empty()) {
                row.push_back(cell);
                rows.push_back(row);
            }
            row.clear();
            cell.clear();
            any = false;
        } else {
            cell += ch;
            any = true;
        }
    }
    if (any || !cell.empty()) {
        row.push_back(cell);
        rows.push_back(row);
    }
    return rows;
}

} // namespace cli
