#pragma once

#include <QStringList>

// zelkin convert IN OUT [--big-endian]: between the two byte orders of ".zelc" and the ".xml" file.
int runConvert(const QStringList& arguments);
