#include <zelkin/UserConfiguration.h>

#include <QDir>
#include <QFileInfo>

namespace
{
const QString NameMatchSection = QStringLiteral("name_match");
const QString DelimiterKey = QStringLiteral("delimiter_list");
const QString MatchTypeKey = QStringLiteral("match_type");

// Index is the match type's value.
const QStringList MatchTypeNames = {QStringLiteral("Contains"), QStringLiteral("Suffix")};

QString ConfigBaseDirectory()
{
    const QString appData = qEnvironmentVariable("APPDATA");
    if (!appData.isEmpty())
        return appData;
    const QString xdg = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!xdg.isEmpty())
        return xdg;
    return QDir::homePath() + QStringLiteral("/.config");
}
} // namespace

QString UserConfiguration::ConfigFilePath()
{
    return QStringLiteral("%1/Morvane/%2").arg(ConfigBaseDirectory(), QStringLiteral("config/characterization_tool.xml"));
}

QString UserConfiguration::TemplateDirectory()
{
    return QFileInfo(ConfigFilePath()).absolutePath() + QStringLiteral("/template");
}

QStringList UserConfiguration::BuiltInDelimiters()
{
    return {QString(""), QStringLiteral(" "), QStringLiteral(":"), QStringLiteral("_")};
}

UserConfiguration::UserConfiguration(const QString& fileName)
{
    mDocument.Load(fileName);
}

UserConfiguration::~UserConfiguration()
{
    Save();
}

QStringList UserConfiguration::Delimiters() const
{
    QStringList delimiters = BuiltInDelimiters();
    for (const QString& extra : mDocument.ReadList(NameMatchSection, DelimiterKey))
        if (!delimiters.contains(extra, Qt::CaseSensitive))
            delimiters.append(extra);
    return delimiters;
}

NameMatcher::MatchType UserConfiguration::MatchType() const
{
    const int index = MatchTypeNames.indexOf(mDocument.ReadValue(NameMatchSection, MatchTypeKey));
    return index == NameMatcher::Contains ? NameMatcher::Contains : NameMatcher::Suffix;
}

void UserConfiguration::SetMatchType(NameMatcher::MatchType type)
{
    if (MatchType() != type || !mDocument.HasKey(NameMatchSection, MatchTypeKey))
        mDocument.WriteValue(NameMatchSection, MatchTypeKey, MatchTypeNames[type == NameMatcher::Contains ? 0 : 1]);
}

void UserConfiguration::Save()
{
    mDocument.SaveIfModified();
}
