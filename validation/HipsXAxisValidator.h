#pragma once

#include "AxisValidator.h"

// From the right hip to the left hip along +X: the character faces +Z.
class ZELKIN_CHARACTERIZATION_EXPORT HipsXAxisValidator : public AxisValidator
{
public:
    HipsXAxisValidator();
};
