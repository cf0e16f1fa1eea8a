#include <zelkin/CharacterTool.h>

#include <algorithm>
#include <vector>

#include <QAction>
#include <QDebug>
#include <QDir>
#include <QVBoxLayout>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>
#include <zelkin/ResourceBridge.h>

#include "CharacterToolTabWidgetNoTabBar.h"
#include "DiagramWidget.h"
#include "NameMatchWidget.h"
#include "PropertyView.h"
#include "ReadablePalette.h"

namespace
{
QString VersionText()
{
    return QStringLiteral(ZELKIN_VERSION_TEXT);
}

constexpr int MinimumPanelWidth = 262;
constexpr int FirstInlineRoll = 41;
constexpr int LastInlineRoll = 48;
constexpr int FirstLeafRoll = 172; // level 1, same limb order as the in-line rolls

QDir DirectoryOf(const char* path)
{
    return QDir(path != nullptr ? QString::fromLocal8Bit(path) : QString());
}
} // namespace

CharacterTool::CharacterTool(bool batchMode, const char* dataDirectory, const char* configurationDirectory,
                             QWidget* parent, IDCCHub* hub)
    : QWidget(parent)
    , mHub(hub)
    , mBatchMode(batchMode)
{
    if (parent == nullptr)
        return;
    if (mHub != nullptr)
        mHub->setCharacterTool(this);
    mBridge = std::make_unique<ResourceBridge>(DirectoryOf(dataDirectory), DirectoryOf(configurationDirectory));
    mModel = new CharacterizationModel(mBridge.get(), mHub, this);
    connect(mModel, SIGNAL(ModelChanged()), this, SLOT(SyncOnModel()));
    BuildPages();
    ShareMirrorPairs();
    CreateCommandActions();
    emit mModel->ModelChanged();
}

CharacterTool::~CharacterTool()
{
    if (mHub != nullptr && mHub->GetCharacterTool() == this)
        mHub->setCharacterTool(nullptr);
    // The views draw from the bridge's pictures and listen to the model: both must outlive them.
    delete mPages;
    delete mModel;
}

void CharacterTool::BuildPages()
{
    mPages = new CharacterToolTabWidgetNoTabBar(this);

    QWidget* figurePage = new QWidget(mPages);
    mDiagram = new DiagramWidget(figurePage, mBridge.get(), mHub, mModel, this);
    mFigureProperties = new PropertyView(figurePage, mHub, mModel);
    mPages->addTab(CreatePage(mDiagram, mFigureProperties), tr("Figure"));

    QWidget* namePage = new QWidget(mPages);
    mNameMatch = new NameMatchWidget(namePage, mHub, mBridge.get(), mModel, this);
    mNameMatch->setMinimumHeight(mDiagram->minimumHeight());
    mNameMatchProperties = new PropertyView(namePage, mHub, mModel);
    mPages->addTab(CreatePage(mNameMatch, mNameMatchProperties), tr("Name Match"));

    setCurrentViewTab(FigurePage);
    mPages->setMinimumWidth(MinimumPanelWidth);
    mPages->setMinimumHeight(2 * mDiagram->minimumHeight());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mPages);
}

QWidget* CharacterTool::CreatePage(QWidget* view, PropertyView* properties)
{
    QWidget* page = view->parentWidget();
    page->setAutoFillBackground(true);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(1, 1, 1, 1);
    // The figure takes clicks, not the keyboard; the name match tree needs the keyboard for editing.
    if (qobject_cast<DiagramWidget*>(view) != nullptr)
        view->setFocusPolicy(Qt::NoFocus);
    properties->setFocusPolicy(Qt::NoFocus);
    layout->addWidget(view, 1);
    layout->addWidget(properties);
    return page;
}

