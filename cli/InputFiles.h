#pragma once

#include <functional>

#include <QString>
#include <QStringList>

// The files a command works through: files named on the command line as they are, folders searched (below them too
// with `recursive`) for the files `wanted` takes, in name order. What a folder holds that is not wanted is skipped.
struct InputFiles
{
    QStringList files;
    int skipped = 0;
    bool folderGiven = false;

    static InputFiles Expand(const QStringList& arguments, bool recursive,
                             const std::function<bool(const QString&)>& wanted);
    // Several files, or a folder: each file then goes to a worker of its own.
    bool IsBatch() const { return folderGiven || files.size() > 1; }
};
