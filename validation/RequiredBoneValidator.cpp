#include "RequiredBoneValidator.h"

#include <zelkin/BoneCatalogue.h>

bool RequiredBoneValidator::IsApplicable(const uint32_t*) const
{
    return true;
}

void RequiredBoneValidator::Validate(const uint32_t* assigned, const ZELCharacter*, ValidationLog& log) const
{
    for (int id : BoneCatalogue::RequiredNodes()) {
        if (!IsAssigned(assigned, id)) {
            log.SetValidationState(Error, "Missing required bones.");
            return;
        }
    }
    log.SetValidationState(Valid, std::string());
}
