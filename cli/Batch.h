#pragma once

#include <vector>

#include <QElapsedTimer>
#include <QJsonObject>
#include <QString>
#include <QStringList>

class CommandLine;
class QProcess;

// Several files, each characterized or validated by a worker process of this program, so that they are read side
// by side and nothing one worker meets stops the others. Reports come in input order, then a summary; on a terminal
// a progress line on stderr tells how far it is.
class Batch
{
public:
    struct Job
    {
        QString file;
        QStringList arguments; // the worker's command line, after the program
    };

    Batch(int workers, int secondsPerFile, bool json);
    // A batch as -j, --timeout and --json ask for it; an error line in `error` when -j or --timeout is no number.
    static Batch FromOptions(const CommandLine& parsed, QString& error);
    // The seconds --timeout gives the reading of one skeleton, the importer's default without it; an error line in
    // `error` when it is no number.
    static int ReadingTimeLimit(const CommandLine& parsed, QString& error);

    // The worst exit status over the files: 1 if any was unreadable, else 2 if any ended in error, else 0.
    int Run(const std::vector<Job>& jobs, int skipped);

    // What a worker prints for each report (one line each): its JSON with the text for people beside it.
    static QByteArray WorkerLine(QJsonObject report, const QString& text);

private:
    struct Outcome
    {
        bool done = false;
        QString error;                 // the file could not be read
        std::vector<QJsonObject> reports;
        int state = 0;                 // the worst over its reports
    };

    void Start(size_t index);
    void Finish(size_t index, QProcess& process, const QString& stopped);
    void PrintReady();
    void PrintOutcome(const Job& job, const Outcome& outcome) const;
    void ShowProgress() const;
    int Summarize(double seconds, int skipped) const;

    int mWorkers;
    int mSecondsPerFile;
    bool mJson;
    QString mProgram;
    std::vector<Job> mJobs;
    std::vector<Outcome> mOutcomes;
    size_t mNext = 0;
    size_t mPrinted = 0;
    int mRunning = 0;
    int mFinished = 0;
    int mFailed = 0;
    QElapsedTimer mClock;
};
