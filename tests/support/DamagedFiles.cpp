#include "DamagedFiles.h"

#include <random>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace
{
QByteArray Damage(QByteArray bytes, std::mt19937& random, int kind)
{
    if (bytes.isEmpty())
        return bytes;
    const auto at = [&random](qsizetype size) {
        return qsizetype(std::uniform_int_distribution<qint64>(0, size - 1)(random));
    };
    switch (kind % 3)
    {
    case 0: // a few bytes flipped
        for (int flips = 1 + int(random() % 8); flips > 0; --flips)
            bytes[at(bytes.size())] = char(bytes[at(bytes.size())] ^ char(1 + random() % 255));
        return bytes;
    case 1: // cut short
        return bytes.left(at(bytes.size()));
    default: // a stretch repeated
    {
        const qsizetype start = at(bytes.size());
        const qsizetype length = 1 + at(qMin<qsizetype>(bytes.size() - start, 4096));
        return bytes.insert(start, bytes.mid(start, length));
    }
    }
}
} // namespace

std::vector<DamagedFile> WriteDamagedFiles(const QString& sceneFiles, const QString& folder, int perFile)
{
    std::vector<DamagedFile> damaged;
    QStringList sources;
    QDirIterator files(sceneFiles, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        sources.append(files.next());
    sources.sort();
    std::mt19937 random(20261124);
    for (const QString& source : sources)
    {
        QFile file(source);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        const QFileInfo info(source);
        for (int copy = 0; copy < perFile; ++copy)
        {
            const QString path = QDir(folder).filePath(
                QStringLiteral("%1_%2.%3").arg(info.completeBaseName()).arg(copy).arg(info.suffix()));
            QFile out(path);
            if (out.open(QIODevice::WriteOnly) && out.write(Damage(bytes, random, copy)) >= 0)
                damaged.push_back({path, info.dir().dirName()});
        }
    }
    return damaged;
}
