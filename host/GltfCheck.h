#pragma once

#include <QByteArray>
#include <QString>

class QIODevice;

// The glTF files Assimp 5.2 cannot be trusted with (see SceneFileCheck).
class GltfCheck
{
public:
    // Whether these first bytes of a file start a binary glTF file.
    static bool IsBinary(const QByteArray& head);
    // Why the binary glTF file in the device must not reach Assimp; empty when nothing is known against it.
    static QString BinaryProblem(QIODevice& device);
    // Why the document must not reach Assimp, for the user; empty when nothing is known against it.
    static QString Problem(const QByteArray& json);
};
