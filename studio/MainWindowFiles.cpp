// The window's commands on files and bones: each asks what it needs, reports a failure once and leaves everything
// as it was when it fails.
#include "MainWindow.h"

#include <cstdio>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLocale>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>

#include "Autosave.h"
#include "PreferencesDialog.h"
#include "RecentFiles.h"
#include "StudioPreferences.h"

namespace
{
QString Native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

bool IsCharacterizationFile(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix();
    return suffix.compare(QLatin1String("zelc"), Qt::CaseInsensitive) == 0 ||
           suffix.compare(QLatin1String("xml"), Qt::CaseInsensitive) == 0;
}
} // namespace

bool MainWindow::OpenFile(const QString& path)
{
    if (path.endsWith(ProjectFile::Extension(), Qt::CaseInsensitive))
        return OpenProject(path);
    if (!IsCharacterizationFile(path))
        return OpenSkeleton(path);
    if (!mSession.HasSkeleton())
    {
        ShowError(tr("Import Characterization"),
                  tr("%1 is a characterization: open the skeleton it belongs to first.").arg(Native(path)));
        return false;
    }
    return mTool->LoadFile(path);
}

bool MainWindow::OpenSkeleton(const QString& path)
{
    return OpenWith(path, tr("Open Skeleton"), [this, &path](const SceneImporter::ProgressCallback& progress, QString& problem) {
        return mSession.OpenSkeleton(path, progress, problem);
    });
}

bool MainWindow::OpenProject(const QString& path)
{
    return OpenWith(path, tr("Open Project"), [this, &path](const SceneImporter::ProgressCallback& progress, QString& problem) {
        return mSession.OpenProject(path, progress, problem);
    });
}

bool MainWindow::OpenWith(const QString& path, const QString& title, const ImportJob& job)
{
    if (!MaybeSave())
        return false;
    // Whatever the file does to the reader, the work as it stands is kept.
    AutosaveNow();
    QString error;
    const bool opened = RunImport(path, job, error);
    return ConcludeOpen(opened, path, title, error);
}

bool MainWindow::RunImport(const QString& path, const ImportJob& job, QString& error)
{
    if (mBatch)
        return job(nullptr, error);
    QProgressDialog dialog(tr("Reading %1...").arg(QFileInfo(path).fileName()), tr("Cancel"), 0, 100, this);
    dialog.setWindowTitle(tr("Zelkin Studio"));
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setMinimumDuration(300);
    QElapsedTimer clock;
    clock.start();
    const SceneImporter::ProgressCallback progress = [&dialog, &clock](int percent) {
        dialog.setValue(percent);
        // The dialog shows itself only when the value moves; a reader that is stuck must still be cancellable.
        if (!dialog.isVisible() && clock.elapsed() >= dialog.minimumDuration())
            dialog.show();
        if (dialog.isVisible())
            QCoreApplication::processEvents();
        return !dialog.wasCanceled();
    };
    return job(progress, error);
}

bool MainWindow::ConcludeOpen(bool opened, const QString& path, const QString& title, const QString& error)
{
    if (!opened)
    {
        if (error.isEmpty())
            ShowStatus(tr("Opening %1 was cancelled.").arg(Native(path)));
        else
            ShowError(title, error);
        if (!QFileInfo::exists(path))
            mRecent->Remove(path);
        return false;
    }
    mRecent->Add(path);
    const std::shared_ptr<Characterization> current = mTool->GetModel()->GetCurrentCharacterization();
    ShowStatus(tr("Opened %1: %2 bones, %3 nodes mapped.")
                   .arg(QFileInfo(path).fileName())
                   .arg(mSession.GetScene().BoneCount())
                   .arg(current ? current->AssignedCount() : 0) +
               (mSession.GetOpeningSummary().isEmpty() ? QString() : QLatin1Char(' ') + mSession.GetOpeningSummary()));
    UpdateState();
    return true;
}

bool MainWindow::SaveProject(const QString& path)
{
    QString error;
    if (!mSession.SaveProject(path, error))
    {
        ShowError(tr("Save Project"), error);
        return false;
    }
    mRecent->Add(path);
    ShowStatus(tr("Saved %1.").arg(Native(path)));
    UpdateState();
    return true;
}

