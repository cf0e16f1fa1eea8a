#pragma once

#include <array>
#include <cstdint>

// A plausible humanoid in the reference T-pose (Y up, facing +Z, left side on +X, centimetres), shared by the
// validation tests and the benchmark. Every node that is not a roll bone has its own position; roll bones sit
// along their limb segment.
namespace tpose {

using Position = std::array<float, 3>;
using Pose = std::array<Position, 212>;
using AssignedFlags = std::array<uint32_t, 212>;

Pose Make();
AssignedFlags AllAssigned();
AssignedFlags NoneAssigned();

} // namespace tpose
