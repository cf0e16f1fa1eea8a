#pragma once

#include <array>
#include <memory>
#include <vector>

#include <QGraphicsView>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterizationExport.h>

#include "BoneAssignment.h"

class CharacterTool;
class CharacterizationModel;
class HoverAdapter;
class IDCCHub;
class InversionItem;
class PartItem;
class PictureCache;
class QGraphicsPixmapItem;
class QMenu;
class ResourceBridge;

// The "Figure" page: a schematic body split into seventeen views, one shown at a time. Each node is a part whose
// picture tells its state; clicking a part edits its node, arrows move between the views.
class ZELKIN_CHARACTERIZATION_EXPORT DiagramWidget : public QGraphicsView
{
    Q_OBJECT

public:
    // The bridge (whose pictures the figure draws) must outlive the widget. Without one the widget loads the
    // pictures itself; hub, model and tool may be null too.
    DiagramWidget(QWidget* parent, ResourceBridge* bridge, IDCCHub* hub, CharacterizationModel* model,
                  CharacterTool* tool);
    ~DiagramWidget() override;

    int GetCurrentView() const { return mCurrentView; }
    void ShowView(int index);
    // Null for a node the figure does not show.
    PartItem* GetPartItem(int nodeId) const;
    const std::vector<PartItem*>& GetArrowItems(int view) const;
    PartItem* GetStatusItem() const { return mStatus; }
    InversionItem* GetInversionItem(int nodeId) const;
    QGraphicsPixmapItem* GetBaseItem(int view) const;
    BoneAssignment& GetAssignment() { return mAssignment; }
    // Arrows and the status element can be clicked but stand for no node, so nothing can be assigned to them.
    bool IsNonNodeItem(const QGraphicsItem* item) const;
    // The part, arrow or status element under a point of the widget; only selectable items count.
    PartItem* ItemAt(const QPoint& point) const;
    // The context menu for an item (or none) under the cursor, its entries enabled as the mapping allows.
    std::unique_ptr<QMenu> CreateContextMenu(PartItem* underCursor);

signals:
    // Asks the panel to show one of its pages (1: the name match page).
    void ViewTabRequested(int index);

public slots:
    void SyncViewOnModel();
    void OnDccSelect();
    void ClearMenuItem();
    void ClearAll();
    void ClearView();
    void ChangeEditPart(int oldNodeId, int newNodeId, bool picked);
    void AssignSelection();
    void ShowAutoCompletion();
    void InvertJoint();
    void SwitchToNameMatchView();
    void ShowInvertItems(PartItem* item, bool show);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    struct View
    {
        QGraphicsPixmapItem* base = nullptr;
        std::vector<PartItem*> parts;
        std::vector<PartItem*> arrows;
        std::vector<InversionItem*> inversions;
    };

    void BuildViews();
    void SetViewVisible(int index, bool visible);
    bool ViewHolds(int index, const PartItem* item) const;
    void ShowMarker(int nodeId, bool show);
    void UpdateMarkers();
    void UpdateStatus();
    void Click(PartItem* item);
    int ArrowTarget(const PartItem* item) const;
    int MenuNode() const;
    QStringList HostSelection() const;

    std::unique_ptr<PictureCache> mOwnPictures;
    PictureCache* mPictures;
    IDCCHub* mHub;
    CharacterizationModel* mModel;
    BoneAssignment mAssignment;
    HoverAdapter* mHover;
    std::vector<View> mViews;
    std::array<PartItem*, BoneCatalogue::NodeCount> mParts {};
    PartItem* mStatus = nullptr;
    PartItem* mEdited = nullptr;
    // The item under the cursor when the context menu opened; the menu's entries act on it.
    PartItem* mMenuItem = nullptr;
    int mCurrentView = -1;
};
