#include "ReadablePalette.h"

#include <cmath>
#include <utility>

namespace
{
// Above the 4.5:1 the guidelines ask for: thin and small glyphs come out lighter than their colour once smoothed.
constexpr double MinimumContrast = 5.5;

double Linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& colour)
{
    return 0.2126 * Linear(colour.redF()) + 0.7152 * Linear(colour.greenF()) + 0.0722 * Linear(colour.blueF());
}

const std::pair<QPalette::ColorRole, QPalette::ColorRole> TextsOnBackgrounds[] = {
    {QPalette::Text, QPalette::Base}, {QPalette::WindowText, QPalette::Window}, {QPalette::ButtonText, QPalette::Button}};

QColor Mix(const QColor& from, const QColor& to, double share)
{
    const auto channel = [share](int a, int b) { return int(std::lround(a + (b - a) * share)); };
    return QColor(channel(from.red(), to.red()), channel(from.green(), to.green()), channel(from.blue(), to.blue()));
}
} // namespace

double ContrastRatio(const QColor& a, const QColor& b)
{
    double lighter = Luminance(a);
    double darker = Luminance(b);
    if (lighter < darker)
        std::swap(lighter, darker);
    return (lighter + 0.05) / (darker + 0.05);
}

QPalette WithReadableDisabledText(QPalette palette)
{
    for (const auto& [text, background] : TextsOnBackgrounds)
    {
        const QColor disabled = palette.color(QPalette::Disabled, text);
        const QColor behind = palette.color(QPalette::Disabled, background);
        const QColor enabled = palette.color(QPalette::Active, text);
        QColor readable = disabled;
        for (int step = 1; step <= 20 && ContrastRatio(readable, behind) < MinimumContrast; ++step)
            readable = Mix(disabled, enabled, step / 20.0);
        palette.setColor(QPalette::Disabled, text, readable);
    }
    return palette;
}

QPalette ReadableDisabledTextOnly(const QPalette& inherited)
{
    const QPalette readable = WithReadableDisabledText(inherited);
    QPalette own; // no role set
    for (const auto& entry : TextsOnBackgrounds)
        own.setColor(QPalette::Disabled, entry.first, readable.color(QPalette::Disabled, entry.first));
    return own;
}
