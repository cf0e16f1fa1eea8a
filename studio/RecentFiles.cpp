#include "RecentFiles.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>

#include <zelkin/ConfigDocument.h>

namespace
{
const QString Section = QStringLiteral("studio");
const QString Key = QStringLiteral("recent_files");
} // namespace

RecentFiles::RecentFiles(const QString& fileName)
    : mFileName(fileName)
{
    ConfigDocument document;
    if (!document.Load(fileName))
        return;
    for (const QString& path : document.ReadList(Section, Key))
    {
        if (!path.isEmpty() && !mFiles.contains(path) && mFiles.size() < MaxEntries)
            mFiles.append(path);
    }
}

void RecentFiles::Add(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    mFiles.removeAll(absolute);
    mFiles.prepend(absolute);
    while (mFiles.size() > MaxEntries)
        mFiles.removeLast();
    Save();
}

void RecentFiles::Remove(const QString& path)
{
    if (mFiles.removeAll(QFileInfo(path).absoluteFilePath()) > 0)
        Save();
}

void RecentFiles::Clear()
{
    mFiles.clear();
    Save();
}

void RecentFiles::Save()
{
    // The list is a convenience: failing to keep it must not bother the user.
    ConfigDocument document;
    QDir().mkpath(QFileInfo(mFileName).absolutePath());
    if (!document.WriteList(Section, Key, mFiles) || !document.Save(mFileName))
        qWarning().noquote() << "cannot keep the recent files in" << mFileName << document.ErrorString();
}
