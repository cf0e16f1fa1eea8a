#include <zelkin/CharacterizationXml.h>

#include <charconv>
#include <cmath>
#include <limits>

#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>

#include <zelkin/Characterization.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/RotationConversion.h>

namespace
{
const QString NameKey = QStringLiteral("name");
const QString BonesKey = QStringLiteral("bone_correspondance");
const QString UsedKey = QStringLiteral("bone_used");
const QString JointsSection = QStringLiteral("joints");

const QString TranslateKey = QStringLiteral("Translate");
const QString RotateKey = QStringLiteral("Rotate");
const QString ScaleKey = QStringLiteral("Scale");
const QString MinEnableKey = QStringLiteral("MinRLimitEnable");
const QString MaxEnableKey = QStringLiteral("MaxRLimitEnable");
const QString PreRotKey = QStringLiteral("PreRot");
const QString PostRotKey = QStringLiteral("PostRot");
const QString MinLimitKey = QStringLiteral("MinRLimit");
const QString MaxLimitKey = QStringLiteral("MaxRLimit");
const QString ParentOffsetKey = QStringLiteral("RotateParentOffset");
const QString RotationOrderKey = QStringLiteral("RotationOrder");

constexpr uint32_t FullGeometryBits = 7;

QString Tr(const char* text)
{
    return QCoreApplication::translate("CharacterizationXml", text);
}

void SetError(QString* error, const QString& message)
{
    if (error)
        *error = message;
}

QString FormatVector(float x, float y, float z)
{
    return CharacterizationXml::FormatNumber(x) + QLatin1Char(' ') + CharacterizationXml::FormatNumber(y)
           + QLatin1Char(' ') + CharacterizationXml::FormatNumber(z);
}

QString FormatVector(const float v[3])
{
    return FormatVector(v[0], v[1], v[2]);
}

QString FormatRotation(const float q[4], ZELRotationOrder order)
{
    double degrees[3];
    RotationConversion::QuaternionToEuler(q, order, degrees);
    return FormatVector(float(degrees[0]), float(degrees[1]), float(degrees[2]));
}

QString FormatFlags(bool x, bool y, bool z)
{
    return QStringLiteral("%1 %2 %3").arg(int(x)).arg(int(y)).arg(int(z));
}

QList<ConfigDocument::Pair> JointPairs(const CharacterJointGeometry& joint, bool fullGeometry, bool saveLimits)
{
    const ZELRotationOrder order = joint.GetRotationOrder();
    QList<ConfigDocument::Pair> pairs;
    pairs.append({TranslateKey, FormatVector(joint.GetTranslate())});
    pairs.append({RotateKey, FormatRotation(joint.GetRotateQ(), order)});
    pairs.append({ScaleKey, FormatVector(joint.GetScale())});
    pairs.append({MinEnableKey, saveLimits ? FormatFlags(joint.HasMinRLimitX(), joint.HasMinRLimitY(), joint.HasMinRLimitZ())
                                           : FormatFlags(false, false, false)});
    pairs.append({MaxEnableKey, saveLimits ? FormatFlags(joint.HasMaxRLimitX(), joint.HasMaxRLimitY(), joint.HasMaxRLimitZ())
                                           : FormatFlags(false, false, false)});
    if (fullGeometry)
    {
        pairs.append({PreRotKey, FormatRotation(joint.GetPreRotQ(), order)});
        pairs.append({PostRotKey, FormatRotation(joint.GetPostRotQ(), order)});
        if (saveLimits)
        {
            pairs.append({MinLimitKey, FormatVector(joint.GetMinRLimit())});
            pairs.append({MaxLimitKey, FormatVector(joint.GetMaxRLimit())});
        }
        pairs.append({ParentOffsetKey, FormatRotation(joint.GetParentOffsetRotateQ(), order)});
    }
    pairs.append({RotationOrderKey, QString::number(int(order))});
    return pairs;
}

// Reads one joint key's values into a geometry record; the first malformed value makes it fail.
class JointParser
{
public:
    JointParser(const QString& jointName, const QList<ConfigDocument::Pair>& pairs) : mJointName(jointName)
    {
        for (const ConfigDocument::Pair& pair : pairs)
            mValues.insert(pair.first, pair.second);
    }

