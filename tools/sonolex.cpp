// sonolex: describes lesions on ultrasound scans from the command line.
// Argument parsing, output formats, batch and overlays; everything a host
// does around the entry points is in sonolex_io.
#include <cstdio>
#include <iostream>
#include <sstream>
#include <thread>

#include <CLI/CLI.hpp>
#include <opencv2/core/utils/logger.hpp>

#include "cli/cli.h"

namespace {

using sonolex_io::ErrorKind;
using sonolex_io::InputError;

const char* kExitStatus = R"(
EXIT STATUS
  0  described (a record may still hold verdicts the call did not reach)
  2  usage: an unknown option, a bad value, a missing argument
  3  a file cannot be opened or decoded
  4  a mask whose size is not the image's
  5  an empty mask: no pixel (with the label), no lumen, no outline points
  6  a DICOM object this reader does not decode
  7  batch: at least one row gave an error (the others are written)
  8  an output file cannot be written
  9  an unexpected failure
Errors are one line on stderr, "FILE: problem"; nothing goes to stdout then.)";

struct DescribeOptions {
    sonolex_io::Sources sources;
    std::string roi, axes, format = "json", overlay;
    bool points = false;
};

int Describe(const DescribeOptions& o)
{
    sonolex_io::Sources s = o.sources;
    if (!o.roi.empty())
        s.roi = sonolex_io::ParseRoi(o.roi, "--roi");
    if (!o.axes.empty())
        s.axes = sonolex_io::ParseAxes(o.axes, "--axes");
    const sonolex_io::Loaded loaded = sonolex_io::Load(s);
    std::vector<cli::Outcome> outcomes;
    for (size_t k = 0; k < loaded.cases.size(); ++k) {
        cli::Outcome out;
        out.image = s.image;
        out.mask = s.mask.empty() ? s.outline : s.mask;
        out.organ = s.organ;
        out.component = s.all_components ? int(k) : -1;
        out.description = sonolex_io::Describe(loaded.cases[k]);
        outcomes.push_back(out);
    }
    std::string text;
    if (o.format == "csv") {
        const std::vector<std::string> fields = cli::FieldColumns({loaded.cases.front().organ});
        text = cli::CsvLine(cli::OutcomeHeader(fields));
        for (const cli::Outcome& out : outcomes)
            text += cli::CsvLine(cli::OutcomeCells(out, fields));
    } else if (s.all_components) {
        cli::Json list = cli::Json::array();
        for (const cli::Outcome& out : outcomes)
            list.push_back(cli::ToJson(out, o.points));
        text = cli::Pretty(list) + "\n";
    } else {
        text = cli::Pretty(cli::ToJson(outcomes.front(), o.points)) + "\n";
    }
    if (!o.overlay.empty())
        cli::WriteOverlay(loaded.image, outcomes, o.overlay);
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (std::fflush(stdout) != 0)
        throw cli::WriteError("stdout: cannot write");
    return 0;
}

std::string OrganList()
{
    std::string list;
    for (const std::string& name : sonolex_io::OrganNames())
        list += (list.empty() ? "" : ", ") + name;
    return list;
}

