#include "ViewConnections.h"

#include <QWidget>

#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>

void ConnectPageToSources(QWidget* page, CharacterizationModel* model, IDCCHub* hub, CharacterTool* tool)
{
    if (model != nullptr)
    {
        QObject::connect(model, SIGNAL(ModelChanged()), page, SLOT(SyncViewOnModel()));
        QObject::connect(model, SIGNAL(EditedPartChanged(int, int, bool)), page, SLOT(ChangeEditPart(int, int, bool)));
    }
    if (hub != nullptr)
        QObject::connect(hub, SIGNAL(selectionChanged()), page, SLOT(OnDccSelect()));
    if (tool != nullptr)
        QObject::connect(page, SIGNAL(ViewTabRequested(int)), tool, SLOT(setCurrentViewTab(int)));
}
