#include "StreamFile.h"

#include <QFile>

namespace
{
// A stream of every node is 26,312 bytes; refusing far larger files keeps a wrong argument from filling memory.
constexpr qint64 LargestStreamFile = 16 * 1024 * 1024;
} // namespace

StreamFile StreamFile::Load(const QString& path)
{
    StreamFile file;
    QFile input(path);
    if (!input.exists())
    {
        file.error = QStringLiteral("%1: no such file").arg(path);
        return file;
    }
    if (!input.open(QIODevice::ReadOnly))
    {
        file.error = QStringLiteral("%1: cannot be read (%2)").arg(path, input.errorString());
        return file;
    }
    if (input.size() > LargestStreamFile)
    {
        file.error = QStringLiteral("%1: not a characterization file (too large)").arg(path);
        return file;
    }
    file.bytes = input.readAll();
    file.info = StreamInfo::Read(file.bytes.constData(), file.bytes.size());
    if (!file.info.IsValid())
        file.error = QStringLiteral("%1: %2").arg(path, StreamInfo::Describe(file.info.GetProblem()));
    return file;
}
