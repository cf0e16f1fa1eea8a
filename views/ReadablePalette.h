#pragma once

#include <QPalette>

#include <zelkin/CharacterizationExport.h>

// Contrast of two colours as the accessibility guidelines measure it, from 1:1 to 21:1.
ZELKIN_CHARACTERIZATION_EXPORT double ContrastRatio(const QColor& a, const QColor& b);

// The palette with its disabled texts readable: where one has less than 5.5:1 against its background, it moves
// toward the enabled text just far enough, so it still looks dimmer than that. Styles with faint disabled text (the
// default light one among them) otherwise leave disabled menu entries and fields at about 2:1.
ZELKIN_CHARACTERIZATION_EXPORT QPalette WithReadableDisabledText(QPalette palette);
// The same disabled text colours alone, as a palette to set on a widget that goes on following its parent's palette
// in everything else.
ZELKIN_CHARACTERIZATION_EXPORT QPalette ReadableDisabledTextOnly(const QPalette& inherited);
