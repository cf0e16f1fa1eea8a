#include "GltfCheck.h"

#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

namespace
{
// Magic, version and length, then (version 2) the JSON chunk's length and type, or (version 1) the content's
// length and format.
constexpr qint64 HeaderBytes = 20;
constexpr int LineLoop = 2; // a primitive mode

QJsonArray Items(const QJsonValue& value)
{
    if (value.isArray())
        return value.toArray();
    QJsonArray items; // glTF 1 keeps its objects by name
    for (const QJsonValue& item : value.toObject())
        items.append(item);
    return items;
}

// glTF allows a skin without them (identity matrices); Assimp 5.2 reads through the missing accessor.
QString SkinProblem(const QJsonObject& root)
{
    for (const QJsonValue& skin : Items(root.value(QLatin1String("skins"))))
    {
        if (!skin.toObject().contains(QLatin1String("inverseBindMatrices")))
            return QStringLiteral("a glTF skin without inverse bind matrices is not supported");
    }
    return QString();
}

// Assimp 5.2 reads before the first line of an indexed line loop when that line has an index out of range.
QString MeshProblem(const QJsonObject& root)
{
    for (const QJsonValue& mesh : Items(root.value(QLatin1String("meshes"))))
    {
        for (const QJsonValue& primitive : Items(mesh.toObject().value(QLatin1String("primitives"))))
        {
            const QJsonObject object = primitive.toObject();
            if (object.value(QLatin1String("mode")).toInt(-1) == LineLoop && object.contains(QLatin1String("indices")))
                return QStringLiteral("an indexed glTF line loop is not supported");
        }
    }
    return QString();
}
} // namespace

bool GltfCheck::IsBinary(const QByteArray& head)
{
    return head.startsWith("glTF");
}

QString GltfCheck::BinaryProblem(QIODevice& device)
{
    // Assimp 5.2 allocates whatever length the header claims before comparing it with the file, and when neither of
    // its glTF readers accepts the header it hands the file to every other reader in turn.
    const QByteArray header = device.read(HeaderBytes);
    const QString damaged = QStringLiteral("its binary glTF header is damaged");
    if (header.size() < HeaderBytes)
        return QStringLiteral("it is shorter than its glTF header says");
    const quint32 version = qFromLittleEndian<quint32>(header.constData() + 4);
    const qint64 fileLength = qFromLittleEndian<quint32>(header.constData() + 8);
    const qint64 jsonLength = qFromLittleEndian<quint32>(header.constData() + 12);
    const quint32 jsonFormat = qFromLittleEndian<quint32>(header.constData() + 16);
    const bool knownContent = (version == 2 && header.mid(16, 4) == "JSON") || (version == 1 && jsonFormat == 0);
    if (fileLength > device.size())
        return QStringLiteral("it is shorter than its glTF header says");
    if (!knownContent || jsonLength > fileLength - HeaderBytes)
        return damaged;
    return Problem(device.read(jsonLength));
}

QString GltfCheck::Problem(const QByteArray& json)
{
    // Assimp's JSON reader recurses once per nesting level; Qt's stops at a depth no real file comes near.
    QJsonParseError error {};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        return QStringLiteral("its glTF JSON is damaged (%1 at byte %2)").arg(error.errorString()).arg(error.offset);
    const QString problem = SkinProblem(document.object());
    return problem.isEmpty() ? MeshProblem(document.object()) : problem;
}
