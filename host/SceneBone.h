#pragma once

#include <QMatrix4x4>
#include <QQuaternion>
#include <QString>
#include <QVector3D>

#include <zelkin/ZELSolver.h>

// One skeleton joint of a scene in its reference pose.
struct SceneBone
{
    QString name;
    // Index of the parent bone in the scene, -1 for a root.
    int parent = -1;
    // Relative to the parent bone; for a root, relative to the world (the file's non-bone nodes are folded in).
    QMatrix4x4 local;
    QMatrix4x4 global;
    // Identity when the format has none.
    QQuaternion preRotation;
    ZELRotationOrder rotationOrder = ZELEulerXYZ;
    // How many characterization nodes hold the bone now.
    int attachCount = 0;
    // The node the bone was last assigned to, -1 when none.
    int node = -1;
    // The bone deforms a mesh of the file (false where the file has no skinned mesh).
    bool skinsMesh = false;
    // Where the bone ends, in its own frame, when the file marks it with a leaf that is no bone (a BVH end site, a
    // "Nub" helper): a foot's or a head's direction is read from it.
    bool hasTip = false;
    QVector3D tip;

    // Translation, rotation and scale of the global transform; a mirroring transform gets a negative x scale.
    void DecomposeGlobal(QVector3D& translation, QQuaternion& rotation, QVector3D& scale) const;
    // The inverse of the global transform (an affine one); identity when it cannot be inverted.
    QMatrix4x4 InverseGlobal() const;
    // True when the global scale's axes differ by more than `tolerance` relative to the largest one.
    bool HasNonUniformScale(float tolerance) const;
};
