#pragma once

#include <QByteArray>

// Two copies of the sample skeleton standing side by side under one root ("Stage"), their joints renamed "A_..."
// and "B_...": a file with two characters.
QByteArray TwoCharacterBvh();
