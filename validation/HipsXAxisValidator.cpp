#include "HipsXAxisValidator.h"

HipsXAxisValidator::HipsXAxisValidator()
    : AxisValidator({2, 5, PositiveX, 2.0f,
                     "The hips don't seem to be facing the positive direction of the Z axis. There is a difference of ",
                     " degrees between them and the X axis. This difference should be less than ",
                     "The hips don't seem to be facing the positive direction of the Z axis."})
{
}
