#pragma once

#include <array>

#include <QFrame>
#include <QString>

#include <zelkin/CharacterizationExport.h>

class CharacterJointGeometry;
class CharacterizationModel;
class IDCCHub;
class LineEditWithMouseBroadcast;
class QLabel;
class QLineEdit;
class QMouseEvent;
class QPlainTextEdit;

// The read-only panel under each page: validation status, the edited node, its bone, the host's selection, the
// joint's rotation order and its reference values.
class ZELKIN_CHARACTERIZATION_EXPORT PropertyView : public QFrame
{
    Q_OBJECT

public:
    enum Quantity
    {
        Translate,
        Rotate,
        Scale,
        PreRotate,
        PostRotate,
        MinRotLimit,
        MaxRotLimit,
        ParentOffsetR,
        QuantityCount
    };
    static constexpr float DegreesPerRadian = 57.29578f;
    static constexpr int ValueWidth = 55;

    PropertyView(QWidget* parent, IDCCHub* hub, CharacterizationModel* model);

    // "%1" with three fixed decimals; a value that rounds to zero never shows a sign.
    static QString FormatValue(double value);
    // Empty for a value outside the enumeration.
    static QString RotationOrderName(int order);

    QString GetStatusText() const;
    QString GetNodeText() const;
    QString GetBoneText() const;
    QString GetSelectionText() const;
    QString GetRotationOrderText() const;
    // axis 0 to 2.
    QLineEdit* GetValueField(Quantity quantity, int axis) const { return mValues[quantity][axis]; }
    QLabel* GetQuantityLabel(Quantity quantity) const { return mLabels[quantity]; }
    LineEditWithMouseBroadcast* GetBoneField() const { return mBone; }

public slots:
    void UpdateView();
    void ChangeEditPart(int oldNodeId, int newNodeId, bool isReadWrite);
    void BoneDoubleClick(QMouseEvent* event);
    void OnDccSelect();

protected:
    bool event(QEvent* event) override;

private:
    QLabel* Label(const QString& text);
    QLineEdit* AddLine(int row, const QString& label);
    void AddQuantityRow(int row, Quantity quantity, const QString& label);
    void Fill(int nodeId);
    void ClearValues();
    void ShowValues(const CharacterJointGeometry& geometry);
    void ShowRow(Quantity quantity, const double values[3], const bool enabled[3]);
    QString StatusText() const;

    IDCCHub* mHub;
    CharacterizationModel* mModel;
    QPlainTextEdit* mStatus;
    QLineEdit* mNode;
    LineEditWithMouseBroadcast* mBone;
    QLineEdit* mSelection;
    QLineEdit* mRotationOrder;
    std::array<QLabel*, QuantityCount> mLabels {};
    std::array<std::array<QLineEdit*, 3>, QuantityCount> mValues {};
    int mNodeId = -1;
};
