#include "FuzzHost.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "FuzzCheck.h"

namespace
{
void Quiet(QtMsgType, const QMessageLogContext&, const QString&) {}

QTemporaryDir& Scratch()
{
    static QTemporaryDir folder;
    return folder;
}
} // namespace

void FuzzHost::Start(int* argc, char*** argv)
{
    qInstallMessageHandler(Quiet);
    require(Scratch().isValid());
    const QDir scratch(Scratch().path());
    require(scratch.mkpath(QStringLiteral("appdata")) && scratch.mkpath(QStringLiteral("input")));
    qputenv("APPDATA", QFile::encodeName(scratch.filePath(QStringLiteral("appdata"))));
    // Lives for the whole run: libFuzzer never returns from its loop.
    static QCoreApplication application(*argc, *argv);
}

QString FuzzHost::Path(const QString& name)
{
    return QDir(Scratch().path()).filePath(QStringLiteral("input/") + name);
}

QString FuzzHost::Write(const QString& name, const uint8_t* data, size_t size)
{
    const QString path = Path(name);
    QFile file(path);
    require(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    require(file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) == static_cast<qint64>(size));
    file.close();
    return path;
}
