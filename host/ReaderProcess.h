#pragma once

#include <functional>

#include <QString>
#include <QStringList>

class ReaderAnswer;

// One run of zelkin-reader over a file, under limits the reader cannot lift: time, address space and the size of
// its answer. Whatever the file does to the reader, this side only sees how the run ended.
class ReaderProcess
{
public:
    enum class End
    {
        Answered,   // a skeleton or a reason, in the answer
        NotStarted, // no reader program, or it would not start
        Cancelled,
        Crashed,  // died, or ended without answering
        TimedOut, // killed at the time limit
        Flooded,  // killed when its answer passed the size limit
        Garbage   // answered in no form we know
    };

    struct Limits
    {
        int seconds = 0; // 0: no limit
        qint64 addressSpace = 0;
        qint64 answerBytes = 0;
    };

    // `progress` is called with the last percentage the reader sent, also while it sends none, so that a user can
    // cancel a reader that is stuck; returning false kills it.
    End Run(const QString& path, const Limits& limits, const std::function<bool(int)>& progress,
            ReaderAnswer& answer);

    // The reader program: $ZELKIN_READER, else where the installation puts it beside this program, else, for a
    // program of the build tree, the build tree's. Empty when none is there.
    static QString Program();
    // Asks the reader (once per process) for the extensions Assimp claims.
    static const QStringList& Extensions();
    // Asks the reader for Assimp's version ("Assimp 5.2.0"); empty when it cannot be asked.
    static QString Version();
};
