#pragma once

#include <QStringList>

// zelkin convert IN OUT [--big-endian]
int runConvert(const QStringList& arguments);
