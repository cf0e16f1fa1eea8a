#pragma once

#include "AxisValidator.h"

// From the spine base up to the head along +Y. The default list leaves it out; it is there for callers that want it.
class ZELKIN_CHARACTERIZATION_EXPORT SpineYAxisValidator : public AxisValidator
{
public:
    SpineYAxisValidator();
};
