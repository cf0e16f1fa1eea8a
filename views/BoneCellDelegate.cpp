#include "BoneCellDelegate.h"

#include <QLineEdit>

#include <zelkin/BoneCatalogue.h>

#include "CompleterWidget.h"

namespace
{
int NodeOf(const QModelIndex& index)
{
    bool ok = false;
    const int nodeId = index.data(BoneCellDelegate::NodeRole).toInt(&ok);
    return ok && BoneCatalogue::IsValidNode(nodeId) ? nodeId : BoneCatalogue::NoNode;
}
} // namespace

BoneCellDelegate::BoneCellDelegate(IDCCHub* hub, const CharacterizationModel* model, QObject* parent)
    : QStyledItemDelegate(parent)
    , mHub(hub)
    , mModel(model)
{
}

QWidget* BoneCellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const
{
    const int nodeId = NodeOf(index);
    if (nodeId == BoneCatalogue::NoNode)
        return nullptr;
    auto* editor = new QLineEdit(parent);
    editor->setFrame(false);
    editor->setCompleter(CompleterWidget::CreateBoneCompleter(mHub, mModel, nodeId, editor));
    return editor;
}

void BoneCellDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (auto* line = qobject_cast<QLineEdit*>(editor))
    {
        line->setText(index.data(Qt::DisplayRole).toString());
        line->selectAll();
    }
}

void BoneCellDelegate::setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const
{
    const auto* line = qobject_cast<QLineEdit*>(editor);
    const int nodeId = NodeOf(index);
    if (line != nullptr && nodeId != BoneCatalogue::NoNode && line->text() != index.data(Qt::DisplayRole).toString())
        emit BoneEntered(nodeId, line->text());
}

void BoneCellDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->textElideMode = Qt::ElideLeft;
}
