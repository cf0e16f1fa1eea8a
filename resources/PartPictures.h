#pragma once

#include <QImage>
#include <QString>

// The small pictures of the figure, drawn in a 20 by 20 (bubbles 16 by 16) box and scaled for high-density screens.
namespace PartPictures
{
constexpr int BubbleExtent = 16;

// A part, arrow or status picture base in one of the twelve states of StateRepresentation.
QImage StatePicture(const QString& base, int stateIndex, int scale);
// The marker beside a hinge joint: which way the joint bends, highlighted once inverted.
QImage InversionPicture(bool left, bool inverted, int scale);
// colour: "Green", "Orange", "Gray" or "Red".
QImage Bubble(const QString& colour, bool highlight, int scale);
} // namespace PartPictures
