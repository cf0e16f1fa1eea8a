#include "ZelkinMain.h"

#include <cstdio>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <QStringList>

#include "BonesCommand.h"
#include "CharacterizeCommand.h"
#include "CliError.h"
#include "ConvertCommand.h"
#include "InspectCommand.h"
#include "SceneImporter.h"
#include "TemplatesCommand.h"
#include "ValidateCommand.h"

namespace
{
const char* const Usage =
    "usage: zelkin COMMAND [ARGUMENTS]\n"
    "       zelkin COMMAND --help          that command's usage and options\n"
    "       zelkin --version               the versions of zelkin, its skeleton reader and Qt\n"
    "\n"
    "commands:\n"
    "  characterize SKELETON... [--character NAME|INDEX] [--template NAME|FILE] [--match suffix|contains]\n"
    "               [--prefix P] [-o OUT|DIR] [--format zelc|xml] [--big-endian] [--recursive] [-j N]\n"
    "               [--timeout SECONDS] [--json]\n"
    "                                     map skeletons' bones to nodes, automatically or by template, validate,\n"
    "                                     write\n"
    "  validate FILE... [--skeleton SKELETON] [--recursive] [-j N] [--timeout SECONDS] [--json]\n"
    "                                     validate saved characterizations\n"
    "  inspect FILE.zelc [--json]         byte order, version, used nodes, limb flags, records\n"
    "  convert IN OUT [--big-endian]      between .zelc (either byte order) and .xml\n"
    "  templates                          the shipped and user mapping templates\n"
    "  bones SKELETON [--json]            the skeleton as the tool reads it, with automatic nodes\n"
    "\n"
    "exit status: 0 valid or warnings only, 2 validation error, 1 bad input or I/O failure\n";

using Command = int (*)(const QStringList&);

// The library's diagnostics are for its developers (a file it refuses comes back to us as an error anyway);
// printed, they would break the promise of one line on stderr per failure.
void DropDiagnostics(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "zelkin: %s\n", qPrintable(message.simplified()));
}

Command Find(const QString& name)
{
    static const struct
    {
        const char* name;
        Command run;
    } commands[] = {{"characterize", runCharacterize}, {"validate", runValidate}, {"inspect", runInspect},
                    {"convert", runConvert},           {"templates", runTemplates}, {"bones", runBones}};
    for (const auto& command : commands)
    {
        if (name == QLatin1String(command.name))
            return command.run;
    }
    return nullptr;
}

// Assimp allocates and frees buffers of hundreds of kilobytes to megabytes while it reads a file. glibc would map
// each from the kernel and unmap it on release, paying the page faults again for the next; from the heap, the pages
// are reused. A batch process is short-lived, so holding on to them until it ends costs nothing (the trim threshold
// at twice the mapping one is glibc's own rule when it adapts them itself).
void ReuseLargeAllocations()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 64 << 20);
    mallopt(M_TRIM_THRESHOLD, 128 << 20);
#endif
}
} // namespace

int RunZelkin(int argc, char** argv)
{
    ReuseLargeAllocations();
    qInstallMessageHandler(DropDiagnostics);
    // No QCoreApplication: nothing here needs an event loop, and setting one up (the C library's locale files
    // among it) is a measurable part of a batch run.
    QStringList arguments;
    for (int index = 1; index < argc; ++index)
        arguments.append(QString::fromLocal8Bit(argv[index]));
    if (arguments.isEmpty() || arguments.first() == QLatin1String("--help") || arguments.first() == QLatin1String("-h"))
    {
        std::fputs(Usage, arguments.isEmpty() ? stderr : stdout);
        return arguments.isEmpty() ? CliError::BadInput : 0;
    }
    if (arguments.first() == QLatin1String("--version"))
    {
        std::printf("zelkin %s (%s, Qt %s)\n", ZELKIN_VERSION_TEXT, qPrintable(SceneImporter::ReaderVersion()),
                    qVersion());
        return 0;
    }
    const QString name = arguments.takeFirst();
    const Command run = Find(name);
    return run != nullptr ? run(arguments) : fail(QStringLiteral("unknown command \"%1\" (see zelkin --help)").arg(name));
}
