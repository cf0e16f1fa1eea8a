#include "SceneFileCheck.h"

#include <QFile>
#include <QFileInfo>

#include "ColladaCheck.h"
#include "FbxCheck.h"
#include "GltfCheck.h"

namespace
{
// Bytes of a file Assimp looks into to recognise a format by its content.
constexpr qint64 SniffedBytes = 200;

bool HasSuffix(const QString& path, const char* suffix)
{
    return QFileInfo(path).suffix().compare(QLatin1String(suffix), Qt::CaseInsensitive) == 0;
}

bool LooksLikeGltfText(const QString& path, const QByteArray& head)
{
    return HasSuffix(path, "gltf") || head.trimmed().startsWith('{');
}

bool LooksLikeCollada(const QString& path, const QByteArray& head)
{
    return HasSuffix(path, "dae") || head.toLower().contains("<collada");
}

bool LooksLikeFbx(const QString& path, const QByteArray& head)
{
    return HasSuffix(path, "fbx") || head.toLower().contains("fbx");
}
} // namespace

QString SceneFileCheck::Problem(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString(); // Assimp tells why
    const QByteArray head = file.peek(SniffedBytes);
    if (GltfCheck::IsBinary(head))
        return GltfCheck::BinaryProblem(file);
    if (FbxCheck::IsBinary(head))
        return FbxCheck::Problem(file.readAll());
    if (LooksLikeGltfText(path, head))
        return GltfCheck::Problem(file.readAll());
    if (LooksLikeCollada(path, head))
        return ColladaCheck::Problem(file);
    if (LooksLikeFbx(path, head))
        return FbxCheck::Problem(file.readAll());
    return QString();
}
