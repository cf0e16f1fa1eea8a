#include "LineEditWithMouseBroadcast.h"

void LineEditWithMouseBroadcast::mouseDoubleClickEvent(QMouseEvent* event)
{
    ElidedLineEdit::mouseDoubleClickEvent(event);
    emit mouseDoubleClickSent(event);
}