    bool Parse(CharacterJointGeometry& joint)
    {
        joint.Reset();
        ZELRotationOrder order = ZELEulerXYZ;
        if (!ParseOrder(order))
            return false;
        joint.SetRotationOrder(order);
        float v[3];
        float q[4];
        if (Vector(TranslateKey, v))
            joint.SetTranslate(v[0], v[1], v[2]);
        if (Rotation(RotateKey, order, q))
            joint.SetRotateQ(q[0], q[1], q[2], q[3]);
        if (Vector(ScaleKey, v))
            joint.SetScale(v[0], v[1], v[2]);
        if (Vector(MinEnableKey, v))
            joint.SetMinRLimitEnable(v[0] != 0, v[1] != 0, v[2] != 0);
        if (Vector(MaxEnableKey, v))
            joint.SetMaxRLimitEnable(v[0] != 0, v[1] != 0, v[2] != 0);
        if (Rotation(PreRotKey, order, q))
            joint.SetPreRotQ(q[0], q[1], q[2], q[3]);
        if (Rotation(PostRotKey, order, q))
            joint.SetPostRotQ(q[0], q[1], q[2], q[3]);
        if (Vector(MinLimitKey, v))
            joint.SetMinRLimit(v[0], v[1], v[2]);
        if (Vector(MaxLimitKey, v))
            joint.SetMaxRLimit(v[0], v[1], v[2]);
        if (Rotation(ParentOffsetKey, order, q))
            joint.SetParentOffsetRotateQ(q[0], q[1], q[2], q[3]);
        return mError.isEmpty();
    }

    const QString& Error() const { return mError; }

private:
    bool ParseOrder(ZELRotationOrder& order)
    {
        if (!mValues.contains(RotationOrderKey))
            return true;
        bool ok = false;
        const int value = mValues.value(RotationOrderKey).trimmed().toInt(&ok, 10);
        if (!ok || value < 0 || value >= ZELRotationOrderCount)
            return Fail(RotationOrderKey);
        order = ZELRotationOrder(value);
        return true;
    }

    // False when the key is absent or malformed; a malformed value also records the error.
    bool Vector(const QString& key, float v[3])
    {
        if (!mError.isEmpty() || !mValues.contains(key))
            return false;
        const QStringList numbers = mValues.value(key).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (numbers.size() != 3)
            return Fail(key);
        for (int n = 0; n < 3; ++n)
        {
            bool ok = false;
            const double value = numbers[n].toDouble(&ok);
            if (!ok || !std::isfinite(value) || std::fabs(value) > double(std::numeric_limits<float>::max()))
                return Fail(key);
            v[n] = float(value);
        }
        return true;
    }

    bool Rotation(const QString& key, ZELRotationOrder order, float q[4])
    {
        float angles[3];
        if (!Vector(key, angles))
            return false;
        const double degrees[3] = {angles[0], angles[1], angles[2]};
        RotationConversion::EulerToQuaternion(degrees, order, q);
        return true;
    }

    bool Fail(const QString& key)
    {
        mError = Tr("Joint %1: the value of \"%2\" is not valid.").arg(mJointName, key);
        return false;
    }

    QString mJointName;
    QHash<QString, QString> mValues;
    QString mError;
};

bool ReadUsedWords(const QStringList& texts, std::array<uint32_t, ZELNodeCount>& words, QString* error)
{
    words.fill(0);
    for (int nodeId = 0; nodeId < ZELNodeCount && nodeId < texts.size(); ++nodeId)
    {
        bool ok = false;
        words[nodeId] = texts[nodeId].trimmed().toUInt(&ok, 10);
        if (!ok)
        {
            SetError(error, Tr("Item %1 of \"bone_used\" is not a number.").arg(nodeId + 1));
            return false;
        }
    }
    return true;
}

bool ReadJoints(const ConfigDocument& document, Characterization& result, QString* error)
{
    // Looked up by node rather than walked by key: a hostile file may hold any number of keys.
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        const QString jointName = QString::fromLatin1(ZELGetNodeNameFromId(nodeId));
        if (!result.IsAssigned(nodeId) || !document.HasKey(JointsSection, jointName))
            continue;
        JointParser parser(jointName, document.ReadPairs(JointsSection, jointName));
        CharacterJointGeometry joint;
        if (!parser.Parse(joint))
        {
            SetError(error, parser.Error());
            return false;
        }
        result.SetJointGeometry(nodeId, joint);
    }
    return true;
}
} // namespace

QString CharacterizationXml::FileFilter()
{
    return Tr("Xml Characterization File (*.xml)");
}

