#include "Batch.h"

#include <algorithm>
#include <cstdio>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QThread>
#include <QTimer>

#include "CommandLine.h"
#include "SceneImporter.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace
{
const QString kText = QStringLiteral("text");
// What a worker may take beyond its reading: characterizing and writing take well under a second, so only a worker
// that hangs after the reading comes near it.
constexpr int kReserveSeconds = 60;

bool StderrIsTerminal()
{
#ifdef Q_OS_UNIX
    return isatty(STDERR_FILENO) != 0;
#else
    return false;
#endif
}

} // namespace

Batch::Batch(int workers, int secondsPerFile, bool json)
    : mWorkers(std::max(workers, 1)), mSecondsPerFile(secondsPerFile), mJson(json)
{
}

Batch Batch::FromOptions(const CommandLine& parsed, QString& error)
{
    bool isNumber = true;
    const int workers = parsed.Has(QStringLiteral("j")) ? parsed.Value(QStringLiteral("j")).toInt(&isNumber)
                                                        : QThread::idealThreadCount();
    if (!isNumber || workers < 1)
        error = QStringLiteral("-j takes a number of workers, not \"%1\"").arg(parsed.Value(QStringLiteral("j")));
    const int seconds = ReadingTimeLimit(parsed, error);
    return Batch(workers, seconds, parsed.Has(QStringLiteral("json")));
}

int Batch::ReadingTimeLimit(const CommandLine& parsed, QString& error)
{
    if (!parsed.Has(QStringLiteral("timeout")))
        return SceneImporter::DefaultTimeLimit;
    bool isNumber = false;
    const int seconds = parsed.Value(QStringLiteral("timeout")).toInt(&isNumber);
    if (isNumber && seconds >= 0)
        return seconds;
    error = QStringLiteral("--timeout takes a number of seconds, not \"%1\"").arg(parsed.Value(QStringLiteral("timeout")));
    return 0;
}

QByteArray Batch::WorkerLine(QJsonObject report, const QString& text)
{
    report.insert(kText, text);
    return QJsonDocument(report).toJson(QJsonDocument::Compact) + '\n';
}

int Batch::Run(const std::vector<Job>& jobs, int skipped)
{
    // The workers are followed by the event loop, which only a batch needs.
    int argc = 1;
    char name[] = "zelkin";
    char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    mProgram = QCoreApplication::applicationFilePath();
    mJobs = jobs;
    mOutcomes.assign(jobs.size(), Outcome());
    mClock.start();
    while (mRunning < mWorkers && mNext < mJobs.size())
        Start(mNext++);
    if (!mJobs.empty())
        application.exec();
    if (StderrIsTerminal())
        std::fputs("\r\033[K", stderr);
    return Summarize(mClock.nsecsElapsed() / 1e9, skipped);
}

void Batch::Start(size_t index)
{
    ++mRunning;
    auto* process = new QProcess(QCoreApplication::instance());
    auto* limit = new QTimer(process);
    limit->setSingleShot(true);
    QObject::connect(limit, &QTimer::timeout, process, [this, index, process] {
        process->kill();
        process->waitForFinished();
        Finish(index, *process, QStringLiteral("it took longer than %1 s").arg(mSecondsPerFile + kReserveSeconds));
    });
    QObject::connect(process, &QProcess::finished, process, [this, index, process, limit] {
        if (!limit->isActive())
            return; // the time limit got there first
        limit->stop();
        Finish(index, *process, process->exitStatus() == QProcess::CrashExit ? QStringLiteral("it crashed")
                                                                                : QString());
    });
    QObject::connect(process, &QProcess::errorOccurred, process, [this, index, process, limit](QProcess::ProcessError e) {
        if (e == QProcess::FailedToStart && limit->isActive())
        {
            limit->stop();
            Finish(index, *process, QStringLiteral("no worker could be started"));
        }
    });
    // The worker's reader keeps the time limit; this one stops a worker that hangs for another reason.
    if (mSecondsPerFile > 0)
        limit->start((mSecondsPerFile + kReserveSeconds) * 1000);
    process->start(mProgram, mJobs[index].arguments + QStringList {QStringLiteral("--timeout"),
                                                                    QString::number(mSecondsPerFile)});
}

