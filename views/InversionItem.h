#pragma once

#include <QGraphicsItem>
#include <QPixmap>
#include <QRect>
#include <QString>

#include <zelkin/CharacterizationExport.h>

class PictureCache;

// The small marker beside a hinge joint that tells whether the joint bends the other way.
class ZELKIN_CHARACTERIZATION_EXPORT InversionItem : public QGraphicsItem
{
public:
    // mirrored: both pictures are flipped left to right.
    InversionItem(int nodeId, const QString& invertedImage, const QString& normalImage, const QRect& placement,
                  bool mirrored, PictureCache& pictures, QGraphicsItem* parent = nullptr);

    int GetNodeId() const { return mNodeId; }
    bool IsMirrored() const { return mMirrored; }
    void SetInverted(bool inverted);
    bool IsInverted() const { return mInverted; }
    const QPixmap& GetPicture() const { return mInverted ? mInvertedPicture : mNormalPicture; }

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    static QPixmap Mirror(const QPixmap& picture);

    int mNodeId;
    QPixmap mInvertedPicture;
    QPixmap mNormalPicture;
    bool mMirrored;
    bool mInverted = false;
};