void MainWindow::OnOpenSkeleton()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open Skeleton"), QString(),
        tr("Skeletons (*.fbx *.glb *.gltf *.bvh *.dae *.x3d *.smd *.md5mesh);;All files (*)"));
    if (!path.isEmpty())
        OpenSkeleton(path);
}

void MainWindow::OnOpenProject()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Open Project"), QString(),
                                                      tr("Zelkin Studio projects (*%1)").arg(ProjectFile::Extension()));
    if (!path.isEmpty())
        OpenProject(path);
}

bool MainWindow::OnSaveProject()
{
    if (mSession.GetProjectPath().isEmpty())
        return OnSaveProjectAs();
    return SaveProject(mSession.GetProjectPath());
}

bool MainWindow::OnSaveProjectAs()
{
    if (!mSession.HasSkeleton())
    {
        ShowError(tr("Save Project"), tr("There is no skeleton to keep in a project: open one first."));
        return false;
    }
    const QFileInfo skeleton(mSession.GetScene().SourcePath());
    const QString suggested = !mSession.GetProjectPath().isEmpty()
                                  ? mSession.GetProjectPath()
                                  : skeleton.dir().filePath(skeleton.completeBaseName() + ProjectFile::Extension());
    QString path = QFileDialog::getSaveFileName(this, tr("Save Project"), suggested,
                                                tr("Zelkin Studio projects (*%1)").arg(ProjectFile::Extension()));
    if (path.isEmpty())
        return false;
    if (!path.endsWith(ProjectFile::Extension(), Qt::CaseInsensitive))
        path += ProjectFile::Extension();
    return SaveProject(path);
}

void MainWindow::OnImportCharacterization()
{
    if (!mSession.HasSkeleton())
    {
        ShowError(tr("Import Characterization"), tr("Open the skeleton the characterization belongs to first."));
        return;
    }
    mTool->OnLoad();
}

void MainWindow::OnUndo()
{
    if (!mSession.Undo() && mTool->GetModel()->IsLocked())
        ShowStatus(tr("Unlock the characterization to undo or redo."));
}

void MainWindow::OnRedo()
{
    if (!mSession.Redo() && mTool->GetModel()->IsLocked())
        ShowStatus(tr("Unlock the characterization to undo or redo."));
}

QString MainWindow::SelectedBone() const
{
    const QStringList& selection = mSession.GetScene().Selection();
    return selection.isEmpty() ? QString() : selection.last();
}

void MainWindow::OnRenameBone()
{
    const QString bone = SelectedBone();
    if (bone.isEmpty())
    {
        ShowStatus(tr("Select the bone to rename first."));
        return;
    }
    bool accepted = false;
    const QString name = QInputDialog::getText(this, tr("Rename Bone"), tr("New name for %1:").arg(bone),
                                               QLineEdit::Normal, bone, &accepted);
    if (accepted && name != bone)
        RenameBone(bone, name);
}

bool MainWindow::RenameBone(const QString& bone, const QString& newName)
{
    if (mSession.RenameBone(bone, newName))
        return true;
    ShowError(tr("Rename Bone"),
              // Not starting with the name: the message's first letter is capitalized, the bone's must not be.
              tr("The bone %1 cannot be renamed to \"%2\": without the characters a bone name cannot hold, the name "
                 "is empty or another bone has it.")
                  .arg(bone, newName));
    return false;
}

void MainWindow::OnDeleteBones()
{
    // A copy: the selection shrinks as the bones go.
    const QStringList bones = mSession.GetScene().Selection();
    DeleteBones(bones);
}

bool MainWindow::DeleteBones(const QStringList& bones)
{
    if (bones.isEmpty())
        return false;
    QUndoStack& stack = mSession.GetUndoStack();
    stack.beginMacro(bones.size() == 1 ? tr("Delete %1").arg(bones.first()) : tr("Delete %1 bones").arg(bones.size()));
    bool all = true;
    for (const QString& bone : bones)
        all = mSession.DeleteBone(bone) && all;
    stack.endMacro();
    return all;
}

void MainWindow::OnNewCharacterization()
{
    CharacterizationModel* model = mTool->GetModel();
    bool accepted = false;
    const QString name = QInputDialog::getText(this, tr("New Characterization"), tr("Name:"), QLineEdit::Normal,
                                               model->NextCharacterizationName(), &accepted)
                             .trimmed();
    if (accepted && !mTool->CreateCharacterization(name))
        ShowError(tr("New Characterization"),
                  tr("A characterization needs a name of its own: \"%1\" is empty or already taken.").arg(name));
}

