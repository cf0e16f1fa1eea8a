#include "CharacterizationFiles.h"

#include <memory>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <zelkin/CharacterizationXml.h>
#include <zelkin/ConfigDocument.h>

namespace
{
QString Tr(const char* text)
{
    return QCoreApplication::translate("CharacterizationFiles", text);
}
} // namespace

namespace CharacterizationFiles
{
QString SaveBytes(const QString& path, const QByteArray& bytes)
{
    return SaveTogether({{path, bytes}});
}

QString SaveTogether(const QList<FileContent>& files)
{
    std::vector<std::unique_ptr<QSaveFile>> written;
    for (const FileContent& content : files)
    {
        written.push_back(std::make_unique<QSaveFile>(content.first));
        QSaveFile& file = *written.back();
        // Flushed by hand: commit() does not check the flush it makes on closing, and would put a file cut short by
        // a full disk in place. Flushed now, too, so that such a failure comes before any file is replaced.
        if (!file.open(QIODevice::WriteOnly) || file.write(content.second) != content.second.size() || !file.flush())
            return Tr("%1 cannot be written: %2").arg(QDir::toNativeSeparators(content.first), file.errorString());
    }
    // Unwritten QSaveFiles are discarded when they go, so a failure above leaves every old file alone. Only putting
    // the files in place is left: should that fail for a later file (its name taken by a folder meanwhile), the
    // earlier ones stay replaced.
    for (const std::unique_ptr<QSaveFile>& file : written)
    {
        if (!file->commit())
            return Tr("%1 cannot be written: %2").arg(QDir::toNativeSeparators(file->fileName()), file->errorString());
    }
    return QString();
}

QString LoadBytes(const QString& path, qint64 limit, QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Tr("%1 cannot be read: %2").arg(QDir::toNativeSeparators(path), file.errorString());
    bytes = file.read(limit);
    return QString();
}

QString BonesFileFor(const QString& binaryPath)
{
    const QFileInfo info(binaryPath);
    return info.dir().filePath(info.completeBaseName() + CharacterizationXml::BonesExtension());
}

QByteArray BoneCorrespondence(const Characterization& characterization)
{
    ConfigDocument document;
    if (!document.WriteValue(QString(), QStringLiteral("name"), characterization.GetName())
        || !document.WriteList(QString(), QStringLiteral("bone_correspondance"), characterization.GetBoneNames()))
        return QByteArray();
    return document.ToByteArray();
}

Characterization WithoutRotationLimits(const Characterization& characterization)
{
    Characterization result = characterization;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        CharacterJointGeometry geometry = characterization.GetJointGeometry(nodeId);
        if (geometry.GetLimitEnableMask() == 0)
            continue;
        geometry.SetLimitEnableMask(0);
        geometry.SetMinRLimit(0.0f, 0.0f, 0.0f);
        geometry.SetMaxRLimit(0.0f, 0.0f, 0.0f);
        result.SetJointGeometry(nodeId, geometry);
    }
    return result;
}
} // namespace CharacterizationFiles
