#include "ColladaCheck.h"

#include <algorithm>
#include <vector>

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

namespace
{
struct Accessor
{
    QString array;
    qulonglong count = 0;
    qulonglong offset = 0;
    qulonglong stride = 1;
    qulonglong params = 0;
};

// A skin's vertex weights: for each vertex of its mesh a number of (input per input) index groups.
struct Skin
{
    QString geometry;
    QString jointNames; // the source the bones are made from
    bool counted = false;
    qulonglong vertexCount = 0;
    QString jointSource;
    QString weightSource;
    qulonglong jointOffset = 0;
    qulonglong weightOffset = 0;
    qulonglong inputs = 0;
    std::vector<qulonglong> counts;
    std::vector<qulonglong> indices;
};

Skin NewSkin(const QString& geometry)
{
    Skin skin;
    skin.geometry = geometry;
    return skin;
}

bool IsIndexList(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) {
        return c.isDigit() || c == QLatin1Char(' ') || c == QLatin1Char('\n') || c == QLatin1Char('\r') ||
               c == QLatin1Char('\t');
    });
}

std::vector<qulonglong> Numbers(const QString& text)
{
    std::vector<qulonglong> numbers;
    for (const QString& word : text.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts))
        numbers.push_back(word.toULongLong());
    return numbers;
}

qulonglong Number(const QXmlStreamAttributes& attributes, const char* name, qulonglong otherwise)
{
    bool ok = false;
    const qulonglong value = attributes.value(QLatin1String(name)).toULongLong(&ok);
    return ok ? value : otherwise;
}

// "#id" names the element of that id.
QString Reference(const QXmlStreamAttributes& attributes, const char* name)
{
    const QString uri = attributes.value(QLatin1String(name)).toString();
    return uri.startsWith(QLatin1Char('#')) ? uri.mid(1) : uri;
}

// Whether every element the accessor reads, up to the last of its parameters, lies inside the array.
bool Fits(const Accessor& accessor, qulonglong available)
{
    if (accessor.count == 0)
        return true;
    const qulonglong width = std::max({accessor.stride, accessor.params, qulonglong(1)});
    if (accessor.offset > available || width > available - accessor.offset)
        return false;
    const qulonglong room = available - accessor.offset - width;
    return accessor.stride == 0 || accessor.count - 1 <= room / accessor.stride;
}

// Whether a group's index for one input, when the skin has that input, is below `limit`.
bool Within(const QString& source, qulonglong offset, qulonglong inputs, const qulonglong* group, qulonglong limit)
{
    return source.isEmpty() || offset >= inputs || group[offset] < limit;
}

// One pass over the document. Assimp 5.2 loops for ever, filling memory, on an index list with anything but
// digits in it; sizes an array by its count before reading a value of it; reads an accessor's elements without
// checking them against its array; and looks up a skin's weights by vertex, bone and weight index unchecked (an
// assertion aborts the program, or it reads and writes out of bounds).
class Scan
{
public:
    explicit Scan(QIODevice& device)
        : mXml(&device)
    {
        mXml.setNamespaceProcessing(false);
    }

