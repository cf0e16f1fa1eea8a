#include "PropertyView.h"

#include <cmath>

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>
#include <zelkin/RotationConversion.h>

#include "ElidedLineEdit.h"
#include "LineEditWithMouseBroadcast.h"
#include "ReadablePalette.h"

namespace
{
const char* const RotationOrderNames[ZELRotationOrderCount] = {
    QT_TRANSLATE_NOOP("PropertyView", "Euler XYZ"),  QT_TRANSLATE_NOOP("PropertyView", "Euler XYX"),
    QT_TRANSLATE_NOOP("PropertyView", "Euler XZY"),  QT_TRANSLATE_NOOP("PropertyView", "Euler XZX"),
    QT_TRANSLATE_NOOP("PropertyView", "Euler YZX"),  QT_TRANSLATE_NOOP("PropertyView", "Euler YZY"),
    QT_TRANSLATE_NOOP("PropertyView", "Euler YXZ"),  QT_TRANSLATE_NOOP("PropertyView", "Euler YXY"),
    QT_TRANSLATE_NOOP("PropertyView", "Euler ZXY"),  QT_TRANSLATE_NOOP("PropertyView", "Euler ZXZ"),
    QT_TRANSLATE_NOOP("PropertyView", "Euler ZYX"),  QT_TRANSLATE_NOOP("PropertyView", "Euler ZYZ"),
    QT_TRANSLATE_NOOP("PropertyView", "Spheric XYZ")};

const char* const QuantityNames[PropertyView::QuantityCount] = {
    QT_TRANSLATE_NOOP("PropertyView", "Translate"),     QT_TRANSLATE_NOOP("PropertyView", "Rotate"),
    QT_TRANSLATE_NOOP("PropertyView", "Scale"),         QT_TRANSLATE_NOOP("PropertyView", "Pre-rotate"),
    QT_TRANSLATE_NOOP("PropertyView", "Post-rotate"),   QT_TRANSLATE_NOOP("PropertyView", "Min rot limit"),
    QT_TRANSLATE_NOOP("PropertyView", "Max rot limit"), QT_TRANSLATE_NOOP("PropertyView", "Parent offset R")};

constexpr int FirstQuantityRow = 6;

void ToEuler(const float q[4], ZELRotationOrder order, double degrees[3])
{
    RotationConversion::QuaternionToEuler(q, order, degrees);
}

void Copy(const float values[3], double scale, double out[3])
{
    for (int axis = 0; axis < 3; ++axis)
        out[axis] = values[axis] * scale;
}
} // namespace

PropertyView::PropertyView(QWidget* parent, IDCCHub* hub, CharacterizationModel* model)
    : QFrame(parent)
    , mHub(hub)
    , mModel(model)
    , mStatus(new QPlainTextEdit(this))
    , mBone(new LineEditWithMouseBroadcast(this))
{
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    // The labels keep their own width; what the panel has beyond it goes to the values.
    grid->setColumnStretch(0, 0);
    for (int column = 1; column <= 3; ++column)
        grid->setColumnStretch(column, 1);

    grid->addWidget(new QLabel(tr("Status"), this), 0, 0, 1, 4);
    mStatus->setReadOnly(true);
    // Room for two lines at least: squeezed below one, the box scrolls its only line out of sight.
    const int frame = 2 * mStatus->frameWidth() + 2 * int(mStatus->document()->documentMargin());
    mStatus->setMinimumHeight(mStatus->fontMetrics().lineSpacing() * 2 + frame);
    mStatus->setMaximumHeight(mStatus->fontMetrics().lineSpacing() * 4 + frame);
    grid->addWidget(mStatus, 1, 0, 1, 4);
    mNode = AddLine(2, tr("Zelkin node"));
    grid->addWidget(Label(tr("Bone")), 3, 0);
    mBone->setReadOnly(true);
    mBone->SetHint(tr("Double click to select the bone in the scene."));
    grid->addWidget(mBone, 3, 1, 1, 3);
    mSelection = AddLine(4, tr("Scene Selection"));
    mRotationOrder = AddLine(5, tr("Rotation order"));
    for (int quantity = 0; quantity < QuantityCount; ++quantity)
        AddQuantityRow(FirstQuantityRow + quantity, Quantity(quantity), tr(QuantityNames[quantity]));
    grid->setRowStretch(2, 1);

    connect(mBone, SIGNAL(mouseDoubleClickSent(QMouseEvent*)), this, SLOT(BoneDoubleClick(QMouseEvent*)));
    if (mModel != nullptr)
    {
        connect(mModel, SIGNAL(ModelChanged()), this, SLOT(UpdateView()));
        connect(mModel, SIGNAL(EditedPartChanged(int, int, bool)), this, SLOT(ChangeEditPart(int, int, bool)));
        mNodeId = mModel->GetEditedPart();
    }
    if (mHub != nullptr)
        connect(mHub, SIGNAL(selectionChanged()), this, SLOT(OnDccSelect()));
    Fill(mNodeId);
    OnDccSelect();
    // Its disabled rows (quantities a joint does not have) stay readable.
    KeepReadable(*this);
}

