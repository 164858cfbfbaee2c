// Running the sonolex program from tests, and files written for it.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <sys/wait.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gdcmImage.h>
#include <gdcmImageChangeTransferSyntax.h>
#include <gdcmImageWriter.h>
#include <gdcmMediaStorage.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "sonolex.h"

namespace clitest {

struct Run {
    int status = -1;
    std::string out, err;
};

inline std::string Slurp(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

inline std::string Quote(const std::string& arg)
{
    std::string q = "'";
    for (char c : arg)
        q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

// Runs the program with `args`, stdout and stderr captured apart.
inline Run Program(const std::vector<std::string>& args, const std::string& scratch)
{
    std::string command = Quote(SONOLEX_PROGRAM);
    for (const std::string& a : args)
        command += " " + Quote(a);
    const std::string outFile = scratch + "/stdout.txt", errFile = scratch + "/stderr.txt";
    command += " >" + Quote(outFile) + " 2>" + Quote(errFile);
    Run run;
    const int raw = std::system(command.c_str());
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.out = Slurp(outFile);
    run.err = Slurp(errFile);
    return run;
}

// Directories the tests made, removed when the test program ends.
struct Scratch {
    std::vector<std::string> dirs;
    ~Scratch()
    {
        for (const std::string& d : dirs)
            std::filesystem::remove_all(d);
    }
};

// A fresh directory under the system's temporary one.
inline std::string TempDir(const std::string& name)
{
    static Scratch scratch;
    std::string pattern = "/tmp/sonolex-" + name + "-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    const char* made = mkdtemp(buffer.data());
    if (made == nullptr)
        return std::string();
    scratch.dirs.push_back(made);
    return made;
}

inline void Write(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

inline std::vector<MyPoint> Points(const nlohmann::json& list)
{
    std::vector<MyPoint> points;
    for (const auto& p : list)
        points.push_back(MyPoint{p.at(0).get<int>(), p.at(1).get<int>()});
    return points;
}

// A DICOM file of `frames` frames, 1 (MONOCHROME2) or 3 (RGB from blue,
// green, red; or YBR_FULL, samples stored as given) samples of 8 bits, in
// transfer syntax `syntax`, written with GDCM.
inline void WriteDicom(const std::string& path, const std::vector<cv::Mat>& frames, bool ybr = false,
                       gdcm::TransferSyntax::TSType syntax = gdcm::TransferSyntax::ExplicitVRLittleEndian)
{
    const cv::Mat& first = frames.front();
    const int samples = first.channels();
    gdcm::ImageWriter writer;
    gdcm::Image& image = writer.GetImage();
    image.SetNumberOfDimensions(frames.size() > 1 ? 3 : 2);
    image.SetDimension(0, unsigned(first.cols));
    image.SetDimension(1, unsigned(first.rows));
    if (frames.size() > 1)
        image.SetDimension(2, unsigned(frames.size()));
    image.SetPixelFormat(gdcm::PixelFormat(gdcm::PixelFormat::UINT8));
    image.GetPixelFormat().SetSamplesPerPixel((unsigned short)samples);
    image.SetPhotometricInterpretation(samples == 1 ? gdcm::PhotometricInterpretation::MONOCHROME2
                                       : ybr        ? gdcm::PhotometricInterpretation::YBR_FULL
                                                    : gdcm::PhotometricInterpretation::RGB);
    image.SetTransferSyntax(gdcm::TransferSyntax::ExplicitVRLittleEndian);
    std::vector<char> bytes;
    for (const cv::Mat& f : frames) {
        cv::Mat rgb;
        if (samples == 3 && !ybr)
            cv::cvtColor(f, rgb, cv::COLOR_BGR2RGB);
        else
            rgb = f.clone();
        bytes.insert(bytes.end(), rgb.datastart, rgb.dataend);
    }
    gdcm::DataElement pixels(gdcm::Tag(0x7fe0, 0x0010));
    pixels.SetByteValue(bytes.data(), uint32_t(bytes.size()));
    image.SetDataElement(pixels);
    if (syntax != gdcm::TransferSyntax::ExplicitVRLittleEndian) {
        gdcm::ImageChangeTransferSyntax change;
        change.SetTransferSyntax(syntax);
        change.SetInput(image);
        ASSERT_TRUE(change.Change()) << path;
        writer.SetImage(change.GetOutput());
    }
    const gdcm::MediaStorage ms(frames.size() > 1 ? gdcm::MediaStorage::MultiframeGrayscaleByteSecondaryCaptureImageStorage
                                                  : gdcm::MediaStorage::SecondaryCaptureImageStorage);
    gdcm::DataElement sop(gdcm::Tag(0x0008, 0x0016));
    const char* uid = gdcm::MediaStorage::GetMSString(ms);
    sop.SetByteValue(uid, uint32_t(std::strlen(uid)));
    sop.SetVR(gdcm::VR::UI);
    writer.GetFile().GetDataSet().Insert(sop);
    writer.SetFileName(path.c_str());
    ASSERT_TRUE(writer.Write()) << path;
}

// Calls the C entry the JSON names with the arguments the JSON lists
// (outlines with their points) on `image`, and gives the record's words.
inline std::vector<int32_t> CallFromJson(const nlohmann::json& j, const cv::Mat& image)
{
    const nlohmann::json& a = j.at("arguments");
    const std::string entry = j.at("entry");
    std::vector<int32_t> words = a.at("resultPreset").get<std::vector<int32_t>>();
    const int ch = a.at("channels"), w = a.at("width"), h = a.at("height");
    RoiCoor roi{0, 0, 0, 0};
    if (a.contains("roi"))
        roi = RoiCoor{a["roi"]["x"], a["roi"]["y"], a["roi"]["width"], a["roi"]["height"]};
    auto packed = [](const nlohmann::json& outlines, std::vector<int>& sizes) {
        std::vector<MyPoint> all;
        for (const auto& o : outlines) {
            const std::vector<MyPoint> p = Points(o.at("points"));
            sizes.push_back(int(p.size()));
            all.insert(all.end(), p.begin(), p.end());
        }
        return all;
    };
    if (entry == "BreastDescription" || entry == "BreastDescriptionHaveModelProcess") {
        const std::vector<MyPoint> lesion = Points(a["lesionPoints"]["points"]);
        const auto& x = a["axis"];
        const lesionAxisPointEnd axis{{x["longStart"][0], x["longStart"][1]}, {x["longEnd"][0], x["longEnd"][1]},
                                      {x["shortStart"][0], x["shortStart"][1]},
                                      {x["shortEnd"][0], x["shortEnd"][1]}};
        BreastResult r;
        std::memcpy(&r, words.data(), sizeof r);
        if (entry == "BreastDescription") {
            BreastDescription(image.data, ch, w, h, roi, int(lesion.size()), lesion.data(), axis, &r);
        } else {
            std::vector<int> sizes;
            const std::vector<MyPoint> model = packed(a["modelContours"], sizes);
            BreastDescriptionHaveModelProcess(image.data, ch, w, h, roi, int(lesion.size()), lesion.data(),
                                              int(sizes.size()), sizes.data(), model.data(), axis, &r);
        }
        std::memcpy(words.data(), &r, sizeof r);
    } else if (entry == "ThyroidDescriptionModelAfterProcess") {
        const std::vector<MyPoint> lesion = Points(a["lesionPoints"]["points"]);
        std::vector<MyPoint> organ = Points(a["organPoints"][0]["points"]);
        std::vector<int> sizes;
        const std::vector<MyPoint> model = packed(a["modelContours"], sizes);
        ThyroidResult r;
        std::memcpy(&r, words.data(), sizeof r);
        ThyroidDescriptionModelAfterProcess(image.data, ch, w, h, int(organ.size()), organ.data(),
                                            int(lesion.size()), lesion.data(), int(sizes.size()), sizes.data(),
                                            model.data(), roi, &r);
        std::memcpy(words.data(), &r, sizeof r);
    } else if (entry == "LiverDescription") {
        const std::vector<MyPoint> lesion = Points(a["lesionPoints"]["points"]);
        const std::vector<MyPoint> organ = Points(a["organPoints"][0]["points"]);
        LiverResult r;
        std::memcpy(&r, words.data(), sizeof r);
        LiverDescription(image.data, ch, w, h, roi, int(organ.size()), organ.data(), int(lesion.size()),
                         lesion.data(), &r);
        std::memcpy(words.data(), &r, sizeof r);
    } else if (entry == "CarotidPlaqueDescription") {
        const std::vector<MyPoint> lesion = Points(a["lesionPoints"]["points"]);
        std::vector<int> sizes;
        const std::vector<MyPoint> vessels = packed(a["organPoints"], sizes);
        PlaqueResult r;
        std::memcpy(&r, words.data(), sizeof r);
        CarotidPlaqueDescription(image.data, ch, w, h, roi, int(sizes.size()), sizes.data(), int(vessels.size()),
                                 vessels.data(), int(lesion.size()), lesion.data(), &r);
        std::memcpy(words.data(), &r, sizeof r);
    } else if (entry == "GallWallDescription") {
        const std::vector<MyPoint> inner = Points(a["innerPoints"]["points"]);
        const std::vector<MyPoint> outer = Points(a["outerPoints"][0]["points"]);
        GallWallResult r;
        std::memcpy(&r, words.data(), sizeof r);
        GallWallDescription(image.data, ch, w, h, int(outer.size()), outer.data(), int(inner.size()), inner.data(),
                            &r);
        std::memcpy(words.data(), &r, sizeof r);
    } else if (entry == "GallBladderWallDescription") {
        const std::vector<MyPoint> organ = Points(a["organPoints"]["points"]);
        GallBladderWallResult r;
        std::memcpy(&r, words.data(), sizeof r);
        GallBladderWallDescription(image.data, ch, w, h, roi, int(organ.size()), organ.data(), &r);
        std::memcpy(words.data(), &r, sizeof r);
    }
    return words;
}

// The record's words in the program's JSON, in byte order.
inline std::vector<int32_t> RecordWords(const nlohmann::json& j)
{
    std::vector<std::pair<int, int32_t>> fields;
    for (const auto& item : j.at("record").items())
    {
        const nlohmann::json& value = item.value().at("value");
        int32_t word = 0;
        if (value.is_number_float()) { // a float field: its bits
            const float f = value.get<float>();
            std::memcpy(&word, &f, sizeof word);
        } else {
            word = value.get<int32_t>();
        }
        fields.emplace_back(item.value().at("byte").get<int>(), word);
    }
    std::sort(fields.begin(), fields.end());
    std::vector<int32_t> words;
    for (const auto& f : fields)
        words.push_back(f.second);
    return words;
}

} // namespace clitest
