#pragma once

#include <QStringList>

// zelkin templates: the shipped mapping templates and the user's own.
int runTemplates(const QStringList& arguments);
