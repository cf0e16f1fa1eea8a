#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class Scene;

// What zelkin-reader sends back (reader/ReaderWire.h), taken in as it arrives. Nothing in it is trusted: lengths,
// counts, parents, numbers and names are all checked before a scene is made of them.
class ReaderAnswer
{
public:
    void Feed(const QByteArray& bytes);
    qint64 Size() const { return mSize; }

    // The progress percentages that arrived since the last call.
    QList<int> TakeProgress();

    // Something arrived that is not the reader's format.
    bool IsGarbage() const { return mGarbage; }
    bool HasFailure() const { return !mFailure.isNull(); }
    const QString& Failure() const { return mFailure; }
    bool HasSkeleton() const { return !mSkeleton.isNull(); }
    // The skeleton's bones into an empty scene; false (and the scene left empty) when they do not make one.
    bool BuildScene(Scene& scene) const;

private:
    void ParseFrames();
    void Take(char type, const QByteArray& payload);

    QByteArray mPending;
    qint64 mSize = 0;
    bool mMagicSeen = false;
    bool mGarbage = false;
    QList<int> mProgress;
    QString mFailure;
    QByteArray mSkeleton;
};
