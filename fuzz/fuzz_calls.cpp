#include "fuzz_calls.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "sonolex.h"

namespace fuzzcalls {
namespace {

// Reads the fuzzer's bytes; past the end every read gives 0.
class Bytes {
public:
    Bytes(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}
    uint8_t U8() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    uint32_t U32()
    {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i)
            v = (v << 8) | U8();
        return v;
    }
    // A whole number from lo to hi, both included.
    int In(int lo, int hi)
    {
        const uint64_t span = uint64_t(int64_t(hi) - int64_t(lo)) + 1;
        return int(int64_t(lo) + int64_t(U32() % span));
    }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_pos = 0;
};

// Coordinates at and near the int limits, and far but representable ones.
int Extreme(Bytes& in)
{
    static const int kValues[] = {INT_MIN, INT_MIN + 1, INT_MIN + 7, -1073741824, -65536, -4097, 65536,
                                  1073740824, INT_MAX - 7, INT_MAX - 1, INT_MAX};
    return kValues[in.U8() % (sizeof(kValues) / sizeof(kValues[0]))];
}

struct Scene {
    int channels = 1;
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;
    bool nullImage = false;
};

// A speckled B-mode-like picture: tissue grey, speckle, and a darker or
// brighter oval, all from a seed.
Scene MakeScene(Bytes& in)
{
    Scene s;
    const uint8_t channelKind = in.U8() % 16;
    s.channels = channelKind < 10 ? 1 : channelKind < 13 ? 3 : channelKind < 15 ? 4 : int(in.U8() % 6);
    const uint8_t sizeKind = in.U8() % 8;
    const int limit = sizeKind == 0 ? 8 : sizeKind < 6 ? 96 : 320;
    s.width = in.In(sizeKind == 0 ? 0 : 1, limit);
    s.height = in.In(sizeKind == 0 ? 0 : 1, limit);
    s.nullImage = in.U8() == 0;

    const int tissue = in.U8();
    const int speckle = in.U8() % 64 + 1;
    const int blob = in.U8();
    const int cx = in.In(0, std::max(s.width, 1)), cy = in.In(0, std::max(s.height, 1));
    const int rx = in.In(1, std::max(s.width / 2, 1)), ry = in.In(1, std::max(s.height / 2, 1));
    uint32_t seed = in.U32() | 1u;
    const int bytesPerPixel = std::max(s.channels, 1);
    s.pixels.resize(size_t(s.width) * size_t(s.height) * size_t(bytesPerPixel));
    size_t k = 0;
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x) {
            const double dx = double(x - cx) / rx, dy = double(y - cy) / ry;
            const int base = dx * dx + dy * dy <= 1.0 ? blob : tissue;
            for (int c = 0; c < bytesPerPixel; ++c) {
                seed = seed * 1664525u + 1013904223u;
                s.pixels[k++] = static_cast<unsigned char>(std::clamp(base + int(seed >> 24) % speckle, 0, 255));
            }
        }
    return s;
}

std::vector<MyPoint> Ellipse(int cx, int cy, int rx, int ry, int n)
{
    std::vector<MyPoint> pts;
    for (int i = 0; i < n; ++i) {
        const double t = 6.283185307179586 * i / n;
        pts.push_back({int32_t(std::lround(cx + rx * std::cos(t))), int32_t(std::lround(cy + ry * std::sin(t)))});
    }
    return pts;
}

