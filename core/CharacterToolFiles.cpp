// The panel's file commands: skeleton definitions (binary stream or XML), clip files and the host-scene stream.
#include <zelkin/CharacterTool.h>

#include <cstdlib>
#include <cstring>

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/CharacterizationStream.h>
#include <zelkin/CharacterizationXml.h>
#include <zelkin/ResourceBridge.h>
#include <zelkin/StreamInfo.h>

#include "CharacterizationFiles.h"
#include "SkeletonFileDialog.h"

namespace
{
QString Native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}
} // namespace

bool CharacterTool::GetCharacterizationStream(void*& buffer, int32_t& length, QStringList& boneNames,
                                              bool bigEndian) const
{
    const Characterization* current = GetCharacterization();
    if (current == nullptr)
        return false;
    const QByteArray stream = CharacterizationStream::Write(*current, bigEndian, true);
    if (stream.isEmpty())
        return false;
    void* copy = std::malloc(stream.size());
    if (copy == nullptr)
        return false;
    std::memcpy(copy, stream.constData(), stream.size());
    buffer = copy;
    length = static_cast<int32_t>(stream.size());
    boneNames = current->GetBoneNames();
    return true;
}

bool CharacterTool::SetCharacterizationFromStream(const void* buffer, int32_t length, const QStringList& boneNames)
{
    if (GetCharacterization() == nullptr)
        return false;
    Characterization rebuilt;
    QString problem = tr("empty");
    const QByteArray stream = buffer != nullptr && length > 0
                                  ? QByteArray::fromRawData(static_cast<const char*>(buffer), length)
                                  : QByteArray();
    if (stream.isEmpty() || !CharacterizationStream::Read(stream, boneNames, rebuilt, &problem))
    {
        ShowError(tr("Load Error"),
                  tr("The characterization stored in the scene cannot be loaded (%1).\nThe current characterization "
                     "was left unchanged.")
                      .arg(problem));
        return false;
    }
    return mModel->ReplaceCurrentContent(rebuilt);
}

QString CharacterTool::DialogFolder() const
{
    return mLastFolder.isEmpty() ? mBridge->GetDataDirectory() : mLastFolder;
}

void CharacterTool::OnSave()
{
    if (GetCharacterization() == nullptr || mBatchMode)
        return;
    SkeletonFileDialog dialog(this, QFileDialog::AcceptSave, DialogFolder());
    dialog.selectFile(GetCharacterization()->GetName());
    if (ExecDialog(dialog) != QDialog::Accepted)
        return;
    mLastFolder = QFileInfo(dialog.GetPath()).absolutePath();
    SaveFile(dialog.GetPath(), FileFormat(dialog.GetFormat()), dialog.GetSaveRotationLimits());
}

bool CharacterTool::SaveFile(const QString& path, FileFormat format, bool saveRotationLimits)
{
    const Characterization* current = GetCharacterization();
    if (current == nullptr || path.isEmpty())
        return false;
    const Characterization saved =
        saveRotationLimits ? *current : CharacterizationFiles::WithoutRotationLimits(*current);
    QString error;
    if (format == XmlFile)
    {
        // Raw keeps the whole flag words, so a joint's full geometry comes back as it was saved.
        CharacterizationXml::Write(saved, path, CharacterizationXml::Raw, saveRotationLimits, &error);
    }
    else
    {
        // The stream names no bones: it is only of use together with its companion.
        const QByteArray stream = CharacterizationStream::Write(saved, format == BinaryBigEndian, true);
        const QByteArray bones = CharacterizationFiles::BoneCorrespondence(saved);
        if (stream.isEmpty())
            error = tr("The solver could not build the character.");
        else if (bones.isEmpty())
            error = tr("A bone name holds a character that XML cannot store.");
        else
            error = CharacterizationFiles::SaveTogether(
                {{path, stream}, {CharacterizationFiles::BonesFileFor(path), bones}});
    }
    if (!error.isEmpty())
        ShowError(tr("Save Error"), tr("The skeleton definition could not be saved to %1.\n%2").arg(Native(path), error));
    return error.isEmpty();
}

void CharacterTool::OnLoad()
{
    if (mBatchMode || !CanLoad())
        return;
    SkeletonFileDialog dialog(this, QFileDialog::AcceptOpen, DialogFolder());
    if (ExecDialog(dialog) != QDialog::Accepted)
        return;
    mLastFolder = QFileInfo(dialog.GetPath()).absolutePath();
    LoadFile(dialog.GetPath());
}

