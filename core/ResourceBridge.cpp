#include <zelkin/ResourceBridge.h>

#include <QFileInfo>

#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

namespace
{
const QString TemplateFolder = QStringLiteral("template");
} // namespace

bool ResourceBridge::IsUnset(const QDir& directory)
{
    // QDir turns an empty path into ".", so only a "." that was never asked for counts as unset.
    return directory.path() == QLatin1String(".");
}

QString ResourceBridge::GetTemplateDirectory() const
{
    return QFileInfo(mConfigurationFile).absolutePath() + QLatin1Char('/') + TemplateFolder;
}

TemplateLibrary ResourceBridge::GetTemplates() const
{
    return TemplateLibrary(GetTemplateDirectory());
}

QString ResourceBridge::GetDataDirectory() const
{
    return mDataDirectory;
}

bool ResourceBridge::SaveConfiguration(QString* error)
{
    ConfigDocument& document = mConfiguration->Document();
    if (!document.IsModified())
        return true;
    if (document.Save(mConfigurationFile))
        return true;
    if (error != nullptr)
        *error = document.ErrorString();
    return false;
}
