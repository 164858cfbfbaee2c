// Writes the seed corpus: for every entry, byte strings that decode into
// synthetic scans with ordinary outlines (an oval lesion inside a
// mid-sized speckled image, the region empty or whole) and into a spread
// of random scenes. Usage: fuzz_seeds DIR  (writes DIR/<entry>/seed-NNN).
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "fuzz_calls.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzz_seeds DIR\n");
        return 2;
    }
    std::mt19937 random(20261123u);
    for (const std::string& entry : fuzzcalls::EntryNames()) {
        const std::filesystem::path dir = std::filesystem::path(argv[1]) / entry;
        std::filesystem::create_directories(dir);
        for (int i = 0; i < 48; ++i) {
            std::vector<uint8_t> bytes(256);
            for (uint8_t& b : bytes)
                b = uint8_t(random());
            if (i < 24) {
                // Grey or colour, a mid-sized image, an ordinary oval, a real count.
                bytes[0] = uint8_t(i % 2 ? 0 : 10);
                bytes[1] = uint8_t(1 + i % 5);
                bytes[6] = 1;
            }
            char name[32];
            std::snprintf(name, sizeof name, "seed-%03d", i);
            std::ofstream(dir / name, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                                               std::streamsize(bytes.size()));
        }
    }
    return 0;
}
