#pragma once

#include "AxisValidator.h"

// From the right shoulder joint to the right wrist along -X: the right arm is stretched out in a T-pose.
class ZELKIN_CHARACTERIZATION_EXPORT RightArmsXAxisValidator : public AxisValidator
{
public:
    RightArmsXAxisValidator();
};
