// zelkin-reader FILE: reads a skeleton with Assimp and writes it to its standard output for the scene library
// (ReaderWire.h), with progress as it goes. It runs in a process of its own, so that a file that crashes or hangs
// the reader, or asks it for all the memory there is, takes nothing else down: the scene library enforces the
// limits and turns whatever happens here into one message.
// zelkin-reader --extensions | --version: the extensions Assimp claims, one per line; Assimp's version.
#include <cstdio>
#include <cstring>
#include <string>

#include <unistd.h>

#include "ReaderWire.h"
#include "SkeletonReading.h"

namespace
{
void Write(const std::string& bytes)
{
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}
} // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--extensions") == 0)
    {
        Write(SkeletonReading::Extensions());
        return 0;
    }
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0)
    {
        Write(SkeletonReading::Version() + '\n');
        return 0;
    }
    if (argc != 2 || argv[1][0] == '-')
    {
        std::fputs("usage: zelkin-reader FILE | --extensions | --version\n"
                   "(for the Zelkin programs: it answers in their own format)\n",
                   stderr);
        return 2;
    }
    Write(std::string(readerwire::kMagic, sizeof readerwire::kMagic));
    // Never freed: the process ends as soon as the answer is out, and the system takes everything back at once,
    // which for a large file is faster than Assimp freeing its scene piece by piece.
    auto* reading = new SkeletonReading(
        [](readerwire::Frame type, const std::string& payload) { Write(readerwire::FrameOf(type, payload)); });
    reading->Read(argv[1]);
    _exit(0);
}
