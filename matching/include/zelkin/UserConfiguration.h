#pragma once

#include <QString>
#include <QStringList>

#include <zelkin/CharacterizationExport.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/NameMatcher.h>

// The per-user configuration document and the settings the tool reads from it.
// Opening reads the file (defaults when it is missing or broken); destruction writes it back when changed.
class ZELKIN_CHARACTERIZATION_EXPORT UserConfiguration
{
public:
    // "%1/Morvane/config/characterization_tool.xml", %1 being APPDATA when set, else XDG_CONFIG_HOME, else
    // ~/.config.
    static QString ConfigFilePath();
    // The "template" folder beside the configuration file.
    static QString TemplateDirectory();
    // "", " ", ":", "_" and then each configured extra not already present.
    static QStringList BuiltInDelimiters();

    explicit UserConfiguration(const QString& fileName = ConfigFilePath());
    ~UserConfiguration();
    UserConfiguration(const UserConfiguration&) = delete;
    UserConfiguration& operator=(const UserConfiguration&) = delete;

    ConfigDocument& Document() { return mDocument; }
    const ConfigDocument& Document() const { return mDocument; }

    QStringList Delimiters() const;
    // "Contains" means Contains; any other text, or none, means Suffix.
    NameMatcher::MatchType MatchType() const;
    void SetMatchType(NameMatcher::MatchType type);

    // Writes the document back when it changed; a file that cannot be written is silently left alone.
    void Save();

private:
    ConfigDocument mDocument;
};
