#pragma once

#include <array>
#include <cstdint>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/ZELSolver.h>

#include "TPose.h"

// A solver character holding a pose, built the way the tool builds one for validation: a definition with bit 0
// for each assigned node, the dense 212-record geometry array, and destruction with the standard release.
class PoseCharacter
{
public:
    using Records = std::array<CharacterJointGeometry, ZELNodeCount>;

    // Each node's record carries its position as the translation.
    static Records MakeRecords(const tpose::Pose& pose);

    PoseCharacter(const uint32_t* assigned, const Records& records);
    PoseCharacter(const uint32_t* assigned, const tpose::Pose& pose);
    ~PoseCharacter();
    PoseCharacter(const PoseCharacter&) = delete;
    PoseCharacter& operator=(const PoseCharacter&) = delete;

    const ZELCharacter* Get() const { return mCharacter; }

private:
    ZELCharacter* mCharacter;
};
