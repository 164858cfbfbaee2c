// Scans into 8-bit matrices: OpenCV's codecs for PNG, JPEG, BMP and TIFF,
// GDCM for DICOM.
#include <algorithm>
#include <cstring>
#include <fstream>

#include <gdcmImage.h>
#include <gdcmImageApplyLookupTable.h>
#include <gdcmImageReader.h>
#include <gdcmTrace.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "sonolex_io.h"

namespace sonolex_io {

namespace {

bool HasDicomExtension(const std::string& path)
{
    const size_t dot = path.find_last_of('.');
    if (dot == std::string::npos)
        return false;
    std::string ext = path.substr(dot + 1);
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char ch) { return char(std::tolower(ch)); });
    return ext == "dcm" || ext == "dicom";
}

// One frame of decoded pixels as 8 bits a sample: 16-bit samples are
// stretched from their own minimum to maximum.
cv::Mat ToEightBit(const cv::Mat& frame)
{
    if (frame.depth() == CV_8U)
        return frame;
    double low = 0.0, high = 0.0;
    cv::minMaxLoc(frame.reshape(1), &low, &high);
    cv::Mat out;
    const double scale = high > low ? 255.0 / (high - low) : 0.0;
    frame.convertTo(out, CV_8U, scale, -low * scale);
    return out;
}

cv::Mat ReadDicom(const std::string& path, int frame)
{
    // GDCM's own warnings would break the one-line error on stderr.
    static const bool quiet = [] {
        gdcm::Trace::SetWarning(false);
        gdcm::Trace::SetError(false);
        gdcm::Trace::SetDebug(false);
        return true;
    }();
    (void)quiet;
    gdcm::ImageReader reader;
    reader.SetFileName(path.c_str());
    if (!reader.Read())
        throw InputError(ErrorKind::UnsupportedDicom, path, "not a DICOM image GDCM can read (no pixel data?)");
    // GDCM's images are used where they live: copies of them share parts they then free twice.
    const gdcm::Image* decoded = &reader.GetImage();
    gdcm::ImageApplyLookupTable lut;
    gdcm::PhotometricInterpretation pi = decoded->GetPhotometricInterpretation();
    if (pi == gdcm::PhotometricInterpretation::PALETTE_COLOR) {
        lut.SetInput(*decoded);
        if (!lut.Apply())
            throw InputError(ErrorKind::UnsupportedDicom, path, "cannot apply the palette");
        decoded = &lut.GetOutput();
        pi = decoded->GetPhotometricInterpretation();
    }
    const gdcm::Image& image = *decoded;
    const unsigned int* dims = image.GetDimensions();
    const int cols = int(dims[0]);
    const int rows = int(dims[1]);
    const int frames = image.GetNumberOfDimensions() >= 3 ? int(dims[2]) : 1;
    if (frame < 0 || frame >= frames)
        throw InputError(ErrorKind::Usage, path,
                         "has " + std::to_string(frames) + " frame(s); frame " + std::to_string(frame) +
                             " was asked (frames count from 0)");
    const gdcm::PixelFormat pf = image.GetPixelFormat();
    const int samples = int(pf.GetSamplesPerPixel());
    const int bits = int(pf.GetBitsAllocated());
    if ((samples != 1 && samples != 3) || (bits != 8 && bits != 16))
        throw InputError(ErrorKind::UnsupportedDicom, path,
                         std::to_string(samples) + " samples of " + std::to_string(bits) +
                             " bits a pixel; only 1 or 3 samples of 8 or 16 bits are read");
    const bool isSigned = pf.GetPixelRepresentation() == 1;
    std::vector<char> buffer(image.GetBufferLength());
    if (buffer.empty() || !image.GetBuffer(buffer.data()))
        throw InputError(ErrorKind::UnsupportedDicom, path,
                         std::string("cannot decode the pixel data (transfer syntax ") +
                             image.GetTransferSyntax().GetString() + ")");
    const int depth = bits == 8 ? (isSigned ? CV_8S : CV_8U) : (isSigned ? CV_16S : CV_16U);
    const size_t frameBytes = size_t(cols) * size_t(rows) * size_t(samples) * size_t(bits / 8);
    if (buffer.size() < frameBytes * size_t(frames))
        throw InputError(ErrorKind::UnsupportedDicom, path, "pixel data shorter than its dimensions");
    char* start = buffer.data() + frameBytes * size_t(frame);
    cv::Mat pixels;
    if (samples == 3 && image.GetPlanarConfiguration() == 1) {
        std::vector<cv::Mat> planes;
        for (int s = 0; s < 3; ++s)
            planes.push_back(cv::Mat(rows, cols, CV_MAKETYPE(depth, 1), start + frameBytes / 3 * size_t(s)));
        cv::merge(planes, pixels);
    } else {
        pixels = cv::Mat(rows, cols, CV_MAKETYPE(depth, samples), start).clone();
    }
    if (depth == CV_8S)
        pixels.convertTo(pixels, CV_16S);
    cv::Mat out = ToEightBit(pixels);
    if (samples == 1) {
        if (pi == gdcm::PhotometricInterpretation::MONOCHROME1)
            cv::bitwise_not(out, out); // MONOCHROME1: low values are bright
        return out;
    }
    if (pi == gdcm::PhotometricInterpretation::YBR_FULL || pi == gdcm::PhotometricInterpretation::YBR_FULL_422) {
        // Stored Y, Cb, Cr; OpenCV's conversion takes Y, Cr, Cb.
        std::vector<cv::Mat> ybr;
        cv::split(out, ybr);
        std::swap(ybr[1], ybr[2]);
        cv::merge(ybr, out);
        cv::cvtColor(out, out, cv::COLOR_YCrCb2BGR);
        return out;
    }
    if (pi != gdcm::PhotometricInterpretation::RGB)
        throw InputError(ErrorKind::UnsupportedDicom, path,
                         std::string("photometric interpretation ") + gdcm::PhotometricInterpretation::GetPIString(pi) +
                             " is not read");
    cv::cvtColor(out, out, cv::COLOR_RGB2BGR);
    return out;
}

} // namespace

bool IsDicom(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    char head[132] = {};
    if (in.read(head, sizeof head) && std::memcmp(head + 128, "DICM", 4) == 0)
        return true;
    return HasDicomExtension(path) && static_cast<bool>(std::ifstream(path));
}

cv::Mat ReadImage(const std::string& path, int frame)
{
    if (IsDicom(path))
        return ReadDicom(path, frame);
    if (frame != 0)
        throw InputError(ErrorKind::Usage, path, "only DICOM cines have frames");
    cv::Mat image;
    try {
        image = cv::imread(path, cv::IMREAD_ANYCOLOR);
    } catch (const cv::Exception&) {
        image.release();
    }
    if (image.empty())
        throw InputError(ErrorKind::Unreadable, path, "cannot read the image (missing file or not an image)");
    return image;
}

} // namespace sonolex_io
