#include "AtLeastOneBoneValidator.h"

#include <zelkin/BoneCatalogue.h>

namespace {

bool AnyAssigned(const uint32_t* assigned)
{
    for (int id = 0; id < BoneCatalogue::NodeCount; ++id)
        if (CharacterizationValidator::IsAssigned(assigned, id))
            return true;
    return false;
}

} // namespace

bool AtLeastOneBoneValidator::IsApplicable(const uint32_t* assigned) const
{
    return AnyAssigned(assigned);
}

void AtLeastOneBoneValidator::Validate(const uint32_t* assigned, const ZELCharacter*, ValidationLog& log) const
{
    if (AnyAssigned(assigned))
        log.SetValidationState(Valid, std::string());
}