// An outline of one of the kinds a host can pass, in whole-image pixels.
std::vector<MyPoint> Outline(Bytes& in, int width, int height)
{
    const int w = std::max(width, 4), h = std::max(height, 4);
    const uint8_t kind = in.U8() % 9;
    const int cx = in.In(-w / 4, w + w / 4), cy = in.In(-h / 4, h + h / 4);
    const int rx = in.In(1, w / 2 + 1), ry = in.In(1, h / 2 + 1);
    const int n = in.In(3, 96);
    std::vector<MyPoint> pts = Ellipse(cx, cy, rx, ry, n);
    switch (kind) {
    case 1: { // a one-pixel spur: out and back along the same path
        const size_t at = in.U8() % pts.size();
        const MyPoint p = pts[at];
        pts.insert(pts.begin() + long(at) + 1, {{p.x + 1, p.y}, {p.x + 2, p.y}, {p.x + 1, p.y}, p});
        break;
    }
    case 2: // collinear
        for (int i = 0; i < n; ++i)
            pts[size_t(i)] = {cx + i * (in.U8() % 3), cy + i * (in.U8() % 3)};
        break;
    case 3: { // every point twice
        std::vector<MyPoint> twice;
        for (const MyPoint& p : pts)
            twice.insert(twice.end(), 2, p);
        pts = twice;
        break;
    }
    case 4: { // far away: moved by a coordinate near the int limits
        const int ox = in.U8() % 2 ? Extreme(in) : 0, oy = in.U8() % 2 ? Extreme(in) : Extreme(in);
        for (MyPoint& p : pts)
            p = {int32_t(uint32_t(p.x) + uint32_t(ox)), int32_t(uint32_t(p.y) + uint32_t(oy))};
        break;
    }
    case 5: // noise inside and around the image
        for (MyPoint& p : pts)
            p = {in.In(-w, 2 * w), in.In(-h, 2 * h)};
        break;
    case 6: // a few points at the int limits among ordinary ones
        for (MyPoint& p : pts)
            if (in.U8() % 4 == 0)
                p = {in.U8() % 2 ? Extreme(in) : p.x, in.U8() % 2 ? Extreme(in) : p.y};
        break;
    case 7: // too few points for any fit
        pts.resize(in.U8() % 5);
        break;
    default:
        break;
    }
    return pts;
}

// A count for an array of `real` points: the real one mostly, else zero,
// negative, or fewer than there are.
int32_t Count(Bytes& in, size_t real)
{
    const uint8_t kind = in.U8() % 16;
    if (kind == 0)
        return 0;
    if (kind == 1)
        return in.U8() % 2 ? -1 : Extreme(in) < 0 ? INT_MIN : -int32_t(in.U8()) - 1;
    if (kind == 2 && real > 0)
        return int32_t(in.U32() % real);
    return int32_t(real);
}

// The array's pointer: null where the count lets the entry refuse it.
template <typename T> T* Array(Bytes& in, std::vector<T>& v, int32_t count)
{
    if (count <= 0 && in.U8() % 2)
        return nullptr;
    return v.data();
}

RoiCoor Region(Bytes& in, int w, int h)
{
    switch (in.U8() % 7) {
    case 0:
        return {0, 0, 0, 0};
    case 1:
        return {0, 0, w, h};
    case 2: { // inside
        const int x = in.In(0, std::max(w - 1, 0)), y = in.In(0, std::max(h - 1, 0));
        return {x, y, in.In(1, std::max(w - x, 1)), in.In(1, std::max(h - y, 1))};
    }
    case 3: // partly or wholly outside
        return {in.In(-w, 2 * w), in.In(-h, 2 * h), in.In(0, 2 * w + 1), in.In(0, 2 * h + 1)};
    case 4: // at the int limits
        return {Extreme(in), in.U8() % 2 ? Extreme(in) : 0, in.U8() % 2 ? Extreme(in) : 10, Extreme(in)};
    case 5: // one side empty
        return {in.In(0, w), in.In(0, h), in.U8() % 2 ? 0 : w, in.U8() % 2 ? h : 0};
    default:
        return {in.In(0, w), in.In(0, h), in.In(-3, w + 3), in.In(-3, h + 3)};
    }
}

