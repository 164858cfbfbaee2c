// The sonolex program end to end: input kinds, output shapes, errors with
// their exit status, batch with copied columns, and resuming a cut-off run.
#include <set>

#include <gtest/gtest.h>

#include "cli_helpers.h"

namespace {

using clitest::Program;
using nlohmann::json;

// A 64 x 48 scan, dark lesion 20 x 12 at (20, 16) on a speckle of known seed.
struct Scene {
    std::string dir;
    cv::Mat scan;
    Scene() : dir(clitest::TempDir("program")), scan(48, 64, CV_8U)
    {
        cv::RNG rng(7);
        rng.fill(scan, cv::RNG::UNIFORM, 90, 160);
        scan(cv::Rect(20, 16, 20, 12)).setTo(30);
        cv::Mat mask = cv::Mat::zeros(48, 64, CV_8U);
        mask(cv::Rect(20, 16, 20, 12)).setTo(1);
        cv::Mat twoParts = mask.clone();
        twoParts(cv::Rect(50, 36, 6, 5)).setTo(1);
        cv::imwrite(dir + "/scan.png", scan);
        cv::imwrite(dir + "/scan.jpg", scan);
        cv::imwrite(dir + "/mask.png", mask);
        cv::imwrite(dir + "/two.png", twoParts);
        cv::imwrite(dir + "/empty.png", cv::Mat::zeros(48, 64, CV_8U));
        cv::imwrite(dir + "/small.png", cv::Mat::zeros(10, 10, CV_8U));
        clitest::Write(dir + "/outline.json", "[[20,16],[39,16],[39,27],[20,27]]");
        clitest::Write(dir + "/broken.dcm", std::string(128, '\0') + "DICMgarbage");
        cv::Mat colour;
        cv::cvtColor(scan, colour, cv::COLOR_GRAY2BGR);
        clitest::WriteDicom(dir + "/cine.dcm", {colour * 0.5, colour}); // frame 1 is the scan, in RGB
    }
    std::string operator()(const std::string& name) const { return dir + "/" + name; }
};

TEST(CliProgram, DescribeGivesTheEntrysRecordForEachInputKind)
{
    const Scene s;
    // Box (20, 16, 20, 12) widened by 20 a side is (0, -4, 60, 52); within
    // the 64 x 48 image (0, 0, 60, 48).
    const json roi{{"x", 0}, {"y", 0}, {"width", 60}, {"height", 48}};
    struct Row {
        std::vector<std::string> args;
        std::string scan;
        int points; // the lesion outline: 4 corners from JSON, 2 x (19 + 11) = 60 from the mask
    } rows[] = {
        {{s("scan.png"), s("mask.png")}, "scan.png", 60},
        {{s("scan.jpg"), s("mask.png")}, "scan.jpg", 60},
        {{s("scan.png"), "--outline", s("outline.json")}, "scan.png", 4},
        {{s("cine.dcm"), s("mask.png"), "--frame", "1"}, "scan.png", 60}, // read as three channels
    };
    for (const Row& row : rows) {
        std::vector<std::string> args{"describe", "--organ", "breast", "--points"};
        args.insert(args.end(), row.args.begin(), row.args.end());
        const clitest::Run run = Program(args, s.dir);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        const json j = json::parse(run.out);
        EXPECT_EQ(j["entry"], "BreastDescription");
        EXPECT_EQ(j["arguments"]["roi"], roi);
        EXPECT_EQ(j["arguments"]["lesionPoints"]["count"], row.points);
        EXPECT_EQ(j["arguments"]["lesionPoints"]["bounds"], json::array({20, 16, 20, 12}));
        EXPECT_EQ(j["derived"].size(), 2u) << "roi and axes";
        std::vector<std::string> names;
        const nlohmann::ordered_json ordered = nlohmann::ordered_json::parse(run.out);
        for (const auto& f : ordered["record"].items())
            names.push_back(f.key());
        EXPECT_EQ(names, (std::vector<std::string>{"shape", "orientation", "echo", "boundary", "margin",
                                                   "calcification"}));
        cv::Mat pixels = cv::imread(s(row.scan), cv::IMREAD_ANYCOLOR);
        if (row.args[0] == s("cine.dcm")) {
            EXPECT_EQ(j["arguments"]["channels"], 3);
            cv::cvtColor(pixels, pixels, cv::COLOR_GRAY2BGR);
        }
        EXPECT_EQ(clitest::RecordWords(j), clitest::CallFromJson(j, pixels)) << row.scan;
    }
}

TEST(CliProgram, GallBladderTakesTheMaskAsTheOrganOutline)
{
    // The mask's outline goes in as the organ outline (60 points) with the
    // derived region (0, 0, 60, 48). The entry drops the organ before its
    // mask is drawn and ends at the centroid of an empty label: only
    // wallVerdict is cleared, and every other word keeps its preset.
    const Scene s;
    const clitest::Run run = Program({"describe", "--organ", "gallbladder", "--points", s("scan.png"), s("mask.png")},
                                     s.dir);
    ASSERT_EQ(run.status, 0) << run.err;
    const json j = json::parse(run.out);
    EXPECT_EQ(j["entry"], "GallBladderWallDescription");
    EXPECT_EQ(j["arguments"]["organPoints"]["count"], 60);
    EXPECT_EQ(j["arguments"]["roi"], json({{"x", 0}, {"y", 0}, {"width", 60}, {"height", 48}}));
    EXPECT_EQ(j["record"]["wallVerdict"]["value"], 0);
    EXPECT_EQ(j["record"]["wallVerdict"]["reached"], false);
    EXPECT_EQ(j["record"]["maxDistance"]["reached"], false);
    const std::vector<int32_t> preset = j["arguments"]["resultPreset"].get<std::vector<int32_t>>();
    EXPECT_EQ(clitest::RecordWords(j), preset);
    EXPECT_EQ(clitest::RecordWords(j), clitest::CallFromJson(j, s.scan));
}

TEST(CliProgram, CsvAndComponentsHaveOneRowACase)
{
    const Scene s;
    const clitest::Run csv = Program({"describe", "--organ", "liver", "--format", "csv", s("scan.png"),
                                      s("two.png"), "--all-components"},
                                     s.dir);
    ASSERT_EQ(csv.status, 0) << csv.err;
    std::vector<std::string> lines;
    std::stringstream in(csv.out);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    ASSERT_EQ(lines.size(), 3u) << "header and two components";
    EXPECT_EQ(lines[0], "image,mask,organ,component,status,error,entry,derived,shape,shape_meaning,echo,"
                        "echo_meaning,boundary,boundary_meaning,echoTexture,echoTexture_meaning");
    EXPECT_EQ(lines[1].rfind(s("scan.png") + "," + s("two.png") + ",liver,0,ok,,LiverDescription,", 0), 0u);
    EXPECT_EQ(lines[2].rfind(s("scan.png") + "," + s("two.png") + ",liver,1,ok,", 0), 0u);

    const clitest::Run j = Program({"describe", "--organ", "breast", s("scan.png"), s("two.png"),
                                    "--all-components"},
                                   s.dir);
    const json list = json::parse(j.out);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]["arguments"]["lesionPoints"]["bounds"], json::array({20, 16, 20, 12})) << "larger first";
    EXPECT_EQ(list[1]["arguments"]["lesionPoints"]["bounds"], json::array({50, 36, 6, 5}));
}

