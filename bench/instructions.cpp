// Counts the instructions of one entry's call under valgrind's callgrind.
//
//   valgrind --tool=callgrind --collect-atstart=no
//     --toggle-collect=MeasuredCalls sonolex_instructions ENTRY [WIDTH]
//
// The scene is built and the entry called once before anything is counted,
// so set-up and the first call's one-time work (OpenCV's tables and thread
// pool) stay out; then MeasuredCalls makes `kCalls` calls. Without WIDTH the
// entry's typical scene is used, with it the size series' scene. Run outside
// valgrind, it only makes the calls and prints how many it made and the
// record. OpenCV runs on this thread alone here.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "scenes.h"

namespace {

constexpr int kCalls = 4;

} // namespace

// Kept out of line, so that callgrind can toggle collection on it.
extern "C" __attribute__((noinline)) void MeasuredCalls(const scenes::Scene* scene)
{
    for (int i = 0; i < kCalls; ++i)
        scene->call();
}

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s ENTRY [WIDTH]\n", argv[0]);
        return 2;
    }
    // All of a call's work on this thread, so that callgrind sees it all
    // and counts the same each run (OpenCV hands some passes to workers).
    cv::setNumThreads(1);
    const std::string entry = argv[1];
    const std::vector<scenes::Scene> all = argc > 2 ? scenes::Sized(std::atoi(argv[2])) : scenes::Typical();
    for (const scenes::Scene& scene : all) {
        if (scene.entry != entry)
            continue;
        const std::vector<int32_t> words = scene.call();
        MeasuredCalls(&scene);
        std::printf("%s: %d calls, record", entry.c_str(), kCalls);
        for (int32_t w : words)
            std::printf(" %d", w);
        std::printf("\n");
        return 0;
    }
    std::fprintf(stderr, "%s: no such entry\n", entry.c_str());
    return 2;
}
