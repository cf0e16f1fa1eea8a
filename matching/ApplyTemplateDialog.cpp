#include <zelkin/ApplyTemplateDialog.h>

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <zelkin/TemplateLibrary.h>

namespace
{
constexpr int NameRole = Qt::UserRole;
constexpr int AutomaticRole = Qt::UserRole + 1;
} // namespace

ApplyTemplateDialog::ApplyTemplateDialog(const TemplateLibrary& library, NameMatcher::MatchType type,
                                         const QString& prefix, int selectedBones, QWidget* parent)
    : QDialog(parent)
    , mTemplates(new QListWidget(this))
    , mRecommendation(new QLabel(this))
    , mMatchType(new QComboBox(this))
    , mScopes(new QButtonGroup(this))
    , mPrefix(new QLineEdit(prefix, this))
    , mSelectedBones(selectedBones)
{
    setWindowTitle(tr("Apply Mapping Template"));
    setModal(true);

    auto* listLabel = new QLabel(tr("&Map by:"), this);
    listLabel->setBuddy(mTemplates);
    FillTemplates(library);
    mRecommendation->setWordWrap(true);
    mRecommendation->hide();

    mMatchType->addItem(MatchTypeName(NameMatcher::Suffix), int(NameMatcher::Suffix));
    mMatchType->addItem(MatchTypeName(NameMatcher::Contains), int(NameMatcher::Contains));
    mMatchType->setCurrentIndex(mMatchType->findData(int(type)));
    mMatchType->setToolTip(tr("Suffix: a bone matches a node when its name ends with the node's pattern.\n"
                              "Contains: the longest pattern found anywhere in the name wins."));
    auto* matchForm = new QFormLayout;
    matchForm->addRow(tr("&Match type:"), mMatchType);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    mOk = buttons->button(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &ApplyTemplateDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ApplyTemplateDialog::reject);
    connect(mTemplates, &QListWidget::currentItemChanged, this, &ApplyTemplateDialog::UpdateState);
    connect(mTemplates, &QListWidget::itemActivated, this, &ApplyTemplateDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(listLabel);
    layout->addWidget(mTemplates, 1);
    layout->addWidget(mRecommendation);
    layout->addLayout(matchForm);
    layout->addWidget(CreateScopeBox());
    layout->addWidget(buttons);

    if (mTemplates->count() > 0)
        mTemplates->setCurrentRow(0);
    mTemplates->setFocus();
    UpdateState();
}

void ApplyTemplateDialog::FillTemplates(const TemplateLibrary& library)
{
    auto* automatic = new QListWidgetItem(tr("Automatic (from the skeleton)"), mTemplates);
    automatic->setData(AutomaticRole, true);
    automatic->setToolTip(tr("Finds the humanoid from the skeleton's shape first and its bone names second; no "
                             "template has to spell the names."));
    QFont font = automatic->font();
    font.setBold(true);
    automatic->setFont(font);
    for (const QString& name : library.Names())
    {
        auto* item = new QListWidgetItem(name, mTemplates);
        item->setData(NameRole, name);
        // The user's own file hides a shipped template of that name; say which one will be read.
        if (library.IsUserTemplate(name))
        {
            item->setText(tr("%1 (user template)").arg(name));
            item->setToolTip(library.PathOf(name));
        }
    }
}

QWidget* ApplyTemplateDialog::CreateScopeBox()
{
    auto* box = new QGroupBox(tr("Bones to match"), this);
    auto* all = new QRadioButton(tr("Match all bones with prefix:"), box);
    auto* selected = new QRadioButton(tr("Match only selected bones"), box);
    mScopes->addButton(all, AllWithPrefix);
    mScopes->addButton(selected, SelectedOnly);
    all->setChecked(true);
    mPrefix->setPlaceholderText(tr("(none)"));
    mPrefix->setToolTip(tr("Only bones whose names start with this text are matched; the text and one delimiter after "
                           "it are left out when names are compared."));
    connect(mScopes, &QButtonGroup::idClicked, this, &ApplyTemplateDialog::UpdateState);

    auto* prefixRow = new QHBoxLayout;
    prefixRow->addWidget(all);
    prefixRow->addWidget(mPrefix, 1);
    auto* layout = new QVBoxLayout(box);
    layout->addLayout(prefixRow);
    layout->addWidget(selected);
    return box;
}

bool ApplyTemplateDialog::SelectTemplate(const QString& name)
{
    for (int row = 0; row < mTemplates->count(); ++row)
    {
        if (mTemplates->item(row)->data(NameRole).toString() == name)
        {
            mTemplates->setCurrentRow(row);
            return true;
        }
    }
    return false;
}

void ApplyTemplateDialog::Recommend(const QString& name, const QString& reason)
{
    if (SelectTemplate(name))
        ShowRecommendation(reason);
}

void ApplyTemplateDialog::RecommendAutomatic(const QString& reason)
{
    mTemplates->setCurrentRow(0);
    ShowRecommendation(reason);
}

void ApplyTemplateDialog::ShowRecommendation(const QString& reason)
{
    mRecommendation->setText(reason);
    mRecommendation->setVisible(!reason.isEmpty());
}

bool ApplyTemplateDialog::IsAutomatic() const
{
    const QListWidgetItem* item = mTemplates->currentItem();
    return item != nullptr && item->data(AutomaticRole).toBool();
}

QString ApplyTemplateDialog::GetTemplateName() const
{
    const QListWidgetItem* item = mTemplates->currentItem();
    return item != nullptr ? item->data(NameRole).toString() : QString();
}

NameMatcher::MatchType ApplyTemplateDialog::GetMatchType() const
{
    return NameMatcher::MatchType(mMatchType->currentData().toInt());
}

ApplyTemplateDialog::Scope ApplyTemplateDialog::GetScope() const
{
    return mScopes->checkedId() == SelectedOnly ? SelectedOnly : AllWithPrefix;
}

QString ApplyTemplateDialog::GetPrefix() const
{
    return GetScope() == AllWithPrefix ? mPrefix->text().trimmed() : QString();
}

QRadioButton* ApplyTemplateDialog::GetScopeButton(Scope scope) const
{
    return qobject_cast<QRadioButton*>(mScopes->button(scope));
}

QString ApplyTemplateDialog::MatchTypeName(NameMatcher::MatchType type)
{
    return type == NameMatcher::Contains ? QStringLiteral("Contains") : QStringLiteral("Suffix");
}

void ApplyTemplateDialog::UpdateState()
{
    // The skeleton's shape needs neither a match type nor a prefix.
    mMatchType->setEnabled(!IsAutomatic());
    mPrefix->setEnabled(GetScope() == AllWithPrefix && !IsAutomatic());
    mOk->setEnabled(mTemplates->currentItem() != nullptr);
}

void ApplyTemplateDialog::accept()
{
    if (!IsAutomatic() && GetTemplateName().isEmpty())
        return;
    if (GetScope() == SelectedOnly && mSelectedBones <= 0)
    {
        // The dialog stays open, so the user can pick the other scope or cancel and select bones.
        QMessageBox::warning(this, tr("Match Error"),
                             tr("You must select at least one bone in the skeleton\nbefore you can use a mapping "
                                "template."),
                             QMessageBox::Ok);
        return;
    }
    QDialog::accept();
}
