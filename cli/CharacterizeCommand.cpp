#include "CharacterizeCommand.h"

#include <QFileInfo>

#include <zelkin/CharacterizationModel.h>

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
const QString Usage = QStringLiteral("usage: zelkin characterize SKELETON [--template NAME|FILE] "
                                     "[--match suffix|contains] [--prefix P] [-o OUT.zelc|OUT.xml] [--big-endian] "
                                     "[--json]");

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
    return QString();
}

// Findings do not stop the file from being written: the panel can open it and put them right.
QString Write(const Characterization& characterization, const QString& output, bool bigEndian, OutputFiles& files)
{
    const QString error = CharacterizationFile::Render(characterization, true, output, bigEndian, files);
    return error.isEmpty() ? files.Commit() : error;
}
} // namespace

int runCharacterize(const QStringList& arguments)
{
    const Arguments parsed(arguments, {"--big-endian", "--json"}, {"--template", "--match", "--prefix", "-o"});
    SkeletonMapping mapping;
    const QString refused = ReadOptions(parsed, mapping);
    if (!refused.isEmpty())
        return fail(refused);

    const QString skeleton = parsed.Positionals().first();
    Scene scene;
    SceneImporter importer;
    importer.SetSourceReleasedAtExit(true);
    if (!importer.Import(skeleton, scene))
        return fail(importer.ErrorText());
    SceneHub hub(scene);
    CharacterizationModel model(&hub);
    model.RenameCharacterization(QFileInfo(skeleton).completeBaseName(),
                                 model.GetCurrentCharacterization()->GetName());

    ValidationReport::Mapping summary;
    QString error;
    if (!mapping.Apply(model, summary, error))
        return fail(error);
    model.Validate();
    ValidationReport report(model);
    report.SetMapping(summary);

    const QString output = parsed.Value(QStringLiteral("-o"));
    if (!output.isNull())
    {
        OutputFiles files;
        error = Write(*model.GetCurrentCharacterization(), output, parsed.Has(QStringLiteral("--big-endian")), files);
        if (!error.isEmpty())
            return fail(error);
        report.SetWrittenFiles(files.Paths());
    }
    report.Print(parsed.Has(QStringLiteral("--json")));
    return report.ExitStatus();
}
