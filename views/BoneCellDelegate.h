#pragma once

#include <QStyledItemDelegate>

#include <zelkin/CharacterizationExport.h>

class CharacterizationModel;
class IDCCHub;

// In-place editing of a name match row's bone cell, with completion over the scene's bones. It never writes the
// cell: it hands the typed name on, and the cell shows whatever the characterization holds afterwards.
class ZELKIN_CHARACTERIZATION_EXPORT BoneCellDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    // Cells whose index carries a node identifier in this role can be edited.
    static constexpr int NodeRole = Qt::UserRole;

    BoneCellDelegate(IDCCHub* hub, const CharacterizationModel* model, QObject* parent);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

protected:
    // Bone names differ at their ends, not in their namespaces: a name too long for its cell loses its front.
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

signals:
    // Connect it queued: whoever acts on it may open message boxes, which must not happen while the editor closes.
    void BoneEntered(int nodeId, const QString& text) const;

private:
    IDCCHub* mHub;
    const CharacterizationModel* mModel;
};
