#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

#include <zelkin/CharacterizationExport.h>
#include <zelkin/NameMatcher.h>

class QButtonGroup;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class TemplateLibrary;

// Asks how to map the skeleton: automatically from the skeleton itself (offered first), or by a mapping template
// with a match type, for all bones whose names start with a prefix or only the bones selected in the host. It
// only asks; the caller applies.
class ZELKIN_CHARACTERIZATION_EXPORT ApplyTemplateDialog : public QDialog
{
    Q_OBJECT

public:
    enum Scope
    {
        AllWithPrefix = 0,
        SelectedOnly = 1
    };

    // selectedBones: how many bones the host has selected; the selected-bones scope is refused with none.
    ApplyTemplateDialog(const TemplateLibrary& library, NameMatcher::MatchType type, const QString& prefix,
                        int selectedBones, QWidget* parent = nullptr);

    // False for a name the list does not hold.
    bool SelectTemplate(const QString& name);
    // Selects the template and says why under the list; an unknown name changes nothing.
    void Recommend(const QString& name, const QString& reason);
    // Selects the automatic entry and says what it found.
    void RecommendAutomatic(const QString& reason);

    // The automatic entry is chosen; there is no template name then.
    bool IsAutomatic() const;
    QString GetTemplateName() const;
    NameMatcher::MatchType GetMatchType() const;
    Scope GetScope() const;
    QString GetPrefix() const;

    QListWidget* GetTemplateList() const { return mTemplates; }
    QComboBox* GetMatchTypeBox() const { return mMatchType; }
    QRadioButton* GetScopeButton(Scope scope) const;
    QLineEdit* GetPrefixEdit() const { return mPrefix; }

    static QString MatchTypeName(NameMatcher::MatchType type);

public slots:
    void accept() override;

private slots:
    void UpdateState();

private:
    void FillTemplates(const TemplateLibrary& library);
    QWidget* CreateScopeBox();
    void ShowRecommendation(const QString& reason);

    QListWidget* mTemplates;
    QLabel* mRecommendation;
    QComboBox* mMatchType;
    QButtonGroup* mScopes;
    QLineEdit* mPrefix;
    QPushButton* mOk = nullptr;
    int mSelectedBones;
};
