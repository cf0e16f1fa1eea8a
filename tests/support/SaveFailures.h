#pragma once

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <functional>

#include <fcntl.h>
#include <grp.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

// Saves made to fail by the operating system itself, with no hook in the code under test: a folder that refuses new
// files, a file size limit that stops a write part-way as a full disk does, and a process killed in the middle of its
// write.
namespace savefailure
{

// The account a superuser test acts as, since permissions do not stop root.
constexpr uid_t Nobody = 65534;

inline QByteArray ReadBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

inline bool WriteBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

// Everything in the folder, hidden files included.
inline QStringList Entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

// A superuser process gives up its rights for good and is Nobody from then on; for a program a test starts.
inline bool BecomeNobody()
{
    return getuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(Nobody) == 0 && setuid(Nobody) == 0);
}

// Lets everyone through the folder (a temporary folder starts as the owner's alone), so it can be reached as Nobody.
inline bool OpenToOthers(const QString& folder)
{
    return QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner |
                                             QFileDevice::ReadGroup | QFileDevice::ExeGroup |
                                             QFileDevice::ReadOther | QFileDevice::ExeOther);
}

// Whether a file can be made in the folder that no name points to (O_TMPFILE): only then can a process killed in
// the middle of a save leave no temporary file behind.
inline bool TakesUnnamedFiles(const QString& folder)
{
    const int fd = ::open(QFile::encodeName(folder).constData(), O_TMPFILE | O_WRONLY, 0600);
    if (fd < 0)
        return false;
    ::close(fd);
    return true;
}

// A folder's files and what each holds.
using Snapshot = QMap<QString, QByteArray>;

inline Snapshot Take(const QString& folder)
{
    Snapshot files;
    for (const QString& entry : Entries(folder))
        files.insert(entry, ReadBytes(QDir(folder).filePath(entry)));
    return files;
}

// The folder holds what it held, byte for byte. A killed save may have added its temporary ("name.XXXXXX" beside
// its target), but only where the file system cannot make unnamed files.
inline testing::AssertionResult KeptAsItWas(const QString& folder, const Snapshot& before, bool killed)
{
    const Snapshot after = Take(folder);
    for (auto file = before.begin(); file != before.end(); ++file)
    {
        if (after.value(file.key(), QByteArray("(missing)")) != file.value())
            return testing::AssertionFailure() << file.key().toStdString() << " changed";
    }
    const bool temporariesExcused = killed && !TakesUnnamedFiles(folder);
    for (auto file = after.begin(); file != after.end(); ++file)
    {
        if (before.contains(file.key()))
            continue;
        const QString target = file.key().left(file.key().size() - 7);
        if (!temporariesExcused || !before.contains(target) ||
            !QRegularExpression(QStringLiteral("^\\.\\w{6}$")).match(file.key().mid(target.size())).hasMatch())
            return testing::AssertionFailure() << file.key().toStdString() << " was left behind";
    }
    return testing::AssertionSuccess();
}

// While it lives, no new file can be made in the folder: its permissions drop to read and search, and a superuser
// process takes Nobody's effective ids (only the effective ones, so it can come back). The folder's parents must let
// others through (OpenToOthers).
class UnwritableFolder
{
public:
    explicit UnwritableFolder(const QString& folder)
        : mFolder(folder)
        , mPermissions(QFile::permissions(folder))
        , mGroup(getegid())
    {
        QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadGroup |
                                          QFileDevice::ExeGroup | QFileDevice::ReadOther | QFileDevice::ExeOther);
        if (mAsNobody)
        {
            [[maybe_unused]] const int group = setegid(Nobody);
            [[maybe_unused]] const int user = seteuid(Nobody);
        }
    }

    ~UnwritableFolder()
    {
        if (mAsNobody)
        {
            [[maybe_unused]] const int user = seteuid(0);
            [[maybe_unused]] const int group = setegid(mGroup);
        }
        QFile::setPermissions(mFolder, mPermissions);
    }

    UnwritableFolder(const UnwritableFolder&) = delete;
    UnwritableFolder& operator=(const UnwritableFolder&) = delete;

    // The folder can be searched but takes no new file: a save fails for want of permission and nothing else.
    bool Refuses() const
    {
        const QByteArray path = QFile::encodeName(mFolder);
        return faccessat(AT_FDCWD, path.constData(), X_OK, AT_EACCESS) == 0 &&
               faccessat(AT_FDCWD, path.constData(), W_OK, AT_EACCESS) != 0 && errno == EACCES;
    }

