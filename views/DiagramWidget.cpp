#include "DiagramWidget.h"

#include <algorithm>

#include <QContextMenuEvent>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QMenu>
#include <QMouseEvent>

#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>
#include <zelkin/ResourceBridge.h>

#include "CompleterWidget.h"
#include "DialogParent.h"
#include "FigureLayout.h"
#include "HoverAdapter.h"
#include "InversionItem.h"
#include "PartItem.h"
#include "PictureCache.h"
#include "ReadablePalette.h"
#include "ViewConnections.h"

namespace
{
constexpr int NameMatchPage = 1;
// The knees and elbows, as bits over the node identifiers below 14.
constexpr unsigned HingeMask = 1u << 3 | 1u << 6 | 1u << 10 | 1u << 13;

enum Layer
{
    BaseLayer,
    PartLayer,
    MarkerLayer,
    StatusLayer
};

bool IsHinge(int nodeId)
{
    return nodeId >= 0 && nodeId < 14 && (HingeMask >> nodeId & 1u) != 0;
}

const std::vector<PartItem*> NoArrows;
} // namespace

DiagramWidget::DiagramWidget(QWidget* parent, ResourceBridge* bridge, IDCCHub* hub, CharacterizationModel* model,
                             CharacterTool* tool)
    : QGraphicsView(parent)
    , mOwnPictures(bridge == nullptr ? std::make_unique<PictureCache>() : nullptr)
    , mPictures(bridge != nullptr ? &bridge->GetPictures() : mOwnPictures.get())
    , mHub(hub)
    , mModel(model)
    , mAssignment(this, hub, model)
    , mHover(new HoverAdapter(this))
{
    setScene(new QGraphicsScene(QRectF(QPointF(0, 0), QSizeF(FigureLayout::BaseImageSize)), this));
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMinimumSize(FigureLayout::BaseImageSize);
    BuildViews();
    ShowView(FigureLayout::FullBodyView);

    connect(mHover, SIGNAL(Hover(PartItem*, bool)), this, SLOT(ShowInvertItems(PartItem*, bool)));
    ConnectPageToSources(this, mModel, mHub, tool);

    SyncViewOnModel();
    if (mModel != nullptr)
        ChangeEditPart(CharacterizationModel::NoPart, mModel->GetEditedPart(), !mModel->IsLocked());
}

DiagramWidget::~DiagramWidget() = default;

void DiagramWidget::BuildViews()
{
    PictureCache& pictures = *mPictures;
    for (const FigureLayout::ViewRecord& record : FigureLayout::Views()) {
        View view;
        view.base = scene()->addPixmap(pictures.Get(record.baseImage.file));
        view.base->setZValue(BaseLayer);
        for (const FigureLayout::PartRecord& part : record.parts) {
            auto* item = new PartItem(part.nodeId, BoneCatalogue::NodeName(part.nodeId), part.imageBase,
                                      part.placement, pictures, mHover);
            view.parts.push_back(item);
            mParts[part.nodeId] = item;
        }
        for (const FigureLayout::ArrowRecord& arrow : record.arrows) {
            view.arrows.push_back(new PartItem(arrow.sourceNode, tr(arrow.toolTip.toUtf8().constData()),
                                               arrow.imageBase, arrow.placement, pictures));
        }
        for (const FigureLayout::InversionRecord& marker : record.inversions) {
            view.inversions.push_back(new InversionItem(marker.nodeId, marker.invertedImage, marker.normalImage,
                                                        marker.placement, marker.flag != 0, pictures));
        }
        for (PartItem* item : view.parts)
            item->setZValue(PartLayer);
        for (PartItem* item : view.arrows)
            item->setZValue(PartLayer);
        for (InversionItem* marker : view.inversions)
            marker->setZValue(MarkerLayer);
        mViews.push_back(view);
    }
    for (const View& view : mViews) {
        for (PartItem* item : view.parts)
            scene()->addItem(item);
        for (PartItem* item : view.arrows) {
            item->SetState(0, QString());
            scene()->addItem(item);
        }
        for (InversionItem* marker : view.inversions)
            scene()->addItem(marker);
    }
    for (int index = 0; index < FigureLayout::ViewCount; ++index)
        SetViewVisible(index, false);

    // The overall state stays in the corner of every view.
    const FigureLayout::ArrowRecord& status = FigureLayout::StatusElement();
    mStatus = new PartItem(-1, tr("Characterization"), status.imageBase, status.placement, pictures);
    mStatus->setZValue(StatusLayer);
    scene()->addItem(mStatus);
}