QString CharacterizationXml::BonesFileFilter()
{
    return Tr("Bone correspondance file (*.bones.xml)");
}

QString CharacterizationXml::BonesExtension()
{
    return QStringLiteral(".bones.xml");
}

QString CharacterizationXml::FormatNumber(float value)
{
    if (!std::isfinite(value) || std::fabs(value) < 1e-6f)
        return QStringLiteral("0");
    char buffer[32];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return QString::fromLatin1(buffer, int(result.ptr - buffer));
}

bool CharacterizationXml::ToDocument(const Characterization& characterization, ConfigDocument& document, Mode mode,
                                     bool saveRotationLimits)
{
    document.Clear();
    if (!document.WriteValue(QString(), NameKey, characterization.GetName())
        || !document.WriteList(QString(), BonesKey, characterization.GetBoneNames()))
        return false;
    QStringList used;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        used.append(mode == Raw ? QString::number(characterization.GetNodeFlags(nodeId))
                                : QString::number(characterization.IsAssigned(nodeId) ? 1 : 0));
    document.WriteList(QString(), UsedKey, used);
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (!characterization.IsAssigned(nodeId))
            continue;
        const bool fullGeometry = (characterization.GetNodeFlags(nodeId) & FullGeometryBits) == FullGeometryBits;
        document.WritePairs(JointsSection, QString::fromLatin1(ZELGetNodeNameFromId(nodeId)),
                            JointPairs(characterization.GetJointGeometry(nodeId), fullGeometry, saveRotationLimits));
    }
    return true;
}

bool CharacterizationXml::FromDocument(const ConfigDocument& document, Characterization& characterization,
                                       QString* error)
{
    if (!document.HasKey(QString(), BonesKey))
    {
        SetError(error, Tr("The document holds no characterization (no \"bone_correspondance\")."));
        return false;
    }
    Characterization result(document.ReadValue(QString(), NameKey, Characterization::DefaultName()));
    const QStringList bones = document.ReadList(QString(), BonesKey);
    std::array<uint32_t, ZELNodeCount> words;
    if (!ReadUsedWords(document.ReadList(QString(), UsedKey), words, error))
        return false;
    for (int nodeId = 0; nodeId < ZELNodeCount && nodeId < bones.size(); ++nodeId)
        if (!bones[nodeId].isEmpty())
            result.SetBone(nodeId, bones[nodeId]);
    if (!ReadJoints(document, result, error))
        return false;
    // A raw file carries whole flag words; a normal one only says which nodes are used.
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        if (words[nodeId] > 1)
            result.SetNodeFlags(nodeId, words[nodeId]);
    characterization = result;
    return true;
}

bool CharacterizationXml::Write(const Characterization& characterization, const QString& fileName, Mode mode,
                                bool saveRotationLimits, QString* error)
{
    ConfigDocument document;
    if (!ToDocument(characterization, document, mode, saveRotationLimits))
    {
        SetError(error, Tr("The characterization cannot be saved as XML: a name holds a character that XML cannot store."));
        return false;
    }
    if (!document.Save(fileName))
    {
        SetError(error, document.ErrorString());
        return false;
    }
    return true;
}

bool CharacterizationXml::Read(const QString& fileName, Characterization& characterization, QString* error)
{
    if (!QFileInfo(fileName).isFile())
    {
        SetError(error, Tr("The file %1 does not exist.").arg(fileName));
        return false;
    }
    ConfigDocument document;
    if (!document.Load(fileName))
    {
        SetError(error, document.ErrorString());
        return false;
    }
    QString why;
    if (!FromDocument(document, characterization, &why))
    {
        SetError(error, QStringLiteral("%1: %2").arg(fileName, why));
        return false;
    }
    return true;
}

QStringList CharacterizationXml::ReadBoneCorrespondence(const QString& fileName, QString* error)
{
    ConfigDocument document;
    if (!QFileInfo(fileName).isFile() || !document.Load(fileName) || !document.HasKey(QString(), BonesKey))
    {
        SetError(error, document.ErrorString().isEmpty()
                            ? Tr("%1 is not a bone correspondence file.").arg(fileName)
                            : document.ErrorString());
        return QStringList();
    }
    QStringList names = document.ReadList(QString(), BonesKey).mid(0, ZELNodeCount);
    while (names.size() < ZELNodeCount)
        names.append(QString());
    return names;
}
