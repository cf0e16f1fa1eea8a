#include "TPose.h"

namespace tpose {
namespace {

constexpr int kLeftHandBlock = 50;
constexpr int kRightHandBlock = 74;
constexpr int kLeftFootBlock = 98;
constexpr int kRightFootBlock = 122;
constexpr int kDigits = 6;
constexpr float kShoulderHeight = 146.0f;

Position Mirrored(const Position& p)
{
    return {-p[0], p[1], p[2]};
}

Position Lerp(const Position& a, const Position& b, float t)
{
    return {a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t, a[2] + (b[2] - a[2]) * t};
}

void SetTrunk(Pose& pose)
{
    pose[0] = {0.0f, 0.0f, 0.0f};     // Reference
    pose[1] = {0.0f, 100.0f, 0.0f};   // Hips
    pose[49] = {0.0f, 99.0f, 0.0f};   // HipsTranslation
    pose[8] = {0.0f, 110.0f, 0.0f};   // Spine
    for (int k = 1; k <= 9; ++k)      // Spine1..Spine9
        pose[22 + k] = {0.0f, 110.0f + 4.0f * static_cast<float>(k), 0.5f};
    pose[20] = {0.0f, 152.0f, 0.0f};  // Neck
    for (int k = 1; k <= 9; ++k)      // Neck1..Neck9
        pose[31 + k] = {0.0f, 152.0f + static_cast<float>(k), 0.5f};
    pose[15] = {0.0f, 166.0f, 0.0f};  // Head
}

// The left side; the right side is its mirror image.
void SetLeftLimbs(Pose& pose)
{
    pose[2] = {10.0f, 95.0f, 0.0f};   // LeftUpLeg
    pose[3] = {10.0f, 50.0f, 1.0f};   // LeftLeg
    pose[4] = {10.0f, 8.0f, 0.0f};    // LeftFoot
    pose[16] = {10.0f, 2.0f, 12.0f};  // LeftToeBase
    pose[18] = {5.0f, kShoulderHeight, 0.0f};   // LeftShoulder
    pose[170] = {10.0f, kShoulderHeight, 0.0f}; // LeftShoulderExtra
    pose[9] = {15.0f, kShoulderHeight, 0.0f};   // LeftArm
    pose[10] = {43.0f, kShoulderHeight, 0.0f};  // LeftForeArm
    pose[11] = {68.0f, kShoulderHeight, 0.0f};  // LeftHand
    pose[21] = {71.0f, kShoulderHeight, 0.0f};  // LeftFingerBase
}

void SetDigits(Pose& pose, int block, int inBlock, bool hand)
{
    for (int digit = 0; digit < kDigits; ++digit) {
        const float spread = static_cast<float>(digit) - 2.5f;
        for (int phalanx = 1; phalanx <= 4; ++phalanx) {
            const float step = static_cast<float>(phalanx);
            pose[block + 4 * digit + phalanx - 1] =
                hand ? Position {74.0f + 3.0f * step, kShoulderHeight - (digit == 0 ? 2.0f : 0.0f), -2.0f * spread}
                     : Position {10.0f + 1.5f * spread, 2.0f, 14.0f + 1.5f * step};
        }
        pose[inBlock + digit] = hand ? Position {70.0f, kShoulderHeight - 1.0f, -2.0f * spread}
                                     : Position {10.0f + 1.5f * spread, 3.0f, 10.0f};
    }
}

void MirrorLeftToRight(Pose& pose)
{
    const int pairs[][2] = {{2, 5}, {3, 6}, {4, 7}, {16, 17}, {18, 19}, {170, 171}, {9, 12}, {10, 13}, {11, 14}, {21, 22}};
    for (const auto& pair : pairs)
        pose[pair[1]] = Mirrored(pose[pair[0]]);
    for (int i = 0; i < 24; ++i) {
        pose[kRightHandBlock + i] = Mirrored(pose[kLeftHandBlock + i]);
        pose[kRightFootBlock + i] = Mirrored(pose[kLeftFootBlock + i]);
    }
    for (int i = 0; i < kDigits; ++i) {
        pose[152 + i] = Mirrored(pose[146 + i]);
        pose[164 + i] = Mirrored(pose[158 + i]);
    }
}

// In-line rolls halfway along their segment, leaf rolls at sixths of it.
void SetRollBones(Pose& pose)
{
    const int segments[8][2] = {{2, 3}, {3, 4}, {5, 6}, {6, 7}, {9, 10}, {10, 11}, {12, 13}, {13, 14}};
    for (int limb = 0; limb < 8; ++limb) {
        const Position& from = pose[segments[limb][0]];
        const Position& to = pose[segments[limb][1]];
        pose[41 + limb] = Lerp(from, to, 0.5f);
        for (int level = 1; level <= 5; ++level)
            pose[172 + 8 * (level - 1) + limb] = Lerp(from, to, static_cast<float>(level) / 6.0f);
    }
}

} // namespace

Pose Make()
{
    Pose pose {};
    SetTrunk(pose);
    SetLeftLimbs(pose);
    SetDigits(pose, kLeftHandBlock, 146, true);
    SetDigits(pose, kLeftFootBlock, 158, false);
    MirrorLeftToRight(pose);
    SetRollBones(pose);
    return pose;
}

AssignedFlags AllAssigned()
{
    AssignedFlags flags;
    flags.fill(1u);
    return flags;
}

AssignedFlags NoneAssigned()
{
    AssignedFlags flags;
    flags.fill(0u);
    return flags;
}

} // namespace tpose
