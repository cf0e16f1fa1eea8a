#pragma once

#include "AxisValidator.h"

// From the left shoulder joint to the left wrist along +X: the left arm is stretched out in a T-pose.
class ZELKIN_CHARACTERIZATION_EXPORT LeftArmsXAxisValidator : public AxisValidator
{
public:
    LeftArmsXAxisValidator();
};