    QString Run()
    {
        while (!mXml.atEnd())
        {
            const QXmlStreamReader::TokenType token = mXml.readNext();
            const QString problem = token == QXmlStreamReader::StartElement ? Start() : QString();
            if (!problem.isEmpty())
                return problem;
            if (token == QXmlStreamReader::EndElement)
                End();
        }
        if (mXml.hasError())
            return QStringLiteral("it is not well-formed XML (line %1: %2)")
                .arg(mXml.lineNumber())
                .arg(mXml.errorString());
        QString problem = AccessorProblem();
        if (problem.isEmpty())
            problem = SourceKindProblem();
        return problem.isEmpty() ? SkinProblem() : problem;
    }

private:
    QString Start()
    {
        const QString name = mXml.name().toString();
        const QXmlStreamAttributes attributes = mXml.attributes();
        if (name == QLatin1String("p") && !IsIndexList(mXml.readElementText()))
            return QStringLiteral("a Collada index list holds something other than numbers");
        if (name.endsWith(QLatin1String("_array")))
            return Array(name, attributes);
        if (name == QLatin1String("source"))
            mSource = attributes.value(QLatin1String("id")).toString();
        else if (name == QLatin1String("geometry"))
            mGeometry = attributes.value(QLatin1String("id")).toString();
        else if (name == QLatin1String("accessor"))
            StartAccessor(attributes);
        else if (name == QLatin1String("param") && mInAccessor)
            mAccessors.back().params += attributes.value(QLatin1String("type")) == QLatin1String("float4x4") ? 16 : 1;
        else if (name == QLatin1String("sampler"))
            mInSampler = true;
        else if (name == QLatin1String("vertices") || name == QLatin1String("vertex_weights"))
            StartSet(name, attributes);
        else if (name == QLatin1String("input"))
            Input(attributes);
        else if (name == QLatin1String("skin"))
            mSkins.push_back(NewSkin(Reference(attributes, "source")));
        else if (mInWeights && name == QLatin1String("vcount"))
            mSkins.back().counts = Numbers(mXml.readElementText());
        else if (mInWeights && name == QLatin1String("v"))
            mSkins.back().indices = Numbers(mXml.readElementText());
        return QString();
    }

    void End()
    {
        const QStringView name = mXml.name();
        if (name == QLatin1String("accessor"))
            mInAccessor = false;
        else if (name == QLatin1String("vertices"))
            mInVertices = false;
        else if (name == QLatin1String("vertex_weights"))
            mInWeights = false;
        else if (name == QLatin1String("source"))
            mSource.clear();
        else if (name == QLatin1String("sampler"))
            mInSampler = false;
    }

    QString Array(const QString& name, const QXmlStreamAttributes& attributes)
    {
        const qulonglong count = Number(attributes, "count", 0);
        if (count > static_cast<qulonglong>(mXml.readElementText().size()))
            return QStringLiteral("a Collada array claims more values than it holds");
        const QString id = attributes.value(QLatin1String("id")).toString();
        mArrays.insert(id, count);
        if (name == QLatin1String("Name_array") || name == QLatin1String("IDREF_array"))
            mNameArrays.insert(id);
        return QString();
    }

    void StartAccessor(const QXmlStreamAttributes& attributes)
    {
        mAccessors.push_back({Reference(attributes, "source"), Number(attributes, "count", 0),
                              Number(attributes, "offset", 0), Number(attributes, "stride", 1), 0});
        if (!mSource.isEmpty())
            mSourceAccessors.insert(mSource, mAccessors.size() - 1);
        mInAccessor = true;
    }

    void StartSet(const QString& name, const QXmlStreamAttributes& attributes)
    {
        if (name == QLatin1String("vertices"))
        {
            mInVertices = true;
            return;
        }
        mInWeights = !mSkins.empty();
        if (mInWeights)
        {
            mSkins.back().counted = attributes.hasAttribute(QLatin1String("count"));
            mSkins.back().vertexCount = Number(attributes, "count", 0);
        }
    }

    void Input(const QXmlStreamAttributes& attributes)
    {
        const QStringView semantic = attributes.value(QLatin1String("semantic"));
        if (mInVertices && semantic == QLatin1String("POSITION"))
            mPositions.insert(mGeometry, Reference(attributes, "source"));
        if (mInSampler && (semantic == QLatin1String("INPUT") || semantic == QLatin1String("OUTPUT")))
            mNumberSources.insert(Reference(attributes, "source"));
        if (mSkins.empty())
            return;
        Skin& skin = mSkins.back();
        if (!mInWeights)
        {
            if (semantic == QLatin1String("JOINT"))
                skin.jointNames = Reference(attributes, "source");
            else if (semantic == QLatin1String("INV_BIND_MATRIX"))
                mNumberSources.insert(Reference(attributes, "source"));
            return;
        }
        ++skin.inputs;
        if (semantic == QLatin1String("JOINT"))
        {
            skin.jointSource = Reference(attributes, "source");
            skin.jointOffset = Number(attributes, "offset", 0);
        }
        else if (semantic == QLatin1String("WEIGHT"))
        {
            skin.weightSource = Reference(attributes, "source");
            skin.weightOffset = Number(attributes, "offset", 0);
            mNumberSources.insert(skin.weightSource);
        }
    }

