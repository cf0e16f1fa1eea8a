#pragma once

#include <functional>
#include <utility>

#include <QByteArray>
#include <QString>

class ReaderAnswer;
class Scene;

// Reads a skeleton from any file Assimp reads (FBX, glTF/GLB, BVH, Collada, ...) into a scene, in the file's units.
// Assimp runs in zelkin-reader, a process of its own, so that a file that crashes or hangs it, or asks it for all
// the memory there is, costs one message and nothing else.
class SceneImporter
{
public:
    // Called with 0 to 100 while the file is read, and again while the reader is silent; returning false cancels.
    using ProgressCallback = std::function<bool(int percent)>;
    // Takes the reader's answer as it comes.
    using AnswerSink = std::function<void(const QByteArray& bytes)>;
    // Reads FILE in the caller's own process and answers as zelkin-reader does.
    using InProcessReader = std::function<void(const QString& path, const AnswerSink& answer)>;

    static constexpr int DefaultTimeLimit = 120;

    void SetProgressCallback(ProgressCallback callback) { mCallback = std::move(callback); }
    // Seconds the reader gets for one file; 0 for no limit.
    void SetTimeLimit(int seconds) { mTimeLimit = seconds; }

    // For a program that accepts that a hostile file can take it down (the benchmarks compare both ways): every
    // import of the process reads in it. An empty function goes back to the reader process.
    static void ReadInProcess(InProcessReader reader);

    // Whether some reader claims the file by its extension: folders are searched for what can be read.
    static bool IsClaimed(const QString& path);
    // "Assimp 5.2.0", the reader in use.
    static QString ReaderVersion();

    // On success replaces the scene's content. On failure or cancellation leaves the scene as it was and keeps one
    // message: "cannot read FILE: <reason>".
    bool Import(const QString& path, Scene& scene);
    const QString& ErrorText() const { return mError; }
    bool WasCancelled() const { return mCancelled; }

private:
    bool Read(const QString& path, ReaderAnswer& answer);
    bool Fail(const QString& path, const QString& reason);
    bool Cancel(const QString& path);

    ProgressCallback mCallback;
    int mTimeLimit = DefaultTimeLimit;
    QString mError;
    bool mCancelled = false;
};
