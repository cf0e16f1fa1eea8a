#pragma once

#include <QByteArray>
#include <QString>

#include <zelkin/StreamInfo.h>

// A characterization stream loaded from a ".zelc" file, or the reason it cannot be used.
struct StreamFile
{
    QByteArray bytes;
    StreamInfo info;
    QString error; // empty when the stream can be read

    static StreamFile Load(const QString& path);
    // Atomic: a failed write leaves any previous file untouched. Returns an error line, empty on success.
    static QString Save(const QString& path, const void* bytes, qint64 length);
};
