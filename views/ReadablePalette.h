#pragma once

#include <QPalette>

#include <zelkin/CharacterizationExport.h>

class QEvent;
class QWidget;

// Contrast of two colours as the accessibility guidelines measure it, from 1:1 to 21:1.
ZELKIN_CHARACTERIZATION_EXPORT double ContrastRatio(const QColor& a, const QColor& b);

// The palette with every text readable against what it is drawn on, at least 5.5:1 (above the 4.5:1 the guidelines
// ask for: small glyphs come out lighter than their colour once smoothed). A disabled text moves toward the enabled
// one just far enough, so it still looks dimmer; a selection's highlight darkens (or lightens) under its text. Styles
// with faint disabled text or a light highlight (the default light one among them) otherwise stay near 2:1 and 3.7:1.
ZELKIN_CHARACTERIZATION_EXPORT QPalette ReadablePalette(QPalette palette);

// Gives the widget that palette, built on what it inherits, and builds it again when what it inherits changes (a new
// application palette, say); colours it does not change go on following its parent. Call it once, and from the
// widget's event() with every event (it acts on palette changes only).
ZELKIN_CHARACTERIZATION_EXPORT void KeepReadable(QWidget& widget, const QEvent* event = nullptr);
