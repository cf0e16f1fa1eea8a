#include "PreferencesDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

#include "StudioPreferences.h"

PreferencesDialog::PreferencesDialog(int readingTimeLimit, int autosaveMinutes, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Preferences"));
    mReading = new QSpinBox(this);
    mReading->setRange(0, StudioPreferences::MaxReadingSeconds);
    mReading->setSuffix(tr(" s"));
    mReading->setSpecialValueText(tr("No limit"));
    mReading->setValue(readingTimeLimit);
    mReading->setToolTip(tr("A skeleton file whose reading takes longer is given up, and the studio says so."));
    mAutosave = new QSpinBox(this);
    mAutosave->setRange(0, StudioPreferences::MaxAutosaveMinutes);
    mAutosave->setSuffix(tr(" min"));
    mAutosave->setSpecialValueText(tr("Only before opening files"));
    mAutosave->setValue(autosaveMinutes);
    mAutosave->setToolTip(tr("Unsaved work is copied aside this often, and before every file is opened; after a "
                             "crash the studio offers it back."));

    auto* form = new QFormLayout;
    form->addRow(tr("&Reading time limit:"), mReading);
    form->addRow(tr("&Autosave every:"), mAutosave);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

int PreferencesDialog::ReadingTimeLimit() const
{
    return mReading->value();
}

int PreferencesDialog::AutosaveMinutes() const
{
    return mAutosave->value();
}
