#include <zelkin/MappingTemplate.h>

#include <QCoreApplication>
#include <QFileInfo>

#include <zelkin/Characterization.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/NameMatcher.h>

namespace
{
const QString MatchList = QStringLiteral("match_list");
const QStringList Columns = {QStringLiteral("key"), QStringLiteral("value"), QStringLiteral("use_root")};

QString Tr(const char* text)
{
    return QCoreApplication::translate("MappingTemplate", text);
}

void SetError(QString* error, const QString& message)
{
    if (error)
        *error = message;
}
} // namespace

const MappingTemplate::Entry& MappingTemplate::GetEntry(int nodeId) const
{
    static const Entry none;
    return nodeId >= 0 && nodeId < ZELNodeCount ? mEntries[nodeId] : none;
}

void MappingTemplate::SetEntry(int nodeId, const QString& pattern, bool useRoot)
{
    if (nodeId >= 0 && nodeId < ZELNodeCount)
        mEntries[nodeId] = Entry {pattern, useRoot};
}

bool MappingTemplate::IsEmpty() const
{
    for (const Entry& entry : mEntries)
        if (!entry.pattern.isEmpty() || entry.useRoot)
            return false;
    return true;
}

bool MappingTemplate::ReadFrom(const ConfigDocument& document, QString* error)
{
    if (!document.HasKey(QString(), MatchList))
    {
        SetError(error, Tr("The document holds no mapping template (no \"match_list\")."));
        return false;
    }
    const QList<QStringList> rows = document.ReadTable(QString(), MatchList, {Columns[1], Columns[2]});
    *this = MappingTemplate();
    for (int nodeId = 0; nodeId < ZELNodeCount && nodeId < rows.size(); ++nodeId)
        mEntries[nodeId] = Entry {rows[nodeId][0], rows[nodeId][1].compare(QLatin1String("true"), Qt::CaseInsensitive) == 0};
    return true;
}

bool MappingTemplate::WriteTo(ConfigDocument& document) const
{
    QList<QStringList> rows;
    rows.reserve(ZELNodeCount);
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        rows.append(QStringList {QString::fromLatin1(ZELGetNodeNameFromId(nodeId)), mEntries[nodeId].pattern,
                                 mEntries[nodeId].useRoot ? QStringLiteral("true") : QStringLiteral("false")});
    return document.WriteTable(QString(), MatchList, Columns, rows);
}

bool MappingTemplate::Load(const QString& fileName, QString* error)
{
    if (!QFileInfo(fileName).isFile())
    {
        SetError(error, Tr("The template %1 does not exist.").arg(fileName));
        return false;
    }
    ConfigDocument document;
    if (!document.Load(fileName))
    {
        SetError(error, document.ErrorString());
        return false;
    }
    MappingTemplate loaded;
    QString why;
    if (!loaded.ReadFrom(document, &why))
    {
        SetError(error, QStringLiteral("%1: %2").arg(fileName, why));
        return false;
    }
    *this = loaded;
    return true;
}

bool MappingTemplate::Save(const QString& fileName, QString* error) const
{
    ConfigDocument document;
    if (!WriteTo(document))
    {
        SetError(error, Tr("The template cannot be saved: a pattern holds a character that XML cannot store."));
        return false;
    }
    if (!document.Save(fileName))
    {
        SetError(error, document.ErrorString());
        return false;
    }
    return true;
}

MappingTemplate MappingTemplate::Extract(const Characterization& characterization, const QString& prefix,
                                         const QStringList& delimiters)
{
    MappingTemplate extracted;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        const QString bone = characterization.GetBone(nodeId);
        if (!bone.isEmpty())
            extracted.mEntries[nodeId].pattern = NameMatcher::StripPrefix(bone, prefix, delimiters).toString();
    }
    return extracted;
}