void DiagramWidget::SetViewVisible(int index, bool visible)
{
    View& view = mViews[index];
    view.base->setVisible(visible);
    for (PartItem* item : view.parts)
        item->setVisible(visible);
    for (PartItem* item : view.arrows)
        item->setVisible(visible);
    for (InversionItem* marker : view.inversions)
        marker->setVisible(false);
}

void DiagramWidget::ShowView(int index)
{
    if (index < 0 || index >= static_cast<int>(mViews.size()))
        return;
    if (mCurrentView >= 0)
        SetViewVisible(mCurrentView, false);
    const FigureLayout::ViewRecord& record = FigureLayout::Views()[index];
    setStyleSheet(QString("background:rgb(%1, %2, %3)").arg(record.red).arg(record.green).arg(record.blue));
    mCurrentView = index;
    SetViewVisible(index, true);
}

PartItem* DiagramWidget::GetPartItem(int nodeId) const
{
    return BoneCatalogue::IsValidNode(nodeId) ? mParts[nodeId] : nullptr;
}

const std::vector<PartItem*>& DiagramWidget::GetArrowItems(int view) const
{
    return view >= 0 && view < static_cast<int>(mViews.size()) ? mViews[view].arrows : NoArrows;
}

InversionItem* DiagramWidget::GetInversionItem(int nodeId) const
{
    for (const View& view : mViews) {
        for (InversionItem* marker : view.inversions) {
            if (marker->GetNodeId() == nodeId)
                return marker;
        }
    }
    return nullptr;
}

QGraphicsPixmapItem* DiagramWidget::GetBaseItem(int view) const
{
    return view >= 0 && view < static_cast<int>(mViews.size()) ? mViews[view].base : nullptr;
}

bool DiagramWidget::ViewHolds(int index, const PartItem* item) const
{
    const std::vector<PartItem*>& parts = mViews[index].parts;
    return std::find(parts.begin(), parts.end(), item) != parts.end();
}

bool DiagramWidget::IsNonNodeItem(const QGraphicsItem* item) const
{
    if (item == nullptr)
        return false;
    const std::vector<PartItem*>& arrows = GetArrowItems(mCurrentView);
    return item == mStatus || std::find(arrows.begin(), arrows.end(), item) != arrows.end();
}

int DiagramWidget::ArrowTarget(const PartItem* item) const
{
    const std::vector<PartItem*>& arrows = GetArrowItems(mCurrentView);
    const auto found = std::find(arrows.begin(), arrows.end(), item);
    if (found == arrows.end())
        return -1;
    return FigureLayout::Views()[mCurrentView].arrows[found - arrows.begin()].targetView;
}

PartItem* DiagramWidget::ItemAt(const QPoint& point) const
{
    for (QGraphicsItem* item : items(point)) {
        if (item->isVisible() && (item->flags() & QGraphicsItem::ItemIsSelectable))
            return dynamic_cast<PartItem*>(item);
    }
    return nullptr;
}

QStringList DiagramWidget::HostSelection() const
{
    QStringList selection;
    if (mHub != nullptr)
        mHub->GetSelectedBones(selection);
    return selection;
}

