#pragma once

#include <QImage>

#include "FigureLayout.h"

// The base images under the parts: a plain body silhouette on the views' background, shaped from the parts'
// own placements so that every joint sits on its limb.
namespace FigureSilhouettes
{
QImage BaseImage(const FigureLayout::ViewRecord& view, int scale);
}
