#include "ProjectFile.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QSet>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/StreamInfo.h>
#include <zelkin/ZELSolver.h>

namespace
{
const QString ProjectSection = QStringLiteral("project");
const QString FormatKey = QStringLiteral("format");
const QString SkeletonKey = QStringLiteral("skeleton");
const QString CurrentKey = QStringLiteral("current");
const QString EditsKey = QStringLiteral("bone_edits");
const QString CountKey = QStringLiteral("characterizations");
const QString NameKey = QStringLiteral("name");
const QString LockedKey = QStringLiteral("locked");
const QString StreamKey = QStringLiteral("stream");
const QString BonesKey = QStringLiteral("bones");
const QStringList EditColumns = {QStringLiteral("kind"), QStringLiteral("bone"), QStringLiteral("name"),
                                  QStringLiteral("local")};
const QStringList BoneColumns = {QStringLiteral("node"), QStringLiteral("bone")};
const QString RenameKind = QStringLiteral("rename");
const QString DeleteKind = QStringLiteral("delete");
const QString PoseKind = QStringLiteral("pose");
// Enough digits to give every float back exactly.
constexpr int kFloatDigits = 9;

QString SectionOf(int index)
{
    return QStringLiteral("characterization_%1").arg(index + 1);
}

// A problem for the user, or empty. The tool refuses a stream whose used nodes and named nodes differ, so that is
// checked here as well: opening a project must not fail half-way.
QString CheckStream(const QByteArray& stream, const QStringList& bones)
{
    const StreamInfo info = StreamInfo::Read(stream.constData(), stream.size());
    if (!info.IsValid())
        return StreamInfo::Describe(info.GetProblem());
    ZELCharacterDefinition definition {};
    ZELCharacter* character = ZELCharacterizationStreamRead(&definition, stream.constData(),
                                                            static_cast<int32_t>(info.GetStreamLength()),
                                                            std::malloc, std::free);
    if (character == nullptr)
        return QStringLiteral("not usable by the solver");
    ZELCharacterDestroy(character, std::free);
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (((definition.mUsedNodes[nodeId] & 1u) != 0) == bones[nodeId].isEmpty())
            return QStringLiteral("its bone names do not fit the nodes it uses");
    }
    return QString();
}

bool ReadBones(const ConfigDocument& document, const QString& section, QStringList& bones, QString& problem)
{
    bones = QStringList();
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        bones.append(QString());
    for (const QStringList& row : document.ReadTable(section, BonesKey, BoneColumns))
    {
        const int nodeId = BoneCatalogue::NodeId(row[0].toLatin1().constData());
        if (nodeId == BoneCatalogue::NoNode || row[1].isEmpty() || !bones[nodeId].isEmpty())
        {
            problem = QStringLiteral("the bone list of %1 is damaged").arg(section);
            return false;
        }
        bones[nodeId] = row[1];
    }
    return true;
}

bool ReadEntry(const ConfigDocument& document, int index, ProjectFile::Entry& entry, QString& problem)
{
    const QString section = SectionOf(index);
    entry.name = document.ReadValue(section, NameKey);
    const QString locked = document.ReadValue(section, LockedKey);
    if (entry.name.isEmpty() || (locked != QLatin1String("true") && locked != QLatin1String("false")))
    {
        problem = QStringLiteral("%1 is missing or damaged").arg(section);
        return false;
    }
    entry.locked = locked == QLatin1String("true");
    const QByteArray text = document.ReadValue(section, StreamKey).toLatin1();
    const auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.isEmpty() || decoded.decoded.size() > ProjectFile::MaxStreamBytes)
    {
        problem = QStringLiteral("the stream of \"%1\" is damaged").arg(entry.name);
        return false;
    }
    entry.stream = decoded.decoded;
    if (!ReadBones(document, section, entry.bones, problem))
        return false;
    const QString streamProblem = CheckStream(entry.stream, entry.bones);
    if (!streamProblem.isEmpty())
        problem = QStringLiteral("the stream of \"%1\" cannot be read (%2)").arg(entry.name, streamProblem);
    return streamProblem.isEmpty();
}

