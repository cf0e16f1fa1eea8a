#pragma once

#include <QString>

#include "RestSkeleton.h"

// The character's own axes, read from its mapped bones alone (a characterization made by hand or by a template has
// no recognizer's frame to lend): up along the legs and the spine, left from the right thigh to the left one (or
// shoulder to shoulder), facing = left x up. Within 10 degrees of a skeleton axis an axis is meant. Also the turn
// that carries these axes onto the solver's: left to +X, up to +Y, facing to +Z.
class CharacterAxes
{
public:
    explicit CharacterAxes(const RestSkeleton& skeleton);

    // Empty when the axes are known; otherwise what is missing, for the user.
    const QString& Problem() const { return mProblem; }
    const Vec3& Up() const { return mUp; }
    const Vec3& Left() const { return mLeft; }
    const Vec3& Facing() const { return mFacing; }
    // Exactly the identity when the character already stands in the solver's frame.
    const Eigen::Quaterniond& ToSolver() const { return mToSolver; }

    static Vec3 SolverUp() { return Vec3::UnitY(); }
    static Vec3 SolverLeft() { return Vec3::UnitX(); }
    static Vec3 SolverFacing() { return Vec3::UnitZ(); }

private:
    // The sum of the unit vectors that point up the body; zero when none is mapped.
    Vec3 UpEvidence() const;
    // From the right side to the left, across the thighs or else the shoulders; zero when neither pair is mapped.
    Vec3 Across() const;

    const RestSkeleton& mSkeleton;
    QString mProblem;
    Vec3 mUp = Vec3::UnitY();
    Vec3 mLeft = Vec3::UnitX();
    Vec3 mFacing = Vec3::UnitZ();
    Eigen::Quaterniond mToSolver = Eigen::Quaterniond::Identity();
};
