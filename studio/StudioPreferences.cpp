#include "StudioPreferences.h"

#include <QSettings>

#include "SceneImporter.h"

namespace
{
const QString kReading = QStringLiteral("import/readingTimeLimitSeconds");
const QString kAutosave = QStringLiteral("autosave/intervalMinutes");

int ReadInRange(const QSettings& settings, const QString& key, int maximum, int fallback)
{
    bool isNumber = false;
    const int value = settings.value(key, fallback).toInt(&isNumber);
    return isNumber && value >= 0 && value <= maximum ? value : fallback;
}
} // namespace

StudioPreferences::StudioPreferences(const QString& fileName)
    : mFileName(fileName)
{
    const QSettings settings(mFileName, QSettings::IniFormat);
    mReadingTimeLimit = ReadInRange(settings, kReading, MaxReadingSeconds, SceneImporter::DefaultTimeLimit);
    mAutosaveMinutes = ReadInRange(settings, kAutosave, MaxAutosaveMinutes, DefaultAutosaveMinutes);
}

bool StudioPreferences::Set(int readingTimeLimit, int autosaveMinutes)
{
    mReadingTimeLimit = readingTimeLimit;
    mAutosaveMinutes = autosaveMinutes;
    QSettings settings(mFileName, QSettings::IniFormat);
    settings.setValue(kReading, readingTimeLimit);
    settings.setValue(kAutosave, autosaveMinutes);
    settings.sync();
    return settings.status() == QSettings::NoError;
}
