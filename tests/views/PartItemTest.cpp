#include <gtest/gtest.h>

#include <QGraphicsScene>
#include <QGraphicsSceneHoverEvent>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>

#include "HoverAdapter.h"
#include "InversionItem.h"
#include "PartItem.h"
#include "PictureCache.h"

namespace
{
const QRect Placement(144, 264, 20, 20);
const char* const Knee = "Bones/FullBody/LeftLeg";

QStringList gMessages;

void Collect(QtMsgType, const QMessageLogContext&, const QString& message)
{
    gMessages << message;
}

// Collects the diagnostic output while it lives.
struct MessageCapture
{
    MessageCapture()
    {
        gMessages.clear();
        previous = qInstallMessageHandler(Collect);
    }
    ~MessageCapture() { qInstallMessageHandler(previous); }
    QtMessageHandler previous;
};

QImage Render(QGraphicsItem& item)
{
    QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    item.paint(&painter, nullptr, nullptr);
    return image;
}

QImage Picture(const QString& name)
{
    return QImage(":/" + name).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

class PartItemTest : public testing::Test
{
protected:
    PictureCache pictures {1};
    HoverAdapter hover;
    PartItem item {3, "LeftLeg", Knee, Placement, pictures, &hover};
};
} // namespace

TEST_F(PartItemTest, StartsWithoutAPictureAtItsPlacement)
{
    EXPECT_EQ(item.GetState(), StateRepresentation::Unset);
    EXPECT_EQ(item.GetSelectionMode(), 0);
    EXPECT_EQ(item.GetToolTip(), "LeftLeg");
    EXPECT_TRUE(item.StatePictureName().isEmpty());
    EXPECT_TRUE(item.GetPicture().isNull());
    EXPECT_EQ(item.pos(), QPointF(144, 264));
    EXPECT_EQ(item.flags(), QGraphicsItem::ItemIsSelectable);
    EXPECT_TRUE(item.acceptHoverEvents());
    EXPECT_EQ(item.boundingRect(), QRectF(0, 0, 20, 20));
    EXPECT_TRUE(Render(item) == [] {
        QImage empty(20, 20, QImage::Format_ARGB32_Premultiplied);
        empty.fill(Qt::transparent);
        return empty;
    }());
}

TEST_F(PartItemTest, StateChoosesThePictureAndStatusTextTheToolTip)
{
    item.SetState(3, "Missing required bones.");
    EXPECT_EQ(item.StatePictureName(), QString(Knee) + "_Err.png");
    EXPECT_EQ(item.GetToolTip(), "LeftLeg\nMissing required bones.");
    EXPECT_EQ(Render(item), Picture(QString(Knee) + "_Err.png"));

    // Same state, new text: the tooltip follows, the picture stays.
    const qint64 key = item.GetPicture().cacheKey();
    item.SetState(3, QString());
    EXPECT_EQ(item.GetToolTip(), "LeftLeg");
    EXPECT_EQ(item.GetStatusText(), QString());
    EXPECT_EQ(item.GetPicture().cacheKey(), key);

    item.SetState(0, "Not assigned");
    EXPECT_EQ(item.StatePictureName(), QString(Knee) + ".png");
    EXPECT_EQ(Render(item), Picture(QString(Knee) + ".png"));
}

TEST_F(PartItemTest, SelectionDrawsTheOverlayOfTheState)
{
    const std::vector<std::tuple<int, int, const char*>> cases = {
        {1, 1, "_Valid_Sel.png"}, {2, 1, "_Warn_Sel.png"}, {3, 1, "_Err_Sel.png"}, {0, 1, "_Sel.png"},
        {1, 2, "_Valid_Pick.png"}, {2, 2, "_Warn_Pick.png"}, {3, 2, "_Err_Pick.png"}, {0, 2, "_Pick.png"},
    };
    for (const auto& [state, mode, suffix] : cases) {
        item.SetState(state, QString());
        item.SetSelectionMode(mode);
        EXPECT_EQ(item.OverlayPictureName(), QString(Knee) + suffix);
        QImage expected = Picture(item.StatePictureName());
        QPainter painter(&expected);
        painter.drawImage(0, 0, Picture(QString(Knee) + suffix));
        painter.end();
        EXPECT_EQ(Render(item), expected) << suffix;
    }
    item.SetSelectionMode(0);
    EXPECT_TRUE(item.OverlayPictureName().isEmpty());
    EXPECT_EQ(Render(item), Picture(QString(Knee) + ".png"));
}

TEST_F(PartItemTest, HoverIsReportedThroughTheAdapter)
{
    qRegisterMetaType<PartItem*>();
    QGraphicsScene scene;
    scene.addItem(&item);
    QSignalSpy spy(&hover, &HoverAdapter::Hover);
    QGraphicsSceneHoverEvent enter(QEvent::GraphicsSceneHoverEnter);
    scene.sendEvent(&item, &enter);
    QGraphicsSceneHoverEvent leave(QEvent::GraphicsSceneHoverLeave);
    scene.sendEvent(&item, &leave);
    ASSERT_EQ(spy.count(), 2);
    EXPECT_EQ(spy[0][0].value<PartItem*>(), &item);
    EXPECT_TRUE(spy[0][1].toBool());
    EXPECT_FALSE(spy[1][1].toBool());
    scene.removeItem(&item);
}

TEST(PictureCache, AMissingPictureIsReportedOnceAndStaysNull)
{
    PictureCache pictures(1);
    MessageCapture capture;
    PartItem first(0, "Nowhere", "Bones/Nowhere/Missing", QRect(0, 0, 20, 20), pictures);
    PartItem second(1, "Nowhere", "Bones/Nowhere/Missing", QRect(0, 0, 20, 20), pictures);
    first.SetState(2, "x");
    second.SetState(2, "x");
    second.SetSelectionMode(1);
    ASSERT_EQ(gMessages.size(), 2) << gMessages.join('|').toStdString(); // the state picture and the overlay
    EXPECT_TRUE(gMessages[0].startsWith("PIXMAP: :/Bones/Nowhere/Missing_Warn.png MISSING"));
    EXPECT_TRUE(gMessages[1].startsWith("PIXMAP: :/Bones/Nowhere/Missing_Warn_Sel.png MISSING"));
    EXPECT_TRUE(first.GetPicture().isNull());
    EXPECT_TRUE(Render(second).allGray()); // nothing drawn, nothing broken
}

TEST(PictureCache, HighDensityScreensGetTheDoubleSizePictures)
{
    PictureCache plain(1);
    PictureCache dense(2);
    const QPixmap& low = plain.Get("Status_Valid.png");
    const QPixmap& high = dense.Get("Status_Valid.png");
    EXPECT_EQ(low.size(), QSize(20, 20));
    EXPECT_EQ(high.size(), QSize(40, 40));
    EXPECT_EQ(high.devicePixelRatio(), 2.0);
    EXPECT_EQ(high.deviceIndependentSize(), QSizeF(20, 20));
    // A picture without a twin still loads at its own size.
    EXPECT_EQ(dense.Get("Status_Valid@2x.png").size(), QSize(40, 40));
    EXPECT_EQ(plain.Count(), 1);
}

TEST(PartItemDim, DarkensOnlyPicturesWithAnAlphaChannel)
{
    QPixmap translucent(4, 4);
    translucent.fill(Qt::transparent);
    {
        QPainter painter(&translucent);
        painter.fillRect(0, 0, 2, 4, Qt::white);
    }
    PartItem::Dim(translucent, 255, QPainter::CompositionMode_SourceAtop);
    const QImage dimmed = translucent.toImage();
    EXPECT_EQ(dimmed.pixelColor(0, 0), QColor(0, 0, 0));
    EXPECT_EQ(dimmed.pixelColor(3, 0).alpha(), 0);

    QImage opaque(4, 4, QImage::Format_RGB32);
    opaque.fill(Qt::white);
    QPixmap solid = QPixmap::fromImage(opaque);
    PartItem::Dim(solid, 255, QPainter::CompositionMode_SourceAtop);
    EXPECT_EQ(solid.toImage().pixelColor(1, 1), QColor(Qt::white));

    QPixmap none;
    PartItem::Dim(none, 255, QPainter::CompositionMode_SourceAtop);
    EXPECT_TRUE(none.isNull());
}

TEST(PartItemDim, ADimmedPartIsDarkerButKeepsItsShape)
{
    PictureCache pictures(1);
    PartItem item(1, "Hips", "Bones/FullBody/Hips", QRect(0, 0, 20, 20), pictures);
    item.SetState(1, QString());
    const QImage bright = Render(item);
    item.SetDimmed(true);
    const QImage dark = Render(item);
    EXPECT_LT(qGray(dark.pixel(10, 10)), qGray(bright.pixel(10, 10)));
    EXPECT_EQ(qAlpha(dark.pixel(0, 0)), qAlpha(bright.pixel(0, 0)));
    EXPECT_EQ(qAlpha(dark.pixel(10, 10)), qAlpha(bright.pixel(10, 10)));
}

TEST(InversionItem, ShowsTheInvertedOrNormalPictureMirroredOnRequest)
{
    PictureCache pictures(1);
    InversionItem plain(3, "LeftInversed.png", "LeftNormal.png", QRect(162, 250, 20, 20), false, pictures);
    InversionItem mirrored(3, "LeftInversed.png", "LeftNormal.png", QRect(162, 250, 20, 20), true, pictures);
    EXPECT_EQ(plain.pos(), QPointF(162, 250));
    EXPECT_EQ(Render(plain), Picture("LeftNormal.png"));
    plain.SetInverted(true);
    EXPECT_TRUE(plain.IsInverted());
    EXPECT_EQ(Render(plain), Picture("LeftInversed.png"));
    EXPECT_EQ(Render(mirrored), Picture("LeftNormal.png").mirrored(true, false));
    // A missing picture leaves an empty marker behind, not a crash.
    MessageCapture capture;
    InversionItem missing(6, "Gone.png", "AlsoGone.png", QRect(0, 0, 20, 20), true, pictures);
    EXPECT_EQ(gMessages.size(), 2);
    EXPECT_TRUE(Render(missing).allGray());
}
