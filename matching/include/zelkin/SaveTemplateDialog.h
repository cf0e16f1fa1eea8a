#pragma once

#include <QDialog>
#include <QString>

#include <zelkin/CharacterizationExport.h>

class QLineEdit;
class QPushButton;
class TemplateLibrary;

// Asks for the name of a template to extract from the current characterization and the prefix to take off its bone
// names. OK refuses names that would leave the template folder and asks before replacing a template of that name.
class ZELKIN_CHARACTERIZATION_EXPORT SaveTemplateDialog : public QDialog
{
    Q_OBJECT

public:
    // The library must outlive the dialog.
    SaveTemplateDialog(const TemplateLibrary& library, const QString& name, const QString& prefix,
                       QWidget* parent = nullptr);

    QString GetTemplateName() const;
    QString GetPrefix() const;
    QLineEdit* GetNameEdit() const { return mName; }
    QLineEdit* GetPrefixEdit() const { return mPrefix; }

    // A plain file name: not empty, no "/" or "\", no "..", no leading dot, no control character.
    static bool IsValidName(const QString& name);

public slots:
    void accept() override;

private slots:
    void UpdateState();

private:
    const TemplateLibrary& mLibrary;
    QLineEdit* mName;
    QLineEdit* mPrefix;
    QPushButton* mOk = nullptr;
};
