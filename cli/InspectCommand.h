#pragma once

#include <QStringList>

// zelkin inspect FILE.zelc [--json]
int runInspect(const QStringList& arguments);
