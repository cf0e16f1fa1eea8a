#pragma once

#include <QStringList>

// zelkin bones SKELETON [--json]: the skeleton as the tool reads it, each bone under its parent with its rest
// position, whether it skins a mesh, and the node automatic characterization gives it.
int runBones(const QStringList& arguments);
