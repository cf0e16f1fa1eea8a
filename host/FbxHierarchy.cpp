#include "FbxHierarchy.h"

#include <QHash>
#include <QRegularExpression>

FbxHierarchy FbxHierarchy::FromText(const QByteArray& text)
{
    static const QRegularExpression model(QStringLiteral("(?:^|\\n)\\s*Model:\\s*(-?\\d+)"));
    static const QRegularExpression connection(
        QStringLiteral("\\bC:\\s*\"O[OP]\"\\s*,\\s*(-?\\d+)\\s*,\\s*(-?\\d+)"));
    const QString content = QString::fromLatin1(text);
    FbxHierarchy hierarchy;
    for (const QRegularExpressionMatch& match : model.globalMatch(content))
        hierarchy.AddModel(match.captured(1).toLongLong());
    for (const QRegularExpressionMatch& match : connection.globalMatch(content))
        hierarchy.AddConnection(match.captured(1).toLongLong(), match.captured(2).toLongLong());
    return hierarchy;
}

void FbxHierarchy::AddModel(qint64 id)
{
    mModels.insert(id);
}

void FbxHierarchy::AddConnection(qint64 child, qint64 parent)
{
    mConnections.emplace_back(child, parent);
}

QString FbxHierarchy::Problem() const
{
    // Only connections of a model to a model or to the scene place it in the tree; a model may also belong to a
    // display layer and the like.
    QHash<qint64, qint64> parents;
    for (const auto& [child, parent] : mConnections)
    {
        if (!mModels.contains(child) || (parent != 0 && !mModels.contains(parent)))
            continue;
        if (parents.contains(child))
            return QStringLiteral("an FBX model is connected to more than one parent");
        parents.insert(child, parent);
    }
    // With one parent each, a cycle is a walk up that comes back: at most as many steps as there are models.
    QSet<qint64> rooted {0};
    for (auto start = parents.constBegin(); start != parents.constEnd(); ++start)
    {
        QSet<qint64> path;
        qint64 id = start.key();
        while (!rooted.contains(id) && parents.contains(id))
        {
            if (path.contains(id))
                return QStringLiteral("the FBX models are connected in a cycle");
            path.insert(id);
            id = parents.value(id);
        }
        rooted.unite(path);
    }
    return QString();
}
