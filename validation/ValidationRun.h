#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "CharacterizationValidator.h"
#include "ValidationOutcome.h"

// The fixed, ordered list of rules and the run that merges their logs into one outcome.
// The caller compares assignment snapshots and publishes the outcome itself.
class ZELKIN_CHARACTERIZATION_EXPORT ValidationRun
{
public:
    ValidationRun();

    const std::vector<std::shared_ptr<CharacterizationValidator>>& Validators() const;

    // hostValidate may be empty (no hub). `character` may be null only when nothing is assigned.
    ValidationOutcome Run(const uint32_t* assigned, const ZELCharacter* character,
                          const std::function<void(ValidationLog&)>& hostValidate) const;

private:
    std::vector<std::shared_ptr<CharacterizationValidator>> mValidators;
};
