#pragma once

#include <QByteArray>
#include <QString>

// The FBX files Assimp 5.2 cannot be trusted with (see SceneFileCheck). Its binary reader follows the records'
// offsets and lengths before checking them (an assertion aborts the program, or it reads out of bounds), recurses
// once per nesting level, and sizes a compressed array by the count it claims: the records are walked here first.
// In either form, the models must make a tree (see FbxHierarchy).
class FbxCheck
{
public:
    // Whether Assimp reads these first bytes of a file as binary FBX.
    static bool IsBinary(const QByteArray& head);
    // Why the file must not reach Assimp, for the user; empty when nothing is known against it.
    static QString Problem(const QByteArray& bytes);
};
