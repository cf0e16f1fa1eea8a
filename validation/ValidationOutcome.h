#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <zelkin/ValidationLog.h>

// What one validation run concludes: the overall state and message, and each node's mark and message.
struct ValidationOutcome
{
    ValidationState state = NotValidated;
    std::string message;
    // 0 for an unassigned node, otherwise a ValidationState: 1 valid, 2 warning, 3 error.
    std::array<int32_t, 212> marks {};
    std::array<std::string, 212> nodeMessages;
};
