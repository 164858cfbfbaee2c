// Structured calls of the entry points, decoded from a fuzzer's bytes.
//
// The bytes choose a scene, not raw memory: channels, sizes up to a few
// hundred pixels, a speckled picture drawn from a seed, regions inside,
// outside, empty or at the int limits, and outlines that are convex,
// self-touching, collinear, duplicated, far away or plain noise, with
// counts that are zero, negative or real. Whatever the bytes, every array
// holds every point a positive count names, as a correct host's would.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzzcalls {

// One decoded call's outcome: the record's bytes after the call.
using Record = std::vector<int32_t>;

// The entry points by name ("breast", "breast_model", "thyroid", "liver",
// "carotid", "gallwall", "gallbladder").
const std::vector<std::string>& EntryNames();

// Decodes `data` into a call of `entry` and makes it. Aborts with a message
// on stderr when a verdict leaves its table, when the call changed a pixel of
// the caller's image, and when the call takes longer
// than the limit in thread CPU time (SONOLEX_FUZZ_LIMIT_MS; by default the
// release budget of 50 ms, or 2000 ms in a build with sanitizers).
Record Run(const std::string& entry, const uint8_t* data, size_t size);

} // namespace fuzzcalls
