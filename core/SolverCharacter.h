#pragma once

#include <QStringList>

#include <zelkin/Characterization.h>
#include <zelkin/ZELSolver.h>

// A solver character built from a characterization for the length of one operation (validation, stream writing):
// its stored flag words, the dense 212-record geometry and the limb flags. Released with the standard allocator.
class SolverCharacter
{
public:
    // storedFlags false: bit 0 alone for each mapped node, so no node carries full joint geometry.
    explicit SolverCharacter(const Characterization& characterization, bool storedFlags = true);
    ~SolverCharacter();
    SolverCharacter(const SolverCharacter&) = delete;
    SolverCharacter& operator=(const SolverCharacter&) = delete;

    // Null when the allocation failed.
    const ZELCharacter* Get() const { return mCharacter; }
    const ZELCharacterDefinition& GetDefinition() const { return mDefinition; }

private:
    ZELCharacterDefinition mDefinition;
    ZELCharacter* mCharacter = nullptr;
};

// Rebuilds a characterization from a solver character and the host's 212 bone names (empty for unused nodes).
// False, leaving `out` alone, when the names do not match the definition's used nodes.
bool ReadCharacterization(const ZELCharacterDefinition& definition, const ZELCharacter* character,
                          const QStringList& boneNames, Characterization& out);
