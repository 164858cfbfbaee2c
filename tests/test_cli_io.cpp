// sonolex_io: scans of every kind, masks into outlines, and the record read
// back with what the call reached.
#include <climits>
#include <functional>
#include <cstring>

#include <gtest/gtest.h>

#include "cli_helpers.h"
#include "io/sonolex_io.h"

namespace {

using clitest::WriteDicom;
using sonolex_io::ErrorKind;

cv::Mat Ramp(int cols, int rows, int channels)
{
    cv::Mat m(rows, cols, CV_8UC(channels));
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < cols; ++x)
            for (int c = 0; c < channels; ++c)
                m.ptr<uchar>(y)[x * channels + c] = uchar((x * 7 + y * 3 + c * 50) % 256);
    return m;
}

bool Same(const cv::Mat& a, const cv::Mat& b)
{
    return a.size() == b.size() && a.type() == b.type() && cv::norm(a, b, cv::NORM_INF) == 0.0;
}

TEST(CliIo, EveryScanKindReadsToItsPixels)
{
    const std::string dir = clitest::TempDir("scan");
    const cv::Mat grey = Ramp(32, 24, 1), colour = Ramp(32, 24, 3);
    ASSERT_TRUE(cv::imwrite(dir + "/grey.png", grey));
    ASSERT_TRUE(cv::imwrite(dir + "/colour.png", colour));
    ASSERT_TRUE(cv::imwrite(dir + "/grey.bmp", grey));
    ASSERT_TRUE(cv::imwrite(dir + "/grey.tif", grey));
    ASSERT_TRUE(cv::imwrite(dir + "/grey.jpg", grey));
    WriteDicom(dir + "/mono.dcm", {grey});
    WriteDicom(dir + "/rgb", {colour}); // no extension: found by its preamble
    cv::Mat second = 255 - grey;
    WriteDicom(dir + "/cine.dcm", {grey, second, grey});
    WriteDicom(dir + "/lossless.dcm", {grey}, false, gdcm::TransferSyntax::JPEGLosslessProcess14_1);
    WriteDicom(dir + "/jpeg2000.dcm", {colour}, false, gdcm::TransferSyntax::JPEG2000Lossless);
    WriteDicom(dir + "/jpegls.dcm", {grey}, false, gdcm::TransferSyntax::JPEGLSLossless);
    // YBR_FULL stores Y, Cb, Cr; OpenCV's conversion gives Y, Cr, Cb.
    cv::Mat ycrcb;
    cv::cvtColor(colour, ycrcb, cv::COLOR_BGR2YCrCb);
    std::vector<cv::Mat> planes;
    cv::split(ycrcb, planes);
    std::swap(planes[1], planes[2]);
    cv::Mat ybr;
    cv::merge(planes, ybr);
    WriteDicom(dir + "/ybr.dcm", {ybr}, true);
    struct Row {
        std::string file;
        int frame;
        cv::Mat expected; // empty: JPEG, compared by size and closeness only
    } rows[] = {
        {"grey.png", 0, grey},  {"colour.png", 0, colour}, {"grey.bmp", 0, grey},   {"grey.tif", 0, grey},
        {"grey.jpg", 0, {}},    {"mono.dcm", 0, grey},     {"rgb", 0, colour},      {"cine.dcm", 1, second},
        {"lossless.dcm", 0, grey}, {"jpeg2000.dcm", 0, colour}, {"jpegls.dcm", 0, grey},
    };
    for (const Row& row : rows) {
        const cv::Mat read = sonolex_io::ReadImage(dir + "/" + row.file, row.frame);
        if (row.expected.empty()) {
            ASSERT_EQ(read.size(), grey.size()) << row.file;
            EXPECT_LT(cv::norm(read, grey, cv::NORM_L1) / double(grey.total()), 6.0) << row.file; // lossy
        } else {
            EXPECT_TRUE(Same(read, row.expected)) << row.file << " frame " << row.frame;
        }
    }
    // A palette: index i shows red i, green 255 - i, blue i xor 0x55.
    {
        gdcm::ImageWriter writer;
        gdcm::Image& image = writer.GetImage();
        image.SetNumberOfDimensions(2);
        image.SetDimension(0, unsigned(grey.cols));
        image.SetDimension(1, unsigned(grey.rows));
        image.SetPixelFormat(gdcm::PixelFormat(gdcm::PixelFormat::UINT8));
        image.SetPhotometricInterpretation(gdcm::PhotometricInterpretation::PALETTE_COLOR);
        gdcm::SmartPointer<gdcm::LookupTable> lut = new gdcm::LookupTable;
        lut->Allocate(8);
        unsigned char red[256], green[256], blue[256];
        for (int i = 0; i < 256; ++i) {
            red[i] = uchar(i);
            green[i] = uchar(255 - i);
            blue[i] = uchar(i ^ 0x55);
        }
        lut->InitializeLUT(gdcm::LookupTable::RED, 256, 0, 8);
        lut->InitializeLUT(gdcm::LookupTable::GREEN, 256, 0, 8);
        lut->InitializeLUT(gdcm::LookupTable::BLUE, 256, 0, 8);
        lut->SetLUT(gdcm::LookupTable::RED, red, 256);
        lut->SetLUT(gdcm::LookupTable::GREEN, green, 256);
        lut->SetLUT(gdcm::LookupTable::BLUE, blue, 256);
        image.SetLUT(*lut);
        gdcm::DataElement pixels(gdcm::Tag(0x7fe0, 0x0010));
        pixels.SetByteValue(reinterpret_cast<const char*>(grey.data), uint32_t(grey.total()));
        image.SetDataElement(pixels);
        gdcm::DataElement sop(gdcm::Tag(0x0008, 0x0016));
        const char* uid = gdcm::MediaStorage::GetMSString(gdcm::MediaStorage::SecondaryCaptureImageStorage);
        sop.SetByteValue(uid, uint32_t(std::strlen(uid)));
        sop.SetVR(gdcm::VR::UI);
        writer.GetFile().GetDataSet().Insert(sop);
        writer.SetFileName((dir + "/palette.dcm").c_str());
        ASSERT_TRUE(writer.Write());
        cv::Mat flipped;
        cv::bitwise_xor(grey, cv::Scalar(0x55), flipped);
        std::vector<cv::Mat> bgr{flipped, 255 - grey, grey.clone()};
        cv::Mat expected;
        cv::merge(bgr, expected);
        EXPECT_TRUE(Same(sonolex_io::ReadImage(dir + "/palette.dcm"), expected));
    }
    // YBR back to blue, green, red: within the rounding of two conversions.
    const cv::Mat back = sonolex_io::ReadImage(dir + "/ybr.dcm");
    ASSERT_EQ(back.type(), CV_8UC3);
    EXPECT_LE(cv::norm(back, colour, cv::NORM_INF), 2.0);
}

