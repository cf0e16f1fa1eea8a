#pragma once

#include <memory>
#include <vector>

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>

class QLockFile;
class StudioSession;

// Keeps a copy of the open work in a folder of the user's, every few minutes and whenever asked (before every
// import), so that a crash or a kill loses at most those minutes. Each running studio has its files there under an
// id of its own, held by a lock file while it runs; a later start finds the copies whose studio is gone.
class Autosave : public QObject
{
    Q_OBJECT

public:
    // A copy left by a studio that ended without closing.
    struct Orphan
    {
        QString id;
        QString snapshot;    // the work, as a project
        QString projectPath; // the project it belongs to; empty for work never saved
        QDateTime savedAt;
    };

    // The per-user data folder's "autosave" folder.
    static QString DefaultFolder();

    Autosave(StudioSession& session, const QString& folder, QObject* parent = nullptr);
    // A studio that closes properly leaves nothing behind.
    ~Autosave() override;

    // Minutes between copies; 0 stops them.
    void SetInterval(int minutes);
    // Writes a copy now when the work differs from the last one, and drops it when the work is saved or gone.
    // False, with the reason in `error`, when the copy cannot be written.
    bool SaveNow(QString& error);

    // Newest first. A folder that cannot be read has none.
    std::vector<Orphan> FindOrphans() const;
    // Removes an orphan's files once it was restored or declined.
    void Discard(const Orphan& orphan) const;

signals:
    // A timed copy failed; the studio says so once, not every few minutes.
    void Failed(const QString& error);

private:
    QString PathOf(const QString& id, const char* suffix) const;
    // No running studio holds the files of this id.
    bool IsAbandoned(const QString& id) const;
    void RemoveCopy();

    StudioSession& mSession;
    QString mFolder;
    QString mId;
    std::unique_ptr<QLockFile> mLock;
    QTimer mTimer;
    QByteArray mCopied; // the state of the last copy; empty when there is none
    bool mFailing = false;
};
