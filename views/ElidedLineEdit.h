#pragma once

#include <QLineEdit>
#include <QString>

#include <zelkin/CharacterizationExport.h>

// A line edit for names: read-only and too narrow for its text, it shows the text cut in the middle
// ("mixamorig:Ri…Middle4"), both ends being what tells names apart. The tooltip holds the whole text. With the focus
// (to select and copy) it is a plain line edit again.
class ZELKIN_CHARACTERIZATION_EXPORT ElidedLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit ElidedLineEdit(QWidget* parent = nullptr);

    // Shown in the tooltip under the whole text.
    void SetHint(const QString& hint);
    bool IsElided() const;
    // What the field shows in place of its text.
    QString ShownText() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRect TextArea() const;
    void UpdateToolTip();

    QString mHint;
};
