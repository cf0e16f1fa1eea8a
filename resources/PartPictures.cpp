#include "PartPictures.h"

#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include "FigureLayout.h"
#include "StateRepresentation.h"

namespace PartPictures
{
namespace
{
constexpr qreal Mid = FigureLayout::PartExtent / 2.0;
// Shapes stay inside this radius so that a selection ring fits around them.
constexpr qreal RingRadius = 8.7;

enum class Shape
{
    Disc,      // required nodes
    SmallDisc, // optional joints
    Diamond,   // roots of a chain: reference, finger and toe bases, in-hand and in-foot nodes
    Vertebra,
    RollBand,
    Status,
    GoTo,
    GoToTrans,
    Return
};

struct Look
{
    int validation; // 0 plain, 1 valid, 2 warning, 3 error
    int selection;  // a StateRepresentation::SelectionMode
};

Shape ShapeOf(const QString& base)
{
    if (base == "Status")
        return Shape::Status;
    if (base == "GoToArrow")
        return Shape::GoTo;
    if (base == "GoToArrowTrans")
        return Shape::GoToTrans;
    if (base == "ReturnToArrow")
        return Shape::Return;
    if (base.contains("RollBone"))
        return Shape::RollBand;
    if (base.contains("NeckSpine"))
        return Shape::Vertebra;
    const QString leaf = base.section('/', -1);
    if (leaf == "Reference" || leaf.startsWith("NotReq_") || leaf.endsWith("Base") || leaf.contains("InHand")
        || leaf.contains("InFoot"))
        return Shape::Diamond;
    if (base.startsWith("Bones/FullBody/"))
        return Shape::Disc;
    return Shape::SmallDisc;
}

// Read back from the overlay table, so the pictures follow whatever the items ask for.
Look LookOf(int stateIndex)
{
    if (stateIndex <= StateRepresentation::ErrorState)
        return Look {stateIndex, StateRepresentation::NotSelected};
    for (int mode : {StateRepresentation::Selected, StateRepresentation::Picked}) {
        for (int state = StateRepresentation::Plain; state <= StateRepresentation::ErrorState; ++state) {
            if (StateRepresentation::OverlayIndex(state, mode) == stateIndex)
                return Look {state, mode};
        }
    }
    return Look {StateRepresentation::Plain, StateRepresentation::NotSelected};
}

QColor FillOf(int validation)
{
    switch (validation) {
    case 1: return QColor(84, 190, 70);
    case 2: return QColor(250, 160, 30);
    case 3: return QColor(235, 64, 56);
    default: return QColor(176, 176, 176);
    }
}

QColor NavigationFill(int validation)
{
    return validation == 0 ? QColor(92, 156, 222) : FillOf(validation);
}

QImage Canvas(int extent, int scale)
{
    QImage image(extent * scale, extent * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

void Begin(QPainter& painter, int scale)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
}

QBrush Shaded(const QColor& fill, const QPointF& centre, qreal radius)
{
    QRadialGradient gradient(centre + QPointF(-radius * 0.35, -radius * 0.45), radius * 1.5);
    gradient.setColorAt(0.0, fill.lighter(140));
    gradient.setColorAt(0.55, fill);
    gradient.setColorAt(1.0, fill.darker(125));
    return QBrush(gradient);
}

QPainterPath Outline(Shape shape)
{
    QPainterPath path;
    const QPointF c(Mid, Mid);
    switch (shape) {
    case Shape::Disc:
        path.addEllipse(c, 6.6, 6.6);
        break;
    case Shape::SmallDisc:
        path.addEllipse(c, 5.4, 5.4);
        break;
    case Shape::Diamond:
        path.moveTo(Mid, Mid - 7.0);
        path.lineTo(Mid + 7.0, Mid);
        path.lineTo(Mid, Mid + 7.0);
        path.lineTo(Mid - 7.0, Mid);
        path.closeSubpath();
        break;
    case Shape::Vertebra:
        path.addRoundedRect(QRectF(Mid - 7.4, Mid - 4.6, 14.8, 9.2), 3.2, 3.2);
        break;
    case Shape::RollBand:
        path.addEllipse(c, 7.6, 5.0);
        break;
    default:
        path.addEllipse(c, 7.3, 7.3);
        break;
    }
    return path;
}

void DrawBody(QPainter& painter, Shape shape, const QColor& fill)
{
    const QPainterPath outline = Outline(shape);
    const bool trans = shape == Shape::GoToTrans;
    QColor body = fill;
    if (trans)
        body.setAlpha(120);
    painter.setBrush(trans ? QBrush(body) : Shaded(body, QPointF(Mid, Mid), 7.0));
    painter.setPen(QPen(trans ? fill.lighter(120) : fill.darker(230), trans ? 1.3 : 1.0));
    painter.drawPath(outline);
    if (shape == Shape::RollBand) {
        // The twist that gives the roll bones their name.
        painter.setPen(QPen(fill.darker(200), 1.1, Qt::SolidLine, Qt::RoundCap));
        painter.setBrush(Qt::NoBrush);
        QPainterPath twist;
        twist.moveTo(Mid - 3.2, Mid + 3.4);
        twist.cubicTo(Mid - 1.0, Mid + 0.5, Mid + 1.0, Mid - 0.5, Mid + 3.2, Mid - 3.4);
        painter.drawPath(twist);
    }
}

QPen GlyphPen(qreal width)
{
    return QPen(QColor(255, 255, 255), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void DrawStatusGlyph(QPainter& painter, int validation)
{
    painter.setPen(GlyphPen(2.0));
    painter.setBrush(Qt::NoBrush);
    switch (validation) {
    case 1: {
        QPainterPath tick;
        tick.moveTo(6.3, 10.3);
        tick.lineTo(8.9, 12.9);
        tick.lineTo(13.8, 7.4);
        painter.drawPath(tick);
        break;
    }
    case 2:
        painter.drawLine(QPointF(Mid, 5.8), QPointF(Mid, 10.6));
        painter.setBrush(Qt::white);
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(QPointF(Mid, 13.9), 1.2, 1.2);
        break;
    case 3:
        painter.drawLine(QPointF(7.2, 7.2), QPointF(12.8, 12.8));
        painter.drawLine(QPointF(12.8, 7.2), QPointF(7.2, 12.8));
        break;
    default:
        painter.drawLine(QPointF(6.8, Mid), QPointF(13.2, Mid));
        break;
    }
}

void DrawArrowHead(QPainter& painter, const QPolygonF& head)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawPolygon(head);
}

// Leads on into a closer view.
void DrawGoToGlyph(QPainter& painter)
{
    painter.setPen(GlyphPen(1.8));
    painter.drawLine(QPointF(6.6, 13.4), QPointF(11.6, 8.4));
    DrawArrowHead(painter, QPolygonF({QPointF(8.2, 6.2), QPointF(13.8, 6.2), QPointF(13.8, 11.8)}));
}

// Turns back to the full body.
void DrawReturnGlyph(QPainter& painter)
{
    painter.setPen(GlyphPen(1.8));
    painter.setBrush(Qt::NoBrush);
    QPainterPath turn;
    turn.moveTo(13.6, 14.0);
    turn.lineTo(13.6, 10.6);
    turn.quadTo(13.6, 7.8, 10.6, 7.8);
    turn.lineTo(8.6, 7.8);
    painter.drawPath(turn);
    DrawArrowHead(painter, QPolygonF({QPointF(5.2, 7.8), QPointF(9.0, 4.6), QPointF(9.0, 11.0)}));
}

void DrawRing(QPainter& painter, int selection)
{
    if (selection == StateRepresentation::NotSelected)
        return;
    painter.setBrush(Qt::NoBrush);
    if (selection == StateRepresentation::Selected) {
        painter.setPen(QPen(QColor(255, 255, 255), 1.6));
        painter.drawEllipse(QPointF(Mid, Mid), RingRadius, RingRadius);
        return;
    }
    // Picked: a thicker golden ring with a dark rim, so it reads on light and dark parts alike.
    painter.setPen(QPen(QColor(30, 30, 30, 200), 3.4));
    painter.drawEllipse(QPointF(Mid, Mid), RingRadius, RingRadius);
    painter.setPen(QPen(QColor(255, 214, 40), 2.2));
    painter.drawEllipse(QPointF(Mid, Mid), RingRadius, RingRadius);
}
} // namespace

QImage StatePicture(const QString& base, int stateIndex, int scale)
{
    const Shape shape = ShapeOf(base);
    const Look look = LookOf(stateIndex);
    QImage image = Canvas(FigureLayout::PartExtent, scale);
    QPainter painter(&image);
    Begin(painter, scale);
    const bool navigation = shape == Shape::GoTo || shape == Shape::GoToTrans || shape == Shape::Return;
    DrawBody(painter, shape, navigation ? NavigationFill(look.validation) : FillOf(look.validation));
    if (shape == Shape::Status)
        DrawStatusGlyph(painter, look.validation);
    else if (shape == Shape::Return)
        DrawReturnGlyph(painter);
    else if (navigation)
        DrawGoToGlyph(painter);
    DrawRing(painter, look.selection);
    return image;
}

QImage InversionPicture(bool left, bool inverted, int scale)
{
    QImage image = Canvas(FigureLayout::PartExtent, scale);
    QPainter painter(&image);
    Begin(painter, scale);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(28, 28, 28, 170));
    painter.drawEllipse(QPointF(Mid, Mid), 9.2, 9.2);
    // The bend points outwards on a left limb as it stands, and the other way once inverted.
    const bool bendRight = left != inverted;
    const qreal tip = bendRight ? 13.4 : 6.6;
    const qreal ends = bendRight ? 7.2 : 12.8;
    const QColor colour = inverted ? QColor(255, 190, 40) : QColor(215, 215, 215);
    painter.setPen(QPen(colour, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF({QPointF(ends, 4.2), QPointF(tip, Mid), QPointF(ends, 15.8)}));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(QPointF(tip, Mid), 2.3, 2.3);
    return image;
}

QImage Bubble(const QString& colour, bool highlight, int scale)
{
    QColor fill(160, 160, 160);
    if (colour == "Green")
        fill = FillOf(1);
    else if (colour == "Orange")
        fill = FillOf(2);
    else if (colour == "Red")
        fill = FillOf(3);
    QImage image = Canvas(BubbleExtent, scale);
    QPainter painter(&image);
    Begin(painter, scale);
    const QPointF centre(BubbleExtent / 2.0, BubbleExtent / 2.0);
    const qreal radius = highlight ? 5.2 : 5.6;
    painter.setPen(QPen(fill.darker(220), 0.9));
    painter.setBrush(Shaded(highlight ? fill.lighter(115) : fill, centre, radius));
    painter.drawEllipse(centre, radius, radius);
    if (highlight) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(QColor(255, 255, 255, 230), 1.3));
        painter.drawEllipse(centre, 7.0, 7.0);
    }
    return image;
}
} // namespace PartPictures
