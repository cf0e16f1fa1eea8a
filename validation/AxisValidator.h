#pragma once

#include "CharacterizationValidator.h"

// Checks that the segment from one node to another points along a world axis in the reference pose.
// Only ever warns: a slightly bent pose still characterizes, it just retargets less cleanly.
class ZELKIN_CHARACTERIZATION_EXPORT AxisValidator : public CharacterizationValidator
{
public:
    enum Axis
    {
        PositiveX,
        NegativeX,
        PositiveY
    };

    struct Rule
    {
        int first;
        int second;
        Axis axis;
        float thresholdDegrees;
        const char* leadIn;
        const char* middle;
        const char* shortMessage;
    };

    explicit AxisValidator(const Rule& rule);

    bool IsApplicable(const uint32_t* assigned) const override;
    void Validate(const uint32_t* assigned, const ZELCharacter* character, ValidationLog& log) const override;

private:
    // Degrees between (first - second) and the rule's axis.
    float Angle(const ZELCharacter* character) const;
    // Fixed notation, six decimals, independent of the process locale.
    static std::string FormatDegrees(float value);

    Rule mRule;
};
