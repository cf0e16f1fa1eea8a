#pragma once

#include <vector>

#include "CharacterizationValidator.h"

// Two mapped nodes at one position confuse the solver; for the six elbow/wrist/knee/ankle pairs it is fatal.
// Roll bones are skipped: they legitimately sit on their limb.
class ZELKIN_CHARACTERIZATION_EXPORT SameGeometryValidator : public CharacterizationValidator
{
public:
    // Strict: nodes exactly this far apart on an axis are not "almost" coincident.
    static constexpr float AlmostDistance = 1e-6f;

    struct Finding
    {
        int first;  // the smaller identifier
        int second;
        bool exact; // x, y and z all equal; otherwise each axis differs by less than AlmostDistance

        bool operator==(const Finding& other) const
        {
            return first == other.first && second == other.second && exact == other.exact;
        }
    };

    // Every coincident pair of assigned non-roll nodes, ordered by (first, second).
    static std::vector<Finding> FindCoincidentPairs(const uint32_t* assigned, const ZELCharacter* character);
    static bool IsLimbPair(int a, int b);

    bool IsApplicable(const uint32_t* assigned) const override;
    void Validate(const uint32_t* assigned, const ZELCharacter* character, ValidationLog& log) const override;
};