bool CharacterTool::CanLoad()
{
    if (GetCharacterization() == nullptr)
        return false;
    if (!mModel->IsLocked())
        return true;
    ShowError(tr("Characterization Locked"),
              tr("The current characterization is locked.\nYou must unlock it before you can load a skeleton "
                 "definition."));
    return false;
}

bool CharacterTool::LoadFile(const QString& path)
{
    if (!CanLoad())
        return false;
    if (!path.endsWith(QLatin1String(".xml"), Qt::CaseInsensitive))
    {
        const std::unique_ptr<Characterization> loaded = LoadBinary(path);
        return loaded != nullptr && ReplaceCurrent(*loaded, path);
    }
    Characterization loaded;
    QString error;
    if (!CharacterizationXml::Read(path, loaded, &error))
    {
        ShowError(tr("Load Error"), tr("%1 cannot be loaded.\n%2").arg(Native(path), error));
        return false;
    }
    return ReplaceCurrent(loaded, path);
}

std::unique_ptr<Characterization> CharacterTool::LoadBinary(const QString& path, const QString& bonesPath)
{
    if (mModel == nullptr)
        return nullptr;
    QByteArray bytes;
    QString problem = CharacterizationFiles::LoadBytes(path, CharacterizationFiles::LargestStream, bytes);
    if (!problem.isEmpty())
    {
        ShowError(tr("Load Error"), problem);
        return nullptr;
    }
    // Check the stream before asking for its bone names: a wrong file should not cost the user a dialog.
    const StreamInfo info = StreamInfo::Read(bytes.constData(), bytes.size());
    if (!info.IsValid())
    {
        ShowError(tr("Load Error"),
                  tr("%1 cannot be loaded (%2).").arg(Native(path), StreamInfo::Describe(info.GetProblem())));
        return nullptr;
    }
    QString bones = bonesPath.isEmpty() ? CharacterizationFiles::BonesFileFor(path) : bonesPath;
    if (!QFileInfo(bones).isFile() && bonesPath.isEmpty() && !mBatchMode)
        bones = QFileDialog::getOpenFileName(this, tr("Choose bone correspondance file"), QFileInfo(path).absolutePath(),
                                             CharacterizationXml::BonesFileFilter(), nullptr,
                                             QFileDialog::DontUseNativeDialog);
    if (bones.isEmpty())
        return nullptr; // the user gave up
    const QStringList names = CharacterizationXml::ReadBoneCorrespondence(bones, &problem);
    if (names.isEmpty())
    {
        ShowError(tr("Load Error"), problem);
        return nullptr;
    }
    auto loaded = std::make_unique<Characterization>();
    if (!CharacterizationStream::Read(bytes, names, *loaded, &problem))
    {
        ShowError(tr("Load Error"), tr("%1 cannot be loaded with the bone names of %2 (%3).")
                                        .arg(Native(path), Native(bones), problem));
        return nullptr;
    }
    return loaded;
}

bool CharacterTool::ReplaceCurrent(const Characterization& loaded, const QString& path)
{
    if (GetCharacterization()->AssignedCount() > 0 &&
        ShowMessage(QMessageBox::Question, tr("Load Skeleton Definition"),
                    tr("The mapping of the current characterization will be replaced by the one in %1.\nDo you want "
                       "to continue?")
                        .arg(Native(path)),
                    QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) != QMessageBox::Yes)
        return false;
    return mModel->ImportIntoCurrent(loaded);
}

bool CharacterTool::SaveKst(const QString& path, int mode, bool bigEndian)
{
    const Characterization* current = GetCharacterization();
    if (current == nullptr || path.isEmpty() || (mode != 0 && mode != 1))
        return false;
    const QByteArray stream = CharacterizationStream::Write(*current, bigEndian, mode == 1);
    const QString error = stream.isEmpty() ? tr("The solver could not build the character.")
                                           : CharacterizationFiles::SaveBytes(path, stream);
    if (!error.isEmpty())
        ShowError(tr("Save Error"), tr("The clip file could not be saved to %1.\n%2").arg(Native(path), error));
    return error.isEmpty();
}
