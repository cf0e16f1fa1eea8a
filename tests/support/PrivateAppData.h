#pragma once

#include <QByteArray>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Points APPDATA at a folder of the test program's own, so the panel's per-user configuration and templates never
// touch the real ones. Register once per program:
//   const auto* const appData = testing::AddGlobalTestEnvironment(new PrivateAppData);
class PrivateAppData : public testing::Environment
{
public:
    void SetUp() override
    {
        ASSERT_TRUE(mFolder.isValid());
        qputenv("APPDATA", QFile::encodeName(mFolder.path()));
    }

    // The folder that holds "config/characterization_tool.xml" and "config/template".
    static QString ToolFolder() { return qEnvironmentVariable("APPDATA") + QStringLiteral("/Morvane"); }

    // Starts a test from an empty configuration.
    static void Clear() { QDir(ToolFolder()).removeRecursively(); }

private:
    QTemporaryDir mFolder;
};