void Batch::Finish(size_t index, QProcess& process, const QString& stopped)
{
    Outcome& outcome = mOutcomes[index];
    const QByteArray out = process.readAllStandardOutput();
    QString error = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    if (error.startsWith(QLatin1String("zelkin: ")))
        error = error.mid(8);
    for (const QByteArray& line : out.split('\n'))
    {
        const QJsonObject report = QJsonDocument::fromJson(line).object();
        if (!report.isEmpty())
        {
            outcome.reports.push_back(report);
            outcome.state = std::max(outcome.state, report.value(QStringLiteral("state")).toInt());
        }
    }
    if (!stopped.isEmpty())
        outcome.error = QStringLiteral("cannot read %1: the reader stopped on this file (%2)").arg(mJobs[index].file, stopped);
    else if (process.exitCode() == 1 || outcome.reports.empty())
        outcome.error = error.isEmpty() ? QStringLiteral("%1: no report").arg(mJobs[index].file) : error;
    outcome.done = true;
    mFailed += outcome.error.isEmpty() ? 0 : 1;
    ++mFinished;
    --mRunning;
    process.deleteLater();
    PrintReady();
    ShowProgress();
    if (mNext < mJobs.size())
        Start(mNext++);
    else if (mRunning == 0)
        QCoreApplication::quit();
}

void Batch::PrintReady()
{
    // In input order: a file's report waits for those before it.
    for (; mPrinted < mOutcomes.size() && mOutcomes[mPrinted].done; ++mPrinted)
        PrintOutcome(mJobs[mPrinted], mOutcomes[mPrinted]);
    std::fflush(stdout);
}

void Batch::PrintOutcome(const Job& job, const Outcome& outcome) const
{
    if (!mJson)
    {
        std::printf("== %s\n", qPrintable(job.file));
        if (!outcome.error.isEmpty())
            std::printf("Unreadable: %s\n", qPrintable(outcome.error));
        for (size_t i = 0; i < outcome.reports.size(); ++i)
            std::printf("%s%s", i > 0 ? "\n" : "", qPrintable(outcome.reports[i].value(kText).toString()));
        std::printf("\n");
        return;
    }
    QJsonObject document;
    if (!outcome.error.isEmpty())
    {
        document.insert(QStringLiteral("error"), outcome.error);
    }
    else if (outcome.reports.size() == 1)
    {
        document = outcome.reports.front();
        document.remove(kText);
    }
    else
    {
        QJsonArray characters;
        for (QJsonObject report : outcome.reports)
        {
            report.remove(kText);
            characters.append(report);
        }
        document.insert(QStringLiteral("state"), outcome.state);
        document.insert(QStringLiteral("characters"), characters);
    }
    document.insert(QStringLiteral("file"), job.file);
    std::fputs(QJsonDocument(document).toJson(QJsonDocument::Compact).append('\n').constData(), stdout);
}

void Batch::ShowProgress() const
{
    if (!StderrIsTerminal())
        return;
    const double elapsed = mClock.nsecsElapsed() / 1e9;
    const double rate = elapsed > 0.0 ? mFinished / elapsed : 0.0;
    const double left = rate > 0.0 ? double(mJobs.size() - size_t(mFinished)) / rate : 0.0;
    std::fprintf(stderr, "\r\033[K%d of %zu files, %d failed, %.1f files/s, %.0f s left", mFinished, mJobs.size(),
                 mFailed, rate, left);
    std::fflush(stderr);
}

int Batch::Summarize(double seconds, int skipped) const
{
    int counts[4] = {0, 0, 0, 0}; // unreadable, valid, warnings, errors
    for (const Outcome& outcome : mOutcomes)
        ++counts[outcome.error.isEmpty() ? std::clamp(outcome.state, 1, 3) : 0];
    if (mJson)
    {
        const QJsonObject summary {{"files", int(mOutcomes.size())}, {"valid", counts[1]}, {"warnings", counts[2]},
                                   {"errors", counts[3]},           {"unreadable", counts[0]},
                                   {"skipped", skipped},           {"seconds", seconds}};
        std::fputs(QJsonDocument(QJsonObject {{"summary", summary}}).toJson(QJsonDocument::Compact).append('\n'),
                   stdout);
    }
    else
    {
        std::printf("%zu files: %d valid, %d with warnings, %d with errors, %d unreadable; %d skipped; %.2f s\n",
                    mOutcomes.size(), counts[1], counts[2], counts[3], counts[0], skipped, seconds);
    }
    return counts[0] > 0 ? 1 : (counts[3] > 0 ? 2 : 0);
}
