// Many cases from a manifest, on several threads, each row written as it
// completes so that an interrupted run loses nothing.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <thread>
#include <sys/stat.h>
#include <unistd.h>

#include <opencv2/core/utility.hpp>

#include "cli/cli.h"

namespace cli {

namespace {

using sonolex_io::ErrorKind;
using sonolex_io::InputError;
using Clock = std::chrono::steady_clock;

std::string Lower(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return s;
}

std::string ReadWhole(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

bool EndsWith(const std::string& s, const std::string& tail)
{
    return s.size() >= tail.size() && Lower(s.substr(s.size() - tail.size())) == tail;
}

std::string Stem(const std::string& path)
{
    const size_t slash = path.find_last_of('/');
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const size_t dot = name.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

struct Manifest {
    std::vector<std::string> header;
    std::vector<std::vector<std::string>> rows;
    std::string dir;                       // paths in it are relative to this
    std::map<std::string, size_t> known;   // lower-case name of a read column -> index
    std::vector<size_t> copied;            // every other column
    std::string Cell(const std::vector<std::string>& row, const char* name) const
    {
        const auto it = known.find(name);
        return it == known.end() || it->second >= row.size() ? "" : row[it->second];
    }
    std::string Path(const std::vector<std::string>& row, const char* name) const
    {
        const std::string p = Cell(row, name);
        return p.empty() || p[0] == '/' ? p : dir + p;
    }
};

Manifest ReadManifest(const std::string& path)
{
    if (!std::ifstream(path))
        throw InputError(ErrorKind::Unreadable, path, "cannot open the manifest");
    Manifest m;
    std::vector<std::vector<std::string>> rows = ParseCsv(ReadWhole(path));
    if (rows.empty())
        throw InputError(ErrorKind::Unreadable, path, "the manifest is empty");
    m.header = rows.front();
    m.rows.assign(rows.begin() + 1, rows.end());
    const size_t slash = path.find_last_of('/');
    m.dir = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    const std::set<std::string> read{"image", "mask", "organ", "label", "organmask", "modelmask", "roi", "axes"};
    for (size_t i = 0; i < m.header.size(); ++i) {
        const std::string name = Lower(m.header[i]);
        if (read.count(name) != 0 && m.known.count(name) == 0)
            m.known[name] = i;
        else
            m.copied.push_back(i);
    }
    if (m.known.count("image") == 0 || m.known.count("mask") == 0)
        throw InputError(ErrorKind::Usage, path, "the header needs the columns Image and Mask");
    return m;
}

std::vector<Outcome> DescribeRow(const Manifest& m, const std::vector<std::string>& row, const BatchOptions& o,
                                 size_t number, double& decodeSeconds)
{
    Outcome base;
    base.image = m.Cell(row, "image");
    base.mask = m.Cell(row, "mask");
    base.organ = m.Cell(row, "organ").empty() ? o.organ : m.Cell(row, "organ");
    const std::string where = o.manifest + " row " + std::to_string(number);
    try {
        sonolex_io::Sources s;
        s.image = m.Path(row, "image");
        s.mask = m.Path(row, "mask");
        s.organ_mask = m.Path(row, "organmask");
        s.model_mask = m.Path(row, "modelmask");
        s.organ = base.organ;
        s.all_components = o.all_components;
        if (s.organ.empty())
            throw InputError(ErrorKind::Usage, where, "no Organ in the row and no --organ");
        if (!m.Cell(row, "label").empty()) {
            try {
                s.label = std::stoi(m.Cell(row, "label"));
            } catch (const std::exception&) {
                throw InputError(ErrorKind::Usage, where, "Label \"" + m.Cell(row, "label") + "\" is not a number");
            }
        }
        if (!m.Cell(row, "roi").empty())
            s.roi = sonolex_io::ParseRoi(m.Cell(row, "roi"), where + " Roi");
        if (!m.Cell(row, "axes").empty())
            s.axes = sonolex_io::ParseAxes(m.Cell(row, "axes"), where + " Axes");
        const sonolex_io::Loaded loaded = sonolex_io::Load(s);
        decodeSeconds = loaded.decode_seconds;
        std::vector<Outcome> outcomes;
        for (size_t k = 0; k < loaded.cases.size(); ++k) {
            Outcome out = base;
            out.component = o.all_components ? int(k) : -1;
            out.description = sonolex_io::Describe(loaded.cases[k]);
            outcomes.push_back(out);
        }
        if (!o.overlays.empty())
            WriteOverlay(loaded.image, outcomes,
                         o.overlays + "/" + std::to_string(number) + "-" + Stem(base.image) + ".png");
        return outcomes;
    } catch (const InputError& e) {
        base.error = e.what();
        base.status = int(e.kind);
    } catch (const WriteError& e) {
        base.error = e.what();
        base.status = kCannotWrite;
    } catch (const std::exception& e) {
        base.error = OneLine(where + ": " + e.what());
        base.status = kInternal;
    }
    return {base};
}

// Rows a previous run already wrote; the file is cut after its last whole line.
std::set<size_t> RowsDone(const std::string& out, bool csv, const std::vector<std::string>& header)
{
    std::set<size_t> done;
    std::string text = ReadWhole(out);
    const size_t end = text.find_last_of('\n');
    text = end == std::string::npos ? "" : text.substr(0, end + 1);
    if (truncate(out.c_str(), off_t(text.size())) != 0)
        throw WriteError(out + ": cannot cut the unfinished last line");
    if (csv) {
        const std::vector<std::vector<std::string>> rows = ParseCsv(text);
        if (!rows.empty() && rows.front() != header)
            throw InputError(ErrorKind::Usage, out, "its columns are not those this run writes; --resume cannot go on");
        for (size_t i = 1; i < rows.size(); ++i)
            done.insert(std::stoul(rows[i].at(0)));
        return done;
    }
    std::stringstream lines(text);
    std::string line;
    while (std::getline(lines, line))
        if (!line.empty())
            done.insert(nlohmann::json::parse(line).at("row").get<size_t>());
    return done;
}

std::string Duration(double seconds)
{
    const long s = long(seconds + 0.5);
    char text[32];
    std::snprintf(text, sizeof text, "%ld:%02ld", s / 60, s % 60);
    return text;
}

} // namespace

int RunBatch(const BatchOptions& o)
{
    const bool csv = EndsWith(o.out, ".csv");
    if (!csv && !EndsWith(o.out, ".jsonl"))
        throw InputError(ErrorKind::Usage, o.out, "the output must end in .csv or .jsonl");
    const Manifest m = ReadManifest(o.manifest);
    if (!o.overlays.empty())
        mkdir(o.overlays.c_str(), 0777); // an existing directory is kept as it is

    std::vector<sonolex_io::Organ> organs;
    for (const std::string& name : sonolex_io::OrganNames())
        for (const auto& row : m.rows) {
            const std::string organ = m.Cell(row, "organ").empty() ? o.organ : m.Cell(row, "organ");
            if (organ == name) {
                organs.push_back(*sonolex_io::OrganFromName(name));
                break;
            }
        }
    const std::vector<std::string> fields = FieldColumns(organs);
    std::vector<std::string> header{"row"};
    for (size_t i : m.copied)
        header.push_back(m.header[i]);
    const std::vector<std::string> described = OutcomeHeader(fields);
    header.insert(header.end(), described.begin(), described.end());

    std::set<size_t> done;
    const bool exists = static_cast<bool>(std::ifstream(o.out));
    if (o.resume && exists)
        done = RowsDone(o.out, csv, header);
    std::FILE* file = std::fopen(o.out.c_str(), o.resume && exists ? "ab" : "wb");
    if (file == nullptr)
        throw WriteError(o.out + ": cannot open for writing");
    if (csv && std::ftell(file) == 0)
        std::fputs(CsvLine(header).c_str(), file);
    std::fflush(file);

    std::vector<size_t> pending;
    for (size_t i = 0; i < m.rows.size(); ++i)
        if (done.count(i + 1) == 0)
            pending.push_back(i);

    const int jobs = std::max(1, o.jobs > 0 ? o.jobs : int(std::thread::hardware_concurrency()));
    cv::setNumThreads(1); // the cases are the parallel work
    std::atomic<size_t> next{0};
    std::mutex lock;
    size_t finished = 0, failed = 0;
    double decodeTotal = 0.0, workTotal = 0.0;
    bool writeFailed = false;
    const bool terminal = isatty(STDERR_FILENO) != 0;
    const Clock::time_point start = Clock::now();
    Clock::time_point lastReport = start;

    auto report = [&](bool last) {
        const double elapsed = std::chrono::duration<double>(Clock::now() - start).count();
        const double rate = elapsed > 0.0 ? double(finished) / elapsed : 0.0;
        const double left = rate > 0.0 ? double(pending.size() - finished) / rate : 0.0;
        if (terminal) {
            const int width = 30;
            const int filled = pending.empty() ? width : int(width * finished / pending.size());
            std::fprintf(stderr, "\r[%s%s] %zu/%zu  %.1f images/s  %s left ", std::string(filled, '#').c_str(),
                         std::string(width - filled, '.').c_str(), finished, pending.size(), rate,
                         Duration(left).c_str());
            if (last)
                std::fputc('\n', stderr);
        } else if (!last) {
            std::fprintf(stderr, "sonolex batch: %zu/%zu rows, %.1f images/s, about %s left\n", finished,
                         pending.size(), rate, Duration(left).c_str());
        }
    };

    auto worker = [&]() {
        for (size_t k = next++; k < pending.size(); k = next++) {
            const size_t index = pending[k];
            const Clock::time_point t0 = Clock::now();
            double decode = 0.0;
            const std::vector<Outcome> outcomes = DescribeRow(m, m.rows[index], o, index + 1, decode);
            const double work = std::chrono::duration<double>(Clock::now() - t0).count();
            std::string text;
            for (const Outcome& outcome : outcomes) {
                std::vector<std::string> copied;
                for (size_t c : m.copied)
                    copied.push_back(c < m.rows[index].size() ? m.rows[index][c] : "");
                if (csv) {
                    std::vector<std::string> cells{std::to_string(index + 1)};
                    cells.insert(cells.end(), copied.begin(), copied.end());
                    const std::vector<std::string> rest = OutcomeCells(outcome, fields);
                    cells.insert(cells.end(), rest.begin(), rest.end());
                    text += CsvLine(cells);
                } else {
                    Json j;
                    j["row"] = index + 1;
                    for (size_t c = 0; c < copied.size(); ++c)
                        j[m.header[m.copied[c]]] = copied[c];
                    j.update(ToJson(outcome, o.points));
                    text += Dump(j) + "\n";
                }
            }
            std::lock_guard<std::mutex> guard(lock);
            if (std::fputs(text.c_str(), file) < 0 || std::fflush(file) != 0)
                writeFailed = true;
            ++finished;
            failed += outcomes.front().description ? 0 : 1;
            decodeTotal += decode;
            workTotal += work;
            const Clock::time_point now = Clock::now();
            const double since = std::chrono::duration<double>(now - lastReport).count();
            if (since >= (terminal ? 0.1 : 10.0)) {
                lastReport = now;
                report(false);
            }
        }
    };
    std::vector<std::thread> threads;
    for (int t = 1; t < jobs; ++t)
        threads.emplace_back(worker);
    worker();
    for (std::thread& t : threads)
        t.join();
    const bool closed = std::fclose(file) == 0;
    if (terminal)
        report(true);

    const double elapsed = std::chrono::duration<double>(Clock::now() - start).count();
    std::fprintf(stderr,
                 "sonolex batch: %zu rows (%zu already done), %zu described, %zu errors in %.2f s on %d thread(s): "
                 "%.1f images/s, decoding %.0f%% of the work\n",
                 m.rows.size(), done.size(), finished - failed, failed, elapsed, jobs,
                 elapsed > 0.0 ? double(finished) / elapsed : 0.0,
                 workTotal > 0.0 ? 100.0 * decodeTotal / workTotal : 0.0);
    if (writeFailed || !closed)
        throw WriteError(o.out + ": cannot write the rows");
    return failed > 0 ? kRowsFailed : 0;
}

} // namespace cli
