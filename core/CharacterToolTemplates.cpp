// The panel's matching commands: applying and extracting mapping templates, and the mirror keyword pairs.
#include <zelkin/CharacterTool.h>

#include <QDir>
#include <QFileInfo>

#include <zelkin/ApplyTemplateDialog.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/ConfigMirrorDialog.h>
#include <zelkin/IDCCHub.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/ResourceBridge.h>
#include <zelkin/SaveTemplateDialog.h>
#include <zelkin/TemplateChooser.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

namespace
{
struct HostBones
{
    QStringList scene;
    QStringList selection;
};

HostBones ReadHostBones(IDCCHub* hub)
{
    HostBones bones;
    if (hub != nullptr)
    {
        hub->GetSceneBones(bones.scene);
        hub->GetSelectedBones(bones.selection);
    }
    return bones;
}

// The characterization's name, made fit for a file name.
QString DefaultTemplateName(const Characterization& characterization)
{
    QString name = characterization.GetName();
    name.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QLatin1Char('\\'), QLatin1Char('_'));
    name.replace(QLatin1String(".."), QLatin1String("_"));
    return SaveTemplateDialog::IsValidName(name) ? name : QStringLiteral("Template");
}

QStringList MappedBones(const Characterization& characterization)
{
    QStringList bones = characterization.GetBoneNames();
    bones.removeAll(QString());
    return bones;
}
} // namespace

bool CharacterTool::CanApplyTemplate()
{
    if (GetCharacterization() == nullptr)
        return false;
    if (mModel->IsLocked())
    {
        ShowError(tr("Characterization Locked"),
                  tr("The current characterization is locked.\nYou must unlock it before you can apply a mapping "
                     "template."));
        return false;
    }
    if (ReadHostBones(mHub).selection.isEmpty())
    {
        ShowError(tr("Match Error"),
                  tr("You must select at least one bone in the skeleton\nbefore you can use a mapping template."));
        return false;
    }
    return true;
}

void CharacterTool::AutoMatch()
{
    if (!CanApplyTemplate())
        return;
    if (!mBatchMode)
    {
        ShowAutoMatch();
        return;
    }
    const int before = GetCharacterization()->AssignedCount();
    mModel->AutoMatch();
    ReportApplied(GetCharacterization()->AssignedCount() - before, false);
}

bool CharacterTool::ShowAutoMatch()
{
    if (!CanApplyTemplate() || mBatchMode)
        return false;
    const HostBones bones = ReadHostBones(mHub);
    const TemplateLibrary library = mModel->GetTemplateLibrary();
    ApplyTemplateDialog dialog(library, mModel->GetMatchType(), mModel->CommonBonePrefix(bones.scene),
                               bones.selection.size(), this);
    std::vector<SkeletonRecognizer::Bone> skeleton;
    const SkeletonRecognizer::Result recognized = mModel->RecognizeSkeleton(skeleton);
    if (!recognized.characters.empty())
    {
        const SkeletonRecognizer::Character& first = recognized.characters.front();
        dialog.RecommendAutomatic(
            tr("Found in the skeleton: %n humanoid(s); \"%1\" gets %2 nodes (%3).", nullptr,
               int(recognized.characters.size()))
                .arg(skeleton[size_t(first.root)].name)
                .arg(first.nodes.size())
                .arg(SkeletonRecognizer::PoseKindName(first.pose)));
    }
    else
    {
        const TemplateChooser::Result best =
            mModel->CreateTemplateChooser()->Choose(bones.scene, mModel->GetLeafBones(bones.scene));
        const QString none = SkeletonRecognizer::NoHumanoidText(int(skeleton.size()));
        if (best.IsValid())
            dialog.Recommend(best.templateName, none + QLatin1Char('\n') +
                                                    tr("Best fit for this skeleton: %1").arg(best.Summary()));
        else
            dialog.RecommendAutomatic(none);
    }
    if (ExecDialog(dialog) != QDialog::Accepted)
        return false;
    const bool selectedOnly = dialog.GetScope() == ApplyTemplateDialog::SelectedOnly;
    if (dialog.IsAutomatic())
    {
        const int mapped = ApplyRecognized(recognized, skeleton);
        if (mapped >= 0)
            ReportApplied(mapped, true);
        return mapped >= 0;
    }
    mBridge->GetConfiguration().SetMatchType(dialog.GetMatchType());
    SaveConfiguration();
    const int mapped = ApplyTemplate(dialog.GetTemplateName(), dialog.GetMatchType(), selectedOnly, dialog.GetPrefix());
    if (mapped < 0)
        return false;
    ReportApplied(mapped, false);
    return true;
}

