#include "InversionItem.h"

#include <QImage>
#include <QPainter>

#include "FigureLayout.h"
#include "PictureCache.h"

InversionItem::InversionItem(int nodeId, const QString& invertedImage, const QString& normalImage,
                             const QRect& placement, bool mirrored, PictureCache& pictures, QGraphicsItem* parent)
    : QGraphicsItem(parent)
    , mNodeId(nodeId)
    , mInvertedPicture(pictures.Get(invertedImage))
    , mNormalPicture(pictures.Get(normalImage))
    , mMirrored(mirrored)
{
    if (mMirrored) {
        mInvertedPicture = Mirror(mInvertedPicture);
        mNormalPicture = Mirror(mNormalPicture);
    }
    setPos(placement.topLeft());
}

QPixmap InversionItem::Mirror(const QPixmap& picture)
{
    if (picture.isNull())
        return picture;
    QPixmap mirrored = QPixmap::fromImage(picture.toImage().mirrored(true, false));
    mirrored.setDevicePixelRatio(picture.devicePixelRatio());
    return mirrored;
}

void InversionItem::SetInverted(bool inverted)
{
    if (inverted == mInverted)
        return;
    mInverted = inverted;
    update();
}

QRectF InversionItem::boundingRect() const
{
    return QRectF(0, 0, FigureLayout::PartExtent, FigureLayout::PartExtent);
}

void InversionItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    const QPixmap& picture = GetPicture();
    if (!picture.isNull())
        painter->drawPixmap(boundingRect(), picture, QRectF(picture.rect()));
}
