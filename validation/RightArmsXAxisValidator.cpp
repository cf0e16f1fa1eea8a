#include "RightArmsXAxisValidator.h"

RightArmsXAxisValidator::RightArmsXAxisValidator()
    : AxisValidator({14, 12, NegativeX, 2.0f,
                     "The right arm doesn't seem to be parallel to the X axis. There is a difference of ",
                     " degrees between it and the X axis. This difference should be less than ",
                     "The right arm doesn't seem to be parallel to the X axis."})
{
}