// Breaks `text` into lines of at most `width` characters at spaces, for help
// that stays within a terminal's width.
std::string Wrap(const std::string& text, size_t width = 52, const std::string& indent = "")
{
    std::string out, line;
    std::stringstream words(text);
    for (std::string word; words >> word;) {
        if (!line.empty() && line.size() + 1 + word.size() > width) {
            out += line + "\n" + indent;
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
    }
    return out + line;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("NAME\n  sonolex - describe lesions on B-mode ultrasound scans\n\nDESCRIPTION\n  " +
                     Wrap("Describes a lesion on a B-mode ultrasound scan in the categories of a sonographer's "
                          "report (shape, orientation, echo, boundary, margin, calcification, echo texture, wall "
                          "thickening, plaque position), from the scan and a segmentation of the lesion, with the "
                          "sonolex library. `describe` takes one case, `batch` a table of cases. Each verdict comes "
                          "with its meaning in words and whether the library's call reached it.",
                          76, "  ") +
                     "\n",
                 "sonolex");
    app.require_subcommand(1);
    app.get_formatter()->column_width(30);
    app.footer(std::string(R"(
EXAMPLES
  sonolex describe --organ breast scan.png lesion-mask.png
  sonolex batch cases.csv verdicts.csv -j 2 --overlays pictures
Run `sonolex describe --help` or `sonolex batch --help` for each command's options.)") + kExitStatus);

    DescribeOptions d;
    CLI::App* describe = app.add_subcommand(
        "describe", Wrap("Describe one case: IMAGE (PNG, JPEG, BMP, TIFF or DICOM) and the lesion's MASK (any "
                         "non-zero pixel, or --label N; its largest outline). JSON on stdout, or CSV with --format "
                         "csv.", 48));
    describe->add_option("--organ", d.sources.organ, Wrap("organ: " + OrganList()))->required()->check(
        CLI::IsMember(sonolex_io::OrganNames()));
    describe->add_option("image", d.sources.image, Wrap("the scan"))->required();
    describe->add_option("mask", d.sources.mask,
                         Wrap("the lesion mask, same size as the scan (gallwall: the wall, whose hole is the lumen; "
                         "or the lumen when --organ-mask gives the outer outline; gallbladder: the organ)"));
    describe->add_option("--outline", d.sources.outline,
                         Wrap("the lesion outline as JSON ([[x, y], ...] in image pixels) instead of MASK"));
    describe->add_option("--label", d.sources.label, Wrap("lesion label in MASK; default: any non-zero pixel"));
    describe->add_flag("--all-components", d.sources.all_components,
                       Wrap("describe every component of MASK, not only the largest"));
    describe->add_option("--organ-mask", d.sources.organ_mask,
                         Wrap("organ mask: thyroid gland, liver, carotid vessels (each component one vessel), or the "
                         "gall bladder's outer outline; default for thyroid and liver: the image frame"));
    describe->add_option("--model-mask", d.sources.model_mask,
                         Wrap("regions of the host's detection model (breast: calcifications, chooses the model entry; "
                         "thyroid: calcifications), each component one region"));
    describe->add_option("--roi", d.roi,
                         Wrap("x,y,width,height region the entry works on; default: the lesion's box widened by 20 "
                         "pixels a side within the image"));
    describe->add_option("--axes", d.axes,
                         Wrap("x1,y1,x2,y2,x3,y3,x4,y4: the breast lesion's long axis, then its short axis; default: "
                         "measured on the outline"));
    describe->add_option("--frame", d.sources.frame, Wrap("frame of a DICOM cine, from 0"))->capture_default_str();
    describe->add_option("--format", d.format, Wrap("json or csv"))->check(CLI::IsMember({"json", "csv"}))
        ->capture_default_str();
    describe->add_flag("--points", d.points, Wrap("list the outlines' points in the JSON arguments"));
    describe->add_option("--overlay", d.overlay,
                         Wrap("write a picture (PNG, or JPEG by its name) of the scan with the outline, region, axes, organ and model regions, and "
                         "the verdicts in words"));
    describe->footer(std::string(R"(
Where an entry needs a region or axes and none is given, the program derives
them as a host would and lists what it derived under "derived". The arguments
actually passed to the entry are under "arguments"; each record field has its
value, its meaning in words and whether the call reached it (null: the record
cannot tell, as when a preset is itself a verdict).

EXAMPLES
  sonolex describe --organ breast scan.png mask.png --overlay scan-described.png
  sonolex describe --organ thyroid --organ-mask gland.png --format csv nodule.dcm nodule-mask.png)") +
                     kExitStatus);

    cli::BatchOptions b;
    CLI::App* batch = app.add_subcommand(
        "batch", Wrap("Describe every case of MANIFEST into OUT (.csv or .jsonl). The manifest has a header row "
                      "and the columns Image and Mask (paths relative to the manifest), optionally Organ, Label, "
                      "OrganMask, ModelMask, Roi and Axes; every other column is copied to the output unchanged. "
                      "Cases run on several threads; each row is written as soon as it is done, in the order they "
                      "finish, with its manifest row number in the column `row`, so an interrupted run loses "
                      "nothing. A failing row gets its error in the row and the batch goes on.", 48));
    batch->add_option("manifest", b.manifest, Wrap("the manifest CSV"))->required();
    batch->add_option("out", b.out, Wrap("the output, .csv or .jsonl"))->required();
    b.jobs = int(std::max(1u, std::thread::hardware_concurrency()));
    batch->add_option("-j,--jobs", b.jobs, Wrap("cases described at once"))->capture_default_str();
    batch->add_option("--organ", b.organ, Wrap("organ of the rows without an Organ column or value"));
    batch->add_flag("--resume", b.resume, Wrap("keep the rows OUT already holds and describe only the others"));
    batch->add_flag("--all-components", b.all_components, Wrap("one output row for every component of each mask"));
    batch->add_flag("--points", b.points, Wrap("list the outlines' points in JSONL output"));
    batch->add_option("--overlays", b.overlays, Wrap("write one overlay PNG a row into this directory (ROW-IMAGE.png)"));
    batch->footer(std::string(R"(
A progress bar (done/total, rate, time left) is drawn on stderr when it is a
terminal; otherwise a line every ten seconds. The last line gives the rate in
images per second and the share of the work spent decoding. --resume first
cuts an unfinished last line from OUT.

EXAMPLES
  sonolex batch --organ breast cases.csv verdicts.csv
  sonolex batch cases.csv verdicts.jsonl -j 2 --resume --overlays pictures)") +
                  kExitStatus);

    // The codecs' own warnings would break the one-line error on stderr.
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() == 0)
            return app.exit(e);
        std::fprintf(stderr, "sonolex: %s (see sonolex --help)\n", e.what());
        return int(ErrorKind::Usage);
    }
    try {
        if (describe->parsed())
            return Describe(d);
        return cli::RunBatch(b);
    } catch (const InputError& e) {
        std::fprintf(stderr, "sonolex: %s\n", e.what());
        return int(e.kind);
    } catch (const cli::WriteError& e) {
        std::fprintf(stderr, "sonolex: %s\n", e.what());
        return cli::kCannotWrite;
    } catch (const std::exception& e) {
        const std::string subject = describe->parsed() ? d.sources.image : b.manifest;
        std::fprintf(stderr, "sonolex: %s: %s\n", subject.c_str(), cli::OneLine(e.what()).c_str());
        return cli::kInternal;
    }
}
