// Decoded fuzz calls in every build: the inputs that ever failed, a spread
// of random scenes, and the same scenes from eight threads at once.
#include <filesystem>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "fuzz_calls.h"

namespace {

std::vector<std::vector<uint8_t>> RandomInputs(int count, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<std::vector<uint8_t>> inputs(static_cast<size_t>(count));
    for (auto& bytes : inputs) {
        bytes.resize(random() % 300);
        for (uint8_t& b : bytes)
            b = static_cast<uint8_t>(random());
    }
    return inputs;
}

} // namespace

TEST(FuzzCalls, EveryInputThatEverFailedNowEndsCleanly)
{
    // A failure aborts inside Run: a sanitizer report, a verdict outside its
    // table, or a call over the time limit.
    size_t replayed = 0;
    for (const std::string& entry : fuzzcalls::EntryNames()) {
        const std::filesystem::path dir = std::filesystem::path(SONOLEX_FUZZ_REGRESSIONS) / entry;
        if (!std::filesystem::is_directory(dir))
            continue;
        for (const auto& file : std::filesystem::directory_iterator(dir)) {
            std::ifstream in(file.path(), std::ios::binary);
            const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            fuzzcalls::Run(entry, bytes.data(), bytes.size());
            ++replayed;
        }
    }
    RecordProperty("replayed", static_cast<int>(replayed));
}

TEST(FuzzCalls, RandomScenesEndCleanlyInEveryEntry)
{
    for (const std::string& entry : fuzzcalls::EntryNames())
        for (const auto& bytes : RandomInputs(150, 7))
            fuzzcalls::Run(entry, bytes.data(), bytes.size());
}

TEST(Threads, EightThreadsGetTheRecordsOfOne)
{
    // Entry points keep no state between calls: the same scenes described
    // from eight threads at once give the records of one thread.
    const auto inputs = RandomInputs(40, 11);
    std::vector<std::pair<std::string, std::vector<uint8_t>>> calls;
    for (const std::string& entry : fuzzcalls::EntryNames())
        for (const auto& bytes : inputs)
            calls.emplace_back(entry, bytes);
    std::vector<fuzzcalls::Record> expected;
    for (const auto& [entry, bytes] : calls)
        expected.push_back(fuzzcalls::Run(entry, bytes.data(), bytes.size()));

    std::vector<int> mismatches(8, 0);
    std::vector<std::thread> threads;
    for (size_t t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            for (size_t k = 0; k < calls.size(); ++k) {
                const size_t i = (k + t * 31) % calls.size(); // each thread in its own order
                const auto& [entry, bytes] = calls[i];
                if (fuzzcalls::Run(entry, bytes.data(), bytes.size()) != expected[i])
                    ++mismatches[t];
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (size_t t = 0; t < 8; ++t)
        EXPECT_EQ(mismatches[t], 0) << "thread " << t;
}

namespace {

size_t ResidentKiB()
{
    std::ifstream statm("/proc/self/statm");
    size_t pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * 4;
}

} // namespace

// Run by `make soak`: 100,000 calls of each entry, successful and failing
// mixed, after which resident memory must be where it was after the first
// 10,000.
TEST(Memory, DISABLED_ResidentMemoryStaysFlatOverManyCalls)
{
    const auto inputs = RandomInputs(1000, 23);
    for (const std::string& entry : fuzzcalls::EntryNames()) {
        size_t settled = 0;
        for (int call = 0; call < 100000; ++call) {
            const auto& bytes = inputs[static_cast<size_t>(call) % inputs.size()];
            fuzzcalls::Run(entry, bytes.data(), bytes.size());
            if (call == 9999)
                settled = ResidentKiB();
        }
        const size_t end = ResidentKiB();
        std::printf("%s: resident %zu KiB after 10,000 calls, %zu KiB after 100,000\n", entry.c_str(), settled, end);
        EXPECT_LT(end, settled + 4096) << entry;
    }
}
