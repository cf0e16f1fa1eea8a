#include "GltfCheck.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <QIODevice>
#include <QtEndian>

#include "JsonTree.h"

namespace
{
using Value = JsonTree::Value;

// Magic, version and length, then (version 2) the JSON chunk's length and type, or (version 1) the content's
// length and format.
constexpr qint64 HeaderBytes = 20;
constexpr double LineLoop = 2; // a primitive mode

// glTF allows a skin without them (identity matrices); Assimp 5.2 reads through the missing accessor. glTF 1 keeps
// its objects by name, glTF 2 in arrays; the tree walks both alike.
QString SkinProblem(const Value& root)
{
    const Value skins = root.Member("skins");
    for (std::size_t index = 0; index < skins.Size(); ++index)
    {
        if (!skins.At(index).Has("inverseBindMatrices"))
            return QStringLiteral("a glTF skin without inverse bind matrices is not supported");
    }
    return QString();
}

// Assimp 5.2 reads before the first line of an indexed line loop when that line has an index out of range.
QString MeshProblem(const Value& root)
{
    const Value meshes = root.Member("meshes");
    for (std::size_t mesh = 0; mesh < meshes.Size(); ++mesh)
    {
        const Value primitives = meshes.At(mesh).Member("primitives");
        for (std::size_t index = 0; index < primitives.Size(); ++index)
        {
            const Value primitive = primitives.At(index);
            if (primitive.Member("mode").Number(-1) == LineLoop && primitive.Has("indices"))
                return QStringLiteral("an indexed glTF line loop is not supported");
        }
    }
    return QString();
}

// An object of a collection by its reference: an index (glTF 2) or a name (glTF 1).
Value Lookup(const Value& root, const char* collection, const Value& reference)
{
    const Value items = root.Member(collection);
    if (reference.IsString())
        return items.IsObject() ? items.Member(reference.Text()) : Value();
    const double index = reference.Number(-1);
    if (!items.IsArray() || !(index >= 0) || index != static_cast<double>(static_cast<std::size_t>(index)))
        return Value();
    return items.At(static_cast<std::size_t>(index));
}

// Numbers from a file can be anything; kept where nothing computed from them overflows.
qint64 Whole(const Value& object, const char* key)
{
    constexpr double Largest = double(qint64(1) << 52);
    const double number = object.Member(key).Number(0);
    return static_cast<qint64>(std::clamp(number, -Largest, Largest));
}

qint64 ComponentBytes(const Value& object)
{
    switch (Whole(object, "componentType"))
    {
    case 5120:
    case 5121:
        return 1;
    case 5122:
    case 5123:
        return 2;
    case 5125:
    case 5126:
        return 4;
    default:
        return 0;
    }
}

// Bytes of one element of an accessor; 0 when its types are unknown (Assimp refuses those by itself).
qint64 ElementBytes(const Value& accessor)
{
    static constexpr std::pair<std::string_view, qint64> Counts[] = {{"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3},
        {"VEC4", 4}, {"MAT2", 4}, {"MAT3", 9}, {"MAT4", 16}};
    const std::string_view type = accessor.Member("type").Text();
    for (const auto& [name, count] : Counts)
    {
        if (name == type)
            return ComponentBytes(accessor) * count;
    }
    return 0;
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

QString SparseProblem(const Value& root, const Value& accessor, qint64 element)
{
    const Value sparse = accessor.Member("sparse");
    if (sparse.Size() == 0 || !sparse.IsObject())
        return QString();
    const qint64 changed = Whole(sparse, "count");
    const auto fitsView = [&root, changed](const Value& part, qint64 bytes) {
        const Value view = Lookup(root, "bufferViews", part.Member("bufferView"));
        return Fits(Whole(part, "byteOffset"), changed, bytes, bytes, Whole(view, "byteLength"));
    };
    const Value indices = sparse.Member("indices");
    if (changed > Whole(accessor, "count") || !fitsView(indices, ComponentBytes(indices))
        || !fitsView(sparse.Member("values"), element))
        return QStringLiteral("a glTF sparse accessor reads past its buffer views");
    return QString();
}

QString AccessorProblem(const Value& root, const Value& accessor)
{
    const qint64 element = ElementBytes(accessor);
    const qint64 count = Whole(accessor, "count");
    if (element == 0)
        return QString();
    if (!accessor.Has("bufferView"))
    {
        if (count > MostZeroBytes / element)
            return QStringLiteral("a glTF accessor claims more data than the file could hold");
    }
    else
    {
        const Value view = Lookup(root, "bufferViews", accessor.Member("bufferView"));
        const qint64 stride = std::max(Whole(view, "byteStride"), element);
        if (!Fits(Whole(accessor, "byteOffset"), count, stride, element, Whole(view, "byteLength")))
            return QStringLiteral("a glTF accessor reads past its buffer view");
    }
    return SparseProblem(root, accessor, element);
}

// Assimp 5.2 copies accessor data, buffer views and sparse values without comparing them with what holds them.
QString DataProblem(const Value& root)
{
    const Value accessors = root.Member("accessors");
    for (std::size_t index = 0; index < accessors.Size(); ++index)
    {
        const QString problem = AccessorProblem(root, accessors.At(index));
        if (!problem.isEmpty())
            return problem;
    }
    const Value views = root.Member("bufferViews");
    for (std::size_t index = 0; index < views.Size(); ++index)
    {
        const Value view = views.At(index);
        const Value buffer = Lookup(root, "buffers", view.Member("buffer"));
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
    const JsonTree tree(std::string_view(json.constData(), static_cast<std::size_t>(json.size())));
    if (!tree.IsValid())
        return QStringLiteral("its glTF JSON is damaged (%1 at byte %2)")
            .arg(QString::fromStdString(tree.Error()))
            .arg(tree.ErrorOffset());
    const Value root = tree.Root();
    QString problem = SkinProblem(root);
    if (problem.isEmpty())
        problem = MeshProblem(root);
    return problem.isEmpty() ? DataProblem(root) : problem;
}
