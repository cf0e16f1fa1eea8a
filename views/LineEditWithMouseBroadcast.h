#pragma once

#include <QLineEdit>

#include <zelkin/CharacterizationExport.h>

// A line edit that tells others about double clicks, so a read-only field can still act on one.
class ZELKIN_CHARACTERIZATION_EXPORT LineEditWithMouseBroadcast : public QLineEdit
{
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

signals:
    void mouseDoubleClickSent(QMouseEvent* event);

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
};
