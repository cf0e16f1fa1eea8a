#pragma once

#include <QString>

// Files known to crash Assimp 5.2, hang it or run it out of memory, stopped before it sees them; fuzzing found each
// (fuzz/regressions/ keeps the inputs). Assimp picks its reader by extension or, failing that, by content, so the
// checks go by both.
class SceneFileCheck
{
public:
    // Why the file must not reach Assimp, for the user; empty when nothing is known against it.
    static QString Problem(const QString& path);
};
