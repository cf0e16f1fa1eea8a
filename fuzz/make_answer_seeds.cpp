// Writes what zelkin-reader answers for each given skeleton file, one seed file each, for the answer fuzzer.
// Usage: make_answer_seeds <output directory> <skeleton file>...
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "ReaderWire.h"
#include "SkeletonReading.h"

int main(int argc, char** argv)
{
    if (argc < 3)
    {
        std::fprintf(stderr, "usage: %s <output directory> <skeleton file>...\n", argv[0]);
        return 2;
    }
    const std::filesystem::path output = argv[1];
    std::filesystem::create_directories(output);
    for (int index = 2; index < argc; ++index)
    {
        std::string answer(readerwire::kMagic, sizeof readerwire::kMagic);
        SkeletonReading reading(
            [&answer](readerwire::Frame type, const std::string& payload) { answer += readerwire::FrameOf(type, payload); });
        reading.Read(argv[index]);
        const std::filesystem::path seed = output / (std::filesystem::path(argv[index]).filename().string() + ".answer");
        std::ofstream out(seed, std::ios::binary);
        out.write(answer.data(), std::streamsize(answer.size()));
        if (!out)
        {
            std::fprintf(stderr, "cannot write %s\n", seed.c_str());
            return 1;
        }
    }
    return 0;
}
