#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/UserConfiguration.h>

#include "MessageCapture.h"

namespace
{
// Points the per-user folders at a temporary directory for one test.
class UserConfigurationTest : public testing::Test
{
protected:
    void SetUp() override
    {
        mOldAppData = qgetenv("APPDATA");
        mOldXdg = qgetenv("XDG_CONFIG_HOME");
        qputenv("APPDATA", mDir.path().toLocal8Bit());
        qunsetenv("XDG_CONFIG_HOME");
    }

    void TearDown() override
    {
        Restore("APPDATA", mOldAppData);
        Restore("XDG_CONFIG_HOME", mOldXdg);
    }

    static void Restore(const char* name, const QByteArray& value)
    {
        if (value.isNull())
            qunsetenv(name);
        else
            qputenv(name, value);
    }

    void WriteConfig(const QByteArray& bytes) const
    {
        QDir().mkpath(QFileInfo(UserConfiguration::ConfigFilePath()).absolutePath());
        QFile file(UserConfiguration::ConfigFilePath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir mDir;
    QByteArray mOldAppData;
    QByteArray mOldXdg;
};
} // namespace

TEST_F(UserConfigurationTest, PathsFollowAppDataThenXdgThenHome)
{
    EXPECT_EQ(UserConfiguration::ConfigFilePath(), mDir.path() + "/Morvane/config/characterization_tool.xml");
    EXPECT_EQ(UserConfiguration::TemplateDirectory(), mDir.path() + "/Morvane/config/template");
    qunsetenv("APPDATA");
    qputenv("XDG_CONFIG_HOME", "/xdg/home");
    EXPECT_EQ(UserConfiguration::ConfigFilePath(), "/xdg/home/Morvane/config/characterization_tool.xml");
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(UserConfiguration::ConfigFilePath(), QDir::homePath() + "/.config/Morvane/config/characterization_tool.xml");
}

TEST_F(UserConfigurationTest, NoFileMeansTheDefaultsAndNothingIsWritten)
{
    {
        UserConfiguration configuration;
        EXPECT_EQ(configuration.MatchType(), NameMatcher::Suffix);
        EXPECT_EQ(configuration.Delimiters(), QStringList({"", " ", ":", "_"}));
        EXPECT_TRUE(configuration.Document().ReadPairs("mirror_list", "mirror").isEmpty());
    }
    EXPECT_FALSE(QFile::exists(UserConfiguration::ConfigFilePath()));
}

TEST_F(UserConfigurationTest, MatchTypeIsContainsOnlyForTheExactWord)
{
    const struct
    {
        QByteArray text;
        NameMatcher::MatchType expected;
    } cases[] = {{"Contains", NameMatcher::Contains}, {"contains", NameMatcher::Suffix},
                 {"Suffix", NameMatcher::Suffix},     {"", NameMatcher::Suffix},
                 {"Prefix", NameMatcher::Suffix}};
    for (const auto& c : cases)
    {
        WriteConfig("<config_root><name_match><match_type value=\"" + c.text + "\"/></name_match></config_root>");
        EXPECT_EQ(UserConfiguration().MatchType(), c.expected) << c.text.constData();
    }
}

TEST_F(UserConfigurationTest, ConfiguredDelimitersAreAppendedOnce)
{
    WriteConfig("<config_root><name_match><delimiter_list>"
                "<item value=\"_\"/><item value=\"-\"/><item value=\"-\"/><item value=\"::\"/><item value=\"\"/>"
                "</delimiter_list></name_match></config_root>");
    EXPECT_EQ(UserConfiguration().Delimiters(), QStringList({"", " ", ":", "_", "-", "::"}));
}

TEST_F(UserConfigurationTest, ABrokenFileGivesTheDiagnosticAndTheDefaults)
{
    WriteConfig("<config_root><name_match><match_type value=\"Contains\"></name_match>");
    MessageCapture messages;
    UserConfiguration configuration;
    ASSERT_EQ(messages.Warnings().size(), 1);
    EXPECT_TRUE(messages.Warnings().first().startsWith("Error in parsing " + UserConfiguration::ConfigFilePath() + " "));
    EXPECT_EQ(configuration.MatchType(), NameMatcher::Suffix);
    EXPECT_EQ(configuration.Delimiters().size(), 4);
}

TEST_F(UserConfigurationTest, WrittenBackOnlyWhenChanged)
{
    const QByteArray original = "<config_root><name_match><match_type value=\"Suffix\"/></name_match></config_root>";
    WriteConfig(original);
    {
        UserConfiguration configuration;
        configuration.SetMatchType(NameMatcher::Suffix); // no change
    }
    QFile file(UserConfiguration::ConfigFilePath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), original);
    file.close();
    {
        UserConfiguration configuration;
        configuration.SetMatchType(NameMatcher::Contains);
    }
    EXPECT_EQ(UserConfiguration().MatchType(), NameMatcher::Contains);
}

TEST_F(UserConfigurationTest, AnUnwritableLocationIsSilentlyNotSaved)
{
    // A file where the configuration folder should be: nothing can be created below it.
    QFile blocker(mDir.filePath("Morvane"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    MessageCapture messages;
    {
        UserConfiguration configuration;
        configuration.SetMatchType(NameMatcher::Contains);
    }
    EXPECT_TRUE(messages.Warnings().isEmpty());
    EXPECT_TRUE(QFileInfo(mDir.filePath("Morvane")).isFile());
}
