#include "CharacterizeCommand.h"

#include <algorithm>
#include <cstdio>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <zelkin/CharacterizationModel.h>
#include <zelkin/TemplateChooser.h>

#include "Batch.h"
#include "CharacterizationFile.h"
#include "CliError.h"
#include "CommandLine.h"
#include "InputFiles.h"
#include "OutputFiles.h"
#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"
#include "SceneTPose.h"
#include "SkeletonMapping.h"
#include "ValidationReport.h"

namespace
{
CommandLine Options()
{
    return CommandLine(
        QStringLiteral("zelkin characterize SKELETON... [options]"),
        QStringLiteral("Maps each skeleton's bones to nodes, validates the result and, with -o, writes it. Without "
                       "--template or --prefix the skeleton is characterized automatically, every humanoid found in "
                       "it (a file with several gives one report and one set of files each); where none is found, "
                       "the template that fits best maps it. Several skeletons, or folders of them, are read by "
                       "workers of their own, so that one bad file stops nothing else."),
        {{{"character"}, "NAME|INDEX", "only this character of a file with several: its number in the report, or its "
                                       "root or hips bone"},
         {{"template"}, "NAME|FILE", "map by this template (a library name or a file) instead of automatically"},
         {{"match"}, "suffix|contains", "how template patterns meet bone names (default suffix)"},
         {{"prefix"}, "P", "templates map only the bones whose names start with P, compared without it"},
         {{"o", "output"}, "OUT|DIR", "write OUT.zelc (with OUT.bones.xml beside it) or OUT.xml; for several "
                                      "skeletons a folder, each file named after its skeleton"},
         {{"format"}, "zelc|xml", "what a batch writes into the -o folder (default zelc)"},
         {{"big-endian"}, "", "write .zelc streams big-endian"},
         {{"t-pose"}, "", "before validating and writing, turn the skeleton's rest pose into a T-pose standing Y up "
                          "and facing +Z, as the mapping gives it; the report lists the bones turned"},
         {{"recursive"}, "", "search below the given folders too"},
         {{"j", "jobs"}, "N", "workers for several skeletons (default: one per core)"},
         {{"timeout"}, "SECONDS", "a skeleton whose reading takes longer is reported unreadable (default 120, 0 for "
                                  "no limit)"},
         {{"json"}, "", "JSON instead of text: one document, or for several skeletons one line per file (JSON "
                        "Lines) and a summary last"},
         {{"worker"}, "", "", true}});
}

// Everything that can be refused before a skeleton is read. An error line, empty when the options hold.
QString ReadOptions(const CommandLine& arguments, bool batch, SkeletonMapping& mapping)
{
    if (arguments.Positionals().isEmpty())
        return QStringLiteral("no skeleton given (see zelkin characterize --help)");
    const QString output = arguments.Value(QStringLiteral("o"));
    const CharacterizationFile::Format format = batch ? CharacterizationFile::FormatOf("." + arguments.Value("format"))
                                                      : CharacterizationFile::FormatOf(output);
    if (batch && !arguments.Value("format").isNull() && format == CharacterizationFile::Unknown)
        return QStringLiteral("--format takes zelc or xml, not \"%1\"").arg(arguments.Value("format"));
    if (batch && CharacterizationFile::FormatOf(output) != CharacterizationFile::Unknown)
        return QStringLiteral("%1: with several skeletons -o names a folder").arg(output);
    if (!batch && !output.isNull() && format == CharacterizationFile::Unknown)
        return QStringLiteral("%1: the output must be a .zelc or .xml file").arg(output);
    if (arguments.Has(QStringLiteral("big-endian")) && format == CharacterizationFile::Xml)
        return QStringLiteral("--big-endian needs .zelc output");
    if (!batch && arguments.Has(QStringLiteral("big-endian")) && format != CharacterizationFile::Stream)
        return QStringLiteral("--big-endian needs a .zelc output (-o OUT.zelc)");

    const QString match = arguments.Value(QStringLiteral("match")).toLower();
    if (match == QLatin1String("contains"))
        mapping.type = NameMatcher::Contains;
    else if (!match.isNull() && match != QLatin1String("suffix"))
        return QStringLiteral("--match takes suffix or contains, not \"%1\"").arg(arguments.Value("match"));
    mapping.templateArgument = arguments.Value(QStringLiteral("template"));
    mapping.prefix = arguments.Value(QStringLiteral("prefix"));
    mapping.character = arguments.Value(QStringLiteral("character"));
    if (!mapping.character.isNull() && mapping.UsesTemplates())
        return QStringLiteral("--character picks a character found automatically; it goes with neither --template "
                              "nor --prefix");
    return QString();
}

// With several characters each gets its own file: "out.zelc" becomes "out.<root bone>.zelc".
QString OutputFor(const QString& output, const QString& root, int index, int count, QStringList& taken)
{
    if (count <= 1 || output.isNull())
        return output;
    QString tag = root;
    tag.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9_-]")), QStringLiteral("_"));
    if (tag.isEmpty() || taken.contains(tag))
        tag = QStringLiteral("character%1").arg(index + 1);
    taken.append(tag);
    const QFileInfo info(output);
    return info.dir().filePath(QStringLiteral("%1.%2.%3").arg(info.completeBaseName(), tag, info.suffix()));
}

