#pragma once

#include <zelkin/CharacterizationExport.h>
#include <zelkin/ZELSolver.h>

// Euler angles in degrees <-> unit quaternions (x, y, z, w), for the 13 rotation orders.
//
// Convention: an order names the axes in the sequence the rotations are applied, about the fixed parent axes
// (extrinsic). Euler XYZ rotates about X first, then Y, then Z: R = Rz * Ry * Rx for column vectors.
// Spheric XYZ is treated as Euler XYZ.
//
// The three angles: for the six orders with three distinct axes (XYZ, XZY, YZX, YXZ, ZXY, ZYX) they are the
// angles about X, Y and Z, whatever the order; for the six orders that repeat an axis (XYX, XZX, YZY, YXY, ZXZ,
// ZYZ) they are the first, second and third rotation of the sequence.
//
// Decomposition gives the first and last angle in [-180, 180] and the middle one in [-90, 90] (distinct axes)
// or [0, 180] (repeated axis). At gimbal lock only the sum or difference of two angles is defined; the last
// rotation of the sequence is then set to zero.
class ZELKIN_CHARACTERIZATION_EXPORT RotationConversion
{
public:
    static void QuaternionToEuler(const float q[4], ZELRotationOrder order, double degrees[3]);
    static void EulerToQuaternion(const double degrees[3], ZELRotationOrder order, float q[4]);
    static void EulerToQuaternion(const double degrees[3], ZELRotationOrder order, double q[4]);
};
