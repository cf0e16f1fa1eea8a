#include "SameGeometryValidator.h"

#include <algorithm>
#include <cmath>

#include <zelkin/BoneCatalogue.h>

namespace {

struct Point
{
    float x, y, z;
    int id;
};

constexpr int kLimbPairs[6][2] = {{10, 11}, {13, 14}, {10, 9}, {13, 12}, {3, 4}, {6, 7}};

bool Near(float a, float b)
{
    return std::fabs(a - b) < SameGeometryValidator::AlmostDistance;
}

// Nodes whose x is NaN can never match anything, and would break the ordering below.
int CollectPoints(const uint32_t* assigned, const ZELCharacter* character, std::array<Point, BoneCatalogue::NodeCount>& out)
{
    int count = 0;
    for (int id = 0; id < BoneCatalogue::NodeCount; ++id) {
        if (!CharacterizationValidator::IsAssigned(assigned, id) || BoneCatalogue::IsRollBone(id))
            continue;
        float t[4], q[4], s[4];
        ZELGetCharacterizationTransform(character, id, t, q, s);
        if (!std::isnan(t[0]))
            out[count++] = {t[0], t[1], t[2], id};
    }
    return count;
}

} // namespace

std::vector<SameGeometryValidator::Finding> SameGeometryValidator::FindCoincidentPairs(const uint32_t* assigned,
                                                                                     const ZELCharacter* character)
{
    std::vector<Finding> findings;
    if (character == nullptr)
        return findings;
    // Sorting by x turns the all-pairs scan into a sweep: only nodes within AlmostDistance in x can match.
    std::array<Point, BoneCatalogue::NodeCount> points;
    const int count = CollectPoints(assigned, character, points);
    std::sort(points.begin(), points.begin() + count,
              [](const Point& a, const Point& b) { return a.x < b.x || (a.x == b.x && a.id < b.id); });
    for (int i = 0; i < count; ++i) {
        const Point& a = points[i];
        // Written as "not >=" so that equal infinities (whose difference is NaN) are still compared.
        for (int j = i + 1; j < count && !(points[j].x - a.x >= AlmostDistance); ++j) {
            const Point& b = points[j];
            const bool exact = a.x == b.x && a.y == b.y && a.z == b.z;
            if (exact || (Near(a.x, b.x) && Near(a.y, b.y) && Near(a.z, b.z)))
                findings.push_back({std::min(a.id, b.id), std::max(a.id, b.id), exact});
        }
    }
    std::sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        return a.first < b.first || (a.first == b.first && a.second < b.second);
    });
    return findings;
}

bool SameGeometryValidator::IsLimbPair(int a, int b)
{
    for (const auto& pair : kLimbPairs)
        if ((pair[0] == a && pair[1] == b) || (pair[0] == b && pair[1] == a))
            return true;
    return false;
}

bool SameGeometryValidator::IsApplicable(const uint32_t* assigned) const
{
    int count = 0;
    for (int id = 0; id < BoneCatalogue::NodeCount && count < 2; ++id)
        if (IsAssigned(assigned, id))
            ++count;
    return count > 1;
}

void SameGeometryValidator::Validate(const uint32_t* assigned, const ZELCharacter* character, ValidationLog& log) const
{
    if (character == nullptr) {
        log.SetValidationState(NotValidated, std::string());
        return;
    }
    bool error = false;
    bool warning = false;
    for (const Finding& finding : FindCoincidentPairs(assigned, character)) {
        const std::string message = std::string("Node ") + NameOf(finding.first) +
                                    (finding.exact ? " is at the same position as node "
                                                   : " is almost at the same position as node ") +
                                    NameOf(finding.second);
        if (finding.exact && IsLimbPair(finding.first, finding.second)) {
            log.LogError(finding.first, message);
            log.LogError(finding.second, message);
            error = true;
        } else {
            log.LogWarning(finding.first, message);
            log.LogWarning(finding.second, message);
            warning = true;
        }
    }
    if (error)
        log.SetValidationState(Error, "Some nodes are at the same position.");
    else if (warning)
        log.SetValidationState(Warning, "Some nodes are almost at the same position.");
    else
        log.SetValidationState(Valid, std::string());
}
