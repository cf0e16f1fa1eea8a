#include "SceneBone.h"

#include <algorithm>
#include <cmath>

#include <QMatrix3x3>

// Qt keeps its quaternion-from-matrix and its matrix inverse in the GUI library; the command line links only Qt
// Core, so the two are done here from the matrices' inline accessors.
namespace
{
QQuaternion FromRotationMatrix(const QMatrix3x3& rotation)
{
    float scalar = 0.0f;
    float axis[3] = {0.0f, 0.0f, 0.0f};
    const float trace = rotation(0, 0) + rotation(1, 1) + rotation(2, 2);
    if (trace > 0.00000001f)
    {
        const float s = 2.0f * std::sqrt(trace + 1.0f);
        scalar = 0.25f * s;
        axis[0] = (rotation(2, 1) - rotation(1, 2)) / s;
        axis[1] = (rotation(0, 2) - rotation(2, 0)) / s;
        axis[2] = (rotation(1, 0) - rotation(0, 1)) / s;
    }
    else
    {
        // Built from the largest diagonal term, where the trace is too small to divide by.
        static const int next[3] = {1, 2, 0};
        int i = rotation(1, 1) > rotation(0, 0) ? 1 : 0;
        if (rotation(2, 2) > rotation(i, i))
            i = 2;
        const int j = next[i];
        const int k = next[j];
        const float s = 2.0f * std::sqrt(rotation(i, i) - rotation(j, j) - rotation(k, k) + 1.0f);
        axis[i] = 0.25f * s;
        scalar = (rotation(k, j) - rotation(j, k)) / s;
        axis[j] = (rotation(j, i) + rotation(i, j)) / s;
        axis[k] = (rotation(k, i) + rotation(i, k)) / s;
    }
    const float length = std::sqrt(scalar * scalar + axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
    if (length == 0.0f)
        return QQuaternion();
    return QQuaternion(scalar / length, axis[0] / length, axis[1] / length, axis[2] / length);
}
} // namespace

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
    rotation = FromRotationMatrix(basis);
}

QMatrix4x4 SceneBone::InverseGlobal() const
{
    // [A t] inverts to [A^-1, -A^-1 t], with A^-1 the adjugate over the determinant.
    const auto a = [this](int row, int column) { return global(row, column); };
    // Cyclic indices give each cofactor its sign.
    float cofactors[3][3];
    for (int row = 0; row < 3; ++row)
    {
        for (int column = 0; column < 3; ++column)
        {
            const int r1 = (row + 1) % 3, r2 = (row + 2) % 3, c1 = (column + 1) % 3, c2 = (column + 2) % 3;
            cofactors[row][column] = a(r1, c1) * a(r2, c2) - a(r1, c2) * a(r2, c1);
        }
    }
    const float determinant = a(0, 0) * cofactors[0][0] + a(0, 1) * cofactors[0][1] + a(0, 2) * cofactors[0][2];
    if (determinant == 0.0f)
        return QMatrix4x4();
    QMatrix4x4 inverse;
    for (int row = 0; row < 3; ++row)
    {
        for (int column = 0; column < 3; ++column)
            inverse(row, column) = cofactors[column][row] / determinant;
    }
    for (int row = 0; row < 3; ++row)
        inverse(row, 3) = -(inverse(row, 0) * a(0, 3) + inverse(row, 1) * a(1, 3) + inverse(row, 2) * a(2, 3));
    return inverse;
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
