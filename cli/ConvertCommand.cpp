#include "ConvertCommand.h"

#include "Arguments.h"
#include "CharacterizationFile.h"
#include "CliError.h"
#include "OutputFiles.h"

namespace
{
const QString Usage = QStringLiteral("usage: zelkin convert IN OUT [--big-endian] (each a .zelc or .xml file)");
} // namespace

int runConvert(const QStringList& arguments)
{
    const Arguments parsed(arguments, {"--big-endian"}, {});
    if (!parsed.Error().isEmpty())
        return fail(QStringLiteral("%1 (%2)").arg(parsed.Error(), Usage));
    if (parsed.Positionals().size() != 2)
        return fail(Usage);
    const QString& output = parsed.Positionals()[1];
    const bool bigEndian = parsed.Has(QStringLiteral("--big-endian"));
    if (bigEndian && CharacterizationFile::FormatOf(output) != CharacterizationFile::Stream)
        return fail(QStringLiteral("--big-endian needs a .zelc output"));

    const CharacterizationFile input = CharacterizationFile::Load(parsed.Positionals()[0]);
    if (!input.error.isEmpty())
        return fail(input.error);
    OutputFiles files;
    QString error = CharacterizationFile::Render(input.characterization, input.hasBoneNames, output, bigEndian, files);
    if (error.isEmpty())
        error = files.Commit();
    if (!error.isEmpty())
        return fail(error);
    const QString lost = CharacterizationFile::FormatOf(output) == CharacterizationFile::Xml
                             ? CharacterizationFile::LostInXml(input.characterization)
                             : QString();
    if (!lost.isEmpty())
        CliError {lost, 0}.Report();
    return 0;
}
