#include "LiteralCoincidentScan.h"

#include <cmath>

#include <zelkin/BoneCatalogue.h>

namespace {

bool Usable(const uint32_t* assigned, int id)
{
    return (assigned[id] & 1u) != 0 && !BoneCatalogue::IsRollBone(id);
}

bool Near(float a, float b)
{
    return std::fabs(a - b) < SameGeometryValidator::AlmostDistance;
}

} // namespace

std::vector<SameGeometryValidator::Finding> LiteralCoincidentScan(const uint32_t* assigned,
                                                                   const ZELCharacter* character)
{
    std::vector<SameGeometryValidator::Finding> findings;
    for (int i = 0; i < BoneCatalogue::NodeCount; ++i) {
        for (int j = i + 1; j < BoneCatalogue::NodeCount; ++j) {
            if (!Usable(assigned, i) || !Usable(assigned, j))
                continue;
            float a[4], b[4], q[4], s[4];
            ZELGetCharacterizationTransform(character, i, a, q, s);
            ZELGetCharacterizationTransform(character, j, b, q, s);
            if (a[0] == b[0] && a[1] == b[1] && a[2] == b[2])
                findings.push_back({i, j, true});
            else if (Near(a[0], b[0]) && Near(a[1], b[1]) && Near(a[2], b[2]))
                findings.push_back({i, j, false});
        }
    }
    return findings;
}
