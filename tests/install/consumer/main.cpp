// An outside program: it sees only the installed headers and libraries.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/ValidationLog.h>
#include <zelkin/ZELSolver.h>

static int fail(const char* what)
{
    std::printf("consumer: %s\n", what);
    return 1;
}

int main()
{
    ZELCharacterDefinition definition {};
    const int hips = ZELGetNodeIdFromName("Hips");
    if (hips != 1 || std::strcmp(BoneCatalogue::NodeName(hips), "Hips") != 0)
        return fail("node names disagree");
    definition.mUsedNodes[hips] = 1;

    ZELCharacter* character = ZELCharacterCreate(&definition, std::malloc);
    if (!character)
        return fail("no character");
    CharacterJointGeometry records[212];
    records[hips].SetTranslate(0.0f, 95.0f, 0.0f);
    const int32_t limbs[4] = {0, 1, 0, 0};
    ZELCharacterSetJointGeometries(&definition, character, records, 212, limbs);

    int32_t length = 0;
    void* stream = ZELCharacterizationStreamWrite(&length, &definition, character, true, std::malloc, std::free);
    ZELCharacterDestroy(character, std::free);
    if (!stream || length != 872 + 120)
        return fail("stream has the wrong length");

    ZELCharacterDefinition readBack {};
    ZELCharacter* copy = ZELCharacterizationStreamRead(&readBack, stream, length, std::malloc, std::free);
    std::free(stream);
    if (!copy)
        return fail("stream not read back");
    float t[4], q[4], s[4];
    ZELGetCharacterizationTransform(copy, hips, t, q, s);
    const bool same = t[1] == 95.0f && ZELGetLimbFlag(copy, 1) == 1 && readBack.mUsedNodes[hips] == 1;
    ZELCharacterDestroy(copy, std::free);
    if (!same)
        return fail("stream changed the character");

    ValidationLog log;
    log.LogWarning(hips, "checked");
    log.SetValidationState(Warning, "installed package works");
    if (!log.IsErrorOrWarning() || log.GetNbErrorInfo() != 1)
        return fail("validation log misbehaves");

    std::printf("consumer: ok\n");
    return 0;
}