// Sixteen finite numbers, column by column, of an affine transform.
bool ReadLocal(const QString& text, QMatrix4x4& local)
{
    const QStringList numbers = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (numbers.size() != 16)
        return false;
    float* data = local.data();
    for (int i = 0; i < 16; ++i)
    {
        bool isNumber = false;
        data[i] = numbers[i].toFloat(&isNumber);
        if (!isNumber || !std::isfinite(data[i]))
            return false;
    }
    return data[3] == 0.0f && data[7] == 0.0f && data[11] == 0.0f && data[15] == 1.0f;
}

QString LocalText(const QMatrix4x4& local)
{
    QStringList numbers;
    for (int i = 0; i < 16; ++i)
        numbers.append(QString::number(double(local.constData()[i]), 'g', kFloatDigits));
    return numbers.join(QLatin1Char(' '));
}

ProjectFile::BoneEdit::Kind KindOf(const QString& text, bool& known)
{
    known = text == RenameKind || text == DeleteKind || text == PoseKind;
    return text == DeleteKind ? ProjectFile::BoneEdit::Delete
           : text == PoseKind ? ProjectFile::BoneEdit::Pose
                              : ProjectFile::BoneEdit::Rename;
}

bool ReadEdits(const ConfigDocument& document, QList<ProjectFile::BoneEdit>& edits, QString& problem)
{
    const QList<QStringList> rows = document.ReadTable(ProjectSection, EditsKey, EditColumns);
    if (rows.size() > ProjectFile::MaxEdits)
    {
        problem = QStringLiteral("it holds too many bone edits");
        return false;
    }
    for (const QStringList& row : rows)
    {
        ProjectFile::BoneEdit edit;
        bool known = false;
        edit.kind = KindOf(row[0], known);
        edit.bone = row[1];
        edit.newName = row[2];
        const bool posed = edit.kind == ProjectFile::BoneEdit::Pose;
        if (!known || edit.bone.isEmpty() || (edit.kind == ProjectFile::BoneEdit::Rename) == edit.newName.isEmpty() ||
            posed != !row[3].isEmpty() || (posed && !ReadLocal(row[3], edit.local)))
        {
            problem = QStringLiteral("its list of bone edits is damaged");
            return false;
        }
        edits.append(edit);
    }
    return true;
}

bool ReadHeader(const ConfigDocument& document, const QString& path, ProjectFile& project, int& count,
                QString& problem)
{
    bool isNumber = false;
    const int format = document.ReadValue(ProjectSection, FormatKey).toInt(&isNumber);
    if (!isNumber || format < 1)
    {
        problem = QStringLiteral("it is not a Zelkin Studio project");
        return false;
    }
    if (format > ProjectFile::FormatVersion)
    {
        problem = QStringLiteral("it was made by a newer version of Zelkin Studio");
        return false;
    }
    const QString skeleton = document.ReadValue(ProjectSection, SkeletonKey);
    count = document.ReadValue(ProjectSection, CountKey).toInt(&isNumber);
    if (skeleton.isEmpty() || !isNumber || count < 1 || count > ProjectFile::MaxCharacterizations)
    {
        problem = QStringLiteral("its skeleton or its list of characterizations is missing");
        return false;
    }
    project.skeletonPath = QDir::cleanPath(QFileInfo(path).absoluteDir().absoluteFilePath(skeleton));
    project.current = document.ReadValue(ProjectSection, CurrentKey);
    return ReadEdits(document, project.edits, problem);
}

bool ReadProject(const QString& path, ProjectFile& project, QString& problem)
{
    if (!QFileInfo(path).isFile())
    {
        problem = QStringLiteral("no such file");
        return false;
    }
    ConfigDocument document;
    if (!document.Load(path))
    {
        problem = document.ErrorString();
        return false;
    }
    int count = 0;
    if (!ReadHeader(document, path, project, count, problem))
        return false;
    QSet<QString> names;
    for (int index = 0; index < count; ++index)
    {
        ProjectFile::Entry entry;
        if (!ReadEntry(document, index, entry, problem))
            return false;
        if (names.contains(entry.name))
        {
            problem = QStringLiteral("two characterizations are named \"%1\"").arg(entry.name);
            return false;
        }
        names.insert(entry.name);
        project.entries.push_back(entry);
    }
    if (project.current.isEmpty())
        project.current = project.entries.front().name;
    if (!names.contains(project.current))
    {
        problem = QStringLiteral("its current characterization \"%1\" is not in it").arg(project.current);
        return false;
    }
    return true;
}

