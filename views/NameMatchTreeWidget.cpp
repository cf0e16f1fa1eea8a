#include "NameMatchTreeWidget.h"

#include <QKeyEvent>
#include <QMouseEvent>

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