void DiagramWidget::SyncViewOnModel()
{
    const bool editable = mAssignment.IsEditable();
    for (PartItem* item : mParts) {
        if (item == nullptr)
            continue;
        const int nodeId = item->GetNodeId();
        QString text = mModel != nullptr ? QString::fromStdString(mModel->GetNodeMessage(nodeId)) : QString();
        if (text.isEmpty() && mModel != nullptr)
            text = mModel->GetAssignedBone(nodeId);
        item->SetState(mModel != nullptr ? mModel->GetNodeState(nodeId) : 0, text);
        item->SetDimmed(!editable);
    }
    // An arrow shows the state of the node it starts from.
    for (const View& view : mViews) {
        for (PartItem* arrow : view.arrows) {
            const int source = arrow->GetNodeId();
            const bool known = mModel != nullptr && BoneCatalogue::IsValidNode(source);
            arrow->SetState(known ? mModel->GetNodeState(source) : 0, QString());
        }
    }
    UpdateStatus();
    UpdateMarkers();
    viewport()->update();
}

void DiagramWidget::UpdateStatus()
{
    if (mModel == nullptr) {
        mStatus->SetState(0, QString());
        return;
    }
    const int state = mModel->GetValidationState();
    QString text = QString::fromStdString(mModel->GetValidationMessage());
    if (text.isEmpty() && state == Valid)
        text = tr("Characterization is valid.");
    mStatus->SetState(state, text);
}

void DiagramWidget::UpdateMarkers()
{
    for (const View& view : mViews) {
        for (InversionItem* marker : view.inversions) {
            const int invertible = BoneAssignment::InvertibleBoneOf(marker->GetNodeId());
            marker->SetInverted(mModel != nullptr && invertible >= 0 && mModel->IsInverted(invertible));
        }
    }
}

void DiagramWidget::ShowMarker(int nodeId, bool show)
{
    InversionItem* marker = GetInversionItem(nodeId);
    if (marker != nullptr)
        marker->setVisible(show && mCurrentView == FigureLayout::FullBodyView);
}

void DiagramWidget::ShowInvertItems(PartItem* item, bool show)
{
    // The edited joint keeps its marker when the pointer leaves it.
    if (item == nullptr || (!show && item == mEdited))
        return;
    ShowMarker(item->GetNodeId(), show);
}

void DiagramWidget::OnDccSelect()
{
    const QStringList selection = HostSelection();
    if (selection.isEmpty() || mModel == nullptr)
        return;
    for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId) {
        if (mModel->GetAssignedBone(nodeId) == selection.front()) {
            // Not picked: the host made this selection, so it need not be told again.
            mModel->SetEditedPart(nodeId, false);
            return;
        }
    }
}

// The model passes whether the characterization can be edited as the picked flag: the part being edited shows the
// picked ring, one that is only looked at the plain selection ring.
void DiagramWidget::ChangeEditPart(int oldNodeId, int newNodeId, bool picked)
{
    for (PartItem* previous : {GetPartItem(oldNodeId), mEdited}) {
        if (previous != nullptr) {
            previous->SetSelectionMode(StateRepresentation::NotSelected);
            previous->setSelected(false);
            ShowMarker(previous->GetNodeId(), false);
        }
    }
    mEdited = GetPartItem(newNodeId);
    if (mEdited == nullptr) {
        viewport()->update();
        return;
    }
    if (!ViewHolds(mCurrentView, mEdited)) {
        for (int index = 0; index < FigureLayout::ViewCount; ++index) {
            if (ViewHolds(index, mEdited)) {
                ShowView(index);
                break;
            }
        }
    }
    mEdited->setSelected(true);
    mEdited->SetSelectionMode(picked ? StateRepresentation::Picked : StateRepresentation::Selected);
    viewport()->update();
    ShowMarker(newNodeId, true);
}

void DiagramWidget::mousePressEvent(QMouseEvent* event)
{
    PartItem* item = event->button() == Qt::LeftButton ? ItemAt(event->pos()) : nullptr;
    if (item == nullptr) {
        QGraphicsView::mousePressEvent(event);
        return;
    }
    event->accept();
    Click(item);
}

void DiagramWidget::Click(PartItem* item)
{
    // Moving between the views is always allowed; editing is not.
    const int target = ArrowTarget(item);
    if (target >= 0) {
        ShowView(target);
        if (mEdited != nullptr && ViewHolds(target, mEdited))
            ShowMarker(mEdited->GetNodeId(), true);
        return;
    }
    if (item == mStatus || mModel == nullptr || !mAssignment.ConfirmEditable())
        return;
    mModel->SetEditedPart(item->GetNodeId(), true);
}

