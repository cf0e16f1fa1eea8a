#pragma once

#include <string>
#include <vector>

#include "CharacterizationValidator.h"

// A chain of nodes that must be filled from its head without gaps; it may end early.
class ZELKIN_CHARACTERIZATION_EXPORT HoleValidator : public CharacterizationValidator
{
public:
    HoleValidator(std::string groupName, std::vector<int32_t> nodes);

    const std::string& GroupName() const { return mGroupName; }
    const std::vector<int32_t>& Nodes() const { return mNodes; }

    bool IsApplicable(const uint32_t* assigned) const override;
    void Validate(const uint32_t* assigned, const ZELCharacter* character, ValidationLog& log) const override;

private:
    std::string mGroupName;
    std::vector<int32_t> mNodes;
};
