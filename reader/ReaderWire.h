#pragma once

#include <cstdint>
#include <cstring>
#include <string>

// What zelkin-reader sends back on its standard output: four bytes that name the format and its version, then
// frames, each a type byte, a little-endian 32-bit length and that many bytes. Progress carries one byte (0 to 100),
// a failure the reason in UTF-8, the skeleton its bones in parent-first order:
//   uint32 count, then per bone: uint32 name length, the name in UTF-8, int32 parent (-1 for a root), 16 float32
//   local transform (row by row), 4 float32 pre-rotation (w, x, y, z), int32 rotation order, uint8 flags
//   (1: skins a mesh, 2: has a tip), 3 float32 tip in the bone's frame.
// Everything is little-endian. The reading side trusts none of it.
namespace readerwire
{
constexpr char kMagic[4] = {'Z', 'S', 'K', '1'};

enum Frame : uint8_t
{
    Progress = 'P',
    Failure = 'F',
    Skeleton = 'S'
};

enum BoneFlag : uint8_t
{
    SkinsMesh = 1,
    HasTip = 2
};

inline void PutUint32(std::string& out, uint32_t value)
{
    for (int shift = 0; shift < 32; shift += 8)
        out.push_back(char((value >> shift) & 0xffu));
}

inline void PutFloat(std::string& out, float value)
{
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    PutUint32(out, bits);
}

inline std::string FrameOf(Frame type, const std::string& payload)
{
    std::string frame(1, char(type));
    PutUint32(frame, uint32_t(payload.size()));
    return frame + payload;
}
} // namespace readerwire
