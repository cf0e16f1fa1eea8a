#pragma once

#include "CharacterizationValidator.h"

// Guarantees that a non-empty characterization always yields at least one log; it never reports a finding.
class ZELKIN_CHARACTERIZATION_EXPORT AtLeastOneBoneValidator : public CharacterizationValidator
{
public:
    bool IsApplicable(const uint32_t* assigned) const override;
    void Validate(const uint32_t* assigned, const ZELCharacter* character, ValidationLog& log) const override;
};
