#include "NameMatchWidget.h"

#include <algorithm>
#include <cstdlib>

#include <QHash>
#include <QHeaderView>
#include <QIcon>
#include <QMenu>
#include <QMetaObject>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QTreeWidgetItem>
#include <QVBoxLayout>

#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>
#include <zelkin/ResourceBridge.h>

#include "BoneCellDelegate.h"
#include "CompleterWidget.h"
#include "DialogParent.h"
#include "NameMatchTreeWidget.h"
#include "PictureCache.h"
#include "ReadablePalette.h"
#include "ViewConnections.h"

namespace
{
static_assert(NameMatchWidget::NodeRole == BoneCellDelegate::NodeRole, "the delegate reads the rows' node role");

// Which bubble a row shows, so an unchanged row is not given its icon again.
constexpr int BubbleRole = Qt::UserRole + 1;
// Group icons are small thumbnails of the figure; a little larger than the bubbles so a hand reads as a hand.
constexpr int IconExtent = 20;
// Rows of neighbours kept in sight above and below the row the page moves to.
constexpr int ContextRows = 3;

// Two rows of four, highlighted first; within a row the error bubble comes first. There is no red highlight: a
// highlighted row in error shows the green one.
const char* const Bubbles[2][4] = {
    {"BubbleSmall_Green_Highlight.png", "BubbleSmall_Orange_Highlight.png", "BubbleSmall_Green_Highlight.png",
     "BubbleSmall_Gray_Highlight.png"},
    {"BubbleSmall_Red.png", "BubbleSmall_Orange.png", "BubbleSmall_Green.png", "BubbleSmall_Gray.png"}};

struct GroupEntry
{
    const char* title;
    const char* picture; // a figure view's base picture, shrunk to an icon
    int parent;          // index of the parent group in the table; -1 for the top item
    std::vector<int> nodes;
    bool expanded;
};

std::vector<int> Range(int first, int last)
{
    std::vector<int> nodes;
    for (int nodeId = first; nodeId <= last; ++nodeId)
        nodes.push_back(nodeId);
    return nodes;
}

std::vector<int> Prepend(int nodeId, std::vector<int> nodes)
{
    nodes.insert(nodes.begin(), nodeId);
    return nodes;
}

// One run of five levels per limb, in the in-line roll bones' limb order.
std::vector<int> LeafRolls()
{
    constexpr int FirstLeaf = 172;
    constexpr int Limbs = 8;
    constexpr int Levels = 5;
    std::vector<int> nodes;
    for (int limb = 0; limb < Limbs; ++limb)
    {
        for (int level = 0; level < Levels; ++level)
            nodes.push_back(FirstLeaf + limb + Limbs * level);
    }
    return nodes;
}

const std::vector<GroupEntry>& Groups()
{
    static const std::vector<GroupEntry> groups = {
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Body"), "BodyGUI_Base.png", -1, {}, true},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Base (required)"), "BodyGUI_Base.png", 0, Range(1, 15), true},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Auxiliary"), "ShoulderLeftGUI_Base.png", 0, Range(16, 22), false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Spine"), "SpineGUI_Base.png", 0, Prepend(8, Range(23, 31)), false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Neck"), "NeckGUI_Base.png", 0, Prepend(20, Range(32, 40)), false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Roll"), "ArmLeftGUI_Base.png", 0, {}, false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "In-Line"), "LegLeftGUI_Base.png", 5, Range(41, 48), false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Leaf"), "ForeArmLeftGUI_Base.png", 5, LeafRolls(), false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Special"), "BodyGUI_Base.png", 0, {49}, false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Left Hand"), "HandsGUI_Base_Left.png", 0, Range(50, 73), false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Right Hand"), "HandsGUI_Base_Right.png", 0, Range(74, 97), false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Left Foot"), "FootGUI_Base_Left.png", 0, Range(98, 121), false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Right Foot"), "FootGUI_Base_Right.png", 0, Range(122, 145), false},
        {QT_TRANSLATE_NOOP("NameMatchWidget", "Inner Finger"), "HandsGUI_Base_Left.png", 0, Range(146, 169), false},
    };
    return groups;
}

