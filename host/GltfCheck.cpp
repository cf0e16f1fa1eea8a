#include "GltfCheck.h"

#include <algorithm>

#include <QHash>
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

// An object of a collection by its reference: an index (glTF 2) or a name (glTF 1).
QJsonObject Lookup(const QJsonObject& root, const char* collection, const QJsonValue& reference)
{
    const QJsonValue items = root.value(QLatin1String(collection));
    if (reference.isString())
        return items.toObject().value(reference.toString()).toObject();
    return items.toArray().at(reference.toInt(-1)).toObject();
}

qint64 Whole(const QJsonObject& object, const char* key)
{
    return static_cast<qint64>(object.value(QLatin1String(key)).toDouble(0));
}

qint64 ComponentBytes(const QJsonObject& object)
{
    static const QHash<int, qint64> bytes = {{5120, 1}, {5121, 1}, {5122, 2}, {5123, 2}, {5125, 4}, {5126, 4}};
    return bytes.value(object.value(QLatin1String("componentType")).toInt(), 0);
}

// Bytes of one element of an accessor; 0 when its types are unknown (Assimp refuses those by itself).
qint64 ElementBytes(const QJsonObject& accessor)
{
    static const QHash<QString, qint64> counts = {{QStringLiteral("SCALAR"), 1}, {QStringLiteral("VEC2"), 2},
        {QStringLiteral("VEC3"), 3}, {QStringLiteral("VEC4"), 4}, {QStringLiteral("MAT2"), 4},
        {QStringLiteral("MAT3"), 9}, {QStringLiteral("MAT4"), 16}};
    return ComponentBytes(accessor) * counts.value(accessor.value(QLatin1String("type")).toString(), 0);
}

// Whether `count` items, `stride` bytes apart and `bytes` long each, lie from `offset` within `available` bytes.
// Numbers from a file can be anything, so nothing here may overflow.
bool Fits(qint64 offset, qint64 count, qint64 stride, qint64 bytes, qint64 available)
{
    if (count <= 0)
        return true;
    if (offset < 0 || stride <= 0 || bytes <= 0 || offset > available || bytes > available - offset)
        return false;
    return count - 1 <= (available - offset - bytes) / stride;
}

// An accessor with no buffer view is all zeros (changed by sparse values), which Assimp allocates as claimed.
constexpr qint64 MostZeroBytes = qint64(256) << 20;

QString SparseProblem(const QJsonObject& root, const QJsonObject& accessor, qint64 element)
{
    const QJsonObject sparse = accessor.value(QLatin1String("sparse")).toObject();
    if (sparse.isEmpty())
        return QString();
    const qint64 changed = Whole(sparse, "count");
    const QJsonObject indices = sparse.value(QLatin1String("indices")).toObject();
    const QJsonObject values = sparse.value(QLatin1String("values")).toObject();
    const auto fitsView = [&root, changed](const QJsonObject& part, qint64 bytes) {
        const QJsonObject view = Lookup(root, "bufferViews", part.value(QLatin1String("bufferView")));
        return Fits(Whole(part, "byteOffset"), changed, bytes, bytes, Whole(view, "byteLength"));
    };
    if (changed > Whole(accessor, "count") || !fitsView(indices, ComponentBytes(indices)) || !fitsView(values, element))
        return QStringLiteral("a glTF sparse accessor reads past its buffer views");
    return QString();
}

// Assimp 5.2 copies accessor data, buffer views and sparse values without comparing them with what holds them.
QString AccessorProblem(const QJsonObject& root)
{
    for (const QJsonValue& value : Items(root.value(QLatin1String("accessors"))))
    {
        const QJsonObject accessor = value.toObject();
        const qint64 element = ElementBytes(accessor);
        const qint64 count = Whole(accessor, "count");
        if (element == 0)
            continue;
        if (!accessor.contains(QLatin1String("bufferView")))
        {
            if (count > MostZeroBytes / element)
                return QStringLiteral("a glTF accessor claims more data than the file could hold");
        }
        else
        {
            const QJsonObject view = Lookup(root, "bufferViews", accessor.value(QLatin1String("bufferView")));
            const qint64 stride = std::max(Whole(view, "byteStride"), element);
            if (!Fits(Whole(accessor, "byteOffset"), count, stride, element, Whole(view, "byteLength")))
                return QStringLiteral("a glTF accessor reads past its buffer view");
        }
        const QString problem = SparseProblem(root, accessor, element);
        if (!problem.isEmpty())
            return problem;
    }
    for (const QJsonValue& value : Items(root.value(QLatin1String("bufferViews"))))
    {
        const QJsonObject view = value.toObject();
        const QJsonObject buffer = Lookup(root, "buffers", view.value(QLatin1String("buffer")));
        const qint64 length = Whole(view, "byteLength");
        if (!Fits(Whole(view, "byteOffset"), 1, length, length, Whole(buffer, "byteLength")))
            return QStringLiteral("a glTF buffer view lies past its buffer");
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
    const QJsonObject root = document.object();
    QString problem = SkinProblem(root);
    if (problem.isEmpty())
        problem = MeshProblem(root);
    return problem.isEmpty() ? AccessorProblem(root) : problem;
}
