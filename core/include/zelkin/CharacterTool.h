#pragma once

#include <cstdint>

#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <zelkin/CharacterizationExport.h>

class Characterization;
class CharacterizationModel;
class IDCCHub;

// The panel a host embeds. It registers with the host's hub, owns the characterization model and carries the
// user-level commands that the hub forwards.
class ZELKIN_CHARACTERIZATION_EXPORT CharacterTool : public QWidget
{
    Q_OBJECT

public:
    // batchMode: no modal boxes (refusals go to the debug output, questions count as answered yes), for hosts that
    // run without a user. With a null parent the panel stays empty and every command does nothing.
    CharacterTool(bool batchMode, const char* pictureDirectory, const char* configurationDirectory, QWidget* parent,
                  IDCCHub* hub);
    ~CharacterTool() override;

    static QString GetToolName();
    static const QString& GetCompactName();
    static double GetToolVersion();

    CharacterizationModel* GetModel() const { return mModel; }
    IDCCHub* GetDCCHub() const { return mHub; }
    Characterization* GetCharacterization() const;
    bool IsBatchMode() const { return mBatchMode; }
    // Whether OnDelete asks first; on at construction.
    bool GetDeleteConfirmation() const { return mConfirmDelete; }
    void SetDeleteConfirmation(bool ask) { mConfirmDelete = ask; }

    // False when the name is empty or already used.
    bool CreateCharacterization(const QString& name);
    bool SetCharacterization(const Characterization* characterization);
    bool SetCharacterization(int index);
    // confirm: ask the user first while the delete confirmation is on.
    bool DoDelete(bool confirm);
    // Locking needs a valid characterization and offers to clear the nodes whose bones are gone.
    bool DoToggleEditMode(bool readOnly);
    void DoToggleMirrorMode(bool mirror);
    // Moves in-line roll assignments onto the first-level leaf roll node of their limb; returns the nodes rewritten.
    int DeprecateInlineRollBones();

    // The current characterization as a stream (the caller frees the buffer with free()) and its 212 bone names.
    bool GetCharacterizationStream(void*& buffer, int32_t& length, QStringList& boneNames, bool bigEndian) const;
    // Rebuilds the current characterization; a rejected stream changes nothing.
    bool SetCharacterizationFromStream(const void* buffer, int32_t length, const QStringList& boneNames);

public slots:
    void OnDelete();
    void ToggleEditMode();
    void ToggleMirrorMode();
    void ClearCharacterization();
    void SyncOnModel();

private:
    QMessageBox::StandardButton ShowMessage(QMessageBox::Icon icon, const QString& title, const QString& text,
                                            QMessageBox::StandardButtons buttons,
                                            QMessageBox::StandardButton batchAnswer);

    IDCCHub* mHub = nullptr;
    CharacterizationModel* mModel = nullptr;
    const bool mBatchMode;
    bool mConfirmDelete = true;
};
