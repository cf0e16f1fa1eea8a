#pragma once

#include <QString>

class QIODevice;

// The Collada files Assimp 5.2 cannot be trusted with (see SceneFileCheck).
class ColladaCheck
{
public:
    // Why the document must not reach Assimp, for the user; empty when nothing is known against it.
    static QString Problem(QIODevice& device);
};
