#include "ConvertCommand.h"

#include "CharacterizationFile.h"
#include "CliError.h"
#include "CommandLine.h"
#include "OutputFiles.h"

int runConvert(const QStringList& arguments)
{
    CommandLine parsed(QStringLiteral("zelkin convert IN OUT [options]"),
                       QStringLiteral("Rewrites a characterization between the two byte orders of the .zelc stream and "
                                      "the .xml file, as the extension of OUT says. The .xml file has no place for the "
                                      "inverted-joint flags; it says so when it drops any."),
                       {{{"big-endian"}, "", "write the .zelc stream big-endian"}});
    if (!parsed.Parse(arguments))
        return parsed.Refuse();
    if (parsed.Positionals().size() != 2)
        return fail(QStringLiteral("convert takes IN and OUT (see zelkin convert --help)"));
    const QString output = parsed.Positionals()[1];
    const bool bigEndian = parsed.Has(QStringLiteral("big-endian"));
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