lesionAxisPointEnd Axes(Bytes& in, int w, int h)
{
    const auto point = [&]() -> MyPoint {
        if (in.U8() % 16 == 0)
            return {Extreme(in), Extreme(in)};
        return {in.In(-w, 2 * w), in.In(-h, 2 * h)};
    };
    lesionAxisPointEnd a;
    a.longStart = point();
    a.longEnd = in.U8() % 8 == 0 ? a.longStart : point(); // degenerate now and then
    a.shortStart = point();
    a.shortEnd = point();
    return a;
}

// Model regions or vessels: counts, sizes and one array of every point.
struct Packed {
    int32_t count = 0;
    std::vector<int32_t> sizes;
    std::vector<MyPoint> points;
    int32_t total = 0;
};

Packed Pack(Bytes& in, int w, int h)
{
    Packed p;
    const uint8_t kind = in.U8() % 8;
    const int n = kind == 0 ? 0 : in.In(1, 4);
    for (int i = 0; i < n; ++i) {
        std::vector<MyPoint> one = Outline(in, w, h);
        int32_t size = int32_t(one.size());
        if (in.U8() % 16 == 0)
            size = -size - 1; // a negative size among real ones
        p.sizes.push_back(size);
        if (size > 0)
            p.points.insert(p.points.end(), one.begin(), one.end());
    }
    p.total = int32_t(p.points.size());
    p.count = kind == 1 ? -int32_t(in.U8() % 3) - 1 : int32_t(p.sizes.size());
    return p;
}

double ThreadMilliseconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SONOLEX_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SONOLEX_SANITIZED 1
#endif
#endif

// The release budget of a call; sanitizers and a long fuzzing run's heap
// make the same call tens of times slower, so they get a wider one.
double LimitMilliseconds()
{
    static const double limit = [] {
        const char* text = std::getenv("SONOLEX_FUZZ_LIMIT_MS");
        if (text != nullptr)
            return std::atof(text);
#ifdef SONOLEX_SANITIZED
        return 2000.0;
#else
        return 50.0;
#endif
    }();
    return limit;
}

[[noreturn]] void Fail(const std::string& entry, const char* what)
{
    std::fprintf(stderr, "fuzz %s: %s\n", entry.c_str(), what);
    std::abort();
}

// Each verdict within its table: (offset in the record, greatest value).
void CheckRanges(const std::string& entry, const Record& r, std::initializer_list<std::pair<size_t, int>> fields)
{
    for (const auto& [index, greatest] : fields)
        if (r[index] < 0 || r[index] > greatest)
            Fail(entry, "a verdict outside its table");
}

} // namespace

const std::vector<std::string>& EntryNames()
{
    static const std::vector<std::string> names = {"breast",  "breast_model", "thyroid",
                                                    "liver",   "carotid",      "gallwall",
                                                    "gallbladder"};
    return names;
}

