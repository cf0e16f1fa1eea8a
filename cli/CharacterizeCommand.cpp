#include "CharacterizeCommand.h"

#include <algorithm>
#include <cstdio>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <zelkin/CharacterizationModel.h>
#include <zelkin/TemplateChooser.h>

#include "Arguments.h"
#include "CharacterizationFile.h"
#include "CliError.h"
#include "OutputFiles.h"
#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"
#include "SkeletonMapping.h"
#include "ValidationReport.h"

namespace
{
const QString Usage = QStringLiteral("usage: zelkin characterize SKELETON [--character NAME|INDEX] "
                                     "[--template NAME|FILE] [--match suffix|contains] [--prefix P] "
                                     "[-o OUT.zelc|OUT.xml] [--big-endian] [--json]");

// Everything that can be refused before the skeleton is read. An error line, empty when the options hold.
QString ReadOptions(const Arguments& arguments, SkeletonMapping& mapping)
{
    if (!arguments.Error().isEmpty())
        return QStringLiteral("%1 (%2)").arg(arguments.Error(), Usage);
    if (arguments.Positionals().size() != 1)
        return Usage;
    const QString output = arguments.Value(QStringLiteral("-o"));
    const CharacterizationFile::Format format = CharacterizationFile::FormatOf(output);
    if (!output.isNull() && format == CharacterizationFile::Unknown)
        return QStringLiteral("%1: the output must be a .zelc or .xml file").arg(output);
    if (arguments.Has(QStringLiteral("--big-endian")) && format != CharacterizationFile::Stream)
        return QStringLiteral("--big-endian needs a .zelc output (-o OUT.zelc)");

    const QString match = arguments.Value(QStringLiteral("--match")).toLower();
    if (match == QLatin1String("contains"))
        mapping.type = NameMatcher::Contains;
    else if (!match.isNull() && match != QLatin1String("suffix"))
        return QStringLiteral("--match takes suffix or contains, not \"%1\"").arg(arguments.Value("--match"));
    mapping.templateArgument = arguments.Value(QStringLiteral("--template"));
    mapping.prefix = arguments.Value(QStringLiteral("--prefix"));
    mapping.character = arguments.Value(QStringLiteral("--character"));
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
    std::vector<ValidationReport> reports;
    OutputFiles files;
};

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
        model.Validate();
        const std::shared_ptr<Characterization> current = model.GetCurrentCharacterization();
        ValidationReport report(model);
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
    model.Validate();
    ValidationReport report(model);
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
} // namespace

int runCharacterize(const QStringList& arguments)
{
    const Arguments parsed(arguments, {"--big-endian", "--json"},
                           {"--template", "--match", "--prefix", "--character", "-o"});
    SkeletonMapping mapping;
    const QString refused = ReadOptions(parsed, mapping);
    if (!refused.isEmpty())
        return fail(refused);

    Run run;
    run.skeleton = parsed.Positionals().first();
    run.output = parsed.Value(QStringLiteral("-o"));
    run.bigEndian = parsed.Has(QStringLiteral("--big-endian"));
    Scene scene;
    SceneImporter importer;
    importer.SetSourceReleasedAtExit(true);
    if (!importer.Import(run.skeleton, scene))
        return fail(importer.ErrorText());
    SceneHub hub(scene);
    CharacterizationModel model(&hub);
    model.RenameCharacterization(QFileInfo(run.skeleton).completeBaseName(),
                                 model.GetCurrentCharacterization()->GetName());

    QString error;
    // Without a template or a prefix the skeleton speaks for itself; templates are the fallback for skeletons in
    // which no humanoid is found.
    const bool recognized = !mapping.UsesTemplates() && CharacterizeRecognized(model, mapping, run, error);
    if (!error.isEmpty() || (!recognized && !CharacterizeByTemplate(model, mapping, run, error)))
        return fail(error);
    error = run.files.Commit();
    if (!error.isEmpty())
        return fail(error);

    const bool json = parsed.Has(QStringLiteral("--json"));
    int status = 0;
    for (size_t i = 0; i < run.reports.size(); ++i)
    {
        if (i > 0 && !json)
            std::fputs("\n", stdout);
        // Several characters: one JSON document a line.
        run.reports[i].Print(json, run.reports.size() > 1);
        status = std::max(status, run.reports[i].ExitStatus());
    }
    return status;
}
