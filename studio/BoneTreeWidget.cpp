#include "BoneTreeWidget.h"

#include <vector>

#include <QHeaderView>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QSet>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>

#include "Scene.h"
#include "SceneHub.h"
#include "SkeletonViewport.h"

namespace
{
QIcon StateIcon(int state)
{
    QPixmap pixmap(12, 12);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(20, 22, 26), 1.0));
    painter.setBrush(SkeletonViewport::StateColour(state));
    painter.drawEllipse(QRectF(1.5, 1.5, 9, 9));
    return QIcon(pixmap);
}

// Shows the item when it or one of its descendants matches; true when it is shown.
bool FilterItem(QTreeWidgetItem* item, const QString& text)
{
    bool shown = text.isEmpty() || item->text(BoneTreeWidget::BoneColumn).contains(text, Qt::CaseInsensitive);
    for (int child = 0; child < item->childCount(); ++child)
        shown = FilterItem(item->child(child), text) || shown;
    item->setHidden(!shown);
    return shown;
}
} // namespace

BoneTreeWidget::BoneTreeWidget(SceneHub& hub, QWidget* parent)
    : QWidget(parent)
    , mHub(hub)
{
    mFilter = new QLineEdit(this);
    mFilter->setPlaceholderText(tr("Filter bones"));
    mFilter->setClearButtonEnabled(true);
    mTree = new QTreeWidget(this);
    mTree->setColumnCount(2);
    mTree->setHeaderLabels({tr("Bone"), tr("Node")});
    mTree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    mTree->setUniformRowHeights(true);
    // Skeletons nest deep and their names often share a long prefix: narrow steps, and names cut at the front,
    // where they tell least.
    mTree->setIndentation(10);
    mTree->setTextElideMode(Qt::ElideLeft);
    mTree->header()->setSectionResizeMode(BoneColumn, QHeaderView::Stretch);
    mTree->header()->setSectionResizeMode(NodeColumn, QHeaderView::ResizeToContents);
    mTree->header()->setStretchLastSection(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    layout->addWidget(mFilter);
    layout->addWidget(mTree, 1);
    for (int state : {int(NotValidated), int(Valid), int(Warning), int(Error)})
        mStateIcons.insert(state, StateIcon(state));

    connect(mFilter, &QLineEdit::textChanged, this, &BoneTreeWidget::ApplyFilter);
    connect(mTree, &QTreeWidget::itemSelectionChanged, this, &BoneTreeWidget::OnTreeSelectionChanged);
    connect(&mHub, &IDCCHub::selectionChanged, this, &BoneTreeWidget::SyncSelectionFromHub);
}

void BoneTreeWidget::SetModel(CharacterizationModel* model)
{
    if (mModel != nullptr)
        disconnect(mModel, nullptr, this, nullptr);
    mModel = model;
    if (mModel != nullptr)
        connect(mModel, &CharacterizationModel::ModelChanged, this, &BoneTreeWidget::RefreshNodes);
    RefreshNodes();
}

QTreeWidgetItem* BoneTreeWidget::FindItem(const QString& bone) const
{
    return mItems.value(bone, nullptr);
}

QStringList BoneTreeWidget::VisibleBones() const
{
    QStringList bones;
    for (QTreeWidgetItemIterator it(mTree, QTreeWidgetItemIterator::NotHidden); *it != nullptr; ++it)
        bones.append((*it)->text(BoneColumn));
    return bones;
}

void BoneTreeWidget::Rebuild()
{
    const Scene& scene = mHub.GetScene();
    mSyncing = true;
    mTree->clear();
    mItems.clear();
    std::vector<QTreeWidgetItem*> items(static_cast<size_t>(scene.BoneCount()), nullptr);
    for (int index = 0; index < scene.BoneCount(); ++index)
    {
        const SceneBone& bone = scene.Bone(index);
        // Parents come first in the scene, so the parent's item already exists.
        QTreeWidgetItem* item = bone.parent >= 0 ? new QTreeWidgetItem(items[size_t(bone.parent)])
                                                 : new QTreeWidgetItem(mTree);
        item->setText(BoneColumn, bone.name);
        item->setToolTip(BoneColumn, bone.name);
        items[size_t(index)] = item;
        mItems.insert(bone.name, item);
    }
    mTree->expandAll();
    mSyncing = false;
    RefreshNodes();
    ApplyFilter();
    SyncSelectionFromHub();
}

void BoneTreeWidget::RefreshNodes()
{
    const std::shared_ptr<Characterization> current =
        mModel != nullptr ? mModel->GetCurrentCharacterization() : nullptr;
    QHash<QString, int> nodes;
    // Downwards, so a bone holding several nodes shows its first one.
    for (int nodeId = ZELNodeCount - 1; current && nodeId >= 0; --nodeId)
    {
        if (current->IsAssigned(nodeId))
            nodes.insert(current->GetBone(nodeId), nodeId);
    }
    // Each changed cell would have the header measure the whole column again: it measures once, at the end.
    mTree->header()->setSectionResizeMode(NodeColumn, QHeaderView::Interactive);
    for (auto it = mItems.cbegin(); it != mItems.cend(); ++it)
    {
        const int nodeId = nodes.value(it.key(), BoneCatalogue::NoNode);
        QTreeWidgetItem* item = it.value();
        if (nodeId == BoneCatalogue::NoNode)
        {
            item->setText(NodeColumn, QString());
            item->setIcon(NodeColumn, QIcon());
            continue;
        }
        item->setText(NodeColumn, QString::fromLatin1(BoneCatalogue::NodeName(nodeId)));
        item->setIcon(NodeColumn, mStateIcons.value(mModel->GetNodeState(nodeId)));
        item->setToolTip(NodeColumn, QString::fromStdString(mModel->GetNodeMessage(nodeId)));
    }
    mTree->header()->setSectionResizeMode(NodeColumn, QHeaderView::ResizeToContents);
}

void BoneTreeWidget::ApplyFilter()
{
    const QString text = mFilter->text().trimmed();
    for (int top = 0; top < mTree->topLevelItemCount(); ++top)
        FilterItem(mTree->topLevelItem(top), text);
    if (!text.isEmpty())
        mTree->expandAll();
}

void BoneTreeWidget::SyncSelectionFromHub()
{
    const QStringList& selection = mHub.GetScene().Selection();
    QSet<QString> shown;
    for (const QTreeWidgetItem* item : mTree->selectedItems())
        shown.insert(item->text(BoneColumn));
    // The tree's own change coming back: leave the rows and the scrolling as the user has them.
    if (shown == QSet<QString>(selection.begin(), selection.end()))
        return;
    mSyncing = true;
    mTree->clearSelection();
    QTreeWidgetItem* last = nullptr;
    for (const QString& bone : selection)
    {
        if (QTreeWidgetItem* item = FindItem(bone))
        {
            item->setSelected(true);
            last = item;
        }
    }
    if (last != nullptr)
    {
        mTree->setCurrentItem(last, BoneColumn, QItemSelectionModel::NoUpdate);
        mTree->scrollToItem(last);
    }
    mSyncing = false;
}

void BoneTreeWidget::OnTreeSelectionChanged()
{
    if (mSyncing)
        return;
    // In scene order, parents first, whatever order the rows were clicked in.
    QStringList bones;
    for (const QString& bone : mHub.GetScene().BoneNames())
    {
        const QTreeWidgetItem* item = FindItem(bone);
        if (item != nullptr && item->isSelected())
            bones.append(bone);
    }
    mHub.SelectBones(bones);
}
