#include "AxisValidator.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <locale>
#include <sstream>

namespace {

constexpr float kDegreesPerRadian = 57.29578f;
constexpr float kUnitTolerance = 1e-5f;

float AxisComponent(const float d[4], AxisValidator::Axis axis)
{
    switch (axis) {
    case AxisValidator::PositiveX:
        return d[0];
    case AxisValidator::NegativeX:
        return -d[0];
    case AxisValidator::PositiveY:
        return d[1];
    }
    return 0.0f;
}

} // namespace

AxisValidator::AxisValidator(const Rule& rule) : mRule(rule) {}

float AxisValidator::Angle(const ZELCharacter* character) const
{
    const std::array<float, 4> a = Position(character, mRule.first);
    const std::array<float, 4> b = Position(character, mRule.second);
    float d[4];
    float squared = 0.0f;
    for (int k = 0; k < 4; ++k) {
        d[k] = a[k] - b[k];
        squared += d[k] * d[k];
    }
    // A zero segment stays zero (giving 90 degrees); an already unit one is left untouched.
    const float length = std::sqrt(squared);
    if (std::fabs(length - 1.0f) > kUnitTolerance && std::fabs(length) > kUnitTolerance)
        for (float& component : d)
            component /= length;
    const float c = std::min(1.0f, std::max(-1.0f, AxisComponent(d, mRule.axis)));
    return std::acos(c) * kDegreesPerRadian;
}

bool AxisValidator::IsApplicable(const uint32_t* assigned) const
{
    return IsAssigned(assigned, mRule.first) && IsAssigned(assigned, mRule.second);
}

void AxisValidator::Validate(const uint32_t*, const ZELCharacter* character, ValidationLog& log) const
{
    if (character == nullptr) {
        log.SetValidationState(NotValidated, std::string());
        return;
    }
    const float angle = Angle(character);
    if (!(angle > mRule.thresholdDegrees)) {
        log.SetValidationState(Valid, std::string());
        return;
    }
    const std::string message = mRule.leadIn + FormatDegrees(angle) + mRule.middle +
                                FormatDegrees(mRule.thresholdDegrees) + " degrees.";
    log.LogWarning(mRule.first, message);
    log.LogWarning(mRule.second, message);
    log.SetValidationState(Warning, mRule.shortMessage);
}

std::string AxisValidator::FormatDegrees(float value)
{
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << std::fixed << std::showpoint << std::setprecision(6) << value;
    return out.str();
}
