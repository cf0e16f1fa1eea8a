#pragma once

#include <QMap>
#include <QString>

#include <zelkin/CharacterizationExport.h>

// Turns a part's state index into the suffix of its picture file. Copies share one table.
class ZELKIN_CHARACTERIZATION_EXPORT StateRepresentation
{
public:
    enum Index
    {
        Plain = 0,
        ValidState = 1,
        WarningState = 2,
        ErrorState = 3,
        ErrorSelected = 4,
        ErrorPicked = 5,
        WarningSelected = 6,
        WarningPicked = 7,
        ValidSelected = 8,
        ValidPicked = 9,
        PlainSelected = 10,
        PlainPicked = 11,
        // No entry: a part starts here so that its first state always loads a picture.
        Unset = 12
    };
    static constexpr int SuffixCount = 12;

    enum SelectionMode
    {
        NotSelected = 0,
        Selected = 1,
        Picked = 2
    };

    StateRepresentation();

    bool Contains(int index) const;
    // Empty for an index without an entry.
    QString Suffix(int index) const;
    // The picture drawn over a part in that state and selection mode; Unset when nothing is drawn over it.
    static int OverlayIndex(int state, int selectionMode);

private:
    QMap<int, QString> mSuffixes;
};
