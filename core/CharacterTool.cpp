#include <zelkin/CharacterTool.h>

#include <cstdlib>
#include <vector>

#include <QDebug>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>
#include <zelkin/StreamInfo.h>

#include "SolverCharacter.h"

namespace
{
QString VersionText()
{
    return QStringLiteral(ZELKIN_VERSION_TEXT);
}

constexpr int FirstInlineRoll = 41;
constexpr int LastInlineRoll = 48;
constexpr int FirstLeafRoll = 172; // level 1, same limb order as the in-line rolls

// Why the host's stream cannot be used, or empty when it can.
QString StreamProblem(const void* buffer, int32_t length, const QStringList& boneNames)
{
    if (buffer == nullptr || length <= 0)
        return QStringLiteral("it is empty");
    const StreamInfo info = StreamInfo::Read(buffer, length);
    if (!info.IsValid())
        return StreamInfo::Describe(info.GetProblem());
    if (boneNames.size() != ZELNodeCount)
        return QStringLiteral("it comes with %1 bone names instead of %2").arg(boneNames.size()).arg(ZELNodeCount);
    return QString();
}
} // namespace

CharacterTool::CharacterTool(bool batchMode, const char*, const char*, QWidget* parent, IDCCHub* hub)
    : QWidget(parent)
    , mHub(hub)
    , mBatchMode(batchMode)
{
    if (parent == nullptr)
        return;
    if (mHub != nullptr)
        mHub->setCharacterTool(this);
    mModel = new CharacterizationModel(mHub, this);
    connect(mModel, SIGNAL(ModelChanged()), this, SLOT(SyncOnModel()));
    emit mModel->ModelChanged();
}

CharacterTool::~CharacterTool()
{
    if (mHub != nullptr && mHub->GetCharacterTool() == this)
        mHub->setCharacterTool(nullptr);
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
        return false;
    }
    const std::vector<int> unsync = mModel->GetUnsyncNodes();
    if (!unsync.empty() &&
        ShowMessage(QMessageBox::Warning, tr("Validation Warning"),
                    tr("One or more bones in the current characterization cannot be found in the skeleton.\n"
                       "All invalid nodes will be cleared from the characterization."),
                    QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok) != QMessageBox::Ok)
        return false;
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
    if (mModel != nullptr)
        mModel->SetMirrorMode(mirror);
}

void CharacterTool::ClearCharacterization()
{
    if (mModel != nullptr)
        mModel->ClearAll();
}

void CharacterTool::SyncOnModel()
{
    const Characterization* current = GetCharacterization();
    setWindowTitle(current != nullptr ? current->GetName() : QString());
    setStatusTip(mModel != nullptr ? mModel->GetLastOperationText() : QString());
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

bool CharacterTool::GetCharacterizationStream(void*& buffer, int32_t& length, QStringList& boneNames,
                                              bool bigEndian) const
{
    const Characterization* current = GetCharacterization();
    if (current == nullptr)
        return false;
    const SolverCharacter character(*current);
    if (character.Get() == nullptr)
        return false;
    int32_t written = 0;
    void* stream = ZELCharacterizationStreamWrite(&written, &character.GetDefinition(), character.Get(), bigEndian,
                                                  std::malloc, std::free);
    if (stream == nullptr)
        return false;
    buffer = stream;
    length = written;
    boneNames = current->GetBoneNames();
    return true;
}

bool CharacterTool::SetCharacterizationFromStream(const void* buffer, int32_t length, const QStringList& boneNames)
{
    if (GetCharacterization() == nullptr)
        return false;
    QString problem = StreamProblem(buffer, length, boneNames);
    Characterization rebuilt;
    if (problem.isEmpty())
    {
        ZELCharacterDefinition definition {};
        ZELCharacter* character = ZELCharacterizationStreamRead(&definition, buffer, length, std::malloc, std::free);
        if (character == nullptr)
            problem = QStringLiteral("the solver could not rebuild its character");
        else if (!ReadCharacterization(definition, character, boneNames, rebuilt))
            problem = QStringLiteral("its bone names do not match the nodes it uses");
        ZELCharacterDestroy(character, std::free);
    }
    if (!problem.isEmpty())
    {
        qWarning().noquote() << QStringLiteral("The characterization stream was not read: %1.").arg(problem);
        return false;
    }
    return mModel->ReplaceCurrentContent(rebuilt);
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
