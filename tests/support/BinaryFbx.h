#pragma once

#include <QByteArray>

// Assimp 5.2's binary FBX writer leaves out the empty record that must close every list of nested records, so its
// own reader refuses what it wrote. This reads the records by their end offsets and writes them again, closed.
// Empty when the bytes are not a binary FBX file whose offsets hold together.
QByteArray CloseBinaryFbxRecords(const QByteArray& written);