bool PropertyView::event(QEvent* event)
{
    const bool handled = QFrame::event(event);
    KeepReadable(*this, event);
    return handled;
}

QLabel* PropertyView::Label(const QString& text)
{
    auto* label = new QLabel(text, this);
    // In a narrow panel a label takes two lines rather than losing its end.
    label->setWordWrap(true);
    return label;
}

QLineEdit* PropertyView::AddLine(int row, const QString& label)
{
    auto* grid = static_cast<QGridLayout*>(layout());
    auto* line = new ElidedLineEdit(this);
    line->setReadOnly(true);
    grid->addWidget(Label(label), row, 0);
    grid->addWidget(line, row, 1, 1, 3);
    return line;
}

void PropertyView::AddQuantityRow(int row, Quantity quantity, const QString& label)
{
    auto* grid = static_cast<QGridLayout*>(layout());
    mLabels[quantity] = Label(label);
    grid->addWidget(mLabels[quantity], row, 0);
    for (int axis = 0; axis < 3; ++axis)
    {
        auto* field = new QLineEdit(this);
        field->setReadOnly(true);
        field->setFixedWidth(ValueWidth);
        // A value such as -172.569 must fit the narrow field whole.
        field->setTextMargins(0, 0, 0, 0);
        QFont font = field->font();
        font.setPointSizeF(font.pointSizeF() * 0.85);
        field->setFont(font);
        // Aligned, so the field keeps its width while its column takes what the panel gives it.
        grid->addWidget(field, row, 1 + axis, Qt::AlignLeft);
        mValues[quantity][axis] = field;
    }
}

QString PropertyView::FormatValue(double value)
{
    // Adding zero turns a negative zero into a positive one.
    const double rounded = std::round(value * 1000.0) / 1000.0 + 0.0;
    return QStringLiteral("%1").arg(std::isfinite(rounded) ? rounded : value, 0, 'f', 3);
}

QString PropertyView::RotationOrderName(int order)
{
    return order >= 0 && order < ZELRotationOrderCount ? tr(RotationOrderNames[order]) : QString();
}

QString PropertyView::GetStatusText() const
{
    return mStatus->toPlainText();
}

QString PropertyView::GetNodeText() const
{
    return mNode->text();
}

QString PropertyView::GetBoneText() const
{
    return mBone->text();
}

QString PropertyView::GetSelectionText() const
{
    return mSelection->text();
}

QString PropertyView::GetRotationOrderText() const
{
    return mRotationOrder->text();
}

void PropertyView::UpdateView()
{
    Fill(mNodeId);
}

void PropertyView::ChangeEditPart(int, int newNodeId, bool)
{
    mNodeId = newNodeId;
    Fill(mNodeId);
}

void PropertyView::BoneDoubleClick(QMouseEvent*)
{
    const QString bone = mBone->text();
    if (mHub != nullptr && !bone.isEmpty())
        mHub->SelectBones(QStringList {bone});
}

