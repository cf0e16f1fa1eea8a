#pragma once

#include <QHash>
#include <QIcon>
#include <QPointer>
#include <QString>
#include <QWidget>

class CharacterizationModel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;
class SceneHub;

// The scene's bones as a tree by parent, with the node each one is mapped to, and a filter box. The tree's selection
// is the hub's selection, both ways.
class BoneTreeWidget : public QWidget
{
    Q_OBJECT

public:
    enum Column
    {
        BoneColumn,
        NodeColumn
    };

    explicit BoneTreeWidget(SceneHub& hub, QWidget* parent = nullptr);

    void SetModel(CharacterizationModel* model);
    QTreeWidget* GetTree() const { return mTree; }
    QLineEdit* GetFilter() const { return mFilter; }
    // Null for a bone the scene does not have.
    QTreeWidgetItem* FindItem(const QString& bone) const;
    // Bones the filter leaves visible, in tree order.
    QStringList VisibleBones() const;

public slots:
    // The skeleton changed: builds the tree again, keeping the filter and the selection.
    void Rebuild();
    void SyncSelectionFromHub();
    // Shows each bone's node as the current characterization has it.
    void RefreshNodes();
    void ApplyFilter();

private slots:
    void OnTreeSelectionChanged();

private:
    SceneHub& mHub;
    QPointer<CharacterizationModel> mModel;
    QLineEdit* mFilter = nullptr;
    QTreeWidget* mTree = nullptr;
    QHash<QString, QTreeWidgetItem*> mItems;
    QHash<int, QIcon> mStateIcons;
    // Set while the tree is being changed to follow the hub, so the change is not sent back.
    bool mSyncing = false;
};
