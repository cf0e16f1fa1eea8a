#include "ReaderProcess.h"

#include <memory>

#include <sys/resource.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include "ReaderAnswer.h"

namespace
{
// How long the reader gets to wake up between looks at progress and cancellation.
constexpr int kPollMilliseconds = 50;

bool IsProgram(const QString& path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

void Prepare(QProcess& process, const QString& program, const QStringList& arguments)
{
    process.setProgram(program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    // Assimp's complaints are not ours to show; the answer carries the reason.
    process.setStandardErrorFile(QProcess::nullDevice());
}

void LimitAddressSpace(QProcess& process, qint64 bytes)
{
#ifdef ZELKIN_READER_UNLIMITED
    // A sanitized reader reserves terabytes of shadow memory up front and would not start under any limit.
    Q_UNUSED(process);
    Q_UNUSED(bytes);
#else
    if (bytes <= 0)
        return;
    process.setChildProcessModifier([bytes] {
        // Between fork and exec: only what is safe there.
        const rlimit limit {rlim_t(bytes), rlim_t(bytes)};
        setrlimit(RLIMIT_AS, &limit);
    });
#endif
}

// A reader that has answered ends on its own: tearing down a process that read a large file takes the system a few
// milliseconds, and nothing of it is needed any more. It is let go at this thread's next read, or at its end.
thread_local std::unique_ptr<QProcess> tAnswered;

QByteArray Ask(const QString& option)
{
    const QString program = ReaderProcess::Program();
    if (program.isEmpty())
        return QByteArray();
    QProcess process;
    Prepare(process, program, {option});
    process.start(QIODevice::ReadOnly);
    if (!process.waitForFinished(10000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return QByteArray();
    return process.readAllStandardOutput();
}
} // namespace

ReaderProcess::End ReaderProcess::Run(const QString& path, const Limits& limits,
                                      const std::function<bool(int)>& progress, ReaderAnswer& answer)
{
    const QString program = Program();
    if (program.isEmpty())
        return End::NotStarted;
    tAnswered.reset();
    auto running = std::make_unique<QProcess>();
    QProcess& process = *running;
    Prepare(process, program, {path});
    LimitAddressSpace(process, limits.addressSpace);
    process.start(QIODevice::ReadOnly);
    if (!process.waitForStarted(-1))
        return End::NotStarted;

    QElapsedTimer clock;
    clock.start();
    int percent = 0;
    const auto stop = [&process](End end) {
        process.kill();
        process.waitForFinished(-1);
        return end;
    };
    for (;;)
    {
        // Looked at before reading: once the reader is gone, everything it sent is in the buffer, also when its
        // end was handled in an event loop the progress callback ran.
        const bool ended = process.state() == QProcess::NotRunning;
        if (!ended)
            process.waitForReadyRead(kPollMilliseconds);
        answer.Feed(process.readAllStandardOutput());
        if (limits.answerBytes > 0 && answer.Size() > limits.answerBytes)
            return stop(End::Flooded);
        if (answer.IsGarbage())
            return stop(End::Garbage);
        QList<int> reported = answer.TakeProgress();
        if (reported.isEmpty())
            reported.append(percent);
        for (const int step : reported)
        {
            percent = step;
            if (progress && !progress(percent))
                return stop(End::Cancelled);
        }
        // Nothing may follow a skeleton or a reason: the answer is whole.
        if (answer.HasFailure() || answer.HasSkeleton())
        {
            tAnswered = std::move(running);
            return End::Answered;
        }
        if (ended)
            break;
        if (limits.seconds > 0 && clock.elapsed() > qint64(limits.seconds) * 1000)
            return stop(End::TimedOut);
    }
    // A reader that ends with half an answer or none, say at a signal or a sanitizer's exit, crashed as far as anyone
    // can tell.
    return End::Crashed;
}

QString ReaderProcess::Program()
{
    const QString chosen = qEnvironmentVariable("ZELKIN_READER");
    if (!chosen.isEmpty())
        return IsProgram(chosen) ? chosen : QString();
    // No QCoreApplication is needed to know where this program lies (the command line runs without one).
    const QString here = QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).absolutePath();
    const QString installed = here + QStringLiteral("/" ZELKIN_READER_FROM_BINDIR);
    if (IsProgram(installed))
        return installed;
    // Only programs of the build tree take its reader; an installed one must find its own.
    const QString built = QStringLiteral(ZELKIN_READER_IN_BUILD_TREE);
    if (here.startsWith(QStringLiteral(ZELKIN_BUILD_TREE "/")) && IsProgram(built))
        return built;
    return QString();
}

const QStringList& ReaderProcess::Extensions()
{
    static const QStringList extensions =
        QString::fromUtf8(Ask(QStringLiteral("--extensions"))).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return extensions;
}

QString ReaderProcess::Version()
{
    return QString::fromUtf8(Ask(QStringLiteral("--version"))).trimmed();
}
