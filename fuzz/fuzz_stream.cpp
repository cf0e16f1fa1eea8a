// Hostile bytes into the stream reader. Besides never reading outside the input, leaking or crashing, whatever the
// reader accepts must write back to a stream that reads and writes again to the very same bytes.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include <zelkin/ZELSolver.h>

#include "FuzzCheck.h"

namespace {

struct Stream
{
    int32_t length = 0; // before bytes: the writer sets it while bytes is initialised
    void* bytes = nullptr;

    Stream(const ZELCharacterDefinition& definition, const ZELCharacter* character, bool bigEndian)
        : bytes(ZELCharacterizationStreamWrite(&length, &definition, character, bigEndian, std::malloc, std::free))
    {
    }
    ~Stream() { std::free(bytes); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
};

void checkRewriteIsStable(const ZELCharacterDefinition& definition, const ZELCharacter* character, bool bigEndian)
{
    const Stream first(definition, character, bigEndian);
    require(first.bytes != nullptr);

    ZELCharacterDefinition again {};
    ZELCharacter* reread =
        ZELCharacterizationStreamRead(&again, first.bytes, first.length, std::malloc, std::free);
    require(reread != nullptr);
    require(std::memcmp(&again, &definition, sizeof definition) == 0);
    const Stream second(again, reread, bigEndian);
    ZELCharacterDestroy(reread, std::free);
    require(second.length == first.length);
    require(std::memcmp(second.bytes, first.bytes, static_cast<size_t>(first.length)) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > static_cast<size_t>(std::numeric_limits<int32_t>::max()))
        return 0;
    ZELCharacterDefinition definition {};
    ZELCharacter* character =
        ZELCharacterizationStreamRead(&definition, data, static_cast<int32_t>(size), std::malloc, std::free);
    if (character == nullptr)
        return 0;
    const bool bigEndian = data[0] == 0x24;
    checkRewriteIsStable(definition, character, bigEndian);
    checkRewriteIsStable(definition, character, !bigEndian);
    ZELCharacterDestroy(character, std::free);
    return 0;
}
