#pragma once

#include <QStringList>

// zelkin characterize SKELETON [--template NAME|FILE] [--match suffix|contains] [--prefix P]
//                     [-o OUT.zelc|OUT.xml] [--big-endian] [--t-pose] [--json]
int runCharacterize(const QStringList& arguments);
