#pragma once

#include <QObject>

#include <zelkin/CharacterizationExport.h>

class PartItem;

// Part items are not objects; this one speaks for them when the pointer enters or leaves a part.
class ZELKIN_CHARACTERIZATION_EXPORT HoverAdapter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    void Report(PartItem* item, bool entered) { emit Hover(item, entered); }

signals:
    void Hover(PartItem* item, bool entered);
};