private:
    QString mFolder;
    QFileDevice::Permissions mPermissions;
    gid_t mGroup;
    const bool mAsNobody = geteuid() == 0;
};

// From now on no file this process (and any program it starts) writes grows past `bytes`: the write that would go
// past fails with EFBIG, as on a full disk, or when `killed` the process dies of SIGXFSZ in the middle of it, leaving
// no core file. False when the limit could not be set.
inline bool LimitFileSize(rlim_t bytes, bool killed)
{
    std::signal(SIGXFSZ, killed ? SIG_DFL : SIG_IGN);
    const struct rlimit noCore = {0, 0};
    struct rlimit limit;
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0)
        return false;
    limit.rlim_cur = bytes;
    return setrlimit(RLIMIT_CORE, &noCore) == 0 && setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

// While it lives, no file this process writes grows past `bytes`: LimitFileSize, undone at the end of the scope.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &mSize);
        getrlimit(RLIMIT_CORE, &mCore);
        mHandler = std::signal(SIGXFSZ, SIG_IGN);
        mActive = LimitFileSize(bytes, false);
    }

    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &mSize);
        setrlimit(RLIMIT_CORE, &mCore);
        std::signal(SIGXFSZ, mHandler);
    }

    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    bool IsActive() const { return mActive; }

private:
    struct rlimit mSize {};
    struct rlimit mCore {};
    void (*mHandler)(int) = SIG_DFL;
    bool mActive = false;
};

// Runs `save` in a child process under a file size limit of `bytes` that kills it in the middle of its write, and
// gives the child's wait status. The child never comes back into the test: it ends by the signal, by _exit(0) when
// the save returns, or by SIGALRM if it hangs. It must not paint: the raster engine's helper threads do not survive
// fork, and drawing waits on them for ever.
inline int StatusOfKilledSave(rlim_t bytes, const std::function<void()>& save)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0)
    {
        alarm(60);
        if (!LimitFileSize(bytes, true))
            _exit(125);
        save();
        _exit(0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return -1;
    return status;
}

inline bool KilledBy(int status, int signal)
{
    return status != -1 && WIFSIGNALED(status) && WTERMSIG(status) == signal;
}

enum class Failure
{
    UnwritableFolder, // the folder of the file takes no new file
    FullDisk,         // the write stops part-way at `limit` bytes
    Killed            // the process dies in the middle of the write at `limit` bytes
};

inline const char* NameOf(Failure failure)
{
    switch (failure)
    {
    case Failure::UnwritableFolder:
        return "UnwritableFolder";
    case Failure::FullDisk:
        return "FullDisk";
    case Failure::Killed:
        return "Killed";
    }
    return "";
}

// Runs `save`, in this process or for Killed in a child, with the failure in force on `folder`. Fails when the
// failure could not be put in force or the child was not killed.
inline testing::AssertionResult SaveFailing(Failure failure, const QString& folder, rlim_t limit,
                                            const std::function<void()>& save)
{
    switch (failure)
    {
    case Failure::UnwritableFolder:
    {
        const UnwritableFolder locked(folder);
        if (!locked.Refuses())
            return testing::AssertionFailure() << folder.toStdString() << " still takes new files";
        save();
        return testing::AssertionSuccess();
    }
    case Failure::FullDisk:
    {
        const FullDisk full(limit);
        if (!full.IsActive())
            return testing::AssertionFailure() << "no file size limit";
        save();
        return testing::AssertionSuccess();
    }
    case Failure::Killed:
    {
        const int status = StatusOfKilledSave(limit, save);
        if (!KilledBy(status, SIGXFSZ))
            return testing::AssertionFailure() << "the save was not killed in its write (wait status " << status << ")";
        return testing::AssertionSuccess();
    }
    }
    return testing::AssertionFailure();
}

} // namespace savefailure