void CharacterTool::CreateCommandActions()
{
    const auto add = [this](const QString& text, const QKeySequence& keys, const char* slot) {
        auto* action = new QAction(text, this);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(action, SIGNAL(triggered()), this, slot);
        addAction(action);
        return action;
    };
    add(tr("Save Skeleton Definition..."), QKeySequence::Save, SLOT(OnSave()));
    add(tr("Load Skeleton Definition..."), QKeySequence::Open, SLOT(OnLoad()));
    add(tr("Apply Mapping Template..."), QKeySequence(Qt::CTRL | Qt::Key_T), SLOT(AutoMatch()));
    add(tr("Extract Mapping Template..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T), SLOT(ExtractTemplate()));
    add(tr("Mirror Configuration..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_M), SLOT(ConfigMirror()));
    mMirrorAction = add(tr("Mirror Matching"), QKeySequence(Qt::CTRL | Qt::Key_M), SLOT(ToggleMirrorMode()));
    mMirrorAction->setCheckable(true);
    mLockAction = add(tr("Lock Characterization"), QKeySequence(Qt::CTRL | Qt::Key_L), SLOT(ToggleEditMode()));
    mLockAction->setCheckable(true);
    auto* nextPage = new QAction(tr("Switch Page"), this);
    nextPage->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Tab));
    nextPage->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(nextPage, &QAction::triggered, this, [this] { setCurrentViewTab(1 - currentViewTab()); });
    addAction(nextPage);
}

void CharacterTool::ShareMirrorPairs()
{
    mDiagram->GetAssignment().SetMirrorMatcher(mModel->GetMirrorMatcher());
    mNameMatch->GetAssignment().SetMirrorMatcher(mModel->GetMirrorMatcher());
}

QString CharacterTool::GetToolName()
{
    return QStringLiteral("Zelkin Characterization Tool Component");
}

const QString& CharacterTool::GetCompactName()
{
    static const QString name = QStringLiteral("ZELCharacterizationTool") + VersionText().section(QLatin1Char('.'), 0, 0);
    return name;
}

double CharacterTool::GetToolVersion()
{
    const QString version = VersionText();
    return version.left(version.lastIndexOf(QLatin1Char('.'))).toDouble();
}

Characterization* CharacterTool::GetCharacterization() const
{
    return mModel != nullptr ? mModel->GetCurrentCharacterization().get() : nullptr;
}

int CharacterTool::currentViewTab() const
{
    return mPages != nullptr ? mPages->currentIndex() : -1;
}

void CharacterTool::setCurrentViewTab(int index)
{
    if (mPages != nullptr && index >= 0 && index < mPages->count())
        mPages->setCurrentIndex(index);
}

PropertyView* CharacterTool::GetPropertyView(int page) const
{
    return page == FigurePage ? mFigureProperties : page == NameMatchPage ? mNameMatchProperties : nullptr;
}

void CharacterTool::AddAction(QAction* action)
{
    if (action == nullptr || mModel == nullptr)
        return;
    if (action->shortcutContext() == Qt::WindowShortcut)
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(action);
}

QSize CharacterTool::sizeHint() const
{
    if (mPages == nullptr)
        return QWidget::sizeHint();
    // Wide enough for the property view's labels and values, tall enough for the figure over them.
    return QSize(std::max(mPages->minimumWidth(), mPages->sizeHint().width()), mPages->minimumHeight());
}

bool CharacterTool::CreateCharacterization(const QString& name)
{
    return mModel != nullptr && mModel->CreateCharacterization(name) != nullptr;
}

bool CharacterTool::SetCharacterization(const Characterization* characterization)
{
    return mModel != nullptr && mModel->SetCurrentCharacterization(mModel->IndexOf(characterization));
}

bool CharacterTool::SetCharacterization(int index)
{
    return mModel != nullptr && mModel->SetCurrentCharacterization(index);
}

void CharacterTool::OnDelete()
{
    DoDelete(true);
}

bool CharacterTool::DoDelete(bool confirm)
{
    Characterization* current = GetCharacterization();
    if (current == nullptr)
        return false;
    if (confirm && mConfirmDelete &&
        ShowMessage(QMessageBox::Question, tr("Delete Skeleton Definition"),
                    tr("Are you sure you want to delete the current Skeleton Definition?"),
                    QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) != QMessageBox::Yes)
        return false;
    const QString name = current->GetName();
    mModel->DeleteCharacterization(mModel->IndexOf(current));
    if (mHub != nullptr)
        mHub->UpdateDccDeleteCharacter(name);
    return true;
}

void CharacterTool::ToggleEditMode()
{
    if (mModel != nullptr)
        DoToggleEditMode(!mModel->IsLocked());
}

bool CharacterTool::DoToggleEditMode(bool readOnly)
{
    if (GetCharacterization() == nullptr)
        return false;
    if (readOnly == mModel->IsLocked())
        return true;
    if (!readOnly)
    {
        mModel->SetEditMode(false);
        return true;
    }
    const ValidationState state = mModel->GetValidationState();
    if (state != Valid && state != Warning)
    {
        ShowMessage(QMessageBox::Warning, tr("Validation Warning"),
                    tr("Your characterization is not yet valid.\nOnly valid characterizations can be locked."),
                    QMessageBox::Ok, QMessageBox::Ok);
        SyncOnModel(); // a checkable lock action must not stay checked
        return false;
    }
    const std::vector<int> unsync = mModel->GetUnsyncNodes();
    if (!unsync.empty() &&
        ShowMessage(QMessageBox::Warning, tr("Validation Warning"),
                    tr("One or more bones in the current characterization cannot be found in the skeleton.\n"
                       "All invalid nodes will be cleared from the characterization."),
                    QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok) != QMessageBox::Ok)
    {
        SyncOnModel();
        return false;
    }
    mModel->SetEditMode(true, unsync);
    return true;
}

void CharacterTool::ToggleMirrorMode()
{
    if (mModel != nullptr)
        DoToggleMirrorMode(!mModel->IsMirrorMode());
}

void CharacterTool::DoToggleMirrorMode(bool mirror)
{
    if (mModel == nullptr)
        return;
    mModel->SetMirrorMode(mirror);
    SyncOnModel();
}

void CharacterTool::ClearCharacterization()
{
    if (mModel == nullptr)
        return;
    // The model clears whatever it is asked to; the user's command respects the lock as the views do.
    if (mModel->IsLocked())
    {
        ShowError(tr("Characterization Locked"),
                  tr("The current characterization is locked.\nYou must unlock it before you can edit its bone "
                     "mappings."));
        return;
    }
    mModel->ClearAll();
}

void CharacterTool::SyncOnModel()
{
    const Characterization* current = GetCharacterization();
    setWindowTitle(current != nullptr ? current->GetName() : QString());
    setStatusTip(mModel != nullptr ? mModel->GetLastOperationText() : QString());
    if (mMirrorAction != nullptr)
        mMirrorAction->setChecked(mModel->IsMirrorMode());
    if (mLockAction != nullptr)
        mLockAction->setChecked(mModel->IsLocked());
}

int CharacterTool::DeprecateInlineRollBones()
{
    const Characterization* current = GetCharacterization();
    if (current == nullptr || current->IsLocked())
        return 0;
    std::vector<CharacterizationModel::Assignment> rewrites;
    int rewritten = 0;
    for (int inlineRoll = FirstInlineRoll; inlineRoll <= LastInlineRoll; ++inlineRoll)
    {
        const QString bone = current->GetBone(inlineRoll);
        if (bone.isEmpty())
            continue;
        ++rewritten;
        rewrites.emplace_back(inlineRoll, QString());
        const int leaf = FirstLeafRoll + (inlineRoll - FirstInlineRoll);
        if (!current->IsAssigned(leaf))
            rewrites.emplace_back(leaf, bone);
    }
    if (rewritten > 0)
        mModel->AssignBones(rewrites);
    return rewritten;
}

int CharacterTool::ExecDialog(QDialog& dialog)
{
    // Its disabled fields (a match type that does not apply, say) as readable as the panel's.
    dialog.setPalette(ReadablePalette(dialog.palette()));
    return dialog.exec();
}

QMessageBox::StandardButton CharacterTool::ShowMessage(QMessageBox::Icon icon, const QString& title,
                                                       const QString& text, QMessageBox::StandardButtons buttons,
                                                       QMessageBox::StandardButton batchAnswer)
{
    if (mBatchMode)
    {
        qWarning().noquote() << title << ":" << text;
        return batchAnswer;
    }
    QMessageBox box(icon, title, text, buttons, this);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

void CharacterTool::ShowError(const QString& title, const QString& text)
{
    ShowMessage(QMessageBox::Warning, title, text, QMessageBox::Ok, QMessageBox::Ok);
}
