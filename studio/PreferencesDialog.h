#pragma once

#include <QDialog>

class QSpinBox;

// Edit > Preferences: the reading time limit and the autosave interval.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    PreferencesDialog(int readingTimeLimit, int autosaveMinutes, QWidget* parent = nullptr);

    int ReadingTimeLimit() const;
    int AutosaveMinutes() const;

private:
    QSpinBox* mReading = nullptr;
    QSpinBox* mAutosave = nullptr;
};
