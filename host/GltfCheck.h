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
    // The JSON of a binary glTF file; empty when its header is damaged, which Assimp refuses by itself.
    static QByteArray BinaryJson(QIODevice& device);
    // Why the document must not reach Assimp, for the user; empty when nothing is known against it.
    static QString Problem(const QByteArray& json);
};
