#include "ConvertCommand.h"

#include <cstdlib>

#include <zelkin/ZELSolver.h>

#include "CliError.h"
#include "StreamFile.h"

int runConvert(const QStringList& arguments)
{
    QStringList rest = arguments;
    const bool bigEndian = rest.removeAll(QStringLiteral("--big-endian")) > 0;
    if (rest.size() != 2 || rest[0].startsWith(QLatin1Char('-')) || rest[1].startsWith(QLatin1Char('-')))
        return fail(QStringLiteral("usage: zelkin convert IN.zelc OUT.zelc [--big-endian]"));

    const StreamFile input = StreamFile::Load(rest[0]);
    if (!input.error.isEmpty())
        return fail(input.error);

    ZELCharacterDefinition definition {};
    ZELCharacter* character = ZELCharacterizationStreamRead(&definition, input.bytes.constData(),
                                                            static_cast<int32_t>(input.bytes.size()), std::malloc,
                                                            std::free);
    if (!character)
        return fail(QStringLiteral("%1: not a characterization file").arg(rest[0]));
    int32_t length = 0;
    void* stream = ZELCharacterizationStreamWrite(&length, &definition, character, bigEndian, std::malloc, std::free);
    ZELCharacterDestroy(character, std::free);
    if (!stream)
        return fail(QStringLiteral("out of memory while writing %1").arg(rest[1]));

    const QString error = StreamFile::Save(rest[1], stream, length);
    std::free(stream);
    return error.isEmpty() ? 0 : fail(error);
}
