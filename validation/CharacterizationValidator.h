#pragma once

#include <array>
#include <cstdint>

#include <zelkin/CharacterizationExport.h>
#include <zelkin/ValidationLog.h>
#include <zelkin/ZELSolver.h>

// One validation rule. `assigned` holds one word per node (212 words), bit 0 set when a bone is mapped.
class ZELKIN_CHARACTERIZATION_EXPORT CharacterizationValidator
{
public:
    virtual ~CharacterizationValidator();
    virtual bool IsApplicable(const uint32_t* assigned) const = 0;
    virtual void Validate(const uint32_t* assigned, const ZELCharacter* character, ValidationLog& log) const = 0;

    // False for identifiers outside the node table, so a rule never reads past the 212 words.
    static bool IsAssigned(const uint32_t* assigned, int nodeId);

protected:
    // The node's global reference position (x, y, z, w) as the solver holds it.
    static std::array<float, 4> Position(const ZELCharacter* character, int nodeId);
    // Empty for an identifier outside the table, so a message can always be built.
    static const char* NameOf(int nodeId);
};
