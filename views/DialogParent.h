#pragma once

class QWidget;

// What menus, tooltips and message boxes opened from a view hang on: the view's window, outside the view, so a style
// sheet the view sets on itself (the figure's background) does not reach them and a box looks the same whichever
// page raised it. Null for a view that is a window of its own: they then take the application's look.
QWidget* DialogParent(QWidget* view);