struct Run
{
    QString skeleton;
    QString output;
    bool bigEndian = false;
    SceneHub* tPoseHub = nullptr; // set with --t-pose
    std::vector<ValidationReport> reports;
    OutputFiles files;
};

// The current characterization validated; with --t-pose, after its T-pose became the skeleton's rest pose.
ValidationReport ValidatedReport(CharacterizationModel& model, const Run& run)
{
    TPoseBuilder::Result posed;
    if (run.tPoseHub != nullptr)
    {
        const SceneTPose tpose(run.tPoseHub->GetScene(), *model.GetCurrentCharacterization());
        run.tPoseHub->SetLocalTransforms(tpose.GetLocals());
        posed = tpose.GetResult();
    }
    model.Validate();
    ValidationReport report(model);
    if (run.tPoseHub != nullptr)
        report.SetTPose(posed, run.tPoseHub->GetScene().BoneNames());
    return report;
}

QString Render(const Characterization& characterization, const QString& output, Run& run)
{
    // Findings do not stop the file from being written: the panel can open it and put them right.
    return output.isNull() ? QString() : CharacterizationFile::Render(characterization, true, output, run.bigEndian,
                                                                       run.files);
}

// One characterization per recognized character. False when no humanoid was found, or with an error line when
// --character names none or a file cannot be made.
bool CharacterizeRecognized(CharacterizationModel& model, const SkeletonMapping& mapping, Run& run, QString& error)
{
    std::vector<SkeletonRecognizer::Bone> bones;
    const SkeletonRecognizer::Result result = model.RecognizeSkeleton(bones);
    std::vector<int> chosen;
    if (result.characters.empty() || !mapping.ChooseCharacters(result, bones, chosen, error))
        return false;
    QStringList sceneBones;
    model.GetHub()->GetSceneBones(sceneBones);
    const int candidates = TemplateChooser::CandidateCount(sceneBones, model.GetLeafBones(sceneBones));
    QStringList boneNames;
    for (const SkeletonRecognizer::Bone& bone : bones)
        boneNames.append(bone.name);
    const QString base = model.GetCurrentCharacterization()->GetName();
    QStringList taken;
    for (size_t i = 0; i < chosen.size(); ++i)
    {
        const SkeletonRecognizer::Character& character = result.characters[size_t(chosen[i])];
        const QString root = boneNames[character.root];
        if (i > 0)
            model.CreateCharacterization(model.NextCharacterizationName());
        if (chosen.size() > 1)
            model.RenameCharacterization(QStringLiteral("%1 %2").arg(base, root),
                                         model.GetCurrentCharacterization()->GetName());
        model.ApplyRecognition(character, bones, CharacterizationModel::Merge::ReplaceAll);
        const std::shared_ptr<Characterization> current = model.GetCurrentCharacterization();
        ValidationReport report = ValidatedReport(model, run);
        report.SetMapping({QString(), current->AssignedCount(), candidates, QString()});
        report.SetRecognition({chosen[i] + 1, int(result.characters.size()), root, boneNames[character.hips],
                               character, boneNames});
        const QString output = OutputFor(run.output, root, chosen[i], int(chosen.size()), taken);
        error = Render(*current, output, run);
        if (!error.isEmpty())
            return false;
        if (!output.isNull())
        {
            QStringList written(output);
            if (CharacterizationFile::FormatOf(output) == CharacterizationFile::Stream)
                written.append(CharacterizationFile::BonesFileFor(output));
            report.SetWrittenFiles(written);
        }
        run.reports.push_back(report);
    }
    return true;
}

// By templates: the named one, or the best fitting. False, with an error line, when the template cannot be read.
bool CharacterizeByTemplate(CharacterizationModel& model, const SkeletonMapping& mapping, Run& run, QString& error)
{
    ValidationReport::Mapping summary;
    if (!mapping.Apply(model, summary, error))
        return false;
    QStringList sceneBones;
    model.GetHub()->GetSceneBones(sceneBones);
    if (!mapping.UsesTemplates())
        summary.note = SkeletonRecognizer::NoHumanoidText(int(sceneBones.size()));
    ValidationReport report = ValidatedReport(model, run);
    report.SetMapping(summary);
    const std::shared_ptr<Characterization> current = model.GetCurrentCharacterization();
    error = Render(*current, run.output, run);
    if (!error.isEmpty())
        return false;
    if (!run.output.isNull())
        report.SetWrittenFiles(run.files.Paths());
    run.reports.push_back(report);
    return true;
}

