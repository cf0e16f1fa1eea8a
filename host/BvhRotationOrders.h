#pragma once

#include <QHash>
#include <QString>

#include <zelkin/ZELSolver.h>

// The rotation order of each BVH joint, from its CHANNELS line; Assimp bakes the channels into quaternions and
// keeps no order.
class BvhRotationOrders
{
public:
    // Joint name to order; joints without three distinct rotation channels are left out. Empty when the file
    // cannot be opened.
    static QHash<QString, ZELRotationOrder> Read(const QString& path);
    // `listed`: the rotation axes in the order the CHANNELS line lists them, such as "ZXY".
    static bool FromChannels(const QString& listed, ZELRotationOrder& order);
};
