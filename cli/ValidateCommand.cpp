#include "ValidateCommand.h"

#include <memory>

#include <zelkin/CharacterizationModel.h>

#include "Arguments.h"
#include "CharacterizationFile.h"
#include "CliError.h"
#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"
#include "ValidationReport.h"

namespace
{
const QString Usage = QStringLiteral("usage: zelkin validate FILE.zelc|FILE.xml [--skeleton SKELETON] [--json]");

QStringList BonesOf(const CharacterizationModel& model, const std::vector<int>& nodes)
{
    QStringList bones;
    for (int nodeId : nodes)
        bones.append(model.GetAssignedBone(nodeId));
    return bones;
}
} // namespace

int runValidate(const QStringList& arguments)
{
    const Arguments parsed(arguments, {"--json"}, {"--skeleton"});
    if (!parsed.Error().isEmpty())
        return fail(QStringLiteral("%1 (%2)").arg(parsed.Error(), Usage));
    if (parsed.Positionals().size() != 1)
        return fail(Usage);

    const CharacterizationFile file = CharacterizationFile::Load(parsed.Positionals().first());
    if (!file.error.isEmpty())
        return fail(file.error);

    // With a skeleton the model takes each mapped bone's current geometry from it, as the studio does from its
    // scene; without one it validates the geometry stored in the file.
    Scene scene;
    std::unique_ptr<SceneHub> hub;
    const QString skeleton = parsed.Value(QStringLiteral("--skeleton"));
    if (!skeleton.isNull())
    {
        SceneImporter importer;
        if (!importer.Import(skeleton, scene))
            return fail(importer.ErrorText());
        hub = std::make_unique<SceneHub>(scene);
    }
    CharacterizationModel model(hub.get());
    model.ImportIntoCurrent(file.characterization);
    model.Validate();

    ValidationReport report(model);
    if (hub)
        report.SetMissingBones(BonesOf(model, model.GetUnsyncNodes()));
    report.Print(parsed.Has(QStringLiteral("--json")));
    return report.ExitStatus();
}
