// The command-line program's parts: output formats, overlays, batch.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "io/sonolex_io.h"

namespace cli {

// Exit statuses beyond sonolex_io::ErrorKind (2 to 6).
constexpr int kRowsFailed = 7;   // batch: at least one row gave an error
constexpr int kCannotWrite = 8;  // an output file could not be written
constexpr int kInternal = 9;     // anything else

// An output that could not be written; what() reads "FILE: problem".
struct WriteError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// One described case, or the error that stopped it.
struct Outcome {
    std::string image, mask, organ;
    int component = -1;          // -1: the largest (or only) component
    std::optional<sonolex_io::Description> description;
    std::string error;           // "FILE: problem" when description is empty
    int status = 0;              // exit status of the error
};

// A message on one line: line breaks become spaces, trailing ones go.
std::string OneLine(const std::string& text);

// ---- formats ----
using Json = nlohmann::ordered_json;
Json ToJson(const Outcome& outcome, bool points);
// JSON on one line; bytes that are not UTF-8 (in paths) are replaced.
std::string Dump(const Json& value);
// Indented JSON with short lists (numbers, points) kept on one line.
std::string Pretty(const Json& value, int indent = 0);
// Field columns of these organs' records: every field name once, in the
// organs' order, each categorical one followed by "<name>_meaning".
std::vector<std::string> FieldColumns(const std::vector<sonolex_io::Organ>& organs);
// Cells of the columns that describe an outcome, after any copied ones.
std::vector<std::string> OutcomeHeader(const std::vector<std::string>& fieldColumns);
std::vector<std::string> OutcomeCells(const Outcome& outcome, const std::vector<std::string>& fieldColumns);
std::string CsvLine(const std::vector<std::string>& cells);
// RFC 4180 records (quoted fields may hold commas, quotes and line breaks).
std::vector<std::vector<std::string>> ParseCsv(const std::string& text);

// ---- overlays ----
// The image with the outlines, region, axes, organ and model regions drawn,
// and the verdicts in words in a panel at its right. Written atomically.
void WriteOverlay(const cv::Mat& image, const std::vector<Outcome>& outcomes, const std::string& path);

// ---- batch ----
struct BatchOptions {
    std::string manifest, out, overlays, organ;
    int jobs = 0;
    bool resume = false, points = false, all_components = false;
};
int RunBatch(const BatchOptions& options);

} // namespace cli
