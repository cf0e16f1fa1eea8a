#pragma once

#include <vector>

#include <QString>

// Damaged copies of the skeleton files of every format (ZELKIN_SCENE_FILES): bytes flipped, cut short, a stretch
// repeated, as disks, transfers and careless tools damage files. The damage comes from fixed seeds, so every run
// meets the same files.
struct DamagedFile
{
    QString path;
    QString format; // the folder it came from: "fbx", "gltf", ...
};

// Writes them into `folder`; `perFile` damaged copies of each file. Empty when the source files are missing.
std::vector<DamagedFile> WriteDamagedFiles(const QString& sceneFiles, const QString& folder, int perFile);
