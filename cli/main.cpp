#include <cstdio>

#include <QCoreApplication>

#include "CliError.h"
#include "ConvertCommand.h"
#include "InspectCommand.h"

namespace
{
const char* const Usage = "usage: zelkin COMMAND [ARGUMENTS]\n"
                          "\n"
                          "commands:\n"
                          "  inspect FILE.zelc [--json]         byte order, version, used nodes, limb flags, records\n"
                          "  convert IN OUT [--big-endian]      rewrite a .zelc stream in either byte order\n";
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.isEmpty() || arguments.first() == QLatin1String("--help") || arguments.first() == QLatin1String("-h"))
    {
        std::fputs(Usage, arguments.isEmpty() ? stderr : stdout);
        return arguments.isEmpty() ? CliError::BadInput : 0;
    }
    const QString command = arguments.takeFirst();
    if (command == QLatin1String("inspect"))
        return runInspect(arguments);
    if (command == QLatin1String("convert"))
        return runConvert(arguments);
    return fail(QStringLiteral("unknown command \"%1\" (see zelkin --help)").arg(command));
}