void DiagramWidget::contextMenuEvent(QContextMenuEvent* event)
{
    std::unique_ptr<QMenu> menu = CreateContextMenu(ItemAt(event->pos()));
    menu->exec(event->globalPos());
}

std::unique_ptr<QMenu> DiagramWidget::CreateContextMenu(PartItem* underCursor)
{
    mMenuItem = underCursor;
    const bool editable = mAssignment.IsEditable();
    const bool item = underCursor != nullptr;
    const bool node = item && !IsNonNodeItem(underCursor);
    const int invertible = BoneAssignment::InvertibleBoneOf(MenuNode());

    auto menu = std::make_unique<QMenu>(DialogParent(this));
    menu->setPalette(ReadablePalette(menu->palette()));
    menu->addAction(tr("Assign Selected Bone"), this, SLOT(AssignSelection()))
        ->setEnabled(!HostSelection().isEmpty() && node && editable);
    menu->addAction(tr("Change Assigned Bone..."), this, SLOT(ShowAutoCompletion()))->setEnabled(node && editable);
    menu->addSeparator();
    menu->addAction(tr("Clear"), this, SLOT(ClearMenuItem()))->setEnabled(item && editable);
    menu->addAction(tr("Clear All in View"), this, SLOT(ClearView()))->setEnabled(editable);
    menu->addAction(tr("Clear All"), this, SLOT(ClearAll()))->setEnabled(editable);
    menu->addSeparator();
    QAction* invert = menu->addAction(tr("Invert Joint"), this, SLOT(InvertJoint()));
    invert->setEnabled(editable && IsHinge(MenuNode()));
    invert->setCheckable(invertible >= 0);
    invert->setChecked(invertible >= 0 && mModel != nullptr && mModel->IsInverted(invertible));
    menu->addSeparator();
    menu->addAction(tr("Name Match View"), this, SLOT(SwitchToNameMatchView()));
    return menu;
}

int DiagramWidget::MenuNode() const
{
    return mMenuItem != nullptr ? mMenuItem->GetNodeId() : BoneCatalogue::NoNode;
}

void DiagramWidget::AssignSelection()
{
    const QStringList selection = HostSelection();
    if (mMenuItem == nullptr || IsNonNodeItem(mMenuItem) || selection.isEmpty() || !mAssignment.ConfirmEditable())
        return;
    mAssignment.Assign(MenuNode(), selection.front());
}

void DiagramWidget::ShowAutoCompletion()
{
    if (mMenuItem == nullptr || IsNonNodeItem(mMenuItem) || !mAssignment.ConfirmEditable())
        return;
    const int nodeId = MenuNode();
    CompleterWidget completer(DialogParent(this), mHub, mModel, nodeId);
    if (completer.exec() == QDialog::Accepted)
        mAssignment.ApplyEnteredName(nodeId, completer.GetText());
}

// On an arrow this clears the node the arrow starts from.
void DiagramWidget::ClearMenuItem()
{
    const int nodeId = MenuNode();
    if (BoneCatalogue::IsValidNode(nodeId) && mAssignment.ConfirmEditable())
        mModel->ClearNode(nodeId);
}

void DiagramWidget::ClearView()
{
    if (mModel == nullptr || !mAssignment.ConfirmEditable())
        return;
    std::vector<int> nodes;
    for (const PartItem* item : mViews[mCurrentView].parts)
        nodes.push_back(item->GetNodeId());
    mModel->ClearNodes(nodes);
}

void DiagramWidget::ClearAll()
{
    if (mModel != nullptr && mAssignment.ConfirmEditable())
        mModel->ClearAll();
}

void DiagramWidget::InvertJoint()
{
    if (IsHinge(MenuNode()) && mAssignment.ConfirmEditable())
        mAssignment.ToggleInversion(MenuNode());
}

void DiagramWidget::SwitchToNameMatchView()
{
    emit ViewTabRequested(NameMatchPage);
}
