#pragma once

#include <vector>

#include <QByteArray>
#include <QList>
#include <QMatrix4x4>
#include <QString>
#include <QStringList>

// A Zelkin Studio project (".zelproj"): the skeleton file, the bone edits made in the studio since it was read
// (renames, deletes, rest-pose changes), and every characterization as a host keeps it in its scene (name, lock,
// the tool's stream and its 212 bone names).
// Written with the configuration's keyed document; the skeleton path is stored relative to the project's folder.
class ProjectFile
{
public:
    // A project without rest-pose edits is written as version 1, which studios before them read too.
    static constexpr int FormatVersion = 2;
    static constexpr int MaxCharacterizations = 256;
    static constexpr int MaxEdits = 100000;
    // Far above the largest stream the solver writes; a larger one is not a stream.
    static constexpr int MaxStreamBytes = 64 * 1024;

    static QString Extension(); // ".zelproj"

    struct BoneEdit
    {
        enum Kind
        {
            Rename,
            Delete,
            Pose // the bone's rest pose: a new local transform, with everything below it following
        };

        Kind kind = Rename;
        QString bone;
        QString newName; // Rename only
        QMatrix4x4 local; // Pose only

        bool operator==(const BoneEdit& other) const;
    };

    struct Entry
    {
        QString name;
        bool locked = false;
        QByteArray stream;
        QStringList bones; // one per node, empty where unmapped
    };

    // Absolute once read.
    QString skeletonPath;
    // In the order they were made, to be replayed on the freshly read skeleton.
    QList<BoneEdit> edits;
    std::vector<Entry> entries;
    QString current;

    // Checks everything, each stream as the tool will read it, before taking anything: on failure the object is
    // left as it was and `error` is the one message for the user.
    bool Read(const QString& path, QString& error);
    // Atomic: on failure an existing file stays as it was.
    bool Write(const QString& path, QString& error) const;
};
