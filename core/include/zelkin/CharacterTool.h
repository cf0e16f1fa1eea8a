#pragma once

#include <cstdint>
#include <memory>

#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <zelkin/CharacterizationExport.h>
#include <zelkin/SkeletonRecognizer.h>

class Characterization;
class CharacterizationModel;
class DiagramWidget;
class IDCCHub;
class NameMatchWidget;
class PropertyView;
class QAction;
class QDialog;
class QTabWidget;
class ResourceBridge;

// The panel a host embeds: the "Figure" and "Name Match" pages, each over its property view, and the user-level
// commands that the hub forwards. It registers with the host's hub and owns the model, the views and the bridge.
class ZELKIN_CHARACTERIZATION_EXPORT CharacterTool : public QWidget
{
    Q_OBJECT

public:
    enum Page
    {
        FigurePage = 0,
        NameMatchPage = 1
    };

    // The file formats of OnSave.
    enum FileFormat
    {
        BinaryLittleEndian = 0,
        BinaryBigEndian = 1,
        XmlFile = 2
    };

    // batchMode: no modal boxes or dialogs (refusals go to the debug output, questions count as answered yes, and
    // commands that would ask take their defaults), for hosts that run without a user. dataDirectory: where file
    // dialogs open first. configurationDirectory: the folder of the configuration and the templates, the per-user
    // one when empty (see ResourceBridge). With a null parent the panel stays empty and every command does nothing.
    CharacterTool(bool batchMode, const char* dataDirectory, const char* configurationDirectory, QWidget* parent,
                  IDCCHub* hub);
    ~CharacterTool() override;

    static QString GetToolName();
    static const QString& GetCompactName();
    static double GetToolVersion();

    CharacterizationModel* GetModel() const { return mModel; }
    IDCCHub* GetDCCHub() const { return mHub; }
    ResourceBridge* GetBridge() const { return mBridge.get(); }
    Characterization* GetCharacterization() const;
    bool IsBatchMode() const { return mBatchMode; }
    // Whether OnDelete asks first; on at construction.
    bool GetDeleteConfirmation() const { return mConfirmDelete; }
    void SetDeleteConfirmation(bool ask) { mConfirmDelete = ask; }

    int currentViewTab() const;
    QTabWidget* GetPages() const { return mPages; }
    DiagramWidget* GetDiagramWidget() const { return mDiagram; }
    NameMatchWidget* GetNameMatchWidget() const { return mNameMatch; }
    // page: FigurePage or NameMatchPage.
    PropertyView* GetPropertyView(int page) const;
    // A host action, reachable by its shortcut while the panel has the focus.
    void AddAction(QAction* action);
    QSize sizeHint() const override;

    // False when the name is empty or already used.
    bool CreateCharacterization(const QString& name);
    bool SetCharacterization(const Characterization* characterization);
    bool SetCharacterization(int index);
    // confirm: ask the user first while the delete confirmation is on.
    Q_INVOKABLE bool DoDelete(bool confirm);
    // Locking needs a valid characterization and offers to clear the nodes whose bones are gone.
    Q_INVOKABLE bool DoToggleEditMode(bool readOnly);
    void DoToggleMirrorMode(bool mirror);
    // Moves in-line roll assignments onto the first-level leaf roll node of their limb, or drops them when that node
    // is taken; returns the in-line nodes rewritten.
    int DeprecateInlineRollBones();

    // The current characterization as a stream (the caller frees the buffer with free()) and its 212 bone names.
    bool GetCharacterizationStream(void*& buffer, int32_t& length, QStringList& boneNames, bool bigEndian) const;
    // Rebuilds the current characterization; a rejected stream changes nothing and is reported once.
    bool SetCharacterizationFromStream(const void* buffer, int32_t length, const QStringList& boneNames);

    // Files. Each failure is reported once and leaves the characterization and any existing file as they were.
    // A binary file gets its bone correspondence file (".bones.xml") beside it.
    bool SaveFile(const QString& path, FileFormat format, bool saveRotationLimits);
    // Replaces the current characterization's mapping by the file's (binary or XML, by extension).
    bool LoadFile(const QString& path);
    // Reads a binary file; without bonesPath the ".bones.xml" beside it is used, and when there is none the user is
    // asked for one. Null when the file cannot be read or the user gave up.
    std::unique_ptr<Characterization> LoadBinary(const QString& path, const QString& bonesPath = QString());
    // The current characterization's stream as a clip file; mode 0 writes bit 0 alone for each mapped node,
    // mode 1 the stored flag words.
    bool SaveKst(const QString& path, int mode, bool bigEndian);

public slots:
    void setCurrentViewTab(int index);
    void OnSave();
    void OnLoad();
    void OnDelete();
    void ToggleEditMode();
    void ToggleMirrorMode();
    void ClearCharacterization();
    void SyncOnModel();
    // Commands: each refuses what cannot be done, then opens its dialog (ShowX); in batch mode it does what the
    // dialog would do by default.
    void AutoMatch();
    bool ShowAutoMatch();
    void ExtractTemplate();
    bool ShowExtractTemplate();
    void ConfigMirror();
    bool ShowConfigMirror();

private:
    void BuildPages();
    QWidget* CreatePage(QWidget* view, PropertyView* properties);
    void CreateCommandActions();
    // The views ask before they mirror, so they are handed the model's keyword pairs.
    void ShareMirrorPairs();

    bool CanApplyTemplate();
    int ApplyTemplate(const QString& name, int matchType, bool selectedOnly, const QString& prefix);
    // The recognized character holding the selection (else the first), after asking before nodes change bones.
    int ApplyRecognized(const SkeletonRecognizer::Result& recognized,
                        const std::vector<SkeletonRecognizer::Bone>& skeleton);
    void ReportApplied(int mapped, bool automatic);
    bool CanExtractTemplate();
    bool SaveTemplate(const QString& name, const QString& prefix);
    bool SaveConfiguration();
    // Refuses a locked characterization, before any file is chosen.
    bool CanLoad();
    bool ReplaceCurrent(const Characterization& loaded, const QString& path);
    // Where the save and load dialogs open: the folder last used, at first the data directory.
    QString DialogFolder() const;

    int ExecDialog(QDialog& dialog);
    QMessageBox::StandardButton ShowMessage(QMessageBox::Icon icon, const QString& title, const QString& text,
                                            QMessageBox::StandardButtons buttons,
                                            QMessageBox::StandardButton batchAnswer);
    void ShowError(const QString& title, const QString& text);

    std::unique_ptr<ResourceBridge> mBridge;
    IDCCHub* mHub = nullptr;
    CharacterizationModel* mModel = nullptr;
    DiagramWidget* mDiagram = nullptr;
    NameMatchWidget* mNameMatch = nullptr;
    PropertyView* mFigureProperties = nullptr;
    PropertyView* mNameMatchProperties = nullptr;
    QTabWidget* mPages = nullptr;
    QAction* mMirrorAction = nullptr;
    QAction* mLockAction = nullptr;
    QString mLastFolder;
    const bool mBatchMode;
    bool mConfirmDelete = true;
};
