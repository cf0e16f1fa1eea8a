#pragma once

#include <array>
#include <vector>

#include <QString>

#include <zelkin/CharacterizationExport.h>

class Characterization;

// Works out a T-pose for a characterized skeleton from its rest pose: in the character's own frame the spine and
// neck stand straight up, the arms (upper arm, forearm, hand) lie along the left-right axis, the legs hang straight
// down with the feet forward and the fingers lie straight along the hand, the thumb keeping its angle to the palm.
// The whole character is then expressed in the solver's frame: Y up, facing +Z, its left along +X.
//
// Only rotations change: every bone keeps its length, its parent and its name, and the hips keep their translation
// in the character's frame. Mapped bones are aligned; every other bone rides along with its parent. The result
// depends only on the rest pose and the mapping, so posing a T-pose again changes nothing.
class ZELKIN_CHARACTERIZATION_EXPORT TPoseBuilder
{
public:
    using Vector = std::array<double, 3>;
    // An affine transform, column-major as QMatrix4x4 and OpenGL keep it: element (row, column) at column * 4 + row.
    using Matrix = std::array<double, 16>;

    // A turn smaller than this many degrees is no turn: what a T-pose leaves is below it.
    static constexpr double NoTurnDegrees = 0.01;

    struct Bone
    {
        QString name;
        // Index of the parent in the list; the parent comes first. Anything else makes the bone a root.
        int parent = -1;
        // The rest pose relative to the parent; a root's is its global transform.
        Matrix local {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        // Where the bone ends, in its own frame, when the file marks it without a bone of its own (a BVH end site).
        bool hasTip = false;
        Vector tip {};
    };

    // A bone the T-pose turned relative to its parent (a root: relative to the world).
    struct Turn
    {
        int bone = -1;
        int nodeId = -1; // the node holding the bone, -1 when none
        double degrees = 0.0;
    };

    struct Result
    {
        // Empty when a T-pose was worked out; otherwise why not, for the user.
        QString error;
        // The character's axes in the rest pose, unit vectors in the skeleton's frame; left = up x facing.
        Vector up {};
        Vector facing {};
        Vector left {};
        // How far the character as a whole was turned into the solver's frame.
        double frameDegrees = 0.0;
        // One per bone: its local transform in the T-pose (unchanged for a bone that rides along).
        std::vector<Matrix> locals;
        // In bone order.
        std::vector<Turn> turns;

        bool IsPosed() const { return error.isEmpty(); }
        // Already in a T-pose when nothing turned.
        bool Changed() const { return !turns.empty(); }
    };

    // The bones in parent-first order; nodes whose bones are not among them are left out.
    static Result Build(const std::vector<Bone>& bones, const Characterization& characterization);
};