Record Run(const std::string& entry, const uint8_t* data, size_t size)
{
    Bytes in(data, size);
    Scene s = MakeScene(in);
    const unsigned char* image = s.nullImage ? nullptr : s.pixels.data();
    std::vector<MyPoint> lesion = Outline(in, s.width, s.height);
    const int32_t lesionCount = Count(in, lesion.size());
    const MyPoint* lesionPoints = Array(in, lesion, lesionCount);
    const RoiCoor roi = Region(in, s.width, s.height);

    const std::vector<unsigned char> before = s.pixels;
    Record record;
    const double start = ThreadMilliseconds();
    if (entry == "breast" || entry == "breast_model") {
        const lesionAxisPointEnd axis = Axes(in, s.width, s.height);
        BreastResult r = {0, 0, 0, 0, 0, 0};
        if (entry == "breast") {
            BreastDescription(image, s.channels, s.width, s.height, roi, lesionCount, lesionPoints, axis, &r);
        } else {
            Packed model = Pack(in, s.width, s.height);
            BreastDescriptionHaveModelProcess(image, s.channels, s.width, s.height, roi, lesionCount, lesionPoints,
                                              model.count, Array(in, model.sizes, model.count),
                                              Array(in, model.points, model.total), axis, &r);
        }
        record = {r.shape, r.orientation, r.echo, r.boundary, r.margin, r.calcification};
        CheckRanges(entry, record, {{0, 3}, {1, 2}, {2, 2}, {3, 2}, {4, 2}, {5, 3}});
    } else if (entry == "thyroid") {
        std::vector<MyPoint> organ = Outline(in, s.width, s.height);
        const int32_t organCount = Count(in, organ.size());
        MyPoint* organPoints = Array(in, organ, organCount);
        Packed model = Pack(in, s.width, s.height);
        ThyroidResult r = {0, 0, 0, 0};
        ThyroidDescriptionModelAfterProcess(image, s.channels, s.width, s.height, organCount, organPoints, lesionCount,
                                            lesionPoints, model.count, Array(in, model.sizes, model.count),
                                            Array(in, model.points, model.total), roi, &r);
        record = {r.shape, r.echo, r.margin, r.calcification};
        CheckRanges(entry, record, {{0, 1}, {1, 4}, {2, 4}, {3, 2}});
    } else if (entry == "liver") {
        std::vector<MyPoint> organ = Outline(in, s.width, s.height);
        const int32_t organCount = Count(in, organ.size());
        LiverResult r = {0, 0, 0, 0};
        LiverDescription(image, s.channels, s.width, s.height, roi, organCount, Array(in, organ, organCount),
                         lesionCount, lesionPoints, &r);
        record = {r.shape, r.echo, r.boundary, r.echoTexture};
        CheckRanges(entry, record, {{0, 2}, {1, 4}, {2, 2}, {3, 2}});
    } else if (entry == "carotid") {
        Packed vessels = Pack(in, s.width, s.height);
        const int32_t pointCount = in.U8() % 8 == 0 ? Count(in, size_t(vessels.total)) : vessels.total;
        PlaqueResult r = {0, 0, 0, 0, 0, 0, 0};
        CarotidPlaqueDescription(image, s.channels, s.width, s.height, roi, vessels.count,
                                 Array(in, vessels.sizes, vessels.count), pointCount,
                                 Array(in, vessels.points, pointCount), lesionCount, lesionPoints, &r);
        record = {r.position, r.echo, r.reserved, r.firstX, r.firstY, r.secondX, r.secondY};
        CheckRanges(entry, record, {{0, 3}, {1, 3}});
    } else if (entry == "gallwall") {
        std::vector<MyPoint> inner = Outline(in, s.width, s.height);
        const int32_t innerCount = Count(in, inner.size());
        GallWallResult r = {0, 0};
        GallWallDescription(image, s.channels, s.width, s.height, lesionCount, lesionPoints, innerCount,
                            Array(in, inner, innerCount), &r);
        record = {r.wallVerdict, r.thickenVerdict};
        CheckRanges(entry, record, {{0, 2}, {1, 3}});
    } else if (entry == "gallbladder") {
        GallBladderWallResult r = {0, 0, 0.0f, 0.0f, 0, 0, 0, 0};
        GallBladderWallDescription(image, s.channels, s.width, s.height, roi, lesionCount, lesionPoints, &r);
        int32_t distances[2];
        std::memcpy(distances, &r.maxDistance, sizeof distances);
        record = {r.wallVerdict, r.reserved, distances[0], distances[1], r.firstX, r.firstY, r.secondX, r.secondY};
        CheckRanges(entry, record, {{0, 2}});
    } else {
        Fail(entry, "no such entry");
    }
    const double spent = ThreadMilliseconds() - start;
    if (s.pixels != before)
        Fail(entry, "the call wrote into the caller's image");
    if (spent > LimitMilliseconds()) {
        std::fprintf(stderr, "fuzz %s: %.0f ms of CPU, over the %.0f ms limit\n", entry.c_str(), spent,
                     LimitMilliseconds());
        std::abort();
    }
    return record;
}

} // namespace fuzzcalls
