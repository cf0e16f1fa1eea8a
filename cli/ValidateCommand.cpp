#include "ValidateCommand.h"

#include <memory>

#include <zelkin/CharacterizationModel.h>

#include "Batch.h"
#include "CharacterizationFile.h"
#include "CliError.h"
#include "CommandLine.h"
#include "InputFiles.h"
#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"
#include "ValidationReport.h"

namespace
{
CommandLine Options()
{
    return CommandLine(
        QStringLiteral("zelkin validate FILE... [options]"),
        QStringLiteral("Validates saved characterizations (.zelc streams, whose bone names come from the .bones.xml "
                       "beside them, and characterization .xml files) with the geometry stored in them, or with the "
                       "current geometry of a skeleton's bones of the same names. Several files, or folders of them, "
                       "are read by workers of their own."),
        {{{"skeleton"}, "SKELETON", "take the mapped bones' geometry from this skeleton"},
         {{"recursive"}, "", "search below the given folders too"},
         {{"j", "jobs"}, "N", "workers for several files (default: one per core)"},
         {{"timeout"}, "SECONDS", "a --skeleton whose reading takes longer is reported unreadable (default 120, 0 "
                                  "for no limit)"},
         {{"json"}, "", "JSON instead of text: one document, or for several files one line per file (JSON Lines) "
                        "and a summary last"},
         {{"worker"}, "", "", true}});
}

bool IsCharacterizationFile(const QString& file)
{
    return CharacterizationFile::FormatOf(file) != CharacterizationFile::Unknown &&
           !file.endsWith(QLatin1String(".bones.xml"), Qt::CaseInsensitive);
}

int ValidateMany(const CommandLine& parsed, const InputFiles& inputs)
{
    QString error;
    Batch batch = Batch::FromOptions(parsed, error);
    if (!error.isEmpty())
        return fail(error);
    std::vector<Batch::Job> jobs;
    for (const QString& file : inputs.files)
    {
        QStringList arguments {QStringLiteral("validate"), file, QStringLiteral("--worker")};
        if (parsed.Has(QStringLiteral("skeleton")))
            arguments << QStringLiteral("--skeleton") << parsed.Value(QStringLiteral("skeleton"));
        jobs.push_back({file, arguments});
    }
    return batch.Run(jobs, inputs.skipped);
}

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
    CommandLine parsed = Options();
    if (!parsed.Parse(arguments))
        return parsed.Refuse();
    if (parsed.Positionals().isEmpty())
        return fail(QStringLiteral("no file given (see zelkin validate --help)"));
    const InputFiles inputs =
        InputFiles::Expand(parsed.Positionals(), parsed.Has(QStringLiteral("recursive")), IsCharacterizationFile);
    if (inputs.IsBatch())
        return ValidateMany(parsed, inputs);

    const CharacterizationFile file = CharacterizationFile::Load(inputs.files.first());
    if (!file.error.isEmpty())
        return fail(file.error);

    // With a skeleton the model takes each mapped bone's current geometry from it, as the studio does from its
    // scene; without one it validates the geometry stored in the file.
    Scene scene;
    std::unique_ptr<SceneHub> hub;
    const QString skeleton = parsed.Value(QStringLiteral("skeleton"));
    if (!skeleton.isNull())
    {
        SceneImporter importer;
        QString error;
        importer.SetTimeLimit(Batch::ReadingTimeLimit(parsed, error));
        if (!error.isEmpty())
            return fail(error);
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
    report.Print(parsed.Has(QStringLiteral("worker")) ? ValidationReport::Form::Worker
                 : parsed.Has(QStringLiteral("json"))  ? ValidationReport::Form::Json
                                                       : ValidationReport::Form::Text);
    return report.ExitStatus();
}
