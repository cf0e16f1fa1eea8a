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

    // The first column (the nodes) as wide as its shown rows want it, but never so wide that the second one (the
    // bones, which takes the rest) goes out of sight. Done whenever the rows' room changes; call it when rows are shown or
    // hidden.
    void FitFirstColumn();
    // A cell editor is open.
    bool IsEditing() const { return state() == EditingState; }
    // Moving to a row never scrolls sideways: the groups and node names stay in sight, and the bone column, cut at
    // the front, shows the ends of the names anyway.
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

signals:
    void MouseRightClicked(QMouseEvent* event);
    // Enter, Return or F2 on the current row.
    void EditKeyPressed(QTreeWidgetItem* item);
    void DeleteKeyPressed();

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
