#include "NameMatchTreeWidget.h"

#include <algorithm>

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include "ReadablePalette.h"

namespace
{
// The part of the width the first column may take at most, in percent.
constexpr int MaxFirstColumnShare = 66;
} // namespace

void NameMatchTreeWidget::FitFirstColumn()
{
    const int width = viewport()->width();
    const int room = std::min(width * MaxFirstColumnShare / 100, width - header()->minimumSectionSize());
    const int first = std::max(1, std::min(sizeHintForColumn(0), room));
    setColumnWidth(0, first);
    setColumnWidth(columnCount() - 1, std::max(1, width - first));
}

bool NameMatchTreeWidget::event(QEvent* event)
{
    const bool handled = QTreeWidget::event(event);
    KeepReadable(*this, event); // the current row's text on its highlight
    return handled;
}

bool NameMatchTreeWidget::viewportEvent(QEvent* event)
{
    const bool handled = QTreeWidget::viewportEvent(event);
    // Also when only a scroll bar came or went.
    if (event->type() == QEvent::Resize)
        FitFirstColumn();
    return handled;
}

void NameMatchTreeWidget::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    const int sideways = horizontalScrollBar()->value();
    QTreeWidget::scrollTo(index, hint);
    horizontalScrollBar()->setValue(sideways);
}

void NameMatchTreeWidget::mousePressEvent(QMouseEvent* event)
{
    QTreeWidget::mousePressEvent(event);
    if (event->button() == Qt::RightButton)
        emit MouseRightClicked(event);
}

void NameMatchTreeWidget::keyPressEvent(QKeyEvent* event)
{
    if (state() != EditingState && currentItem() != nullptr)
    {
        switch (event->key())
        {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_F2:
            emit EditKeyPressed(currentItem());
            event->accept();
            return;
        case Qt::Key_Delete:
            emit DeleteKeyPressed();
            event->accept();
            return;
        default:
            break;
        }
    }
    QTreeWidget::keyPressEvent(event);
}
