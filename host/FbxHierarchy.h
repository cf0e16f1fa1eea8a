#pragma once

#include <utility>
#include <vector>

#include <QByteArray>
#include <QSet>
#include <QString>

// The model hierarchy an FBX file's connections make. Assimp 5.2 builds its nodes by recursing from each model
// into every model connected below it: round a cycle for ever (a stack overflow), and once per parent, so that a
// model under two parents doubles all below it (nested, a few hundred bytes can take all memory).
class FbxHierarchy
{
public:
    // The models and connections of ASCII FBX text.
    static FbxHierarchy FromText(const QByteArray& text);

    void AddModel(qint64 id);
    // An object or property connection of `child` to `parent` (0 for the scene).
    void AddConnection(qint64 child, qint64 parent);

    // Why the file must not reach Assimp, for the user; empty when every model has one place in one tree.
    QString Problem() const;

private:
    QSet<qint64> mModels;
    std::vector<std::pair<qint64, qint64>> mConnections;
};
