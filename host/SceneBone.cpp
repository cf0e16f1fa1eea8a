#include "SceneBone.h"

#include <algorithm>
#include <cmath>

#include <QMatrix3x3>

void SceneBone::DecomposeGlobal(QVector3D& translation, QQuaternion& rotation, QVector3D& scale) const
{
    translation = global.column(3).toVector3D();
    QVector3D axes[3] = {global.column(0).toVector3D(), global.column(1).toVector3D(),
                         global.column(2).toVector3D()};
    scale = QVector3D(axes[0].length(), axes[1].length(), axes[2].length());
    if (QVector3D::dotProduct(QVector3D::crossProduct(axes[0], axes[1]), axes[2]) < 0.0f)
        scale.setX(-scale.x());

    QMatrix3x3 basis;
    for (int column = 0; column < 3; ++column)
    {
        // A zero axis leaves that column of the rotation undefined; identity is as good a guess as any.
        const float length = scale[column];
        for (int row = 0; row < 3; ++row)
            basis(row, column) = length != 0.0f ? axes[column][row] / length : (row == column ? 1.0f : 0.0f);
    }
    rotation = QQuaternion::fromRotationMatrix(basis).normalized();
}

bool SceneBone::HasNonUniformScale(float tolerance) const
{
    QVector3D translation;
    QQuaternion rotation;
    QVector3D scale;
    DecomposeGlobal(translation, rotation, scale);
    const float x = std::fabs(scale.x());
    const float y = std::fabs(scale.y());
    const float z = std::fabs(scale.z());
    const float largest = std::max({x, y, z});
    if (largest == 0.0f)
        return false;
    return (largest - std::min({x, y, z})) / largest > tolerance;
}
