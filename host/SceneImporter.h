#pragma once

#include <utility>

#include <QString>

#include "ImportProgress.h"

class Scene;

// Reads a skeleton from any file Assimp reads (FBX, glTF/GLB, BVH, Collada, ...) into a scene, in the file's units.
class SceneImporter
{
public:
    // Called with 0 to 100 while the file is read; returning false cancels.
    void SetProgressCallback(ImportProgress::Callback callback) { mCallback = std::move(callback); }

    // For a process that ends soon after the import (the command line): Assimp's copy of the file is left for the
    // process's end to release at once, instead of being freed piece by piece (a millisecond for a 2 MB file).
    void SetSourceReleasedAtExit(bool atExit) { mSourceReleasedAtExit = atExit; }

    // Whether some reader claims the file by its extension: folders are searched for what can be read.
    static bool IsClaimed(const QString& path);
    // "Assimp 5.2.4", the reader in use.
    static QString ReaderVersion();

    // On success replaces the scene's content. On failure or cancellation leaves the scene as it was and keeps one
    // message: "cannot read FILE: <reason>".
    bool Import(const QString& path, Scene& scene);
    const QString& ErrorText() const { return mError; }
    bool WasCancelled() const { return mCancelled; }

private:
    bool Fail(const QString& path, const QString& reason);
    bool Cancel(const QString& path);

    ImportProgress::Callback mCallback;
    QString mError;
    bool mCancelled = false;
    bool mSourceReleasedAtExit = false;
};
