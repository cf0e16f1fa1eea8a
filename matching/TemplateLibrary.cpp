#include <zelkin/TemplateLibrary.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <zelkin/MappingTemplate.h>

#include "ShippedTemplateTable.h"

namespace
{
const QString Extension = QStringLiteral(".xml");

QStringList TemplateNamesIn(const QString& directory)
{
    QStringList names;
    const QFileInfoList files =
        QDir(directory).entryInfoList({QStringLiteral("*.xml")}, QDir::Files | QDir::Readable, QDir::Name);
    for (const QFileInfo& file : files)
        names.append(file.completeBaseName());
    return names;
}

const ShippedTemplateTable::Template* Shipped(const QString& name)
{
    for (int index = 0; index < ShippedTemplateTable::Count; ++index)
        if (name == QLatin1String(ShippedTemplateTable::Templates[index].name))
            return &ShippedTemplateTable::Templates[index];
    return nullptr;
}

MappingTemplate FromTable(const ShippedTemplateTable::Template& shipped)
{
    MappingTemplate mappingTemplate;
    for (int index = 0; index < shipped.count; ++index)
    {
        const ShippedTemplateTable::Entry& entry = shipped.entries[index];
        mappingTemplate.SetEntry(entry.nodeId, QString::fromUtf8(entry.pattern), entry.useRoot);
    }
    return mappingTemplate;
}

// A name must stay a plain file name inside its folder.
bool IsUsableName(const QString& name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'))
           && name != QLatin1String(".") && name != QLatin1String("..");
}
} // namespace

QString TemplateLibrary::ShippedDirectory()
{
    // Registers the shipped templates also where the library is linked statically.
    static const bool registered = [] {
        Q_INIT_RESOURCE(zelkin_templates);
        return true;
    }();
    Q_UNUSED(registered);
    return QStringLiteral(":/zelkin/templates");
}

TemplateLibrary::TemplateLibrary(const QString& userDirectory) : mUserDirectory(userDirectory) {}

QStringList TemplateLibrary::Names() const
{
    QStringList names = TemplateNamesIn(mUserDirectory);
    for (int index = 0; index < ShippedTemplateTable::Count; ++index)
        names.append(QString::fromUtf8(ShippedTemplateTable::Templates[index].name));
    names.removeDuplicates();
    names.sort(Qt::CaseInsensitive);
    return names;
}

bool TemplateLibrary::Contains(const QString& name) const
{
    return !PathOf(name).isEmpty();
}

bool TemplateLibrary::IsUserTemplate(const QString& name) const
{
    return IsUsableName(name) && QFileInfo(UserPathFor(name)).isFile();
}

QString TemplateLibrary::PathOf(const QString& name) const
{
    if (!IsUsableName(name))
        return QString();
    if (IsUserTemplate(name))
        return UserPathFor(name);
    return Shipped(name) != nullptr ? ShippedDirectory() + QLatin1Char('/') + name + Extension : QString();
}

QString TemplateLibrary::UserPathFor(const QString& name) const
{
    return mUserDirectory + QLatin1Char('/') + name + Extension;
}

bool TemplateLibrary::Load(const QString& name, MappingTemplate& mappingTemplate, QString* error) const
{
    if (IsUserTemplate(name))
        return mappingTemplate.Load(UserPathFor(name), error);
    // The shipped ones from their table: the command line chooses among all of them on every run.
    const ShippedTemplateTable::Template* shipped = IsUsableName(name) ? Shipped(name) : nullptr;
    if (shipped == nullptr)
    {
        if (error)
            *error = QCoreApplication::translate("TemplateLibrary", "There is no template named %1.").arg(name);
        return false;
    }
    mappingTemplate = FromTable(*shipped);
    return true;
}

bool TemplateLibrary::Save(const QString& name, const MappingTemplate& mappingTemplate, QString* error) const
{
    if (!IsUsableName(name))
    {
        if (error)
            *error = QCoreApplication::translate("TemplateLibrary", "\"%1\" cannot be used as a template name.").arg(name);
        return false;
    }
    return mappingTemplate.Save(UserPathFor(name), error);
}
