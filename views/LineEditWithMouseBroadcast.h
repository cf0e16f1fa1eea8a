#pragma once

#include <zelkin/CharacterizationExport.h>

#include "ElidedLineEdit.h"

// A line edit that tells others about double clicks, so a read-only field can still act on one. It holds a name, so
// it shows a long one cut in the middle.
class ZELKIN_CHARACTERIZATION_EXPORT LineEditWithMouseBroadcast : public ElidedLineEdit
{
    Q_OBJECT

public:
    using ElidedLineEdit::ElidedLineEdit;

signals:
    void mouseDoubleClickSent(QMouseEvent* event);

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
};
