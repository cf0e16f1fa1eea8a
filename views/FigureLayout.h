#pragma once

#include <cstdint>
#include <vector>

#include <QPointF>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

#include <zelkin/CharacterizationExport.h>

// The figure's fixed table: seventeen views with their parts, arrows and inversion markers, and the overall status
// element. The picture maker draws the silhouettes from the same table, so pictures and items cannot drift apart.
namespace FigureLayout
{
constexpr int ViewCount = 17;
constexpr int FullBodyView = 0;
// Every base image has this size, so the scene does not jump when the view changes.
constexpr QSize BaseImageSize(256, 384);
// Part pictures are square; the placement's size fields are kept as the table gives them.
constexpr int PartExtent = 20;
constexpr int BackgroundGrey = 68;

struct ImageRecord
{
    QString file;
    int first = 0;
    int second = 0;
};

struct PartRecord
{
    int nodeId;
    int second; // always -1
    QString imageBase;
    QRect placement;
};

// Also the form of the status element: no source node, no target view.
struct ArrowRecord
{
    int sourceNode; // -1 for a return arrow
    int targetView;
    QString imageFile;
    QString toolTip; // untranslated
    QString imageBase;
    QRect placement;
};

struct InversionRecord
{
    int nodeId;
    QString invertedImage;
    QString normalImage;
    QRect placement;
    uint8_t flag; // set: both pictures are mirrored
};

struct ViewRecord
{
    QString name;
    ImageRecord baseImage;
    int red;
    int green;
    int blue;
    int index;
    std::vector<PartRecord> parts;
    std::vector<ArrowRecord> arrows;
    std::vector<InversionRecord> inversions;
};

// Indexed by view index.
ZELKIN_CHARACTERIZATION_EXPORT const std::vector<ViewRecord>& Views();
ZELKIN_CHARACTERIZATION_EXPORT const ArrowRecord& StatusElement();
// The view that holds the node's part, first in index order; -1 when no view shows it.
ZELKIN_CHARACTERIZATION_EXPORT int ViewOfNode(int nodeId);
// Every picture base that is drawn in the twelve states: parts, arrows and the status element, each once.
ZELKIN_CHARACTERIZATION_EXPORT QStringList StatePictureBases();
// The centre of a part, where the picture maker puts the joint under it.
ZELKIN_CHARACTERIZATION_EXPORT QPointF Centre(const QRect& placement);
} // namespace FigureLayout
