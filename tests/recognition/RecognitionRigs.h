#pragma once

#include <functional>
#include <vector>

#include <QHash>
#include <QSet>
#include <QString>

#include <Eigen/Core>

#include <zelkin/SkeletonRecognizer.h>

// A skeleton with its ground truth, as the recognition tests score it, and the changes they put it through.
struct TruthRig
{
    QString id;
    std::vector<SkeletonRecognizer::Bone> bones;
    QHash<QString, int> truth;  // bone -> node
    QSet<QString> optional;     // any answer accepted, as long as it takes no truth bone's node
    bool humanoid = true;
};

// How a recognition did against the truth.
struct RigScore
{
    int truthBones = 0;
    int right = 0;
    QStringList wrong;          // "bone: got X, wants Y"
    QStringList mappedExtras;   // bones that must stay unmapped but got a node
    QStringList requiredWrong;  // required nodes not on their truth bone
    int characters = 0;

    double Share() const { return truthBones > 0 ? double(right) / truthBones : 1.0; }
    QString Describe() const;
};

namespace rigs
{
// The corpus rigs of truth.json, read through the scene library as the programs read them.
std::vector<TruthRig> CorpusRigs();

// Every name replaced by "Bone.NNN" in bone order; the truth follows the bones.
TruthRig WithMeaninglessNames(const TruthRig& rig);
// Every position mapped by `transform` (a rotation, a scale).
TruthRig Transformed(const TruthRig& rig, const std::function<SkeletonRecognizer::Vector(const SkeletonRecognizer::Vector&)>& transform,
                     const QString& suffix);
TruthRig ZUp(const TruthRig& rig);           // Y up becomes Z up
TruthRig FacingBack(const TruthRig& rig);    // turned half round about Y
TruthRig FacingSide(const TruthRig& rig);    // turned a quarter about Y: facing +Z becomes facing +X
TruthRig Scaled(const TruthRig& rig, double factor);
// Every joint (and tip) moved by up to `fraction` of its bone's length along each axis, the same way on every run:
// the unevenness of rigs placed by hand.
TruthRig Jittered(const TruthRig& rig, double fraction, unsigned seed);
// Each arm's angle below the horizontal (negative: above it) and how far each knee is bent, in degrees.
struct Pose
{
    double leftArm = 50.0;
    double rightArm = 50.0;
    double leftKnee = 25.0;
    double rightKnee = 25.0;
};
// The rig in the pose: each arm turned at the shoulder, each leg at the knee, about the body's own axes (found
// from its truth bones), and the feet turned back at the ankles to stay flat on the floor.
TruthRig Posed(const TruthRig& rig, const Pose& pose);
// The bone whose truth is `node` ("LeftArm"), or -1; and a bone's joint.
int BoneOf(const TruthRig& rig, const char* node);
Eigen::Vector3d Joint(const TruthRig& rig, int bone);
// The body's own axes, from its truth bones: up from the hips to the head (its length the body's size), left
// across the thighs, facing = left x up.
struct Axes
{
    Eigen::Vector3d up;
    Eigen::Vector3d left;
    Eigen::Vector3d facing;
    double size = 0.0;
};
Axes BodyAxes(const TruthRig& rig);
// Left and right swapped in every name, the geometry kept: the truth follows the geometry.
TruthRig SidesSwappedInNames(const TruthRig& rig);
// Several rigs under one root, side by side `spacing` apart along X; names get a per-rig namespace.
TruthRig Merged(const std::vector<TruthRig>& rigs, double spacing);

RigScore Score(const TruthRig& rig, const SkeletonRecognizer::Result& result);
} // namespace rigs
