#include "OutputFiles.h"

#include <memory>
#include <vector>

#include <QSaveFile>

namespace
{
QString CannotWrite(const QSaveFile& file)
{
    return QStringLiteral("%1: cannot be written (%2)").arg(file.fileName(), file.errorString());
}
} // namespace

QStringList OutputFiles::Paths() const
{
    QStringList paths;
    for (const auto& file : mFiles)
        paths.append(file.first);
    return paths;
}

QString OutputFiles::Commit() const
{
    // Uncommitted save files discard their temporaries when they go. Each is flushed by hand before any is committed:
    // commit() does not check the flush it makes on closing, and would put a file cut short by a full disk in place.
    // So a disk filling up replaces nothing; only a failure to put a later file in place leaves earlier ones replaced.
    std::vector<std::unique_ptr<QSaveFile>> pending;
    for (const auto& file : mFiles)
    {
        pending.push_back(std::make_unique<QSaveFile>(file.first));
        QSaveFile& output = *pending.back();
        if (!output.open(QIODevice::WriteOnly) || output.write(file.second) != file.second.size() || !output.flush())
            return CannotWrite(output);
    }
    for (const std::unique_ptr<QSaveFile>& output : pending)
    {
        if (!output->commit())
            return CannotWrite(*output);
    }
    return QString();
}