    QString AccessorProblem() const
    {
        for (const Accessor& accessor : mAccessors)
        {
            const auto array = mArrays.constFind(accessor.array);
            if (array != mArrays.constEnd() && !Fits(accessor, array.value()))
                return QStringLiteral("the Collada accessor of %1 reads past its array").arg(accessor.array);
        }
        return QString();
    }

    // Assimp reads numbers of a list of names, or names of a list of numbers, without looking (an assertion aborts).
    QString SourceKindProblem() const
    {
        for (const QString& source : mNumberSources)
        {
            if (IsNameSource(source))
                return QStringLiteral("the Collada source %1 holds names where numbers belong").arg(source);
        }
        for (const Skin& skin : mSkins)
        {
            const auto accessor = mSourceAccessors.constFind(skin.jointNames);
            if (accessor != mSourceAccessors.constEnd() && mArrays.contains(mAccessors[accessor.value()].array) &&
                !IsNameSource(skin.jointNames))
                return QStringLiteral("the Collada source %1 holds numbers where bone names belong").arg(skin.jointNames);
        }
        return QString();
    }

    bool IsNameSource(const QString& source) const
    {
        const auto accessor = mSourceAccessors.constFind(source);
        return accessor != mSourceAccessors.constEnd() && mNameArrays.contains(mAccessors[accessor.value()].array);
    }

    // How many elements a source offers: its accessor's count, and no more than its array holds. Unknown sources
    // offer none, which Assimp refuses by itself when it looks them up.
    qulonglong Elements(const QString& source) const
    {
        const auto accessor = mSourceAccessors.constFind(source);
        if (accessor == mSourceAccessors.constEnd())
            return 0;
        const Accessor& found = mAccessors[accessor.value()];
        return std::min(found.count, mArrays.value(found.array, found.count));
    }

    QString SkinProblem() const
    {
        for (const Skin& skin : mSkins)
        {
            if (!skin.counted)
                return QStringLiteral("a Collada skin does not say how many vertices it weights");
            const auto positions = mPositions.constFind(skin.geometry);
            if (positions != mPositions.constEnd() && Elements(positions.value()) > skin.vertexCount)
                return QStringLiteral("a Collada skin weights fewer vertices than its mesh has");
            if (!IndicesFit(skin))
                return QStringLiteral("a Collada skin names a bone or weight it does not have");
        }
        return QString();
    }

    // Every bone and weight index of the groups Assimp reads, one group per weight of each weighted vertex.
    bool IndicesFit(const Skin& skin) const
    {
        if (skin.inputs == 0)
            return true;
        const qulonglong bones = std::min(Elements(skin.jointNames), Elements(skin.jointSource));
        const qulonglong weights = Elements(skin.weightSource);
        qulonglong groups = 0;
        for (qulonglong vertex = 0; vertex < std::min<qulonglong>(skin.vertexCount, skin.counts.size()); ++vertex)
            groups += skin.counts[vertex];
        for (qulonglong group = 0; group < groups && (group + 1) * skin.inputs <= skin.indices.size(); ++group)
        {
            const qulonglong* values = skin.indices.data() + group * skin.inputs;
            if (!Within(skin.jointSource, skin.jointOffset, skin.inputs, values, bones) ||
                !Within(skin.weightSource, skin.weightOffset, skin.inputs, values, weights))
                return false;
        }
        return true;
    }

    QXmlStreamReader mXml;
    QHash<QString, qulonglong> mArrays;
    std::vector<Accessor> mAccessors;
    QHash<QString, size_t> mSourceAccessors;
    QHash<QString, QString> mPositions; // geometry to its position source
    QSet<QString> mNameArrays;
    QSet<QString> mNumberSources; // read as numbers: animation keys and values, skin weights and bind matrices
    std::vector<Skin> mSkins;
    QString mSource;
    QString mGeometry;
    bool mInAccessor = false;
    bool mInVertices = false;
    bool mInWeights = false;
    bool mInSampler = false;
};
} // namespace

QString ColladaCheck::Problem(QIODevice& device)
{
    return Scan(device).Run();
}
