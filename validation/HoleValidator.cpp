#include "HoleValidator.h"

#include <utility>

HoleValidator::HoleValidator(std::string groupName, std::vector<int32_t> nodes)
    : mGroupName(std::move(groupName)), mNodes(std::move(nodes))
{
}

bool HoleValidator::IsApplicable(const uint32_t* assigned) const
{
    for (int32_t id : mNodes)
        if (IsAssigned(assigned, id))
            return true;
    return false;
}

void HoleValidator::Validate(const uint32_t* assigned, const ZELCharacter*, ValidationLog& log) const
{
    // One finding per chain keeps the report readable; the next hole shows once this one is filled.
    for (size_t i = 1; i < mNodes.size(); ++i) {
        if (IsAssigned(assigned, mNodes[i]) && !IsAssigned(assigned, mNodes[i - 1])) {
            const std::string lead = "One or more nodes are missing in the " + mGroupName;
            log.LogError(mNodes[i], lead + ". Node " + NameOf(mNodes[i]) + " is set but not node " +
                                        NameOf(mNodes[i - 1]));
            log.SetValidationState(Error, lead);
            return;
        }
    }
    log.SetValidationState(Valid, std::string());
}
