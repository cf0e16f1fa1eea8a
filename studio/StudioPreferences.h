#pragma once

#include <QString>

// The studio's own settings, in a small file beside its recent files: how long a skeleton may take to read, and how
// often the open work is autosaved. Values out of range read as the defaults.
class StudioPreferences
{
public:
    static constexpr int DefaultAutosaveMinutes = 3;
    static constexpr int MaxAutosaveMinutes = 60;
    static constexpr int MaxReadingSeconds = 3600;

    explicit StudioPreferences(const QString& fileName);

    // Seconds; 0 for no limit.
    int ReadingTimeLimit() const { return mReadingTimeLimit; }
    // Minutes; 0 for never.
    int AutosaveMinutes() const { return mAutosaveMinutes; }
    // Both at once, written back at once; false when the file cannot be written.
    bool Set(int readingTimeLimit, int autosaveMinutes);

private:
    QString mFileName;
    int mReadingTimeLimit;
    int mAutosaveMinutes;
};
