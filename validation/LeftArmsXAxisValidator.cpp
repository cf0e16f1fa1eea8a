#include "LeftArmsXAxisValidator.h"

LeftArmsXAxisValidator::LeftArmsXAxisValidator()
    : AxisValidator({11, 9, PositiveX, 2.0f,
                     "The left arm doesn't seem to be parallel to the X axis. There is a difference of ",
                     " degrees between it and the X axis. This difference should be less than ",
                     "The left arm doesn't seem to be parallel to the X axis."})
{
}
