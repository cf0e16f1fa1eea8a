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
};
