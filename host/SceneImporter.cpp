#include "SceneImporter.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>

#include "ReaderAnswer.h"
#include "ReaderProcess.h"
#include "Scene.h"

namespace
{
SceneImporter::InProcessReader& InProcess()
{
    static SceneImporter::InProcessReader reader;
    return reader;
}

// Room for Assimp on any real file, and an end to a hostile one that asks for everything.
qint64 AddressSpaceFor(qint64 fileSize)
{
    return std::max<qint64>(qint64(4) << 30, 40 * fileSize);
}

// Far more than the bones of any skeleton take (a million bones is some 130 MB).
constexpr qint64 kLongestAnswer = qint64(256) << 20;

QString Stopped(const QString& why)
{
    return QStringLiteral("the reader stopped on this file (%1)").arg(why);
}

const QString& NoSense()
{
    static const QString text = Stopped(QStringLiteral("its answer made no sense"));
    return text;
}
} // namespace

void SceneImporter::ReadInProcess(InProcessReader reader)
{
    InProcess() = std::move(reader);
}

bool SceneImporter::IsClaimed(const QString& path)
{
    const QStringList& extensions = ReaderProcess::Extensions();
    const QString suffix = QFileInfo(path).suffix();
    return std::any_of(extensions.begin(), extensions.end(), [&suffix](const QString& extension) {
        return suffix.compare(extension, Qt::CaseInsensitive) == 0;
    });
}

QString SceneImporter::ReaderVersion()
{
    const QString version = ReaderProcess::Version();
    return version.isEmpty() ? QStringLiteral("no skeleton reader found") : version;
}

bool SceneImporter::Import(const QString& path, Scene& scene)
{
    mError.clear();
    mCancelled = false;
    if (!QFileInfo(path).isFile())
        return Fail(path, QStringLiteral("no such file"));
    ReaderAnswer answer;
    if (!Read(path, answer))
        return false;
    if (answer.HasFailure())
        return Fail(path, answer.Failure().isEmpty() ? QStringLiteral("unknown format or damaged file") : answer.Failure());
    Scene imported;
    if (!answer.BuildScene(imported))
        return Fail(path, NoSense());
    if (mCallback)
        mCallback(100);
    imported.SetSourcePath(path);
    scene = std::move(imported);
    return true;
}

bool SceneImporter::Read(const QString& path, ReaderAnswer& answer)
{
    if (InProcess())
    {
        InProcess()(path, [&answer](const QByteArray& bytes) { answer.Feed(bytes); });
        return !answer.IsGarbage() || Fail(path, NoSense());
    }
    const ReaderProcess::Limits limits {mTimeLimit, AddressSpaceFor(QFileInfo(path).size()), kLongestAnswer};
    switch (ReaderProcess().Run(path, limits, mCallback, answer))
    {
    case ReaderProcess::End::Answered:
        return true;
    case ReaderProcess::End::NotStarted:
        return Fail(path, QStringLiteral("the skeleton reader (zelkin-reader) is missing or does not start"));
    case ReaderProcess::End::Cancelled:
        return Cancel(path);
    case ReaderProcess::End::Crashed:
        return Fail(path, Stopped(QStringLiteral("crashed")));
    case ReaderProcess::End::TimedOut:
        return Fail(path, Stopped(QStringLiteral("took longer than %1 s").arg(mTimeLimit)));
    case ReaderProcess::End::Flooded:
        return Fail(path, Stopped(QStringLiteral("its answer passed %1 MB").arg(kLongestAnswer >> 20)));
    case ReaderProcess::End::Garbage:
        break;
    }
    return Fail(path, NoSense());
}

bool SceneImporter::Fail(const QString& path, const QString& reason)
{
    mError = QStringLiteral("cannot read %1: %2").arg(QDir::toNativeSeparators(path), reason);
    return false;
}

bool SceneImporter::Cancel(const QString& path)
{
    mCancelled = true;
    return Fail(path, QStringLiteral("import cancelled"));
}
