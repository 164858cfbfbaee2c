// sonolex_io: what a host does around an entry point, for the command-line
// program and other front ends. It reads scans (PNG, JPEG, BMP, TIFF,
// DICOM) and segmentation masks, turns masks into outlines, derives the
// arguments a host would pass when they are not given (region, axes), calls
// the entry of an organ, and reads the record back as named fields with
// their meaning in words and whether the call reached them.
//
// Thread-safe: nothing here keeps state, so cases may run on many threads.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "sonolex.h"

namespace sonolex_io {

// What went wrong with an input; the value is the program's exit status.
enum class ErrorKind {
    Usage = 2,            // an option or argument that cannot be used
    Unreadable = 3,       // a file that cannot be opened or decoded
    SizeMismatch = 4,     // a mask whose size is not the image's
    EmptyMask = 5,        // no pixel with the label, or no usable outline
    UnsupportedDicom = 6, // a DICOM object this reader does not decode
};

// One input problem: what() reads "FILE: problem".
class InputError : public std::runtime_error {
public:
    InputError(ErrorKind kind, const std::string& file, const std::string& problem);
    ErrorKind kind;
    std::string file;
    std::string problem;
};

using Outline = std::vector<cv::Point>;

// ---- reading ----
// True when the file carries the DICOM preamble ("DICM" at byte 128).
bool IsDicom(const std::string& path);
// A scan as 8-bit pixels: one channel for grey, three (blue, green, red)
// for colour. DICOM: frame `frame` (0-based) of a cine; monochrome, RGB,
// palette and YBR photometrics; 16-bit pixels scaled to their own range.
cv::Mat ReadImage(const std::string& path, int frame = 0);
// A segmentation mask as CV_32S labels, one channel (several channels count
// as set where any is). Its size must be `size`.
cv::Mat ReadMask(const std::string& path, cv::Size size);
// 0/255 mask of the pixels holding `label`, or every non-zero pixel for a
// negative label.
cv::Mat SelectLabel(const cv::Mat& labels, int label);
// External outlines of every component (8-connected, all points), the
// largest area first; equal areas keep the order of the scan.
std::vector<Outline> ComponentOutlines(const cv::Mat& binary);
// The outline of the largest hole inside the largest component; empty if none.
Outline LargestHole(const cv::Mat& binary);
// An outline from JSON: [[x, y], ...], [{"x":..,"y":..}, ...], or an object
// with that list under "contour", "points" or "outline".
Outline ReadOutlineJson(const std::string& path);

// ---- organs and the arguments of their entries ----
enum class Organ { Breast, Thyroid, Liver, Carotid, GallWall, GallBladder };
std::optional<Organ> OrganFromName(const std::string& name);
const char* OrganName(Organ organ);
const std::vector<std::string>& OrganNames();

// What the host knows about one case, in whole-image coordinates.
struct Case {
    Organ organ = Organ::Breast;
    cv::Mat image;                   // 8-bit, 1, 3 or 4 channels
    Outline lesion;                  // lesion, plaque, or the gall bladder's lumen
    std::vector<Outline> organ_outlines; // gland, liver, vessels, or the gall bladder's outer outline
    bool organ_given = false;        // organ_outlines came from the user
    std::vector<Outline> model;      // regions of the host's detection model
    bool model_given = false;        // breast: use the entry with model regions
    std::optional<cv::Rect> roi;
    std::optional<lesionAxisPointEnd> axes;
};

// The arguments an entry received, as the program passed them.
struct Arguments {
    std::string entry;                // exported function name
    int channels = 0, width = 0, height = 0;
    std::optional<RoiCoor> roi;       // present when the entry takes one
    std::optional<lesionAxisPointEnd> axis;
    std::string lesion_name;          // e.g. "lesionPoints", "innerPoints"
    Outline lesion;
    std::string organ_name;           // e.g. "organPoints", "outerPoints"; empty when not taken
    std::vector<Outline> organ;
    bool takes_model = false;
    std::vector<Outline> model;
    std::vector<int32_t> preset;      // the record's words before the call
};

struct Field {
    std::string name;
    int byte = 0;
    int32_t value = 0;
    std::string meaning;
    std::optional<bool> reached;      // empty when the record cannot tell
    bool categorical = true;          // false for measured numbers
    bool real = false;                // `value` holds the bits of a float
};

// A record word that holds a float, as the float.
inline float AsFloat(int32_t bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

struct Description {
    Organ organ = Organ::Breast;
    Arguments arguments;
    std::vector<std::string> derived; // what the program supplied, in words
    std::vector<Field> fields;        // in byte order
};

// Fills in what the case lacks the way a host would, and says what in `derived`:
// a region of the lesion's box widened by 20 pixels a side within the image;
// the breast axes measured on the outline; the image frame as gland or
// liver outline when none is given.
Arguments Prepare(const Case& c, std::vector<std::string>& derived);
// Calls the entry and returns the record's 32-bit words.
std::vector<int32_t> CallEntry(const cv::Mat& image, const Arguments& arguments);
// Names, meanings and reach of a record's words.
std::vector<Field> ReadRecord(Organ organ, const std::vector<int32_t>& words);
// Prepare, CallEntry and ReadRecord in one.
Description Describe(const Case& c);
// Field names of an organ's record, in byte order.
std::vector<std::string> FieldNames(Organ organ);
bool IsCategorical(Organ organ, const std::string& field);


// ---- a case from files, as a command line or a manifest row names them ----
struct Sources {
    std::string image;
    std::string mask;        // lesion mask (gallwall: the wall, or the lumen with organ_mask)
    std::string outline;     // JSON outline instead of a mask
    std::string organ_mask;  // gland, liver, vessels, or the gall bladder's outer outline
    std::string model_mask;  // regions of the host's detection model
    std::string organ;
    int label = -1;          // lesion label; negative: any non-zero pixel
    int frame = 0;           // DICOM cine frame
    bool all_components = false;
    std::optional<cv::Rect> roi;
    std::optional<lesionAxisPointEnd> axes;
};

struct Loaded {
    cv::Mat image;
    std::vector<Case> cases;     // one, or one a component
    double decode_seconds = 0.0; // reading and decoding the files
};

// What a host holds in memory for one scan: label pictures of the scan's
// size (CV_32S; empty when not given) and the names errors call them by.
struct Masks {
    cv::Mat lesion;          // lesion labels (gallwall: the wall, or the lumen with `organ`)
    Outline outline;         // the lesion's outline, used when `lesion` is empty
    cv::Mat organ;           // gland, liver, vessels, or the gall bladder's outer outline
    std::vector<Outline> organ_outlines; // the same as outlines, used when `organ` is empty
    cv::Mat model;           // regions of the host's detection model
    std::vector<Outline> model_outlines; // the same as outlines, used when `model` is empty
    std::string lesion_name, organ_name, model_name;
    int label = -1;          // lesion label; negative: any non-zero pixel
    bool all_components = false;
    std::optional<cv::Rect> roi;
    std::optional<lesionAxisPointEnd> axes;
};

// The case(s) of a scan and its masks, as Load builds them from files:
// the largest lesion component (or each, largest first), the largest organ
// component (every vessel for the carotid), the model's components, and for
// a gall bladder wall mask without an organ mask its outer outline and the
// lumen inside it. Throws InputError (EmptyMask) naming the mask.
std::vector<Case> CasesFromMasks(Organ organ, const cv::Mat& image, const Masks& masks);

// Reads the files and builds the case(s); throws InputError.
Loaded Load(const Sources& sources);
// "x,y,w,h" into a region; "x1,y1,x2,y2,x3,y3,x4,y4" (long axis, then
// short) into axes. Throw InputError(Usage) naming `what`.
cv::Rect ParseRoi(const std::string& text, const std::string& what);
lesionAxisPointEnd ParseAxes(const std::string& text, const std::string& what);

} // namespace sonolex_io
