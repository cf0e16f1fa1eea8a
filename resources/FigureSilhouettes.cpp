#include "FigureSilhouettes.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>
#include <QPolygonF>
#include <QTransform>

namespace FigureSilhouettes
{
namespace
{
using FigureLayout::ViewRecord;

const QColor SkinTop(108, 108, 108);
const QColor SkinBottom(92, 92, 92);
const QColor Rim(138, 138, 138);
const QColor Bone(82, 82, 82);
const QColor Shadow(58, 58, 58);

QPointF Unit(const QPointF& v)
{
    const qreal length = std::hypot(v.x(), v.y());
    return length > 0 ? v / length : QPointF(0, 1);
}

// The body as one outline, built up from rounded pieces.
class Silhouette
{
public:
    void Circle(const QPointF& centre, qreal radius) { Ellipse(centre, radius, radius); }

    void Ellipse(const QPointF& centre, qreal rx, qreal ry)
    {
        QPainterPath piece;
        piece.addEllipse(centre, rx, ry);
        Add(piece);
    }

    // A limb segment, tapering from one round end to the other.
    void Capsule(const QPointF& a, qreal ra, const QPointF& b, qreal rb)
    {
        Circle(a, ra);
        Circle(b, rb);
        const QPointF u = Unit(b - a);
        const QPointF n(-u.y(), u.x());
        QPainterPath quad;
        quad.addPolygon(QPolygonF({a + n * ra, b + n * rb, b - n * rb, a - n * ra}));
        quad.closeSubpath();
        Add(quad);
    }

    // Corners rounded off by growing the polygon.
    void Polygon(const QPolygonF& points, qreal grow)
    {
        QPainterPath piece;
        piece.addPolygon(points);
        piece.closeSubpath();
        Add(piece);
        QPainterPathStroker stroker;
        stroker.setWidth(grow * 2);
        stroker.setJoinStyle(Qt::RoundJoin);
        Add(stroker.createStroke(piece));
    }

    const QPainterPath& Path() const { return mPath; }

    void Add(const QPainterPath& piece) { mPath = mPath.united(piece); }

private:

