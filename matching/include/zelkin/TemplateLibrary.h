#pragma once

#include <QString>
#include <QStringList>

#include <zelkin/CharacterizationExport.h>

class MappingTemplate;

// The mapping templates on offer: those shipped inside the library and the user's own "*.xml" files in the
// template folder. A template is named by its file name without ".xml"; a user template of the same name as a
// shipped one replaces it.
class ZELKIN_CHARACTERIZATION_EXPORT TemplateLibrary
{
public:
    static QString ShippedDirectory(); // ":/zelkin/templates"

    explicit TemplateLibrary(const QString& userDirectory);

    const QString& UserDirectory() const { return mUserDirectory; }
    // Sorted without regard to case.
    QStringList Names() const;
    bool Contains(const QString& name) const;
    bool IsUserTemplate(const QString& name) const;
    // The file the name resolves to (user first), empty when there is none.
    QString PathOf(const QString& name) const;
    // Where a user template of this name is (or would be) stored.
    QString UserPathFor(const QString& name) const;

    bool Load(const QString& name, MappingTemplate& mappingTemplate, QString* error = nullptr) const;
    // Into the user folder, created when missing; an existing template of that name is replaced.
    bool Save(const QString& name, const MappingTemplate& mappingTemplate, QString* error = nullptr) const;

private:
    QString mUserDirectory;
};
