#pragma once

#include <cstdint>
#include <vector>

#include "SameGeometryValidator.h"

// The coincident-node scan written the obvious way: every pair, both positions read from the solver each time.
// The fast scan must agree with it finding for finding.
std::vector<SameGeometryValidator::Finding> LiteralCoincidentScan(const uint32_t* assigned,
                                                                   const ZELCharacter* character);
