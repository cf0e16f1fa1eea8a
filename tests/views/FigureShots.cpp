// Renders every figure view with its parts cycled through all states, for looking at the pictures by eye.
// usage: zelkin_figure_shots OUTPUT_FOLDER [SCALE]

#include <cstdio>

#include <QApplication>
#include <QDir>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>

#include "DiagramWidget.h"
#include "FigureLayout.h"
#include "InversionItem.h"
#include "PartItem.h"
#include "PictureCache.h"

namespace
{
void AddParts(QGraphicsScene& scene, const FigureLayout::ViewRecord& view, PictureCache& pictures)
{
    int i = 0;
    for (const FigureLayout::PartRecord& part : view.parts) {
        auto* item = new PartItem(part.nodeId, part.imageBase, part.imageBase, part.placement, pictures);
        item->SetState(i % 4, QString());
        item->SetSelectionMode((i / 4) % 3);
        scene.addItem(item);
        ++i;
    }
    for (const FigureLayout::ArrowRecord& arrow : view.arrows) {
        auto* item = new PartItem(arrow.sourceNode, arrow.toolTip, arrow.imageBase, arrow.placement, pictures);
        item->SetState(i++ % 4, QString());
        scene.addItem(item);
    }
    bool inverted = false;
    for (const FigureLayout::InversionRecord& marker : view.inversions) {
        auto* item = new InversionItem(marker.nodeId, marker.invertedImage, marker.normalImage, marker.placement,
                                       marker.flag != 0, pictures);
        item->SetInverted(inverted);
        inverted = !inverted;
        scene.addItem(item);
    }
}
} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: zelkin_figure_shots OUTPUT_FOLDER [SCALE]\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    const int scale = argc > 2 ? QByteArray(argv[2]).toInt() : 1;
    if (!out.mkpath(".") || scale < 1)
        return 2;
    PictureCache pictures(scale);
    // All views side by side at their plain size, for a first look.
    constexpr int Columns = 6;
    const QSize cell = FigureLayout::BaseImageSize;
    QImage sheet(cell.width() * Columns, cell.height() * 3, QImage::Format_RGB32);
    sheet.fill(Qt::black);
    QPainter sheetPainter(&sheet);
    sheetPainter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const FigureLayout::ViewRecord& view : FigureLayout::Views()) {
        QGraphicsScene scene;
        scene.addPixmap(pictures.Get(view.baseImage.file));
        AddParts(scene, view, pictures);
        if (view.index == FigureLayout::FullBodyView) {
            const FigureLayout::ArrowRecord& status = FigureLayout::StatusElement();
            auto* item = new PartItem(-1, status.toolTip, status.imageBase, status.placement, pictures);
            item->SetState(1, QString());
            scene.addItem(item);
        }
        QImage shot(FigureLayout::BaseImageSize * scale, QImage::Format_RGB32);
        shot.fill(Qt::black);
        QPainter painter(&shot);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        scene.render(&painter, QRectF(), QRectF(QPointF(0, 0), QSizeF(FigureLayout::BaseImageSize)));
        painter.end();
        const QString name = QString("%1_%2.png").arg(view.index, 2, 10, QChar('0')).arg(view.name);
        if (!shot.save(out.filePath(name)))
            return 1;
        const QPoint at(view.index % Columns * cell.width(), view.index / Columns * cell.height());
        sheetPainter.drawImage(QRect(at, cell), shot);
    }
    sheetPainter.end();
    // The page itself, as a panel shows it.
    DiagramWidget widget(nullptr, nullptr, nullptr, nullptr, nullptr);
    widget.resize(FigureLayout::BaseImageSize);
    widget.show();
    widget.ShowView(1);
    return sheet.save(out.filePath("all.png")) && widget.grab().save(out.filePath("widget.png")) ? 0 : 1;
}