int CharacterTool::ApplyRecognized(const SkeletonRecognizer::Result& recognized,
                                   const std::vector<SkeletonRecognizer::Bone>& skeleton)
{
    if (recognized.characters.empty())
    {
        ShowError(tr("Match Error"), SkeletonRecognizer::NoHumanoidText(int(skeleton.size())));
        return -1;
    }
    const SkeletonRecognizer::Character& character =
        recognized.characters[size_t(mModel->SelectedCharacter(recognized, skeleton))];
    CharacterizationModel::Merge merge = CharacterizationModel::Merge::KeepExisting;
    const int conflicts = mModel->RecognitionConflicts(character, skeleton);
    if (conflicts > 0)
    {
        const QMessageBox::StandardButton answer = ShowMessage(
            QMessageBox::Question, tr("Bone Already Assigned"),
            tr("%n node(s) already hold other bones.\nReplace them with the bones found in the skeleton?", nullptr,
               conflicts),
            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
        if (answer == QMessageBox::Cancel)
            return -1;
        if (answer == QMessageBox::Yes)
            merge = CharacterizationModel::Merge::PreferRecognized;
    }
    return mModel->ApplyRecognition(character, skeleton, merge);
}

int CharacterTool::ApplyTemplate(const QString& name, int matchType, bool selectedOnly, const QString& prefix)
{
    MappingTemplate mappingTemplate;
    QString error;
    if (!mModel->GetTemplateLibrary().Load(name, mappingTemplate, &error))
    {
        ShowError(tr("Match Error"), error);
        return -1;
    }
    const HostBones bones = ReadHostBones(mHub);
    const QStringList offered = selectedOnly ? NameMatcher::SelectedBones(bones.scene, bones.selection)
                                             : NameMatcher::BonesWithPrefix(bones.scene, prefix);
    return mModel->ApplyTemplate(mappingTemplate, NameMatcher::MatchType(matchType), offered,
                                 selectedOnly ? QString() : prefix);
}

void CharacterTool::ReportApplied(int mapped, bool automatic)
{
    const QString count = mapped == 1 ? tr("1 node was mapped.") : tr("%1 nodes were mapped.").arg(mapped);
    const QString done = automatic ? tr("The skeleton was characterized automatically.")
                                   : tr("Template successfully applied.");
    ShowMessage(QMessageBox::Information, tr("Apply Mapping Template"), done + QLatin1Char('\n') + count,
                QMessageBox::Ok, QMessageBox::Ok);
}

bool CharacterTool::CanExtractTemplate()
{
    const Characterization* current = GetCharacterization();
    if (current == nullptr)
        return false;
    const QString title = tr("Extract Template Error");
    if (current->AssignedCount() == 0)
    {
        ShowError(title, tr("A naming template cannot be extracted from an empty characterization.\nYou must map at "
                            "least one bone in the skeleton first."));
        return false;
    }
    const QString directory = mBridge->GetTemplateDirectory();
    const QFileInfo folder(directory);
    if (!folder.isDir())
    {
        ShowError(title, tr("The directory does not exist."));
        return false;
    }
    if (!folder.isWritable() || !folder.isReadable())
    {
        ShowError(title, tr("The directory ") + QDir::toNativeSeparators(directory) +
                             tr(" is not writable or readable. \n\nPlease select a valid directory."));
        return false;
    }
    return true;
}

void CharacterTool::ExtractTemplate()
{
    if (!CanExtractTemplate())
        return;
    if (!mBatchMode)
    {
        ShowExtractTemplate();
        return;
    }
    const QString name = DefaultTemplateName(*GetCharacterization());
    if (mModel->GetTemplateLibrary().Contains(name) &&
        ShowMessage(QMessageBox::Question, tr("Save Template"),
                    tr("A template with the same name already exists.\nDo you want to overwrite it?"),
                    QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) != QMessageBox::Yes)
        return;
    SaveTemplate(name, mModel->CommonBonePrefix(MappedBones(*GetCharacterization())));
}

bool CharacterTool::ShowExtractTemplate()
{
    if (!CanExtractTemplate() || mBatchMode)
        return false;
    const Characterization& current = *GetCharacterization();
    const TemplateLibrary library = mModel->GetTemplateLibrary();
    SaveTemplateDialog dialog(library, DefaultTemplateName(current), mModel->CommonBonePrefix(MappedBones(current)),
                              this);
    if (ExecDialog(dialog) != QDialog::Accepted)
        return false;
    return SaveTemplate(dialog.GetTemplateName(), dialog.GetPrefix());
}

bool CharacterTool::SaveTemplate(const QString& name, const QString& prefix)
{
    const MappingTemplate extracted =
        MappingTemplate::Extract(*GetCharacterization(), prefix, mModel->GetNameDelimiters());
    QString error;
    if (!mModel->GetTemplateLibrary().Save(name, extracted, &error))
    {
        ShowError(tr("Extract Template Error"), error);
        return false;
    }
    ShowMessage(QMessageBox::Information, tr("Save Template"), tr("Template successfully saved."), QMessageBox::Ok,
                QMessageBox::Ok);
    return true;
}

void CharacterTool::ConfigMirror()
{
    if (mModel == nullptr)
        return;
    if (!mBatchMode)
    {
        ShowConfigMirror();
        return;
    }
    // No one to ask: take up pairs edited in the file meanwhile.
    mModel->ReloadMirrorPairs();
    ShareMirrorPairs();
}

bool CharacterTool::ShowConfigMirror()
{
    if (mModel == nullptr || mBatchMode)
        return false;
    ConfigMirrorDialog dialog(mBridge->GetConfiguration().Document(), this);
    if (ExecDialog(dialog) != QDialog::Accepted)
        return false;
    SaveConfiguration();
    mModel->ReloadMirrorPairs();
    ShareMirrorPairs();
    return true;
}

bool CharacterTool::SaveConfiguration()
{
    QString error;
    if (mBridge->SaveConfiguration(&error))
        return true;
    ShowError(tr("Configuration Error"),
              tr("The settings could not be saved; they apply until the panel closes.\n%1").arg(error));
    return false;
}