// One skeleton, in this process.
int CharacterizeOne(const CommandLine& parsed, const SkeletonMapping& mapping, const QString& skeleton)
{
    Run run;
    run.skeleton = skeleton;
    run.output = parsed.Value(QStringLiteral("o"));
    run.bigEndian = parsed.Has(QStringLiteral("big-endian"));
    Scene scene;
    SceneImporter importer;
    QString error;
    importer.SetTimeLimit(Batch::ReadingTimeLimit(parsed, error));
    if (!error.isEmpty())
        return fail(error);
    if (!importer.Import(run.skeleton, scene))
        return fail(importer.ErrorText());
    SceneHub hub(scene);
    run.tPoseHub = parsed.Has(QStringLiteral("t-pose")) ? &hub : nullptr;
    CharacterizationModel model(&hub);
    model.RenameCharacterization(QFileInfo(run.skeleton).completeBaseName(),
                                 model.GetCurrentCharacterization()->GetName());

    // Without a template or a prefix the skeleton speaks for itself; templates are the fallback for skeletons in
    // which no humanoid is found.
    const bool recognized = !mapping.UsesTemplates() && CharacterizeRecognized(model, mapping, run, error);
    if (!error.isEmpty() || (!recognized && !CharacterizeByTemplate(model, mapping, run, error)))
        return fail(error);
    error = run.files.Commit();
    if (!error.isEmpty())
        return fail(error);

    const bool several = run.reports.size() > 1;
    const ValidationReport::Form form = parsed.Has(QStringLiteral("worker")) ? ValidationReport::Form::Worker
                                        : !parsed.Has(QStringLiteral("json")) ? ValidationReport::Form::Text
                                        : several                             ? ValidationReport::Form::JsonLine
                                                                              : ValidationReport::Form::Json;
    int status = 0;
    for (size_t i = 0; i < run.reports.size(); ++i)
    {
        if (i > 0 && form == ValidationReport::Form::Text)
            std::fputs("\n", stdout);
        run.reports[i].Print(form);
        status = std::max(status, run.reports[i].ExitStatus());
    }
    return status;
}

// Several skeletons, each by a worker; outputs into the -o folder, named after their skeletons.
int CharacterizeMany(const CommandLine& parsed, const InputFiles& inputs)
{
    QString error;
    Batch batch = Batch::FromOptions(parsed, error);
    if (!error.isEmpty())
        return fail(error);
    const QString folder = parsed.Value(QStringLiteral("o"));
    if (!folder.isNull() && !QDir().mkpath(folder))
        return fail(QStringLiteral("%1: the output folder cannot be made").arg(folder));
    const QString suffix = parsed.Value(QStringLiteral("format")).isNull() ? QStringLiteral("zelc")
                                                                           : parsed.Value(QStringLiteral("format"));
    QStringList forwarded;
    for (const char* option : {"character", "template", "match", "prefix"})
        if (parsed.Has(QLatin1String(option)))
            forwarded << QStringLiteral("--%1").arg(QLatin1String(option)) << parsed.Value(QLatin1String(option));
    for (const char* flag : {"big-endian", "t-pose"})
        if (parsed.Has(QLatin1String(flag)))
            forwarded << QStringLiteral("--%1").arg(QLatin1String(flag));
    std::vector<Batch::Job> jobs;
    QStringList taken;
    for (const QString& file : inputs.files)
    {
        QStringList arguments {QStringLiteral("characterize"), file, QStringLiteral("--worker")};
        arguments += forwarded;
        if (!folder.isNull())
        {
            // Skeletons of one name from different folders get numbered files.
            QString name = QFileInfo(file).completeBaseName();
            for (int number = 2; taken.contains(name); ++number)
                name = QStringLiteral("%1_%2").arg(QFileInfo(file).completeBaseName()).arg(number);
            taken.append(name);
            arguments << QStringLiteral("-o") << QDir(folder).filePath(name + QLatin1Char('.') + suffix);
        }
        jobs.push_back({file, arguments});
    }
    return batch.Run(jobs, inputs.skipped);
}
} // namespace

int runCharacterize(const QStringList& arguments)
{
    CommandLine parsed = Options();
    if (!parsed.Parse(arguments))
        return parsed.Refuse();
    const InputFiles inputs = InputFiles::Expand(parsed.Positionals(), parsed.Has(QStringLiteral("recursive")),
                                                 [](const QString& file) { return SceneImporter::IsClaimed(file); });
    SkeletonMapping mapping;
    const QString refused = ReadOptions(parsed, inputs.IsBatch(), mapping);
    if (!refused.isEmpty())
        return fail(refused);
    return inputs.IsBatch() ? CharacterizeMany(parsed, inputs) : CharacterizeOne(parsed, mapping, inputs.files.first());
}
