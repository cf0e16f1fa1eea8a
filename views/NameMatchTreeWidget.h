#pragma once

#include <QTreeWidget>

#include <zelkin/CharacterizationExport.h>

// The name match tree. It reports right clicks (after making the row under the pointer current) and the editing
// keys; what they do is up to the name match page.
class ZELKIN_CHARACTERIZATION_EXPORT NameMatchTreeWidget : public QTreeWidget
{
    Q_OBJECT

public:
    using QTreeWidget::QTreeWidget;

    // A cell editor is open.
    bool IsEditing() const { return state() == EditingState; }

signals:
    void MouseRightClicked(QMouseEvent* event);
    // Enter, Return or F2 on the current row.
    void EditKeyPressed(QTreeWidgetItem* item);
    void DeleteKeyPressed();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