// The figure of a view picture: every pixel that differs from the background (the colour of its corner), cut to
// its bounds. Drawn light on a tile of that dark background it reads at icon size, in any theme.
QImage FigureOutline(const QImage& picture)
{
    constexpr int Threshold = 12;
    const QImage image = picture.convertToFormat(QImage::Format_ARGB32);
    const int background = qGray(image.pixel(0, 0));
    QImage outline(image.size(), QImage::Format_ARGB32);
    outline.fill(Qt::transparent);
    int left = image.width();
    int right = -1;
    int top = image.height();
    int bottom = -1;
    for (int y = 0; y < image.height(); ++y)
    {
        const QRgb* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        QRgb* out = reinterpret_cast<QRgb*>(outline.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
        {
            if (std::abs(qGray(line[x]) - background) <= Threshold)
                continue;
            out[x] = qRgb(225, 225, 225);
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    return right < left ? QImage() : outline.copy(QRect(QPoint(left, top), QPoint(right, bottom)));
}

QIcon GroupIcon(PictureCache& pictures, const char* name)
{
    const QPixmap& picture = pictures.Get(QString::fromLatin1(name));
    const QImage image = picture.toImage();
    const QImage outline = image.isNull() ? QImage() : FigureOutline(image);
    if (outline.isNull())
        return QIcon();
    const qreal ratio = std::max<qreal>(1.0, picture.devicePixelRatio());
    QPixmap tile(QSize(IconExtent, IconExtent) * ratio);
    tile.setDevicePixelRatio(ratio);
    tile.fill(Qt::transparent);
    QPainter painter(&tile);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(image.pixel(0, 0)));
    painter.drawRoundedRect(QRectF(0, 0, IconExtent, IconExtent), 3, 3);
    const QSizeF room(IconExtent - 2, IconExtent - 2);
    const QSizeF size = QSizeF(outline.size()).scaled(room, Qt::KeepAspectRatio);
    const QRectF target(QPointF((IconExtent - size.width()) / 2, (IconExtent - size.height()) / 2), size);
    painter.drawImage(target, outline.scaled((size * ratio).toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    painter.end();
    return QIcon(tile);
}

// The bubble keeps its colour on the current row instead of taking the selection's tint.
QIcon BubbleIcon(PictureCache& pictures, const QString& name)
{
    const QPixmap& picture = pictures.Get(name);
    QIcon icon;
    icon.addPixmap(picture, QIcon::Normal);
    icon.addPixmap(picture, QIcon::Selected);
    icon.addPixmap(picture, QIcon::Active);
    return icon;
}

int BubbleColumn(int state)
{
    return 3 - std::clamp(state, 0, 3);
}

const std::vector<QTreeWidgetItem*> NoRows;
} // namespace

NameMatchWidget::NameMatchWidget(QWidget* parent, IDCCHub* hub, ResourceBridge* bridge, CharacterizationModel* model,
                                 CharacterTool* tool)
    : QWidget(parent)
    , mHub(hub)
    , mPictures(bridge != nullptr ? &bridge->GetPictures() : nullptr)
    , mModel(model)
    , mTree(new NameMatchTreeWidget(this))
    , mDelegate(new BoneCellDelegate(hub, model, this))
    , mAssignment(this, hub, model)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mTree);
    BuildTree();

    connect(mTree, SIGNAL(MouseRightClicked(QMouseEvent*)), this, SLOT(PopMenu(QMouseEvent*)));
    connect(mTree, SIGNAL(currentItemChanged(QTreeWidgetItem*, QTreeWidgetItem*)), this,
            SLOT(UpdateEditedPart(QTreeWidgetItem*, QTreeWidgetItem*)));
    connect(mTree, SIGNAL(itemDoubleClicked(QTreeWidgetItem*, int)), this,
            SLOT(SetItemEditable(QTreeWidgetItem*, int)));
    connect(mTree, &NameMatchTreeWidget::EditKeyPressed, this,
            [this](QTreeWidgetItem* item) { SetItemEditable(item, BoneColumn); });
    connect(mTree, &NameMatchTreeWidget::DeleteKeyPressed, this, &NameMatchWidget::ClearFromKeyboard);
    connect(mTree, &QTreeWidget::itemExpanded, mTree, &NameMatchTreeWidget::FitFirstColumn);
    connect(mTree, &QTreeWidget::itemCollapsed, mTree, &NameMatchTreeWidget::FitFirstColumn);
    // Queued: the answer may open message boxes, which must wait until the cell editor has closed.
    connect(mDelegate, &BoneCellDelegate::BoneEntered, this, &NameMatchWidget::ApplyEnteredBone,
            Qt::QueuedConnection);
    ConnectPageToSources(this, mModel, mHub, tool);

    SyncViewOnModel();
    if (mModel != nullptr)
        ChangeEditPart(CharacterizationModel::NoPart, mModel->GetEditedPart(), !mModel->IsLocked());
}

NameMatchWidget::~NameMatchWidget() = default;

void NameMatchWidget::BuildTree()
{
    mTree->setColumnCount(2);
    mTree->setHeaderLabels({tr("Zelkin node"), tr("Bone")});
    mTree->setItemDelegateForColumn(BoneColumn, mDelegate);
    mTree->setEditTriggers(QAbstractItemView::NoEditTriggers); // editing starts only through SetItemEditable
    mTree->setSelectionMode(QAbstractItemView::SingleSelection);
    mTree->setUniformRowHeights(true);
    mTree->setAlternatingRowColors(true);
    // Node names tell left from right at their start and apart at their end (the bone column cuts its own).
    mTree->setTextElideMode(Qt::ElideMiddle);
    mTree->setIconSize(QSize(IconExtent, IconExtent));
    mTree->setIndentation(IconExtent * 3 / 5); // four levels deep, the names still need the room
    mTree->header()->setStretchLastSection(false); // the tree shares its width out itself
    KeepReadable(*mTree);

    QHash<QString, QIcon> icons; // several groups share a picture
    for (const GroupEntry& entry : Groups())
    {
        QTreeWidgetItem* parent = entry.parent < 0 ? nullptr : mGroups[entry.parent];
        auto* group = parent == nullptr ? new QTreeWidgetItem(mTree) : new QTreeWidgetItem(parent);
        group->setText(NodeColumn, tr(entry.title));
        if (mPictures != nullptr && !icons.contains(QLatin1String(entry.picture)))
            icons.insert(QLatin1String(entry.picture), GroupIcon(*mPictures, entry.picture));
        group->setIcon(NodeColumn, icons.value(QLatin1String(entry.picture)));
        group->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        for (int nodeId : entry.nodes)
            AddNodeRow(group, nodeId);
        group->setExpanded(entry.expanded);
        mGroups.push_back(group);
    }
}

QTreeWidgetItem* NameMatchWidget::AddNodeRow(QTreeWidgetItem* group, int nodeId)
{
    auto* row = new QTreeWidgetItem(group);
    row->setText(NodeColumn, QString::fromLatin1(BoneCatalogue::NodeName(nodeId)));
    row->setData(NodeColumn, NodeRole, nodeId);
    row->setData(BoneColumn, NodeRole, nodeId);
    row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable);
    mRows[nodeId].push_back(row);
    return row;
}

