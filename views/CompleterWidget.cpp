#include "CompleterWidget.h"

#include <QCompleter>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPushButton>
#include <QStandardItemModel>
#include <QVBoxLayout>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>

namespace
{
// Bone name -> the first other node that holds it.
QHash<QString, int> BonesHeldElsewhere(const CharacterizationModel* model, int nodeId)
{
    QHash<QString, int> held;
    if (model == nullptr)
        return held;
    for (int other = 0; other < BoneCatalogue::NodeCount; ++other)
    {
        const QString bone = model->GetAssignedBone(other);
        if (other != nodeId && !bone.isEmpty() && !held.contains(bone))
            held.insert(bone, other);
    }
    return held;
}
} // namespace

CompleterWidget::CompleterWidget(QWidget* parent, IDCCHub* hub, CharacterizationModel* model, int nodeId)
    : QDialog(parent)
    , mLine(new QLineEdit(this))
{
    setWindowTitle(tr("Change Assigned Bone"));
    const char* nodeName = BoneCatalogue::NodeName(nodeId);
    auto* label = new QLabel(tr("Bone for %1:").arg(QString::fromLatin1(nodeName != nullptr ? nodeName : "")), this);
    mLine->setCompleter(CreateBoneCompleter(hub, model, nodeId, mLine));
    mLine->setMinimumWidth(240);
    if (model != nullptr)
        mLine->setText(model->GetAssignedBone(nodeId));
    mLine->selectAll();

    auto* ok = new QPushButton(tr("Ok"), this);
    auto* cancel = new QPushButton(tr("Cancel"), this);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(mLine, &QLineEdit::returnPressed, this, &QDialog::accept);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(mLine);
    layout->addLayout(buttons);
}

QString CompleterWidget::GetText() const
{
    return mLine->text().trimmed();
}

QCompleter* CompleterWidget::GetCompleter() const
{
    return mLine->completer();
}

QCompleter* CompleterWidget::CreateBoneCompleter(IDCCHub* hub, const CharacterizationModel* model, int nodeId,
                                                 QObject* parent)
{
    QStringList bones;
    if (hub != nullptr)
        hub->GetSceneBones(bones);
    const QHash<QString, int> held = BonesHeldElsewhere(model, nodeId);
    const QBrush marked = QPalette().brush(QPalette::Disabled, QPalette::Text);

    auto* list = new QStandardItemModel(parent);
    for (const QString& bone : bones)
    {
        auto* item = new QStandardItem(bone);
        item->setData(bone, BoneRole);
        const auto holder = held.constFind(bone);
        if (holder != held.constEnd())
        {
            item->setText(tr("%1  (used by %2)").arg(bone, QString::fromLatin1(BoneCatalogue::NodeName(*holder))));
            item->setForeground(marked);
        }
        item->setEditable(false);
        list->appendRow(item);
    }
    auto* completer = new QCompleter(list, parent);
    completer->setCompletionRole(BoneRole);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    completer->setCompletionMode(QCompleter::PopupCompletion);
    completer->setMaxVisibleItems(12);
    return completer;
}