QList<QStringList> EditRows(const QList<ProjectFile::BoneEdit>& edits)
{
    QList<QStringList> rows;
    for (const ProjectFile::BoneEdit& edit : edits)
    {
        const bool posed = edit.kind == ProjectFile::BoneEdit::Pose;
        const QString& kind = posed ? PoseKind : edit.kind == ProjectFile::BoneEdit::Delete ? DeleteKind : RenameKind;
        rows.append({kind, edit.bone, edit.newName, posed ? LocalText(edit.local) : QString()});
    }
    return rows;
}

// Studios that came before rest-pose edits still read the projects that have none.
int FormatOf(const QList<ProjectFile::BoneEdit>& edits)
{
    const bool posed = std::any_of(edits.begin(), edits.end(), [](const ProjectFile::BoneEdit& edit) {
        return edit.kind == ProjectFile::BoneEdit::Pose;
    });
    return posed ? ProjectFile::FormatVersion : 1;
}

QList<QStringList> BoneRows(const QStringList& bones)
{
    QList<QStringList> rows;
    for (int nodeId = 0; nodeId < bones.size() && nodeId < ZELNodeCount; ++nodeId)
    {
        if (!bones[nodeId].isEmpty())
            rows.append({QString::fromLatin1(BoneCatalogue::NodeName(nodeId)), bones[nodeId]});
    }
    return rows;
}

bool WriteEntry(ConfigDocument& document, int index, const ProjectFile::Entry& entry)
{
    const QString section = SectionOf(index);
    return document.WriteValue(section, NameKey, entry.name) && document.WriteBool(section, LockedKey, entry.locked) &&
           document.WriteValue(section, StreamKey, QString::fromLatin1(entry.stream.toBase64())) &&
           document.WriteTable(section, BonesKey, BoneColumns, BoneRows(entry.bones));
}
} // namespace

QString ProjectFile::Extension()
{
    return QStringLiteral(".zelproj");
}

bool ProjectFile::BoneEdit::operator==(const BoneEdit& other) const
{
    return kind == other.kind && bone == other.bone && newName == other.newName && local == other.local;
}

bool ProjectFile::Read(const QString& path, QString& error)
{
    ProjectFile project;
    QString problem;
    if (!ReadProject(path, project, problem))
    {
        error = QStringLiteral("%1 cannot be opened: %2.").arg(QDir::toNativeSeparators(path), problem);
        return false;
    }
    *this = project;
    return true;
}

bool ProjectFile::Write(const QString& path, QString& error) const
{
    const QString relative = QFileInfo(path).absoluteDir().relativeFilePath(skeletonPath);
    ConfigDocument document;
    bool written = document.WriteValue(ProjectSection, FormatKey, QString::number(FormatOf(edits))) &&
                   document.WriteValue(ProjectSection, SkeletonKey, relative) &&
                   document.WriteValue(ProjectSection, CurrentKey, current) &&
                   document.WriteTable(ProjectSection, EditsKey, EditColumns, EditRows(edits)) &&
                   document.WriteValue(ProjectSection, CountKey, QString::number(entries.size()));
    for (size_t index = 0; written && index < entries.size(); ++index)
        written = WriteEntry(document, static_cast<int>(index), entries[index]);
    const QString native = QDir::toNativeSeparators(path);
    if (!written)
    {
        error = QStringLiteral("%1 cannot be saved: a name holds a character that a project file cannot store.")
                    .arg(native);
        return false;
    }
    QSaveFile file(path);
    const QByteArray bytes = document.ToByteArray();
    // commit() does not check the flush it makes on closing: a file cut short by a full disk would be put in place.
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush() || !file.commit())
    {
        error = QStringLiteral("%1 cannot be saved: %2.").arg(native, file.errorString());
        return false;
    }
    return true;
}