const std::vector<QTreeWidgetItem*>& NameMatchWidget::GetNodeRows(int nodeId) const
{
    return BoneCatalogue::IsValidNode(nodeId) ? mRows[nodeId] : NoRows;
}

QTreeWidgetItem* NameMatchWidget::GetGroupRow(const QString& title) const
{
    for (QTreeWidgetItem* group : mGroups)
    {
        if (group->text(NodeColumn) == title)
            return group;
    }
    return nullptr;
}

int NameMatchWidget::NodeOfRow(const QTreeWidgetItem* row)
{
    if (row == nullptr)
        return BoneCatalogue::NoNode;
    bool ok = false;
    const int nodeId = row->data(NodeColumn, NodeRole).toInt(&ok);
    return ok && BoneCatalogue::IsValidNode(nodeId) ? nodeId : BoneCatalogue::NoNode;
}

int NameMatchWidget::GetCurrentNode() const
{
    return NodeOfRow(mTree->currentItem());
}

bool NameMatchWidget::IsNodeRow(const QTreeWidgetItem* row) const
{
    return row != nullptr && row->childCount() == 0 && NodeOfRow(row) != BoneCatalogue::NoNode;
}

bool NameMatchWidget::IsHighlighted(const QTreeWidgetItem* row)
{
    return row != nullptr && row->data(NodeColumn, BubbleRole).toInt() >= 4;
}

