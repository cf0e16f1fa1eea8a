#pragma once

#include <QString>
#include <QStringList>

// The files the user opened last, newest first, kept in a small keyed document of their own so that a broken list
// never touches the tool's configuration. A list that cannot be read starts empty.
class RecentFiles
{
public:
    static constexpr int MaxEntries = 8;

    explicit RecentFiles(const QString& fileName);

    const QStringList& Files() const { return mFiles; }
    const QString& FileName() const { return mFileName; }
    // Moves the file (made absolute) to the front and writes the list back.
    void Add(const QString& path);
    void Remove(const QString& path);
    void Clear();

private:
    void Save();

    QString mFileName;
    QStringList mFiles;
};
