#include "CharacterizationValidator.h"

#include <zelkin/BoneCatalogue.h>

CharacterizationValidator::~CharacterizationValidator() = default;

bool CharacterizationValidator::IsAssigned(const uint32_t* assigned, int nodeId)
{
    return BoneCatalogue::IsValidNode(nodeId) && (assigned[nodeId] & 1u) != 0;
}

std::array<float, 4> CharacterizationValidator::Position(const ZELCharacter* character, int nodeId)
{
    std::array<float, 4> translation {};
    float rotation[4];
    float scale[4];
    ZELGetCharacterizationTransform(character, nodeId, translation.data(), rotation, scale);
    return translation;
}

const char* CharacterizationValidator::NameOf(int nodeId)
{
    const char* name = BoneCatalogue::NodeName(nodeId);
    return name != nullptr ? name : "";
}
