#pragma once

#include "CharacterizationValidator.h"

// The fifteen body nodes without which the solver cannot drive a character.
class ZELKIN_CHARACTERIZATION_EXPORT RequiredBoneValidator : public CharacterizationValidator
{
public:
    bool IsApplicable(const uint32_t* assigned) const override;
    void Validate(const uint32_t* assigned, const ZELCharacter* character, ValidationLog& log) const override;
};
