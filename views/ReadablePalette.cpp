#include "ReadablePalette.h"

#include <cmath>
#include <utility>

#include <QEvent>
#include <QWidget>

namespace
{
constexpr double MinimumContrast = 5.5;
constexpr int Steps = 20;

double Linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& colour)
{
    return 0.2126 * Linear(colour.redF()) + 0.7152 * Linear(colour.greenF()) + 0.0722 * Linear(colour.blueF());
}

QColor Mix(const QColor& from, const QColor& to, double share)
{
    const auto channel = [share](int a, int b) { return int(std::lround(a + (b - a) * share)); };
    return QColor(channel(from.red(), to.red()), channel(from.green(), to.green()), channel(from.blue(), to.blue()));
}

// `moving` goes toward `goal` until it has the contrast against `fixed`, or reaches the goal.
QColor Readable(const QColor& moving, const QColor& goal, const QColor& fixed)
{
    QColor readable = moving;
    for (int step = 1; step <= Steps && ContrastRatio(readable, fixed) < MinimumContrast; ++step)
        readable = Mix(moving, goal, double(step) / Steps);
    return readable;
}

const std::pair<QPalette::ColorRole, QPalette::ColorRole> TextsOnBackgrounds[] = {
    {QPalette::Text, QPalette::Base}, {QPalette::WindowText, QPalette::Window}, {QPalette::ButtonText, QPalette::Button}};

const QPalette::ColorGroup SelectionGroups[] = {QPalette::Active, QPalette::Inactive};

// The widget whose own setPalette is being answered by KeepReadable.
thread_local const QWidget* gAdjusting = nullptr;
} // namespace

double ContrastRatio(const QColor& a, const QColor& b)
{
    double lighter = Luminance(a);
    double darker = Luminance(b);
    if (lighter < darker)
        std::swap(lighter, darker);
    return (lighter + 0.05) / (darker + 0.05);
}

QPalette ReadablePalette(QPalette palette)
{
    for (const auto& [text, background] : TextsOnBackgrounds)
    {
        palette.setColor(QPalette::Disabled, text,
                         Readable(palette.color(QPalette::Disabled, text), palette.color(QPalette::Active, text),
                                  palette.color(QPalette::Disabled, background)));
    }
    for (QPalette::ColorGroup group : SelectionGroups)
    {
        const QColor text = palette.color(group, QPalette::HighlightedText);
        const QColor away = Luminance(text) > 0.5 ? QColor(Qt::black) : QColor(Qt::white);
        palette.setColor(group, QPalette::Highlight, Readable(palette.color(group, QPalette::Highlight), away, text));
    }
    return palette;
}

void KeepReadable(QWidget& widget, const QEvent* event)
{
    const bool paletteEvent = event == nullptr || event->type() == QEvent::PaletteChange ||
                              event->type() == QEvent::ApplicationPaletteChange;
    if (!paletteEvent || gAdjusting == &widget)
        return;
    const QWidget* outer = gAdjusting;
    gAdjusting = &widget;
    // Back to what it inherits first, so no colour set before holds on to an old palette; then only what changes.
    widget.setPalette(QPalette());
    const QPalette inherited = widget.palette();
    const QPalette readable = ReadablePalette(inherited);
    QPalette own; // no role set
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
    {
        for (QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText, QPalette::Highlight})
        {
            if (readable.color(group, role) != inherited.color(group, role))
                own.setColor(group, role, readable.color(group, role));
        }
    }
    widget.setPalette(own);
    gAdjusting = outer;
}
