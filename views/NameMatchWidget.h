#pragma once

#include <array>
#include <memory>
#include <vector>

#include <QStringList>
#include <QWidget>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterizationExport.h>

#include "BoneAssignment.h"

class BoneCellDelegate;
class CharacterTool;
class CharacterizationModel;
class IDCCHub;
class NameMatchTreeWidget;
class PictureCache;
class QMenu;
class QMouseEvent;
class QTreeWidgetItem;
class ResourceBridge;

// The "Name Match" page: the mapping as a tree of node groups, one row per node with its host bone and a state
// bubble. Rows are edited in place or through the context menu; assignment asks the same questions as the figure.
class ZELKIN_CHARACTERIZATION_EXPORT NameMatchWidget : public QWidget
{
    Q_OBJECT

public:
    enum Column
    {
        NodeColumn = 0,
        BoneColumn = 1
    };
    // On every cell of a node row: its node identifier. Group rows carry none.
    static constexpr int NodeRole = Qt::UserRole;

    // The bridge (whose pictures give the icons) must outlive the widget; without one the rows have no icons. The
    // tool may be null (the page then cannot switch to the figure itself, see ViewTabRequested).
    NameMatchWidget(QWidget* parent, IDCCHub* hub, ResourceBridge* bridge, CharacterizationModel* model,
                    CharacterTool* tool);
    ~NameMatchWidget() override;

    NameMatchTreeWidget* GetTree() const { return mTree; }
    BoneAssignment& GetAssignment() { return mAssignment; }
    // Every row that shows the node (Spine and Neck also appear in their own groups); empty for an unknown node.
    const std::vector<QTreeWidgetItem*>& GetNodeRows(int nodeId) const;
    QTreeWidgetItem* GetGroupRow(const QString& title) const;
    // The node of a row; -1 for a group row or none.
    static int NodeOfRow(const QTreeWidgetItem* row);
    int GetCurrentNode() const;
    // Whether the row's bubble is drawn highlighted (its bone is selected in the host).
    static bool IsHighlighted(const QTreeWidgetItem* row);

    // The bubble picture for a node state (0 unassigned, 1 valid, 2 warning, 3 error).
    static QString BubblePicture(int state, bool highlighted);

    // The menu that PopMenu shows for the current row, its entries enabled as the mapping allows; null when the
    // tree has no current row.
    std::unique_ptr<QMenu> CreateContextMenu();

signals:
    // Asks the panel to show one of its pages (0: the figure).
    void ViewTabRequested(int index);

public slots:
    void SyncViewOnModel();
    void OnDccSelect();
    void ChangeEditPart(int oldNodeId, int newNodeId, bool isReadWrite);
    void ClearAllParts();
    void ClearSelectedPart();
    void PopMenu(QMouseEvent* event);
    void UpdateEditedPart(QTreeWidgetItem* current, QTreeWidgetItem* previous);
    void SetItemEditable(QTreeWidgetItem* item, int column);
    void ShowAutoCompletion();
    void AssignSelection();
    void InvertJoint();
    void SwitchToCharacterView();

private slots:
    void ApplyEnteredBone(int nodeId, const QString& text);
    void ClearFromKeyboard();

private:
    void BuildTree();
    QTreeWidgetItem* AddNodeRow(QTreeWidgetItem* group, int nodeId);
    void UpdateRow(QTreeWidgetItem* row, const QStringList& hostSelection);
    QStringList HostSelection() const;
    bool IsNodeRow(const QTreeWidgetItem* row) const;
    // Brings the row into sight with a few of its neighbours above and below.
    void ScrollIntoView(QTreeWidgetItem* row);

    IDCCHub* mHub;
    PictureCache* mPictures;
    CharacterizationModel* mModel;
    NameMatchTreeWidget* mTree;
    BoneCellDelegate* mDelegate;
    BoneAssignment mAssignment;
    std::array<std::vector<QTreeWidgetItem*>, BoneCatalogue::NodeCount> mRows;
    std::vector<QTreeWidgetItem*> mGroups;
    // Set while the page itself moves the current row, so that does not count as the user picking a node.
    bool mFollowing = false;
};