    QPainterPath mPath;
};

// What a base image shows: the silhouette, the bones through the joints and shadows on the floor.
struct Figure
{
    Silhouette body;
    // Drawn over the body, each with its own rim: toes that lie against each other.
    std::vector<Silhouette> layers;
    std::vector<QPolygonF> bones;
    std::vector<QPointF> joints;
    std::vector<QRectF> shadows;
};

QPointF NodeCentre(const ViewRecord& view, int nodeId)
{
    for (const FigureLayout::PartRecord& part : view.parts) {
        if (part.nodeId == nodeId)
            return FigureLayout::Centre(part.placement);
    }
    return QPointF();
}

QPolygonF ConvexHull(std::vector<QPointF> points)
{
    std::sort(points.begin(), points.end(), [](const QPointF& a, const QPointF& b) {
        return a.x() < b.x() || (a.x() == b.x() && a.y() < b.y());
    });
    const auto cross = [](const QPointF& o, const QPointF& a, const QPointF& b) {
        return (a.x() - o.x()) * (b.y() - o.y()) - (a.y() - o.y()) * (b.x() - o.x());
    };
    std::vector<QPointF> hull(points.size() * 2);
    size_t k = 0;
    for (size_t i = 0; i < points.size(); ++i) {
        while (k >= 2 && cross(hull[k - 2], hull[k - 1], points[i]) <= 0)
            --k;
        hull[k++] = points[i];
    }
    for (size_t i = points.size() - 1, lower = k + 1; i > 0; --i) {
        while (k >= lower && cross(hull[k - 2], hull[k - 1], points[i - 1]) <= 0)
            --k;
        hull[k++] = points[i - 1];
    }
    hull.resize(k > 0 ? k - 1 : 0);
    return QPolygonF(QVector<QPointF>(hull.begin(), hull.end()));
}

void Arm(Figure& figure, const QPointF& shoulder, const QPointF& elbow, const QPointF& wrist)
{
    figure.body.Circle(shoulder, 11);
    figure.body.Capsule(shoulder, 9, elbow, 7);
    figure.body.Capsule(elbow, 7, wrist, 5.5);
    figure.body.Capsule(wrist, 6.5, wrist + Unit(wrist - elbow) * 19, 6);
    figure.bones.push_back(QPolygonF({shoulder, elbow, wrist}));
}

void Leg(Figure& figure, const QPointF& hips, const QPointF& hip, const QPointF& knee, const QPointF& ankle)
{
    figure.body.Capsule(hip, 15.5, knee, 9.5);
    figure.body.Capsule(knee, 9.5, ankle, 6.5);
    figure.body.Ellipse(ankle + QPointF(0, 9), 9, 8);
    figure.bones.push_back(QPolygonF({hips, hip, knee, ankle}));
}

// One side of the trunk, from the midline out: a sloping shoulder, the armpit, the waist and the hip.
QPainterPath TorsoHalf(qreal cx, qreal neckBase, const QPointF& arm, const QPointF& hip, qreal waist)
{
    const qreal s = arm.x() > cx ? 1 : -1;
    QPainterPath half;
    half.moveTo(cx, neckBase - 4);
    half.lineTo(cx + s * 9, neckBase - 4);
    half.cubicTo(QPointF(cx + s * 14, neckBase + 5), QPointF(arm.x() - s * 20, arm.y() - 14),
                 QPointF(arm.x(), arm.y() - 11));
    half.lineTo(arm.x() + s * 4, arm.y() + 6);
    half.lineTo(arm.x() - s * 5, arm.y() + 24);
    half.quadTo(QPointF(cx + s * 21, waist - 22), QPointF(cx + s * 22, waist));
    half.quadTo(QPointF(cx + s * 23, hip.y() - 22), QPointF(hip.x() + s * 14, hip.y() - 6));
    half.lineTo(hip.x() + s * 8, hip.y() + 14);
    half.lineTo(cx, hip.y() + 18);
    half.closeSubpath();
    return half;
}

void FullBody(const ViewRecord& view, Figure& figure)
{
    const auto c = [&view](int node) { return NodeCentre(view, node); };
    const QPointF head = c(15), hips = c(1), spine = c(8);
    const QPointF leftArm = c(9), rightArm = c(12), leftUp = c(2), rightUp = c(5);
    const qreal cx = head.x();
    const qreal neckBase = leftArm.y() - 16;
    figure.shadows.push_back(QRectF(cx - 66, c(0).y() - 6, 132, 24)); // the reference stands on it
    figure.body.Ellipse(QPointF(cx, head.y() + 2), 15, 19);
    figure.body.Capsule(QPointF(cx, head.y() + 16), 7, QPointF(cx, neckBase + 4), 9);
    const qreal waist = spine.y() + 14;
    figure.body.Add(TorsoHalf(cx, neckBase, leftArm, leftUp, waist));
    figure.body.Add(TorsoHalf(cx, neckBase, rightArm, rightUp, waist));
    Arm(figure, leftArm, c(10), c(11));
    Arm(figure, rightArm, c(13), c(14));
    Leg(figure, hips, leftUp, c(3), c(4));
    Leg(figure, hips, rightUp, c(6), c(7));
    const QPointF chest(cx, neckBase + 8);
    figure.bones.push_back(QPolygonF({head, QPointF(cx, neckBase), chest, spine, hips}));
    figure.bones.push_back(QPolygonF({rightArm, chest, leftArm}));
}

// Around the wrist, the in-hand nodes and the knuckles, with the forearm below.
void Palm(const QPointF& base, const std::vector<QPointF>& joints, Figure& figure)
{
    figure.body.Polygon(ConvexHull(joints), 12);
    figure.body.Capsule(base + QPointF(0, 6), 31, QPointF(base.x(), FigureLayout::BaseImageSize.height() + 30), 27);
}

// From above: a straight inner edge with the arch, a round heel, an outer edge curving up to the little toes.
QPainterPath Sole(const QPointF& base, const std::vector<QPolygonF>& toes)
{
    const QPointF bigRoot = toes.front()[0], bigFirst = toes.front()[1];
    const QPointF outerRoot = toes.back()[0], outerFirst = toes.back()[1];
    const qreal s = bigFirst.x() > outerFirst.x() ? 1 : -1; // the big toe's side
    const qreal r = 33;
    const QPointF heel(base.x() - 6 * s, base.y() + 84);
    QPainterPath sole;
    sole.moveTo(bigFirst + QPointF(11 * s, 0));
    sole.cubicTo(bigRoot + QPointF(19 * s, 28), QPointF(heel.x() + (r - 6) * s, heel.y() - 90),
                 QPointF(heel.x() + r * s, heel.y()));
    sole.arcTo(QRectF(heel - QPointF(r, r), QSizeF(2 * r, 2 * r)), s > 0 ? 0 : 180, s > 0 ? -180 : 180);
    const QPointF outer = outerRoot + QPointF(-15 * s, 6);
    sole.cubicTo(QPointF(heel.x() - (r + 4) * s, heel.y() - 60), outer + QPointF(-4 * s, 56), outer);
    sole.lineTo(outerFirst + QPointF(-9 * s, 0));
    for (auto toe = toes.rbegin(); toe != toes.rend(); ++toe)
        sole.lineTo((*toe)[1]);
    sole.closeSubpath();
    return sole;
}

// Hands and feet: the view's parts come as the base, then per digit the in-hand (in-foot) node and joints 1 to 4.
void Digits(const ViewRecord& view, bool foot, Figure& figure)
{
    constexpr int DigitCount = 6;
    constexpr int PerDigit = 5;
    const QPointF base = FigureLayout::Centre(view.parts[0].placement);
    std::vector<QPointF> palm = {base};
    std::vector<QPolygonF> chains;
    for (int d = 0; d < DigitCount; ++d) {
        QPolygonF chain;
        for (int k = 0; k < PerDigit; ++k)
            chain << FigureLayout::Centre(view.parts[1 + d * PerDigit + k].placement);
        palm.push_back(chain[0]);
        palm.push_back(chain[1]);
        chains.push_back(chain);
    }
    if (foot)
        figure.body.Add(Sole(base, chains));
    else
        Palm(base, palm, figure);
    // From the outer digit in, so that each toe lies over its smaller neighbour.
    for (int d = DigitCount - 1; d >= 0; --d) {
        const QPolygonF& chain = chains[d];
        const bool big = d == 0; // thumb, or the toe drawn with the thumb's pictures
        const qreal root = foot ? (big ? 13.0 : 11.0 - (d == 5 ? 1.0 : 0.0)) : (big ? 9.0 : 8.0);
        const qreal tip = root - (foot ? 2.0 : 1.6) - (d == 5 ? 0.8 : 0.0);
        Silhouette digit;
        if (!foot)
            digit.Capsule(chain[0], root, chain[1], root);
        for (int k = 1; k < 4; ++k)
            digit.Capsule(chain[k], root + (tip - root) * (k - 1) / 3, chain[k + 1], root + (tip - root) * k / 3);
        digit.Circle(chain[4] + Unit(chain[4] - chain[3]) * (foot ? 2 : 5), tip);
        if (foot)
            figure.layers.push_back(digit);
        else
            figure.body.Add(digit.Path());
        QPolygonF bone = chain;
        bone.prepend(base);
        figure.bones.push_back(bone);
    }
}

QTransform MirrorAbout(qreal x)
{
    QTransform mirror;
    mirror.translate(2 * x, 0);
    mirror.scale(-1, 1);
    return mirror;
}

// A shape given by its half on one side of the line x.
void AddMirrored(Silhouette& body, const QPainterPath& half, qreal x)
{
    body.Add(half);
    body.Add(MirrorAbout(x).map(half));
}

void Column(const ViewRecord& view, bool neck, Figure& figure)
{
    const QPointF bottom = FigureLayout::Centre(view.parts.front().placement);
    const QPointF top = FigureLayout::Centre(view.parts.back().placement);
    const qreal cx = bottom.x();
    const qreal height = FigureLayout::BaseImageSize.height();
    if (neck) {
        // The neck widens into the shoulders.
        QPainterPath shoulders;
        shoulders.moveTo(cx - 26, bottom.y() - 40);
        shoulders.cubicTo(cx - 26, bottom.y() - 4, cx - 70, bottom.y() + 14, cx - 128, bottom.y() + 44);
        shoulders.lineTo(cx - 140, height + 20);
        shoulders.lineTo(cx + 140, height + 20);
        shoulders.lineTo(cx + 128, bottom.y() + 44);
        shoulders.cubicTo(cx + 70, bottom.y() + 14, cx + 26, bottom.y() - 4, cx + 26, bottom.y() - 40);
        shoulders.closeSubpath();
        figure.body.Add(shoulders);
        figure.body.Capsule(QPointF(cx, bottom.y() + 18), 27, QPointF(cx, top.y()), 21);
        figure.body.Ellipse(QPointF(cx, top.y() - 58), 60, 62);
    } else {
        // The trunk's left half; the right half is its mirror image.
        QPainterPath half;
        half.moveTo(cx + 2, -30); // across the midline, so the halves overlap without a seam
        half.lineTo(cx - 22, -30);
        half.lineTo(cx - 22, 8);
        half.cubicTo(cx - 26, 30, cx - 78, 26, cx - 98, top.y() + 12);
        half.quadTo(cx - 110, top.y() + 26, cx - 96, top.y() + 64);
        half.cubicTo(cx - 78, bottom.y() - 110, cx - 44, bottom.y() - 10, cx - 78, height + 20);
        half.lineTo(cx + 2, height + 20);
        half.closeSubpath();
        AddMirrored(figure.body, half, cx);
    }
    figure.bones.push_back(QPolygonF({QPointF(cx, neck ? height : bottom.y() + 30), top}));
}

// The shoulder seen from the front: the neck on the medial side, the collar bone out to the arm.
void Collar(const ViewRecord& view, Figure& figure)
{
    const QPointF root = FigureLayout::Centre(view.parts[0].placement);
    const QPointF extra = FigureLayout::Centre(view.parts[1].placement);
    const qreal s = extra.x() > root.x() ? 1 : -1; // towards the arm
    const qreal bottom = FigureLayout::BaseImageSize.height() + 30;
    // The collar bone starts beside the midline; the head of the arm sits just below and outside the extra node.
    const qreal midline = root.x() - s * 22;
    const QPointF joint(extra.x() + s * 14, extra.y() + 24);
    const QPointF neckSide(midline + s * 30, root.y() - 72);
    // One half of the chest, from the midline out; the other half is its mirror image.
    QPainterPath half;
    half.moveTo(midline - s * 2, neckSide.y()); // across the midline, so the halves overlap without a seam
    half.lineTo(neckSide);
    half.cubicTo(neckSide + QPointF(s * 8, 30), QPointF(extra.x() - s * 40, joint.y() - 36),
                 QPointF(joint.x(), joint.y() - 28));
    // The side runs down under the arm, which is drawn over it.
    half.lineTo(joint.x(), joint.y() + 50);
    half.lineTo(joint.x() + s * 4, bottom);
    half.lineTo(midline - s * 2, bottom);
    half.closeSubpath();
    Silhouette arm;
    arm.Circle(joint, 28);
    arm.Capsule(joint, 26, QPointF(joint.x() + s * 16, bottom), 22);
    AddMirrored(figure.body, half, midline);
    figure.body.Capsule(QPointF(midline, root.y() - 60), 30, QPointF(midline, -40), 28);
    figure.layers.push_back(arm);
    Silhouette otherArm;
    otherArm.Add(MirrorAbout(midline).map(arm.Path()));
    figure.layers.push_back(otherArm);
    figure.bones.push_back(QPolygonF({root, extra, joint}));
}

enum class Limb
{
    UpperArm,
    Forearm,
    Thigh,
    Shin
};

// A limb seen along its roll bones, with its neighbours above and below.
void Roll(const ViewRecord& view, Limb limb, Figure& figure)
{
    const QPointF first = FigureLayout::Centre(view.parts.front().placement);
    const QPointF last = FigureLayout::Centre(view.parts.back().placement);
    const QPointF along = last - first;
    const QPointF upper = first - along * 0.15;
    const QPointF lower = last + along * 0.2;
    const qreal s = along.x() >= 0 ? 1 : -1; // which way the limb leans
    const QPointF u = Unit(along);
    const qreal bottom = FigureLayout::BaseImageSize.height() + 30;
    switch (limb) {
    case Limb::Thigh:
        figure.body.Capsule(upper, 42, lower, 26);
        figure.body.Capsule(lower, 25, QPointF(lower.x() + s * 8, bottom), 19);
        break;
    case Limb::Shin:
        figure.body.Capsule(upper + QPointF(-s * 12, -130), 36, upper, 27);
        figure.body.Capsule(upper, 26, lower, 15);
        figure.body.Capsule(lower, 15, lower + QPointF(s * 10, 34), 18);
        break;
    case Limb::UpperArm:
        figure.body.Circle(upper, 36);
        figure.body.Capsule(upper, 32, lower, 21);
        figure.body.Capsule(lower, 20, QPointF(lower.x() + s * 20, bottom), 15);
        break;
    case Limb::Forearm:
        figure.body.Capsule(upper + QPointF(-s * 16, -130), 27, upper, 23);
        figure.body.Capsule(upper, 23, lower, 14);
        figure.body.Capsule(lower, 15, lower + u * 48, 17);
        figure.body.Capsule(lower + u * 10, 7, lower + u * 22 + QPointF(s * 18, 6), 6);
        break;
    }
    // The joints at both ends, so the roll bones read as lying between them.
    figure.joints.push_back(upper);
    figure.joints.push_back(lower);
    figure.bones.push_back(QPolygonF({upper, lower}));
}

void Build(const ViewRecord& view, Figure& figure)
{
    switch (view.index) {
    case 0: FullBody(view, figure); break;
    case 1:
    case 2: Digits(view, false, figure); break;
    case 3:
    case 4: Digits(view, true, figure); break;
    case 5: Column(view, true, figure); break;
    case 6: Column(view, false, figure); break;
    case 7:
    case 8: Collar(view, figure); break;
    case 9:
    case 11: Roll(view, Limb::UpperArm, figure); break;
    case 10:
    case 12: Roll(view, Limb::Forearm, figure); break;
    case 13:
    case 15: Roll(view, Limb::Thigh, figure); break;
    default: Roll(view, Limb::Shin, figure); break;
    }
}

void Render(const Figure& figure, QImage& image, int scale)
{
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Shadow);
    for (const QRectF& shadow : figure.shadows)
        painter.drawEllipse(shadow);
    QLinearGradient skin(0, 0, 0, FigureLayout::BaseImageSize.height());
    skin.setColorAt(0, SkinTop);
    skin.setColorAt(1, SkinBottom);
    painter.setBrush(skin);
    painter.setPen(QPen(Rim, 1.2));
    painter.drawPath(figure.body.Path());
    for (const Silhouette& layer : figure.layers)
        painter.drawPath(layer.Path());
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Bone, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const QPolygonF& bone : figure.bones)
        painter.drawPolyline(bone);
    painter.setPen(QPen(Bone, 2.0));
    painter.setBrush(SkinTop);
    for (const QPointF& joint : figure.joints)
        painter.drawEllipse(joint, 5.5, 5.5);
}
} // namespace

QImage BaseImage(const ViewRecord& view, int scale)
{
    QImage image(FigureLayout::BaseImageSize * scale, QImage::Format_RGB32);
    image.fill(QColor(view.red, view.green, view.blue));
    Figure figure;
    Build(view, figure);
    Render(figure, image, scale);
    return image;
}
} // namespace FigureSilhouettes
