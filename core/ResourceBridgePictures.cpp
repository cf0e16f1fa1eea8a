// The bridge is made and destroyed with the figure's picture cache, which needs Qt's GUI library; the rest of the
// bridge (templates, configuration) is in ResourceBridge.cpp, so a host without the panel links none of this.
#include <zelkin/ResourceBridge.h>

#include <zelkin/UserConfiguration.h>

#include "PictureCache.h"

namespace
{
const QString ConfigurationFile = QStringLiteral("config/characterization_tool.xml");
} // namespace

ResourceBridge::ResourceBridge(const QDir& dataDirectory, const QDir& configurationDirectory)
    : mDataDirectory(IsUnset(dataDirectory) ? QDir::currentPath() : dataDirectory.absolutePath())
    , mConfigurationFile(IsUnset(configurationDirectory) ? UserConfiguration::ConfigFilePath()
                                                          : configurationDirectory.absoluteFilePath(ConfigurationFile))
    , mPictures(std::make_unique<PictureCache>())
    , mConfiguration(std::make_unique<UserConfiguration>(mConfigurationFile))
{
    // Set up once for the user; a folder that goes missing later is reported when a template is extracted.
    QDir().mkpath(GetTemplateDirectory());
}

ResourceBridge::~ResourceBridge() = default;