void PropertyView::OnDccSelect()
{
    QStringList selection;
    if (mHub != nullptr)
        mHub->GetSelectedBones(selection);
    mSelection->setText(selection.join(QStringLiteral(", ")));
    mSelection->setCursorPosition(0);
    mSelection->setToolTip(selection.join(QLatin1Char('\n')));
}

void PropertyView::Fill(int nodeId)
{
    mStatus->setPlainText(tr("No node selected."));
    mRotationOrder->clear();
    mNode->clear();
    mBone->clear();
    ClearValues();
    if (!BoneCatalogue::IsValidNode(nodeId))
        return;
    mNode->setText(QString::fromLatin1(BoneCatalogue::NodeName(nodeId)));
    if (mModel == nullptr)
        return;
    const QString bone = mModel->GetAssignedBone(nodeId);
    if (!bone.isEmpty())
    {
        const CharacterJointGeometry& geometry = mModel->GetCurrentCharacterization()->GetJointGeometry(nodeId);
        mBone->setText(bone);
        mBone->setCursorPosition(0);
        mRotationOrder->setText(RotationOrderName(geometry.GetRotationOrder()));
        ShowValues(geometry);
    }
    mStatus->setPlainText(StatusText());
}

QString PropertyView::StatusText() const
{
    switch (mModel->GetValidationState())
    {
    case Valid:
        return tr("Characterization is valid.");
    case NotValidated:
        return tr("Not enough information to validate.");
    default:
        return QString::fromStdString(mModel->GetValidationMessage());
    }
}

void PropertyView::ClearValues()
{
    for (int quantity = 0; quantity < QuantityCount; ++quantity)
    {
        mLabels[quantity]->setEnabled(false);
        for (QLineEdit* field : mValues[quantity])
        {
            field->clear();
            field->setEnabled(false);
        }
    }
}

void PropertyView::ShowValues(const CharacterJointGeometry& geometry)
{
    // Pre-, post- and parent offset rotations are always taken in XYZ order; only the joint's own rotation
    // follows its rotation order.
    const bool always[3] = {true, true, true};
    double values[3];
    Copy(geometry.GetTranslate(), 1.0, values);
    ShowRow(Translate, values, always);
    ToEuler(geometry.GetRotateQ(), geometry.GetRotationOrder(), values);
    ShowRow(Rotate, values, always);
    Copy(geometry.GetScale(), 1.0, values);
    ShowRow(Scale, values, always);
    ToEuler(geometry.GetPreRotQ(), ZELEulerXYZ, values);
    ShowRow(PreRotate, values, always);
    ToEuler(geometry.GetPostRotQ(), ZELEulerXYZ, values);
    ShowRow(PostRotate, values, always);

    const bool minEnabled[3] = {geometry.HasMinRLimitX(), geometry.HasMinRLimitY(), geometry.HasMinRLimitZ()};
    Copy(geometry.GetMinRLimit(), DegreesPerRadian, values);
    ShowRow(MinRotLimit, values, minEnabled);
    const bool maxEnabled[3] = {geometry.HasMaxRLimitX(), geometry.HasMaxRLimitY(), geometry.HasMaxRLimitZ()};
    Copy(geometry.GetMaxRLimit(), DegreesPerRadian, values);
    ShowRow(MaxRotLimit, values, maxEnabled);

    ToEuler(geometry.GetParentOffsetRotateQ(), ZELEulerXYZ, values);
    ShowRow(ParentOffsetR, values, always);
}

void PropertyView::ShowRow(Quantity quantity, const double values[3], const bool enabled[3])
{
    mLabels[quantity]->setEnabled(enabled[0] || enabled[1] || enabled[2]);
    for (int axis = 0; axis < 3; ++axis)
    {
        QLineEdit* field = mValues[quantity][axis];
        field->setText(FormatValue(values[axis]));
        field->setCursorPosition(0);
        field->setEnabled(enabled[axis]);
    }
}