TEST(CliIo, UnreadableInputsNameTheFileAndTheKindOfProblem)
{
    const std::string dir = clitest::TempDir("bad");
    clitest::Write(dir + "/text.png", "not a picture");
    clitest::Write(dir + "/broken.dcm", std::string(128, '\0') + "DICMgarbage");
    WriteDicom(dir + "/cine.dcm", {Ramp(8, 8, 1), Ramp(8, 8, 1)});
    ASSERT_TRUE(cv::imwrite(dir + "/small.png", cv::Mat::zeros(10, 10, CV_8U)));
    struct Row {
        std::function<void()> read;
        ErrorKind kind;
        std::string file;
    } rows[] = {
        {[&] { sonolex_io::ReadImage(dir + "/absent.png"); }, ErrorKind::Unreadable, dir + "/absent.png"},
        {[&] { sonolex_io::ReadImage(dir + "/text.png"); }, ErrorKind::Unreadable, dir + "/text.png"},
        {[&] { sonolex_io::ReadImage(dir + "/broken.dcm"); }, ErrorKind::UnsupportedDicom, dir + "/broken.dcm"},
        {[&] { sonolex_io::ReadImage(dir + "/cine.dcm", 2); }, ErrorKind::Usage, dir + "/cine.dcm"}, // frames 0, 1
        {[&] { sonolex_io::ReadMask(dir + "/small.png", cv::Size(12, 10)); }, ErrorKind::SizeMismatch,
         dir + "/small.png"},
    };
    for (const Row& row : rows) {
        try {
            row.read();
            ADD_FAILURE() << row.file << " was read";
        } catch (const sonolex_io::InputError& e) {
            EXPECT_EQ(e.kind, row.kind) << e.what();
            EXPECT_EQ(e.file, row.file);
        }
    }
}

