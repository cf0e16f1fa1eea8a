#pragma once

#include <QTabBar>
#include <QTabWidget>

// The panel's page container: the pages are switched by the panel (setCurrentViewTab), never by tabs.
class CharacterToolTabWidgetNoTabBar : public QTabWidget
{
public:
    explicit CharacterToolTabWidgetNoTabBar(QWidget* parent)
        : QTabWidget(parent)
    {
        tabBar()->hide();
        setDocumentMode(true);
    }
};
