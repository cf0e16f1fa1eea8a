// Hostile bytes as a Zelkin Studio project. A refused project must come with its one message and leave the object
// as it was; an accepted one must hold only streams the panel will take with their bone names (the studio restores
// them after the skeleton is read, when nothing may fail any more), and must save and read back unchanged.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationStream.h>

#include "FuzzCheck.h"
#include "FuzzHost.h"
#include "ProjectFile.h"

namespace
{
bool SameEntry(const ProjectFile::Entry& a, const ProjectFile::Entry& b)
{
    return a.name == b.name && a.locked == b.locked && a.stream == b.stream && a.bones == b.bones;
}

bool Same(const ProjectFile& a, const ProjectFile& b)
{
    return a.skeletonPath == b.skeletonPath && a.edits == b.edits && a.current == b.current &&
           std::equal(a.entries.begin(), a.entries.end(), b.entries.begin(), b.entries.end(), SameEntry);
}

ProjectFile Untouched()
{
    ProjectFile project;
    project.skeletonPath = QStringLiteral("/untouched.bvh");
    project.edits = {{ProjectFile::BoneEdit::Delete, QStringLiteral("bone"), QString(), {}}};
    project.entries = {{QStringLiteral("Untouched"), true, QByteArray("stream"), {QStringLiteral("bone")}}};
    project.current = QStringLiteral("Untouched");
    return project;
}

void CheckEntriesLoad(const ProjectFile& project)
{
    require(!project.entries.empty());
    for (const ProjectFile::Entry& entry : project.entries)
    {
        Characterization characterization;
        require(CharacterizationStream::Read(entry.stream, entry.bones, characterization));
    }
}

void CheckSavesUnchanged(const ProjectFile& project)
{
    const QString path = FuzzHost::Path(QStringLiteral("saved.zelproj"));
    QString error;
    require(project.Write(path, error));
    ProjectFile again;
    require(again.Read(path, error) && Same(again, project));
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    FuzzHost::Start(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Beside the input, so that the skeleton path is read relative to the same folder it is saved relative to.
    const QString path = FuzzHost::Write(QStringLiteral("input.zelproj"), data, size);
    ProjectFile project = Untouched();
    QString error;
    if (!project.Read(path, error))
    {
        require(!error.isEmpty() && Same(project, Untouched()));
        return 0;
    }
    CheckEntriesLoad(project);
    CheckSavesUnchanged(project);
    return 0;
}
