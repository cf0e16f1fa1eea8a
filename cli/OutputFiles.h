#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// The files one command writes, written together: each goes to a temporary file first, and none replaces its
// target unless all were written, so a failure leaves every existing file as it was.
class OutputFiles
{
public:
    void Add(const QString& path, const QByteArray& bytes) { mFiles.append({path, bytes}); }
    QStringList Paths() const;

    // An error line ("PATH: cannot be written (reason)"), empty on success.
    QString Commit() const;

private:
    QList<QPair<QString, QByteArray>> mFiles;
};
