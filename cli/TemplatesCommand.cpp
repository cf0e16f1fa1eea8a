#include "TemplatesCommand.h"

#include <cstdio>

#include <QDir>
#include <QFileInfo>

#include <zelkin/MappingTemplate.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

#include "CliError.h"
#include "CommandLine.h"

namespace
{
bool IsShipped(const QString& name)
{
    return QFileInfo::exists(QDir(TemplateLibrary::ShippedDirectory()).filePath(name + QStringLiteral(".xml")));
}

// A user template is listed even when it is broken, with the reason, so the user sees why it is never chosen.
QString Describe(const TemplateLibrary& library, const QString& name)
{
    if (!library.IsUserTemplate(name))
        return QStringLiteral("  %1").arg(name);
    QString note = IsShipped(name) ? QStringLiteral(" (replaces the shipped one)") : QString();
    MappingTemplate loaded;
    QString problem;
    if (!library.Load(name, loaded, &problem))
        note += QStringLiteral(" (cannot be read: %1)").arg(problem.simplified());
    return QStringLiteral("  %1%2").arg(name, note);
}
} // namespace

int runTemplates(const QStringList& arguments)
{
    CommandLine parsed(QStringLiteral("zelkin templates [options]"),
                       QStringLiteral("Lists the shipped mapping templates and the user's own, which live in the "
                                      "\"template\" folder beside the per-user configuration; says which folder it "
                                      "reads, and why a user template that cannot be read is never used."),
                       {});
    if (!parsed.Parse(arguments))
        return parsed.Refuse();
    if (!parsed.Positionals().isEmpty())
        return fail(QStringLiteral("templates takes no arguments (see zelkin templates --help)"));

    const TemplateLibrary library(UserConfiguration::TemplateDirectory());
    QStringList shipped;
    QStringList user;
    for (const QString& name : library.Names())
        (library.IsUserTemplate(name) ? user : shipped).append(Describe(library, name));
    std::printf("Shipped templates:\n%s\n", qPrintable(shipped.join(QLatin1Char('\n'))));
    std::printf("User templates in %s:\n%s\n", qPrintable(QDir::toNativeSeparators(library.UserDirectory())),
                user.isEmpty() ? "  (none)" : qPrintable(user.join(QLatin1Char('\n'))));
    return 0;
}
