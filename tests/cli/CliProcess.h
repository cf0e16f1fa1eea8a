#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

class QTemporaryDir;

// The built zelkin program run as a user runs it.
struct ProcessResult
{
    int status = -1; // -1 when it crashed or hung
    QByteArray out;
    QByteArray err;

    QJsonObject Json() const;
};

// The user's configuration folder is `configHome`, or a fresh empty one, so the templates of whoever runs the
// tests never take part.
ProcessResult zelkin(const QStringList& arguments, const QString& configHome = QString());

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes);
QByteArray readFile(const QString& path);
QString corpusSkeleton(const char* name);
QString sampleSkeleton();
