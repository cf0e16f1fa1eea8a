#include "Autosave.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>

#include "StudioSession.h"

namespace
{
const char kLock[] = ".lock";
const char kSnapshot[] = ".zelproj";
const char kAbout[] = ".json";

bool WriteAbout(const QString& path, const QString& projectPath)
{
    const QJsonObject about {{QStringLiteral("project"), projectPath},
                             {QStringLiteral("saved"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate)}};
    const QByteArray bytes = QJsonDocument(about).toJson();
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}
} // namespace

QString Autosave::DefaultFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath(QStringLiteral("autosave"));
}

Autosave::Autosave(StudioSession& session, const QString& folder, QObject* parent)
    : QObject(parent)
    , mSession(session)
    , mFolder(folder)
    , mId(QStringLiteral("session-%1-%2")
              .arg(QCoreApplication::applicationPid())
              .arg(QDateTime::currentMSecsSinceEpoch()))
{
    QDir().mkpath(mFolder);
    mLock = std::make_unique<QLockFile>(PathOf(mId, kLock));
    // Never stale by age: only a studio that is gone leaves its lock to be taken.
    mLock->setStaleLockTime(0);
    mLock->tryLock(0);
    connect(&mTimer, &QTimer::timeout, this, [this] {
        QString error;
        const bool saved = SaveNow(error);
        if (!saved && !mFailing)
            emit Failed(error);
        mFailing = !saved;
    });
}

Autosave::~Autosave()
{
    RemoveCopy();
    mLock->unlock();
}

void Autosave::SetInterval(int minutes)
{
    if (minutes <= 0)
    {
        mTimer.stop();
        return;
    }
    mTimer.start(minutes * 60 * 1000);
}

bool Autosave::SaveNow(QString& error)
{
    if (!mSession.HasSkeleton() || !mSession.IsModified())
    {
        // Nothing that opening the files again would not give back.
        RemoveCopy();
        return true;
    }
    const QByteArray state = mSession.StateSignature();
    if (state == mCopied)
        return true;
    if (!mSession.WriteSnapshot(PathOf(mId, kSnapshot), error))
        return false;
    if (!WriteAbout(PathOf(mId, kAbout), mSession.GetProjectPath()))
    {
        error = tr("The autosave cannot be written to %1.").arg(QDir::toNativeSeparators(mFolder));
        return false;
    }
    mCopied = state;
    return true;
}

std::vector<Autosave::Orphan> Autosave::FindOrphans() const
{
    std::vector<Orphan> orphans;
    QStringList ids;
    for (const QString& name : QDir(mFolder).entryList({QStringLiteral("session-*")}, QDir::Files))
    {
        const QString id = name.left(name.indexOf(QLatin1Char('.')));
        if (id != mId && !ids.contains(id))
            ids.append(id);
    }
    for (const QString& id : ids)
    {
        if (!IsAbandoned(id))
            continue;
        QFile about(PathOf(id, kAbout));
        const QJsonObject facts = about.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(about.readAll()).object()
                                                                 : QJsonObject();
        Orphan orphan {id, PathOf(id, kSnapshot), facts.value(QStringLiteral("project")).toString(),
                       QDateTime::fromString(facts.value(QStringLiteral("saved")).toString(), Qt::ISODate)};
        if (QFileInfo(orphan.snapshot).isFile() && orphan.savedAt.isValid())
            orphans.push_back(orphan);
        else
            Discard(orphan); // a studio that ended with nothing to keep, or a copy cut short
    }
    std::sort(orphans.begin(), orphans.end(),
              [](const Orphan& a, const Orphan& b) { return a.savedAt > b.savedAt; });
    return orphans;
}

bool Autosave::IsAbandoned(const QString& id) const
{
    QLockFile lock(PathOf(id, kLock));
    lock.setStaleLockTime(0);
    // Taken only when the studio that held it is gone (its lock is removed on the way); a running one keeps its
    // copy to itself.
    if (!lock.tryLock(0))
        return false;
    lock.unlock();
    return true;
}

void Autosave::Discard(const Orphan& orphan) const
{
    for (const char* suffix : {kSnapshot, kAbout, kLock})
        QFile::remove(PathOf(orphan.id, suffix));
}

QString Autosave::PathOf(const QString& id, const char* suffix) const
{
    return QDir(mFolder).filePath(id + QLatin1String(suffix));
}

void Autosave::RemoveCopy()
{
    QFile::remove(PathOf(mId, kSnapshot));
    QFile::remove(PathOf(mId, kAbout));
    mCopied.clear();
}
