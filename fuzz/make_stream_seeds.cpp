// Writes valid streams to start the stream fuzzer from: empty, partly and fully defined characters, each in both
// byte orders. Usage: make_stream_seeds <output directory>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/ZELSolver.h>

namespace {

CharacterJointGeometry seedRecord(int nodeId)
{
    const float v = 0.1f * static_cast<float>(nodeId);
    CharacterJointGeometry record;
    record.SetTranslate(v, -v, 2 * v);
    record.SetRotateQ(0.0f, 0.6f, 0.0f, 0.8f);
    record.SetScale(1.0f, 1.0f, 1.0f + v);
    record.SetPreRotQ(0.6f, 0.0f, 0.0f, 0.8f);
    record.SetMinRLimit(-v, -1.0f, -2.0f);
    record.SetMaxRLimit(v, 1.0f, 2.0f);
    record.SetLimitEnableMask(nodeId % 64);
    record.SetRotationOrder(static_cast<ZELRotationOrder>(nodeId % ZELRotationOrderCount));
    return record;
}

// Written beside the target and renamed over it, so an interrupted build never leaves half a seed.
bool writeFile(const std::filesystem::path& path, const void* bytes, int32_t length)
{
    const std::filesystem::path partial = path.string() + ".part";
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        out.write(static_cast<const char*>(bytes), length);
        if (!out.flush())
            return false;
    }
    std::error_code error;
    std::filesystem::rename(partial, path, error);
    return !error;
}

bool writeSeeds(const std::filesystem::path& directory, const std::string& name,
                const ZELCharacterDefinition& definition)
{
    CharacterJointGeometry records[ZELNodeCount];
    for (int id = 0; id < ZELNodeCount; ++id)
        records[id] = seedRecord(id);
    const int32_t limbFlags[ZELLimbCount] = {1, 0, 0, 1};
    ZELCharacter* character = ZELCharacterCreate(&definition, std::malloc);
    if (character == nullptr)
        return false;
    ZELCharacterSetJointGeometries(&definition, character, records, ZELNodeCount, limbFlags);

    bool written = true;
    for (bool bigEndian : {false, true}) {
        int32_t length = 0;
        void* stream =
            ZELCharacterizationStreamWrite(&length, &definition, character, bigEndian, std::malloc, std::free);
        written = written && stream != nullptr
            && writeFile(directory / (name + (bigEndian ? "_big.zelc" : "_little.zelc")), stream, length);
        std::free(stream);
    }
    ZELCharacterDestroy(character, std::free);
    return written;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <output directory>\n", argv[0]);
        return 2;
    }
    const std::filesystem::path directory = argv[1];
    std::error_code error;
    std::filesystem::create_directories(directory, error);

    ZELCharacterDefinition empty {};
    ZELCharacterDefinition partial {};
    for (int id = 0; id < 16; ++id)
        partial.mUsedNodes[id] = id % 2 == 0 ? 7u : 1u;
    partial.mUsedNodes[ZELNodeCount - 1] = 7u;
    ZELCharacterDefinition full {};
    for (uint32_t& flags : full.mUsedNodes)
        flags = 7u;

    const bool written = writeSeeds(directory, "empty", empty) && writeSeeds(directory, "partial", partial)
        && writeSeeds(directory, "full", full);
    if (!written) {
        std::fprintf(stderr, "could not write the seeds to %s\n", directory.string().c_str());
        return 1;
    }
    return 0;
}