QString NameMatchWidget::BubblePicture(int state, bool highlighted)
{
    return QString::fromLatin1(Bubbles[highlighted ? 0 : 1][BubbleColumn(state)]);
}

QStringList NameMatchWidget::HostSelection() const
{
    QStringList selection;
    if (mHub != nullptr)
        mHub->GetSelectedBones(selection);
    return selection;
}

void NameMatchWidget::UpdateRow(QTreeWidgetItem* row, const QStringList& hostSelection)
{
    const int nodeId = NodeOfRow(row);
    const QString bone = mModel != nullptr ? mModel->GetAssignedBone(nodeId) : QString();
    const int state = mModel != nullptr ? mModel->GetNodeState(nodeId) : 0;
    const bool highlighted = !bone.isEmpty() && hostSelection.contains(bone);
    if (row->text(BoneColumn) != bone)
        row->setText(BoneColumn, bone);

    const int bubble = (highlighted ? 4 : 0) + BubbleColumn(state);
    const QVariant shown = row->data(NodeColumn, BubbleRole);
    if (!shown.isValid() || shown.toInt() != bubble)
    {
        if (mPictures != nullptr)
            row->setIcon(NodeColumn, BubbleIcon(*mPictures, BubblePicture(state, highlighted)));
        row->setData(NodeColumn, BubbleRole, bubble);
        QFont font = row->font(NodeColumn);
        font.setBold(highlighted);
        row->setFont(NodeColumn, font);
        row->setFont(BoneColumn, font);
    }
    const QString message =
        mModel != nullptr ? QString::fromStdString(mModel->GetNodeMessage(nodeId)) : QString();
    if (row->toolTip(NodeColumn) != message)
        row->setToolTip(NodeColumn, message);
    // Long bone names are cut at the front in the cell, so the tip gives the whole name.
    const QString boneTip = message.isEmpty() || bone.isEmpty() ? bone + message : bone + '\n' + message;
    if (row->toolTip(BoneColumn) != boneTip)
        row->setToolTip(BoneColumn, boneTip);
}

void NameMatchWidget::SyncViewOnModel()
{
    const QStringList selection = HostSelection();
    for (const std::vector<QTreeWidgetItem*>& rows : mRows)
    {
        for (QTreeWidgetItem* row : rows)
            UpdateRow(row, selection);
    }
}

void NameMatchWidget::OnDccSelect()
{
    SyncViewOnModel();
}

void NameMatchWidget::ChangeEditPart(int, int newNodeId, bool)
{
    // The user may be on another of the node's rows, or on a group row while no node is edited.
    if (NodeOfRow(mTree->currentItem()) == newNodeId)
        return;
    mFollowing = true;
    const std::vector<QTreeWidgetItem*>& rows = GetNodeRows(newNodeId);
    if (rows.empty())
    {
        mTree->setCurrentItem(nullptr);
        mTree->clearSelection();
    }
    else
    {
        for (QTreeWidgetItem* parent = rows.front()->parent(); parent != nullptr; parent = parent->parent())
            parent->setExpanded(true);
        mTree->setCurrentItem(rows.front(), BoneColumn);
        ScrollIntoView(rows.front());
    }
    mFollowing = false;
}

