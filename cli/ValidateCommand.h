#pragma once

#include <QStringList>

// zelkin validate FILE.zelc|FILE.xml [--skeleton SKELETON] [--json]
int runValidate(const QStringList& arguments);
