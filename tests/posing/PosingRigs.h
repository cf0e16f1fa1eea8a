#pragma once

#include <utility>
#include <vector>

#include <QQuaternion>
#include <QString>
#include <QVector3D>

#include "Scene.h"

// Corpus rigs with their true mapping, and what the T-pose tests do to their rest pose before posing them: turn
// the whole rig, or one bone about its joint.
namespace posingrigs
{
struct Rig
{
    QString id;
    Scene scene;
    std::vector<std::pair<int, QString>> mapping; // node, bone
};

// The corpus skeletons of truth.json, read through the scene library, mapped as the truth says.
std::vector<Rig> CorpusRigs();

// Every root turned about the origin, or scaled about it.
void TurnAll(Scene& scene, const QQuaternion& turn);
void ScaleAll(Scene& scene, float factor);
// The bone turned about its own joint by `degrees` about a world axis; what hangs below it follows.
void TurnBone(Scene& scene, const QString& bone, const QVector3D& axis, float degrees);
// The mapped bone of a node, empty when none.
QString BoneOf(const Rig& rig, int nodeId);
QVector3D Joint(const Scene& scene, const QString& bone);
} // namespace posingrigs
