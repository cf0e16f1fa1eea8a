#include "SpineYAxisValidator.h"

SpineYAxisValidator::SpineYAxisValidator()
    : AxisValidator({15, 8, PositiveY, 5.0f,
                     "The spine doesn't seem to be parallel to the Y axis. There is a difference of ",
                     " degrees between it and the Y axis. This difference should be less than ",
                     "The spine doesn't seem to be parallel to the Y axis."})
{
}