TEST(CliIo, MaskGivesTheLargestOutlineOfItsLabelAndTheLumenOfAWall)
{
    // Label 2: a 6 x 4 block at (2, 3); label 5: a 3 x 3 block at (12, 2);
    // label 2 again: a 2 x 2 block at (12, 10).
    cv::Mat labels = cv::Mat::zeros(14, 16, CV_32S);
    labels(cv::Rect(2, 3, 6, 4)).setTo(2);
    labels(cv::Rect(12, 2, 3, 3)).setTo(5);
    labels(cv::Rect(12, 10, 2, 2)).setTo(2);
    struct Row {
        int label;
        std::vector<cv::Rect> boxes; // largest area first: 5 x 3 = 15 > 2 x 2 = 4 (areas of the outlines)
    } rows[] = {
        {-1, {cv::Rect(2, 3, 6, 4), cv::Rect(12, 2, 3, 3), cv::Rect(12, 10, 2, 2)}}, // areas 15, 4, 1
        {2, {cv::Rect(2, 3, 6, 4), cv::Rect(12, 10, 2, 2)}},
        {5, {cv::Rect(12, 2, 3, 3)}},
        {7, {}},
    };
    for (const Row& row : rows) {
        const auto outlines = sonolex_io::ComponentOutlines(sonolex_io::SelectLabel(labels, row.label));
        ASSERT_EQ(outlines.size(), row.boxes.size()) << row.label;
        for (size_t i = 0; i < outlines.size(); ++i)
            EXPECT_EQ(cv::boundingRect(outlines[i]), row.boxes[i]) << row.label << " #" << i;
    }
    // A wall 2 pixels thick around a 4 x 3 lumen.
    cv::Mat wall = cv::Mat::zeros(12, 12, CV_8U);
    wall(cv::Rect(2, 2, 8, 7)).setTo(255);
    wall(cv::Rect(4, 4, 4, 3)).setTo(0);
    const sonolex_io::Outline lumen = sonolex_io::LargestHole(wall);
    ASSERT_FALSE(lumen.empty());
    // The hole's outline runs on the wall pixels that border it: one pixel around the lumen.
    EXPECT_EQ(cv::boundingRect(lumen), cv::Rect(3, 3, 6, 5));
}

TEST(CliIo, OutlineFilesTakeEveryCommonShape)
{
    const std::string dir = clitest::TempDir("outline");
    const sonolex_io::Outline square{{1, 2}, {5, 2}, {5, 6}, {1, 6}};
    struct Row {
        std::string text;
        bool valid;
    } rows[] = {
        {"[[1,2],[5,2],[5,6],[1,6]]", true},
        {R"({"contour": [[1,2],[5,2],[5,6],[1,6]]})", true},
        {R"({"points": [{"x":1,"y":2},{"x":5,"y":2},{"x":5,"y":6},{"x":1,"y":6}]})", true},
        {R"({"shape": []})", false},
        {"[[1,2],[5]]", false},
        {"not json", false},
    };
    for (const Row& row : rows) {
        clitest::Write(dir + "/o.json", row.text);
        if (row.valid) {
            EXPECT_EQ(sonolex_io::ReadOutlineJson(dir + "/o.json"), square) << row.text;
        } else {
            EXPECT_THROW(sonolex_io::ReadOutlineJson(dir + "/o.json"), sonolex_io::InputError) << row.text;
        }
    }
}

TEST(CliIo, RecordTellsWhichVerdictsTheCallReached)
{
    using sonolex_io::Organ;
    const int32_t unwritten = INT32_MIN;
    struct Row {
        Organ organ;
        std::vector<int32_t> words;
        std::vector<int> reached; // 1 reached, 0 not, -1 cannot tell
        const char* why;
    } rows[] = {
        {Organ::Breast, {0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0}, "all cleared: nothing written"},
        {Organ::Breast, {0, 0, 1, 1, 1, 2}, {0, -1, 1, 1, 1, 1},
         "calcification (4th written) holds 2; orientation 0 is a verdict too; shape 0 is none"},
        {Organ::Breast, {2, 0, 1, 1, 1, 2}, {1, 1, 1, 1, 1, 1}, "shape written last: all reached"},
        {Organ::Thyroid, {0, 3, 0, 0}, {-1, -1, -1, -1}, "presets 0, 3, 0, 0 are all verdicts"},
        {Organ::Thyroid, {1, 3, 0, 0}, {1, 1, -1, 1}, "shape (3rd written) moved: calcification and echo before it"},
        {Organ::Liver, {0, 3, 0, 0}, {0, 1, 0, 0}, "echo first; shape 0 is none"},
        {Organ::Carotid, {2, 1, 0, 5, 6, 7, 8}, {1, 1, 0, 1, 1, 1, 1}, "diameter written: everything"},
        {Organ::Carotid, {2, 1, 0, unwritten, unwritten, unwritten, unwritten}, {1, 1, 0, 0, 0, 0, 0},
         "diameter still at the program's preset"},
        {Organ::GallWall, {0, 2}, {0, 1}, "thickening graded, wall verdict not"},
    };
    for (const Row& row : rows) {
        const auto fields = sonolex_io::ReadRecord(row.organ, row.words);
        ASSERT_EQ(fields.size(), row.reached.size()) << row.why;
        for (size_t i = 0; i < fields.size(); ++i) {
            const int got = fields[i].reached ? int(*fields[i].reached) : -1;
            EXPECT_EQ(got, row.reached[i]) << row.why << ": " << fields[i].name;
        }
    }
}

} // namespace
