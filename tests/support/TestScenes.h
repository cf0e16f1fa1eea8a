#pragma once

#include <utility>
#include <vector>

#include <QString>

#include "TPose.h"

class TestHub;

// Scenes for a TestHub: a skeleton file read with Assimp, or the shared T-pose.
namespace testscenes {

// Adds every skinned bone of the file in parent-first order, with its global reference transform. False with a
// reason when the file cannot be read or has no bones.
bool LoadSkeleton(const QString& path, TestHub& hub, QString& error);

// One bone per node that `assigned` marks, named prefix + node name, placed at its T-pose position.
void AddPoseBones(TestHub& hub, const tpose::Pose& pose, const tpose::AssignedFlags& assigned,
                  const QString& prefix);

// A small skeleton written out by hand: the fifteen required bones plus Spine1, Neck and the toes, standing in a
// T-pose facing +Z. Bones are named "rig:" + node name; returns each node with its bone.
std::vector<std::pair<int, QString>> AddHandMadeTPose(TestHub& hub);

} // namespace testscenes
