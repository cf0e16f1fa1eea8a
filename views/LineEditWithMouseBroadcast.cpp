#include "LineEditWithMouseBroadcast.h"

void LineEditWithMouseBroadcast::mouseDoubleClickEvent(QMouseEvent* event)
{
    QLineEdit::mouseDoubleClickEvent(event);
    emit mouseDoubleClickSent(event);
}
