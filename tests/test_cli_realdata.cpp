// The program on the real scans with expert outlines: masks and a manifest
// are written from manifest.json at test time; every case gives a record
// equal to the C entry's for the same arguments, or a clear row error.
#include <map>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "cli_helpers.h"

namespace {

using nlohmann::json;

std::vector<cv::Point> Contour(const json& list)
{
    std::vector<cv::Point> c;
    for (const auto& p : list)
        c.emplace_back(p.at(0).get<int>(), p.at(1).get<int>());
    return c;
}

TEST(CliRealData, EveryCaseGivesTheEntrysRecordOrARowError)
{
    const char* env = std::getenv("SONOLEX_REAL_DATA");
    const std::string data = env != nullptr ? env : SONOLEX_REAL_DATA;
    std::ifstream in(data + "/manifest.json");
    if (!in)
        GTEST_SKIP() << "no real data at " << data;
    const json cases = json::parse(in);
    const std::string dir = clitest::TempDir("real");
    mkdir((dir + "/masks").c_str(), 0777);

    std::string manifest = "Id,Image,Mask,Organ,OrganMask\n";
    std::map<std::string, cv::Rect> largest; // id -> box of its largest expert outline
    for (const json& c : cases) {
        const std::string id = c.at("id");
        const cv::Size size(c.at("width").get<int>(), c.at("height").get<int>());
        cv::Mat mask = cv::Mat::zeros(size, CV_8U);
        double area = -1.0;
        for (const json& lesion : c.at("lesions")) {
            const std::vector<cv::Point> outline = Contour(lesion.at("contour"));
            cv::drawContours(mask, std::vector<std::vector<cv::Point>>{outline}, 0, cv::Scalar(255), cv::FILLED,
                             cv::LINE_8);
            if (cv::contourArea(outline) > area) {
                area = cv::contourArea(outline);
                largest[id] = cv::boundingRect(outline);
            }
        }
        ASSERT_TRUE(cv::imwrite(dir + "/masks/" + id + ".png", mask));
        std::string organMask;
        if (!c.at("organ_outline").is_null()) {
            cv::Mat organ = cv::Mat::zeros(size, CV_8U);
            cv::drawContours(organ, std::vector<std::vector<cv::Point>>{Contour(c["organ_outline"]["contour"])}, 0,
                             cv::Scalar(255), cv::FILLED, cv::LINE_8);
            organMask = "masks/" + id + "-organ.png";
            ASSERT_TRUE(cv::imwrite(dir + "/" + organMask, organ));
        }
        manifest += id + "," + data + "/" + c.at("image").get<std::string>() + ",masks/" + id + ".png," +
                    c.at("organ").get<std::string>() + "," + organMask + "\n";
    }
    clitest::Write(dir + "/cases.csv", manifest);

    const clitest::Run run = clitest::Program({"batch", dir + "/cases.csv", dir + "/out.jsonl", "-j", "2",
                                               "--points"},
                                              dir);
    EXPECT_TRUE(run.status == 0 || run.status == 7) << run.err;
    std::map<std::string, int> seen;
    int described = 0;
    for (const std::string& line : [&] {
             std::vector<std::string> lines;
             std::stringstream text(clitest::Slurp(dir + "/out.jsonl"));
             for (std::string l; std::getline(text, l);)
                 lines.push_back(l);
             return lines;
         }()) {
        const json j = json::parse(line);
        const std::string id = j.at("Id");
        ++seen[id];
        if (j["status"] == "error") {
            // Only the cases without an expert lesion outline fail, on their empty mask.
            EXPECT_EQ(largest.count(id), 0u) << id << ": " << j["error"];
            EXPECT_NE(j["error"].get<std::string>().find("the mask is empty"), std::string::npos) << j["error"];
            continue;
        }
        ++described;
        ASSERT_EQ(largest.count(id), 1u) << id;
        EXPECT_EQ(cv::Rect(j["arguments"]["lesionPoints"]["bounds"][0], j["arguments"]["lesionPoints"]["bounds"][1],
                           j["arguments"]["lesionPoints"]["bounds"][2], j["arguments"]["lesionPoints"]["bounds"][3]),
                  largest[id])
            << id;
        const cv::Mat image = cv::imread(j.at("image").get<std::string>(), cv::IMREAD_ANYCOLOR);
        EXPECT_EQ(clitest::RecordWords(j), clitest::CallFromJson(j, image)) << id;
    }
    EXPECT_EQ(seen.size(), cases.size());
    for (const auto& s : seen)
        EXPECT_EQ(s.second, 1) << s.first;
    EXPECT_EQ(size_t(described), largest.size());
}

} // namespace
