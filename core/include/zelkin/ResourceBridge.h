#pragma once

#include <memory>

#include <QDir>
#include <QString>

#include <zelkin/CharacterizationExport.h>

class PictureCache;
class TemplateLibrary;
class UserConfiguration;

// What the panel reads from outside itself: the figure's pictures (loaded lazily, each once), the per-user
// configuration document and the mapping template folder beside it.
class ZELKIN_CHARACTERIZATION_EXPORT ResourceBridge
{
public:
    // dataDirectory: where file dialogs open first (the host's project folder); the current folder when empty.
    // configurationDirectory: holds "config/characterization_tool.xml" and the "template" folder (made here when
    // missing); when empty, the per-user folder ("%1/Morvane" under APPDATA) is used.
    ResourceBridge(const QDir& dataDirectory, const QDir& configurationDirectory);
    ~ResourceBridge();
    ResourceBridge(const ResourceBridge&) = delete;
    ResourceBridge& operator=(const ResourceBridge&) = delete;

    // A QDir built from a string that is null or empty.
    static bool IsUnset(const QDir& directory);

    PictureCache& GetPictures() { return *mPictures; }
    UserConfiguration& GetConfiguration() { return *mConfiguration; }
    const UserConfiguration& GetConfiguration() const { return *mConfiguration; }
    QString GetConfigurationFile() const { return mConfigurationFile; }
    QString GetTemplateDirectory() const;
    TemplateLibrary GetTemplates() const;
    QString GetDataDirectory() const;

    // Writes the configuration back when it changed. False, with the reason, when the file cannot be written; the
    // previous file then stays as it was.
    bool SaveConfiguration(QString* error = nullptr);

private:
    QString mDataDirectory;
    QString mConfigurationFile;
    std::unique_ptr<PictureCache> mPictures;
    std::unique_ptr<UserConfiguration> mConfiguration;
};
