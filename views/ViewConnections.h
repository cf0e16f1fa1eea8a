#pragma once

class CharacterTool;
class CharacterizationModel;
class IDCCHub;
class QWidget;

// A page of the panel follows the model and the host's selection, and asks the panel to switch pages, through the
// same slots and signals whichever page it is: SyncViewOnModel(), ChangeEditPart(int, int, bool), OnDccSelect()
// and ViewTabRequested(int). Any of the three sources may be missing.
void ConnectPageToSources(QWidget* page, CharacterizationModel* model, IDCCHub* hub, CharacterTool* tool);
