// GallBladderWallDescription: the argument check, and the record on every
// input that passes it.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "sonolex.h"

namespace {

GallBladderWallResult Sentinel()
{
    GallBladderWallResult r;
    r.wallVerdict = 7;
    r.reserved = 0x5a5a5a5a;
    r.maxDistance = 1.5f;
    r.meanDistance = 2.5f;
    r.firstX = 11;
    r.firstY = 12;
    r.secondX = 13;
    r.secondY = 14;
    return r;
}

bool SameBytes(const GallBladderWallResult& a, const GallBladderWallResult& b, size_t from)
{
    return std::memcmp(reinterpret_cast<const char*>(&a) + from, reinterpret_cast<const char*>(&b) + from,
                       sizeof(GallBladderWallResult) - from) == 0;
}

struct EntryRow {
    int channels;
    RoiCoor roi;
    int count;
    const char* why;
};

} // namespace

TEST(GallBladderWallEntry, RejectedArgumentsWriteNothing)
{
    const std::vector<unsigned char> image(300 * 200 * 3, 90);
    const MyPoint organ[] = {{20, 20}, {80, 20}, {80, 60}, {20, 60}};
    for (int channels : {0, 2, 5}) {
        GallBladderWallResult r = Sentinel();
        GallBladderWallDescription(image.data(), channels, 300, 200, RoiCoor{0, 0, 100, 80}, 4, organ, &r);
        EXPECT_TRUE(SameBytes(r, Sentinel(), 0)) << channels;
    }
    GallBladderWallResult r = Sentinel();
    GallBladderWallDescription(nullptr, 1, 300, 200, RoiCoor{0, 0, 100, 80}, 4, organ, &r);
    EXPECT_TRUE(SameBytes(r, Sentinel(), 0));
    GallBladderWallDescription(image.data(), 1, 300, 200, RoiCoor{0, 0, 100, 80}, 4, organ, nullptr);
}

TEST(GallBladderWallEntry, EveryAcceptedCallEndsWithVerdict0AndTheRestAsTheCallerLeftIt)
{
    // The organ points are dropped before any organ mask is drawn, so the
    // centroid of the empty organ label ends every call in the catch-all,
    // whatever the band of widths, the channels or the outline.
    const std::vector<unsigned char> image(300 * 200 * 4, 90);
    const MyPoint organ[] = {{20, 20}, {80, 20}, {80, 60}, {20, 60}};
    const std::vector<EntryRow> rows = {
        {1, {0, 0, 59, 50}, 4, "59 wide: scaled"},
        {1, {0, 0, 60, 50}, 4, "60 wide: as it is"},
        {3, {10, 5, 139, 80}, 4, "139 wide: as it is"},
        {4, {10, 5, 140, 80}, 4, "140 wide: scaled"},
        {1, {0, 0, 204, 100}, 4, "204 x 100: scaled to 102 x 50"},
        {1, {0, 0, 100, 80}, 0, "no organ points: dropped all the same"},
        {1, {0, 0, 100, 80}, -1, "negative count: refused by the point copy"},
        {1, {250, 0, 100, 80}, 4, "region leaving the image"},
        {1, {0, 0, 0, 0}, 4, "empty region"},
    };
    for (const EntryRow& row : rows) {
        GallBladderWallResult r = Sentinel();
        GallBladderWallDescription(image.data(), row.channels, 300, 200, row.roi, row.count, organ, &r);
        EXPECT_EQ(r.wallVerdict, 0) << row.why;
        EXPECT_TRUE(SameBytes(r, Sentinel(), 4)) << row.why;
    }
}
