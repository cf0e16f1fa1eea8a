#pragma once

#include <QGraphicsItem>
#include <QPainter>
#include <QPixmap>
#include <QRect>
#include <QString>

#include <zelkin/CharacterizationExport.h>

#include "StateRepresentation.h"

class HoverAdapter;
class PictureCache;

// One clickable picture of the figure: a node, an arrow or the status element. Its picture tells its state; a ring
// drawn over it tells whether it is selected or picked.
class ZELKIN_CHARACTERIZATION_EXPORT PartItem : public QGraphicsItem
{
public:
    // The cache and the adapter must outlive the item; the adapter may be null.
    PartItem(int nodeId, const QString& name, const QString& imageBase, const QRect& placement,
             PictureCache& pictures, HoverAdapter* hover = nullptr, QGraphicsItem* parent = nullptr);

    int GetNodeId() const { return mNodeId; }
    const QString& GetName() const { return mName; }
    const QString& GetToolTip() const { return mToolTip; }
    const QString& GetStatusText() const { return mStatusText; }
    const QString& GetImageBase() const { return mImageBase; }
    HoverAdapter* GetHoverAdapter() const { return mHover; }

    // state: a validation state, 0 none, 1 valid, 2 warning, 3 error.
    void SetState(int state, const QString& statusText);
    int GetState() const { return mState; }
    // A StateRepresentation::SelectionMode.
    void SetSelectionMode(int mode);
    int GetSelectionMode() const { return mSelectionMode; }
    // Darkens the part, as for a characterization that cannot be edited.
    void SetDimmed(bool dimmed);
    bool IsDimmed() const { return mDimmed; }

    // Empty when no picture is drawn.
    QString StatePictureName() const;
    QString OverlayPictureName() const;
    const QPixmap& GetPicture() const { return mPicture; }
    const QPixmap& GetOverlay() const { return mOverlay; }

    // Paints black of that alpha over a picture that has an alpha channel; others are left alone.
    static void Dim(QPixmap& picture, int alpha, QPainter::CompositionMode mode);

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    void hoverEnterEvent(QGraphicsSceneHoverEvent* event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent* event) override;

private:
    QString PictureName(int index) const;
    QPixmap Load(int index) const;
    void LoadOverlay();
    void DrawPicture(QPainter* painter, const QPixmap& picture) const;

    int mNodeId;
    QString mName;
    QString mToolTip;
    int mState = StateRepresentation::Unset;
    int mSelectionMode = StateRepresentation::NotSelected;
    QString mStatusText;
    QString mImageBase;
    QPixmap mPicture;
    QPixmap mOverlay;
    HoverAdapter* mHover;
    PictureCache& mPictures;
    StateRepresentation mSuffixes;
    bool mDimmed = false;
};
