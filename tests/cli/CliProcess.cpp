#include "CliProcess.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>

QJsonObject ProcessResult::Json() const
{
    return QJsonDocument::fromJson(out).object();
}

ProcessResult zelkin(const QStringList& arguments, const QString& configHome)
{
    static const QTemporaryDir emptyHome;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("APPDATA"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configHome.isEmpty() ? emptyHome.path() : configHome);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ZELKIN_CLI), arguments);
    const bool finished = process.waitForFinished(60000);
    const bool normal = finished && process.exitStatus() == QProcess::NormalExit;
    return {normal ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
}

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return path;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString corpusSkeleton(const char* name)
{
    return QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/") + QLatin1String(name);
}

QString sampleSkeleton()
{
    return QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid.bvh");
}