void MainWindow::OnAutoCharacterize(bool selectedCharacter)
{
    QString message;
    if (mSession.AutoCharacterize(selectedCharacter, message))
        ShowStatus(message);
    else
        ShowError(tr("Auto Characterize"), message);
    UpdateState();
}

void MainWindow::OnSetTPose()
{
    QString message;
    if (mSession.SetTPose(message))
        ShowStatus(message);
    else
        ShowError(tr("Set T-Pose"), message);
    UpdateState();
}

void MainWindow::OnToggleLock()
{
    SceneHub& hub = mSession.GetHub();
    hub.Lock(!hub.IsLocked());
    UpdateState();
}

void MainWindow::OnToggleMirror()
{
    mSession.GetHub().MirrorMatching();
    UpdateState();
}

void MainWindow::ShowError(const QString& title, const QString& text)
{
    // The importer's reasons start in lower case, as they are also used inside sentences.
    QString message = text;
    if (!message.isEmpty())
        message[0] = message[0].toUpper();
    if (mBatch)
    {
        std::fprintf(stderr, "zelkin-studio: %s\n", qPrintable(message));
        return;
    }
    QMessageBox::warning(this, title, message);
}

bool MainWindow::MaybeSave()
{
    if (mBatch || !mSession.HasSkeleton() || !mSession.IsModified())
        return true;
    const QMessageBox::StandardButton answer =
        QMessageBox::question(this, tr("Unsaved Changes"),
                              tr("The project has changes that are not saved.\nDo you want to save them first?"),
                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save)
        return OnSaveProject();
    return answer == QMessageBox::Discard;
}

void MainWindow::AutosaveNow()
{
    QString error;
    if (!mAutosave->SaveNow(error))
        ShowStatus(error);
}

bool MainWindow::OfferRestore()
{
    const std::vector<Autosave::Orphan> orphans = mAutosave->FindOrphans();
    if (orphans.empty())
        return false;
    const Autosave::Orphan& newest = orphans.front();
    const QString work = newest.projectPath.isEmpty() ? tr("unsaved work")
                                                      : tr("changes to %1").arg(QFileInfo(newest.projectPath).fileName());
    QMessageBox box(QMessageBox::Question, tr("Restore Work"),
                    tr("Zelkin Studio did not close normally. It autosaved %1 at %2.\nDo you want to restore it?")
                        .arg(work, QLocale().toString(newest.savedAt.toLocalTime(), QLocale::ShortFormat)),
                    QMessageBox::NoButton, this);
    QPushButton* restore = box.addButton(tr("&Restore"), QMessageBox::AcceptRole);
    QPushButton* discard = box.addButton(tr("&Discard"), QMessageBox::DestructiveRole);
    box.addButton(tr("&Not Now"), QMessageBox::RejectRole);
    box.setDefaultButton(restore);
    box.exec();
    if (box.clickedButton() == discard)
    {
        mAutosave->Discard(newest);
        return false;
    }
    if (box.clickedButton() != restore)
        return false;
    QString error;
    if (!mSession.RestoreSnapshot(newest.snapshot, newest.projectPath, error))
    {
        // Kept: the skeleton may be back where it was another time.
        ShowError(tr("Restore Work"), error);
        return false;
    }
    mAutosave->Discard(newest);
    AutosaveNow();
    ShowStatus(tr("Restored the work autosaved at %1; it is not saved yet.")
                   .arg(QLocale().toString(newest.savedAt.toLocalTime(), QLocale::ShortFormat)));
    UpdateState();
    return true;
}

void MainWindow::ApplyPreferences(int readingTimeLimit, int autosaveMinutes)
{
    if (!mPreferences->Set(readingTimeLimit, autosaveMinutes))
        ShowStatus(tr("The preferences cannot be written; they hold until the studio closes."));
    mSession.SetReadingTimeLimit(mPreferences->ReadingTimeLimit());
    mAutosave->SetInterval(mPreferences->AutosaveMinutes());
}

void MainWindow::OnPreferences()
{
    PreferencesDialog dialog(mPreferences->ReadingTimeLimit(), mPreferences->AutosaveMinutes(), this);
    if (dialog.exec() == QDialog::Accepted)
        ApplyPreferences(dialog.ReadingTimeLimit(), dialog.AutosaveMinutes());
}
