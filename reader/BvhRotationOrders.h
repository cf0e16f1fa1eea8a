#pragma once

#include <map>
#include <string>

#include <zelkin/ZELSolver.h>

// Assimp does not keep a BVH joint's rotation order, so it is read from the file's CHANNELS lines.
namespace bvh
{
// Joint name -> rotation order; joints with fewer than three rotation channels are left out.
std::map<std::string, ZELRotationOrder> RotationOrders(const std::string& path);
// "ZXY" as listed in a file (outermost first) -> the order applied first-axis-first; false for anything else.
bool FromChannels(const std::string& listed, ZELRotationOrder& order);
} // namespace bvh
