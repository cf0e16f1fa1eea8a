#include "PartItem.h"

#include <QGraphicsScene>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsView>
#include <QToolTip>

#include "FigureLayout.h"
#include "DialogParent.h"
#include "HoverAdapter.h"
#include "PictureCache.h"

namespace
{
constexpr int DimAlpha = 110;

const StateRepresentation& SharedSuffixes()
{
    static const StateRepresentation suffixes;
    return suffixes;
}
} // namespace

PartItem::PartItem(int nodeId, const QString& name, const QString& imageBase, const QRect& placement,
                   PictureCache& pictures, HoverAdapter* hover, QGraphicsItem* parent)
    : QGraphicsItem(parent)
    , mNodeId(nodeId)
    , mName(name)
    , mToolTip(name)
    , mImageBase(imageBase)
    , mHover(hover)
    , mPictures(pictures)
    , mSuffixes(SharedSuffixes())
{
    setFlags(QGraphicsItem::ItemIsSelectable);
    setAcceptHoverEvents(true);
    setPos(placement.topLeft());
}

void PartItem::SetState(int state, const QString& statusText)
{
    mStatusText = statusText;
    mToolTip = statusText.isEmpty() ? mName : mName + "\n" + statusText;
    if (state == mState)
        return;
    mState = state;
    mPicture = Load(mState);
    LoadOverlay();
    update();
}

void PartItem::SetSelectionMode(int mode)
{
    mSelectionMode = mode;
    LoadOverlay();
    update();
}

void PartItem::SetDimmed(bool dimmed)
{
    if (dimmed == mDimmed)
        return;
    mDimmed = dimmed;
    update();
}

QString PartItem::StatePictureName() const
{
    return PictureName(mState);
}

QString PartItem::OverlayPictureName() const
{
    return PictureName(StateRepresentation::OverlayIndex(mState, mSelectionMode));
}

QString PartItem::PictureName(int index) const
{
    return mSuffixes.Contains(index) ? mImageBase + mSuffixes.Suffix(index) : QString();
}

QPixmap PartItem::Load(int index) const
{
    const QString name = PictureName(index);
    return name.isEmpty() ? QPixmap() : mPictures.Get(name);
}

void PartItem::LoadOverlay()
{
    mOverlay = Load(StateRepresentation::OverlayIndex(mState, mSelectionMode));
}

void PartItem::Dim(QPixmap& picture, int alpha, QPainter::CompositionMode mode)
{
    if (picture.isNull() || !picture.hasAlphaChannel())
        return;
    QPainter painter(&picture);
    painter.setCompositionMode(mode);
    painter.fillRect(QRectF(QPointF(0, 0), picture.deviceIndependentSize()), QColor(0, 0, 0, alpha));
}

QRectF PartItem::boundingRect() const
{
    return QRectF(0, 0, FigureLayout::PartExtent, FigureLayout::PartExtent);
}

void PartItem::DrawPicture(QPainter* painter, const QPixmap& picture) const
{
    if (picture.isNull())
        return;
    if (!mDimmed) {
        painter->drawPixmap(boundingRect(), picture, QRectF(picture.rect()));
        return;
    }
    QPixmap dimmed = picture.copy();
    Dim(dimmed, DimAlpha, QPainter::CompositionMode_SourceAtop);
    painter->drawPixmap(boundingRect(), dimmed, QRectF(dimmed.rect()));
}

void PartItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    DrawPicture(painter, mPicture);
    if (mSelectionMode != StateRepresentation::NotSelected)
        DrawPicture(painter, mOverlay);
}

void PartItem::hoverEnterEvent(QGraphicsSceneHoverEvent* event)
{
    if (scene() && !scene()->views().isEmpty()) {
        QGraphicsView* view = scene()->views().first();
        const QPointF below = scenePos() + QPointF(0, boundingRect().height() / 2);
        QToolTip::showText(view->viewport()->mapToGlobal(view->mapFromScene(below)), mToolTip, DialogParent(view));
    }
    QGraphicsItem::hoverEnterEvent(event);
    if (mHover)
        mHover->Report(this, true);
}

void PartItem::hoverLeaveEvent(QGraphicsSceneHoverEvent* event)
{
    QToolTip::hideText();
    QGraphicsItem::hoverLeaveEvent(event);
    if (mHover)
        mHover->Report(this, false);
}
