// Writes the project fuzzer's seeds: projects over a real characterization of a skeleton (auto matched and
// validated as the studio does when it opens one), with bone edits, both stream byte orders, a locked entry and
// one holding the required nodes alone. Usage: make_project_seeds <skeleton> <output directory>
#include <cstdio>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/CharacterizationStream.h>

#include "ProjectFile.h"
#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"

namespace
{
bool Matched(const QString& skeleton, Characterization& matched)
{
    Scene scene;
    SceneImporter importer;
    if (!importer.Import(skeleton, scene))
    {
        std::fprintf(stderr, "%s\n", qPrintable(importer.ErrorText()));
        return false;
    }
    SceneHub hub(scene);
    CharacterizationModel model(&hub);
    model.AutoMatch();
    model.Validate();
    matched = *model.GetCurrentCharacterization();
    return matched.AssignedCount() > 0;
}

Characterization RequiredOnly(const Characterization& matched)
{
    Characterization required = matched;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        required.SetBone(nodeId, QString());
    for (int nodeId : BoneCatalogue::RequiredNodes())
        required.SetBone(nodeId, matched.GetBone(nodeId));
    return required;
}

ProjectFile::Entry EntryOf(const QString& name, const Characterization& characterization, bool bigEndian, bool locked)
{
    return {name, locked, CharacterizationStream::Write(characterization, bigEndian, true),
            characterization.GetBoneNames()};
}

bool Write(const ProjectFile& project, const QString& path)
{
    QString error;
    if (project.Write(path, error))
        return true;
    std::fprintf(stderr, "%s\n", qPrintable(error));
    return false;
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::fprintf(stderr, "usage: %s <skeleton> <output directory>\n", argv[0]);
        return 2;
    }
    // The per-user templates must not change the seeds.
    QTemporaryDir appData;
    qputenv("APPDATA", QFile::encodeName(appData.path()));
    QCoreApplication application(argc, argv);
    const QString skeleton = QFileInfo(QString::fromLocal8Bit(argv[1])).absoluteFilePath();
    const QDir output(QString::fromLocal8Bit(argv[2]));
    Characterization matched;
    if (!output.mkpath(QStringLiteral(".")) || !Matched(skeleton, matched))
        return 1;
    ProjectFile both;
    both.skeletonPath = skeleton;
    // As the studio saves them: the characterizations name the bones as the edits left them.
    QMatrix4x4 raised;
    raised.translate(14.0f, 0.0f, 0.0f);
    raised.rotate(45.0f, 0.0f, 0.0f, 1.0f);
    both.edits = {{ProjectFile::BoneEdit::Rename, matched.GetBone(0), QStringLiteral("Pelvis"), {}},
                  {ProjectFile::BoneEdit::Pose, QStringLiteral("LeftArm"), QString(), raised},
                  {ProjectFile::BoneEdit::Delete, QStringLiteral("EndSite_Head"), QString(), {}}};
    matched.SetBone(0, QStringLiteral("Pelvis"));
    const Characterization required = RequiredOnly(matched);
    both.entries = {EntryOf(QStringLiteral("Hero"), matched, false, true),
                    EntryOf(QStringLiteral("Hero required"), required, true, false)};
    both.current = QStringLiteral("Hero required");

    ProjectFile single;
    single.skeletonPath = skeleton;
    single.entries = {EntryOf(QStringLiteral("Solo"), required, false, false)};

    const bool written = Write(both, output.filePath(QStringLiteral("two_characterizations.zelproj"))) &&
                         Write(single, output.filePath(QStringLiteral("required_nodes.zelproj")));
    return written ? 0 : 1;
}
