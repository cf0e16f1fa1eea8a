#include "DialogParent.h"

#include <QWidget>

QWidget* DialogParent(QWidget* view)
{
    if (view == nullptr)
        return nullptr;
    QWidget* window = view->window();
    return window == view ? nullptr : window;
}
