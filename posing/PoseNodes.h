#pragma once

// The nodes a T-pose aims, by side (0 left, 1 right); the numbers are the solver's node identifiers.
namespace posenodes
{
constexpr int Hips = 1;
constexpr int Spine = 8;
constexpr int Head = 15;
constexpr int Neck = 20;
constexpr int UpLeg[] = {2, 5};
constexpr int Leg[] = {3, 6};
constexpr int Foot[] = {4, 7};
constexpr int ToeBase[] = {16, 17};
constexpr int Shoulder[] = {18, 19};
constexpr int Arm[] = {9, 12};
constexpr int ForeArm[] = {10, 13};
constexpr int Hand[] = {11, 14};
constexpr int FingerBase[] = {21, 22};
// A hand's fingers, thumb first then index, middle, ring, pinky and the extra finger, four joints each.
constexpr int FirstFingerJoint[] = {50, 74};
constexpr int FingerCount = 6;
constexpr int JointsPerFinger = 4;
constexpr int Thumb = 0;
constexpr int Index = 1;
constexpr int Middle = 2;
constexpr int Pinky = 4;

// The spine from its first bone up through the neck to the head: Spine, Spine1 to Spine9, Neck, Neck1 to Neck9,
// Head.
constexpr int CentralChain[] = {8, 23, 24, 25, 26, 27, 28, 29, 30, 31, 20, 32, 33, 34, 35, 36, 37, 38, 39, 40, 15};

inline int FingerJoint(int side, int finger, int joint)
{
    return FirstFingerJoint[side] + finger * JointsPerFinger + joint;
}
} // namespace posenodes