TEST(CliProgram, EachErrorIsOneLineWithItsOwnStatusAndNothingOnStdout)
{
    const Scene s;
    struct Row {
        std::vector<std::string> args;
        int status;
        std::string line; // what stderr says, after "sonolex: "
    } rows[] = {
        {{"--organ", "breast", s("absent.png"), s("mask.png")}, 3,
         s("absent.png") + ": cannot read the image (missing file or not an image)"},
        {{"--organ", "breast", s("scan.png"), s("small.png")}, 4,
         s("small.png") + ": mask is 10 x 10, the image 64 x 48"},
        {{"--organ", "breast", s("scan.png"), s("empty.png")}, 5,
         s("empty.png") + ": the mask is empty (no non-zero pixel)"},
        {{"--organ", "breast", "--label", "7", s("scan.png"), s("mask.png")}, 5,
         s("mask.png") + ": the mask has no pixel of label 7"},
        {{"--organ", "breast", s("broken.dcm"), s("mask.png")}, 6,
         s("broken.dcm") + ": not a DICOM image GDCM can read (no pixel data?)"},
        {{"--organ", "breast", "--roi", "1,2,3", s("scan.png"), s("mask.png")}, 2,
         "--roi: \"1,2,3\" is not x,y,width,height"},
        {{"--organ", "carotid", s("scan.png"), s("mask.png")}, 2,
         "--organ-mask: carotid needs the vessel outlines (--organ-mask)"},
        {{"--organ", "breast", s("scan.png"), s("mask.png"), "--outline", s("outline.json")}, 2,
         s("scan.png") + ": give either a mask or an outline (--outline), not both or neither"},
        {{"--organ", "spleen", s("scan.png"), s("mask.png")}, 2, ""},
        {{"--organ", "breast", s("scan.png"), s("mask.png"), "--overlay", s("no-such-dir/o.png")}, 8,
         s("no-such-dir/o.png") + ": cannot write the overlay"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> args{"describe"};
        args.insert(args.end(), row.args.begin(), row.args.end());
        const clitest::Run run = Program(args, s.dir);
        EXPECT_EQ(run.status, row.status) << run.err;
        EXPECT_EQ(run.out, "") << row.line;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        if (!row.line.empty()) {
            EXPECT_EQ(run.err, "sonolex: " + row.line + "\n");
        }
    }
}

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::stringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

TEST(CliProgram, BatchCopiesColumnsKeepsGoingPastBadRowsAndResumes)
{
    const Scene s;
    // Paths relative to the manifest; Note holds a comma and quotes.
    clitest::Write(s("cases.csv"), "Patient,Image,Mask,Organ,Note\n"
                                   "p1,scan.png,mask.png,breast,\"left, \"\"upper\"\" quadrant\"\n"
                                   "p2,scan.png,absent.png,breast,\n"
                                   "p3,scan.jpg,mask.png,liver,jpeg\n"
                                   "p4,scan.png,two.png,,default organ\n");
    const clitest::Run full = Program({"batch", s("cases.csv"), s("full.csv"), "-j", "2", "--organ", "thyroid"},
                                      s.dir);
    EXPECT_EQ(full.status, 7) << "one row failed: " << full.err;
    std::vector<std::string> rows = Lines(clitest::Slurp(s("full.csv")));
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[0].rfind("row,Patient,Note,image,mask,organ,component,status,error,entry,derived,shape,", 0), 0u);
    std::sort(rows.begin() + 1, rows.end());
    EXPECT_EQ(rows[1].rfind("1,p1,\"left, \"\"upper\"\" quadrant\",scan.png,mask.png,breast,,ok,,", 0), 0u);
    EXPECT_EQ(rows[2].rfind("2,p2,,scan.png,absent.png,breast,,error,", 0), 0u);
    EXPECT_NE(rows[2].find("absent.png: cannot read the mask"), std::string::npos);
    EXPECT_EQ(rows[3].rfind("3,p3,jpeg,scan.jpg,mask.png,liver,,ok,,LiverDescription,", 0), 0u);
    EXPECT_EQ(rows[4].rfind("4,p4,default organ,scan.png,two.png,thyroid,,ok,,ThyroidDescription", 0), 0u);

    // A run cut off after two rows and half of a third: resuming writes the
    // other rows once each, the half line is dropped.
    const std::vector<std::string> unsorted = Lines(clitest::Slurp(s("full.csv")));
    clitest::Write(s("cut.csv"), unsorted[0] + "\n" + unsorted[1] + "\n" + unsorted[2] + "\n" +
                                     unsorted[3].substr(0, 10));
    const clitest::Run resumed = Program({"batch", s("cases.csv"), s("cut.csv"), "--resume", "-j", "1", "--organ",
                                          "thyroid"},
                                         s.dir);
    EXPECT_NE(resumed.err.find("(2 already done)"), std::string::npos) << resumed.err;
    std::vector<std::string> again = Lines(clitest::Slurp(s("cut.csv")));
    std::sort(again.begin() + 1, again.end());
    EXPECT_EQ(again, rows);

    // JSON lines carry the same copied columns and the record.
    const clitest::Run jsonl = Program({"batch", s("cases.csv"), s("out.jsonl"), "--organ", "thyroid",
                                        "--overlays", s("pictures")},
                                       s.dir);
    // One picture a described row, named by row and scan; none for the failed row 2.
    for (const char* name : {"1-scan.png", "3-scan.png", "4-scan.png"})
        EXPECT_FALSE(cv::imread(s("pictures/") + name).empty()) << name;
    EXPECT_TRUE(cv::imread(s("pictures/2-scan.png")).empty());
    std::set<std::string> patients;
    for (const std::string& line : Lines(clitest::Slurp(s("out.jsonl")))) {
        const json j = json::parse(line);
        patients.insert(j["Patient"].get<std::string>());
        EXPECT_EQ(j["status"], j["Patient"] == "p2" ? "error" : "ok");
        EXPECT_EQ(j.contains("record"), j["Patient"] != "p2");
    }
    EXPECT_EQ(patients, (std::set<std::string>{"p1", "p2", "p3", "p4"}));
}

TEST(CliProgram, HelpReadsLikeAManualPage)
{
    const Scene s;
    struct Row {
        std::vector<std::string> args;
        std::vector<std::string> mentions;
    } rows[] = {
        {{"--help"}, {"describe", "batch", "EXAMPLES", "EXIT STATUS"}},
        {{"describe", "--help"}, {"--organ-mask", "--model-mask", "--roi", "--axes", "--frame", "--overlay",
                                  "EXAMPLES"}},
        {{"batch", "--help"}, {"--resume", "--jobs", "--overlays", "Image and Mask", "EXAMPLES"}},
    };
    for (const Row& row : rows) {
        const clitest::Run run = Program(row.args, s.dir);
        EXPECT_EQ(run.status, 0);
        for (const std::string& m : row.mentions)
            EXPECT_NE(run.out.find(m), std::string::npos) << m;
    }
}

} // namespace
