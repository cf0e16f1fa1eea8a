#include "StandardHierarchy.h"

#include <cstdint>

#include <zelkin/ZELSolver.h>

namespace zelkin {
namespace {

// Hand-kept so the shape of the skeleton reads at a glance. Digits run Thumb, Index, Middle, Ring, Pinky, Extra;
// a hand chain is Hand, FingerBase, InHand digit, phalanges 1-4, a foot chain Foot, ToeBase, InFoot digit, toes 1-4.
// Shoulders and the neck hang from the top spine segment, Spine9.
const int16_t kStandardParent[ZELNodeCount] = {
    // 0 Reference, 1 Hips, 2-4 left leg, 5-7 right leg, 8 Spine
    -1, 0, 1, 2, 3, 1, 5, 6, 1,
    // 9-11 left arm (from LeftShoulderExtra), 12-14 right arm (from RightShoulderExtra), 15 Head
    170, 9, 10, 171, 12, 13, 40,
    // 16-17 toe bases, 18-19 shoulders, 20 Neck, 21-22 finger bases
    4, 7, 31, 31, 31, 11, 14,
    // 23-31: Spine1..Spine9
    8, 23, 24, 25, 26, 27, 28, 29, 30,
    // 32-40: Neck1..Neck9
    20, 32, 33, 34, 35, 36, 37, 38, 39,
    // 41-48: in-line rolls, each under its limb segment
    2, 3, 5, 6, 9, 10, 12, 13,
    // 49: HipsTranslation, a helper under Hips
    1,
    // 50-73: left hand fingers
    146, 50, 51, 52, 147, 54, 55, 56,
    148, 58, 59, 60, 149, 62, 63, 64,
    150, 66, 67, 68, 151, 70, 71, 72,
    // 74-97: right hand fingers
    152, 74, 75, 76, 153, 78, 79, 80,
    154, 82, 83, 84, 155, 86, 87, 88,
    156, 90, 91, 92, 157, 94, 95, 96,
    // 98-121: left foot toes
    158, 98, 99, 100, 159, 102, 103, 104,
    160, 106, 107, 108, 161, 110, 111, 112,
    162, 114, 115, 116, 163, 118, 119, 120,
    // 122-145: right foot toes
    164, 122, 123, 124, 165, 126, 127, 128,
    166, 130, 131, 132, 167, 134, 135, 136,
    168, 138, 139, 140, 169, 142, 143, 144,
    // 146-169: in-hand digits (under the finger bases), in-foot digits (under the toe bases)
    21, 21, 21, 21, 21, 21, 22, 22,
    22, 22, 22, 22, 16, 16, 16, 16,
    16, 16, 17, 17, 17, 17, 17, 17,
    // 170-171: shoulder extras
    18, 19,
    // 172-211: leaf rolls, five levels of eight, each under its in-line roll
    41, 42, 43, 44, 45, 46, 47, 48,
    41, 42, 43, 44, 45, 46, 47, 48,
    41, 42, 43, 44, 45, 46, 47, 48,
    41, 42, 43, 44, 45, 46, 47, 48,
    41, 42, 43, 44, 45, 46, 47, 48,
};

} // namespace

int standardParentOf(int nodeId)
{
    return kStandardParent[nodeId];
}

} // namespace zelkin