void NameMatchWidget::ScrollIntoView(QTreeWidgetItem* row)
{
    // Through the tree's own scrollTo (scrollToItem would pass it by), which never scrolls sideways.
    const QModelIndex index = mTree->indexFromItem(row);
    mTree->scrollTo(index);
    const QRect shown = mTree->visualItemRect(row);
    const int context = ContextRows * std::max(1, shown.height());
    const QRect room = mTree->viewport()->rect();
    if (shown.top() - context < room.top() || shown.bottom() + context > room.bottom())
        mTree->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void NameMatchWidget::UpdateEditedPart(QTreeWidgetItem* current, QTreeWidgetItem*)
{
    if (mFollowing || mModel == nullptr)
        return;
    const int nodeId = NodeOfRow(current);
    // A row the user picks selects its bone in the host as well.
    mModel->SetEditedPart(nodeId == BoneCatalogue::NoNode ? CharacterizationModel::NoPart : nodeId, true);
}

void NameMatchWidget::SetItemEditable(QTreeWidgetItem* item, int)
{
    if (!IsNodeRow(item) || !mAssignment.ConfirmEditable())
        return;
    mTree->editItem(item, BoneColumn);
}

void NameMatchWidget::ApplyEnteredBone(int nodeId, const QString& text)
{
    mAssignment.ApplyEnteredName(nodeId, text);
}

void NameMatchWidget::ShowAutoCompletion()
{
    const int nodeId = GetCurrentNode();
    if (!IsNodeRow(mTree->currentItem()) || !mAssignment.ConfirmEditable())
        return;
    CompleterWidget completer(DialogParent(this), mHub, mModel, nodeId);
    if (completer.exec() == QDialog::Accepted)
        mAssignment.ApplyEnteredName(nodeId, completer.GetText());
}

void NameMatchWidget::AssignSelection()
{
    const QStringList selection = HostSelection();
    if (!IsNodeRow(mTree->currentItem()) || selection.isEmpty() || !mAssignment.ConfirmEditable())
        return;
    mAssignment.Assign(GetCurrentNode(), selection.front());
}

void NameMatchWidget::ClearSelectedPart()
{
    QTreeWidgetItem* row = mTree->currentItem();
    if (row == nullptr || mModel == nullptr || !mAssignment.ConfirmEditable())
        return;
    // On a group row, Clear empties the whole group.
    std::vector<int> nodes;
    std::vector<QTreeWidgetItem*> pending {row};
    while (!pending.empty())
    {
        QTreeWidgetItem* item = pending.back();
        pending.pop_back();
        if (IsNodeRow(item))
            nodes.push_back(NodeOfRow(item));
        for (int i = 0; i < item->childCount(); ++i)
            pending.push_back(item->child(i));
    }
    if (nodes.size() == 1)
        mModel->ClearNode(nodes.front());
    else if (!nodes.empty())
        mModel->ClearNodes(nodes);
}

void NameMatchWidget::ClearFromKeyboard()
{
    QTreeWidgetItem* row = mTree->currentItem();
    if (IsNodeRow(row) && mAssignment.IsEditable())
        mModel->ClearNode(NodeOfRow(row));
}

void NameMatchWidget::ClearAllParts()
{
    if (mModel != nullptr && mAssignment.ConfirmEditable())
        mModel->ClearAll();
}

void NameMatchWidget::InvertJoint()
{
    if (mAssignment.ConfirmEditable())
        mAssignment.ToggleInversion(GetCurrentNode());
}

void NameMatchWidget::SwitchToCharacterView()
{
    emit ViewTabRequested(0);
}

std::unique_ptr<QMenu> NameMatchWidget::CreateContextMenu()
{
    QTreeWidgetItem* row = mTree->currentItem();
    if (row == nullptr)
        return nullptr;
    const bool editable = mAssignment.IsEditable();
    const bool nodeRow = IsNodeRow(row);
    const int invertible = nodeRow ? BoneAssignment::InvertibleBoneOf(NodeOfRow(row)) : -1;

    auto menu = std::make_unique<QMenu>(DialogParent(this));
    menu->setPalette(ReadablePalette(menu->palette()));
    menu->addAction(tr("Assign Selected Bone"), this, SLOT(AssignSelection()))
        ->setEnabled(editable && nodeRow && !HostSelection().isEmpty());
    menu->addAction(tr("Change Assigned Bone..."), this, SLOT(ShowAutoCompletion()))->setEnabled(editable && nodeRow);
    menu->addSeparator();
    menu->addAction(tr("Clear"), this, SLOT(ClearSelectedPart()))->setEnabled(editable);
    menu->addAction(tr("Clear All"), this, SLOT(ClearAllParts()))->setEnabled(editable);
    menu->addSeparator();
    QAction* invert = menu->addAction(tr("Invert Joint"), this, SLOT(InvertJoint()));
    invert->setEnabled(editable && invertible >= 0);
    invert->setCheckable(invertible >= 0);
    invert->setChecked(invertible >= 0 && mModel != nullptr && mModel->IsInverted(invertible));
    menu->addSeparator();
    menu->addAction(tr("Character View"), this, SLOT(SwitchToCharacterView()));
    return menu;
}

void NameMatchWidget::PopMenu(QMouseEvent* event)
{
    std::unique_ptr<QMenu> menu = CreateContextMenu();
    if (menu)
        menu->exec(event != nullptr ? event->globalPosition().toPoint() : QCursor::pos());
}
