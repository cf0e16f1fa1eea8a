#include "SkeletonViewport.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <QApplication>
#include <QHash>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <QtMath>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>

#include "Scene.h"
#include "SceneHub.h"

namespace
{
constexpr double FieldOfView = 40.0; // degrees
// Share of the view's width or height that a framed skeleton fills, leaving room for the captions.
constexpr double FillShare = 0.8;
constexpr double MinZoom = 0.05;
constexpr double MaxZoom = 50.0;
constexpr double DegreesPerPixel = 0.5;
constexpr double MappedRadius = 5.0;
constexpr double UnmappedRadius = 3.5;
constexpr double SelectionRadius = 9.0;
const QColor SelectionColour(79, 195, 247);

QVector3D JointOf(const SceneBone& bone)
{
    return bone.global.column(3).toVector3D();
}

void DrawShadowedText(QPainter& painter, const QPointF& at, const QString& text, const QColor& colour)
{
    painter.setPen(QColor(0, 0, 0, 170));
    painter.drawText(at + QPointF(1, 1), text);
    painter.setPen(colour);
    painter.drawText(at, text);
}
} // namespace

SkeletonViewport::SkeletonViewport(SceneHub& hub, QWidget* parent)
    : QWidget(parent)
    , mHub(hub)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(&mHub, &IDCCHub::selectionChanged, this, qOverload<>(&QWidget::update));
    connect(&mHub, &SceneHub::BoneMarkChanged, this, qOverload<>(&QWidget::update));
    // A new rest pose can stand the skeleton along another axis: the view follows it.
    connect(&mHub, &IDCCHub::ReferencePoseChanged, this, &SkeletonViewport::FrameAll);
}

void SkeletonViewport::SetModel(CharacterizationModel* model)
{
    if (mModel != nullptr)
        disconnect(mModel, nullptr, this, nullptr);
    mModel = model;
    if (mModel != nullptr)
        connect(mModel, &CharacterizationModel::ModelChanged, this, qOverload<>(&QWidget::update));
    update();
}

QSize SkeletonViewport::sizeHint() const
{
    return QSize(640, 640);
}

QSize SkeletonViewport::minimumSizeHint() const
{
    return QSize(200, 200);
}

void SkeletonViewport::SetViewMode(SkeletonViewport::ViewMode mode)
{
    if (mode == mMode)
        return;
    mMode = mode;
    mPan = QPointF();
    update();
    emit ViewModeChanged(mode);
}

void SkeletonViewport::FrameAll()
{
    const Scene& scene = mHub.GetScene();
    QVector3D low(0, 0, 0);
    QVector3D high(0, 0, 0);
    for (int index = 0; index < scene.BoneCount(); ++index)
    {
        const QVector3D joint = JointOf(scene.Bone(index));
        low = index == 0 ? joint : QVector3D(std::min(low.x(), joint.x()), std::min(low.y(), joint.y()),
                                             std::min(low.z(), joint.z()));
        high = index == 0 ? joint : QVector3D(std::max(high.x(), joint.x()), std::max(high.y(), joint.y()),
                                              std::max(high.z(), joint.z()));
    }
    mCenter = (low + high) / 2.0f;
    // A single joint, or all joints on one spot, still needs a scale.
    mRadius = std::max((high - low).length() / 2.0f, 1e-3f);
    mExtent = high - low;
    mZoom = 1.0;
    mPan = QPointF();
    update();
}

SkeletonViewport::Projected SkeletonViewport::Project(const QVector3D& world) const
{
    const QVector3D p = world - mCenter;
    const double half = 0.5 * std::max(1, std::min(width(), height()));
    const QPointF middle = QPointF(width() / 2.0, height() / 2.0) + mPan;
    Projected projected;
    if (mMode != PerspectiveView)
    {
        const double scale = OrthographicScale();
        // Front: seen from +Z, so +X is to the right. Side: seen from -X, so the front (+Z) faces right.
        const double across = mMode == FrontView ? p.x() : p.z();
        projected.point = middle + QPointF(across * scale, -p.y() * scale);
        projected.depth = mMode == FrontView ? -p.z() : p.x();
        projected.visible = true;
        return projected;
    }
    const double yaw = qDegreesToRadians(mYaw);
    const double pitch = qDegreesToRadians(mPitch);
    const QVector3D toCamera(float(std::sin(yaw) * std::cos(pitch)), float(std::sin(pitch)),
                             float(std::cos(yaw) * std::cos(pitch)));
    const QVector3D right = QVector3D::crossProduct(-toCamera, QVector3D(0, 1, 0)).normalized();
    const QVector3D up = QVector3D::crossProduct(right, -toCamera);
    const double halfAngle = qDegreesToRadians(FieldOfView / 2.0);
    const double distance = mRadius / std::sin(halfAngle) / mZoom;
    projected.depth = distance - QVector3D::dotProduct(p, toCamera);
    projected.visible = projected.depth > 1e-3 * mRadius;
    if (!projected.visible)
        return projected;
    const double focal = half / std::tan(halfAngle);
    projected.point = middle + QPointF(QVector3D::dotProduct(p, right) * focal / projected.depth,
                                       -QVector3D::dotProduct(p, up) * focal / projected.depth);
    return projected;
}

double SkeletonViewport::OrthographicScale() const
{
    const double across = mMode == FrontView ? mExtent.x() : mExtent.z();
    const double floor = 1e-3 * mRadius;
    const double fit = std::min(width() / std::max(across, floor), height() / std::max(double(mExtent.y()), floor));
    return mZoom * FillShare * fit;
}

std::vector<SkeletonViewport::Projected> SkeletonViewport::ProjectAll() const
{
    const Scene& scene = mHub.GetScene();
    std::vector<Projected> joints;
    joints.reserve(static_cast<size_t>(scene.BoneCount()));
    for (int index = 0; index < scene.BoneCount(); ++index)
        joints.push_back(Project(JointOf(scene.Bone(index))));
    return joints;
}

bool SkeletonViewport::ProjectBone(int index, QPointF& point) const
{
    if (index < 0 || index >= mHub.GetScene().BoneCount())
        return false;
    const Projected projected = Project(JointOf(mHub.GetScene().Bone(index)));
    point = projected.point;
    return projected.visible;
}

int SkeletonViewport::BoneAt(const QPointF& point) const
{
    const std::vector<Projected> joints = ProjectAll();
    int nearest = -1;
    double best = PickRadius * PickRadius;
    for (size_t index = 0; index < joints.size(); ++index)
    {
        if (!joints[index].visible)
            continue;
        const QPointF offset = joints[index].point - point;
        const double distance = QPointF::dotProduct(offset, offset);
        // On a tie the joint in front wins.
        if (distance < best || (nearest >= 0 && distance == best && joints[index].depth < joints[nearest].depth))
        {
            best = distance;
            nearest = static_cast<int>(index);
        }
    }
    return nearest;
}

std::vector<int> SkeletonViewport::JointStates() const
{
    const Scene& scene = mHub.GetScene();
    std::vector<int> states(static_cast<size_t>(scene.BoneCount()), Unmapped);
    const std::shared_ptr<Characterization> current =
        mModel != nullptr ? mModel->GetCurrentCharacterization() : nullptr;
    if (!current)
        return states;
    for (int nodeId = ZELNodeCount - 1; nodeId >= 0; --nodeId)
    {
        // Downwards, so a bone that holds several nodes shows its first one, as Characterization::FindNode does.
        const int index = current->IsAssigned(nodeId) ? scene.IndexOf(current->GetBone(nodeId)) : -1;
        if (index >= 0)
            states[static_cast<size_t>(index)] = mModel->GetNodeState(nodeId);
    }
    return states;
}

int SkeletonViewport::JointState(int index) const
{
    const std::vector<int> states = JointStates();
    return index >= 0 && index < static_cast<int>(states.size()) ? states[static_cast<size_t>(index)] : Unmapped;
}

QColor SkeletonViewport::StateColour(int state)
{
    switch (state)
    {
    case Valid:
        return QColor(76, 175, 80);
    case Warning:
        return QColor(255, 152, 0);
    case Error:
        return QColor(244, 67, 54);
    case NotValidated:
        return QColor(176, 190, 197);
    default:
        return QColor(120, 126, 134);
    }
}

void SkeletonViewport::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient background(0, 0, 0, height());
    background.setColorAt(0.0, QColor(52, 57, 65));
    background.setColorAt(1.0, QColor(28, 31, 36));
    painter.fillRect(rect(), background);
    if (mHub.GetScene().IsEmpty())
    {
        painter.setPen(QColor(200, 205, 212));
        painter.drawText(rect(), Qt::AlignCenter,
                         tr("Open a skeleton or a project (File menu), or drop a file here."));
        return;
    }
    const std::vector<Projected> joints = ProjectAll();
    const std::vector<int> states = JointStates();
    DrawBones(painter, joints, states);
    DrawJoints(painter, joints, states);
    DrawSelection(painter, joints);
    DrawAxes(painter);
    DrawOverlay(painter);
}

void SkeletonViewport::DrawBones(QPainter& painter, const std::vector<Projected>& joints,
                                 const std::vector<int>& states) const
{
    const Scene& scene = mHub.GetScene();
    for (int index = 0; index < scene.BoneCount(); ++index)
    {
        const int parent = scene.Bone(index).parent;
        if (parent < 0 || !joints[size_t(index)].visible || !joints[size_t(parent)].visible)
            continue;
        const bool mapped = states[size_t(index)] != Unmapped && states[size_t(parent)] != Unmapped;
        painter.setPen(QPen(mapped ? QColor(205, 211, 218) : QColor(125, 132, 141), mapped ? 2.5 : 1.5,
                            Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(joints[size_t(parent)].point, joints[size_t(index)].point);
    }
}

void SkeletonViewport::DrawJoints(QPainter& painter, const std::vector<Projected>& joints,
                                  const std::vector<int>& states) const
{
    std::vector<size_t> order(joints.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&joints](size_t a, size_t b) { return joints[a].depth > joints[b].depth; });
    painter.setPen(QPen(QColor(20, 22, 26), 1.0));
    for (size_t index : order)
    {
        if (!joints[index].visible)
            continue;
        const double radius = states[index] == Unmapped ? UnmappedRadius : MappedRadius;
        painter.setBrush(StateColour(states[index]));
        painter.drawEllipse(joints[index].point, radius, radius);
    }
}

void SkeletonViewport::DrawSelection(QPainter& painter, const std::vector<Projected>& joints) const
{
    const Scene& scene = mHub.GetScene();
    painter.setBrush(Qt::NoBrush);
    for (const QString& name : scene.Selection())
    {
        const int index = scene.IndexOf(name);
        if (index < 0 || !joints[size_t(index)].visible)
            continue;
        const QPointF at = joints[size_t(index)].point;
        painter.setPen(QPen(SelectionColour, 2.0));
        painter.drawEllipse(at, SelectionRadius, SelectionRadius);
        // Beside the joint, on whichever side the name fits.
        const double textWidth = painter.fontMetrics().horizontalAdvance(name);
        const double gap = SelectionRadius + 3;
        const double x = at.x() + gap + textWidth <= width() - 4 ? at.x() + gap : at.x() - gap - textWidth;
        const double y = std::max(at.y() - SelectionRadius, double(painter.fontMetrics().ascent()) + 2);
        DrawShadowedText(painter, QPointF(x, y), name, SelectionColour);
    }
}

void SkeletonViewport::DrawAxes(QPainter& painter) const
{
    // The world axes turned as the view turns them, in the lower right corner.
    const QPointF origin(width() - 42.0, height() - 42.0);
    const double length = 26.0;
    const struct
    {
        QVector3D axis;
        QColor colour;
        const char* label;
    } axes[] = {{QVector3D(1, 0, 0), QColor(239, 83, 80), "X"},
                {QVector3D(0, 1, 0), QColor(102, 187, 106), "Y"},
                {QVector3D(0, 0, 1), QColor(66, 165, 245), "Z"}};
    const Projected centre = Project(mCenter);
    for (const auto& axis : axes)
    {
        const Projected tip = Project(mCenter + axis.axis * mRadius * 0.01f);
        if (!centre.visible || !tip.visible)
            continue;
        QPointF direction = tip.point - centre.point;
        const double size = std::hypot(direction.x(), direction.y());
        if (size < 1e-9)
            continue; // pointing at the viewer
        direction *= length / size;
        painter.setPen(QPen(axis.colour, 2.0));
        painter.drawLine(origin, origin + direction);
        DrawShadowedText(painter, origin + direction * 1.25 + QPointF(-4, 4), QLatin1String(axis.label), axis.colour);
    }
}

void SkeletonViewport::DrawOverlay(QPainter& painter) const
{
    static const char* const Names[] = {QT_TR_NOOP("Front (X-Y)"), QT_TR_NOOP("Side (Z-Y)"),
                                        QT_TR_NOOP("Perspective")};
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    const int line = painter.fontMetrics().height();
    DrawShadowedText(painter, QPointF(10, 8 + line), tr(Names[mMode]), QColor(230, 233, 237));
    painter.setFont(font());
    const QString hint = mMode == PerspectiveView
                             ? tr("Drag to orbit, wheel to zoom, F to frame, click a joint to select it")
                             : tr("Drag to pan, wheel to zoom, F to frame, click a joint to select it");
    DrawShadowedText(painter, QPointF(10, 10 + 2 * line), hint, QColor(170, 176, 184));

    const struct
    {
        int state;
        const char* label;
    } legend[] = {{Unmapped, QT_TR_NOOP("Unmapped")},
                  {Valid, QT_TR_NOOP("Valid")},
                  {Warning, QT_TR_NOOP("Warning")},
                  {Error, QT_TR_NOOP("Error")}};
    double x = 12.0;
    const double y = height() - 14.0;
    painter.setPen(QPen(QColor(20, 22, 26), 1.0));
    for (const auto& entry : legend)
    {
        painter.setPen(QPen(QColor(20, 22, 26), 1.0));
        painter.setBrush(StateColour(entry.state));
        painter.drawEllipse(QPointF(x + MappedRadius, y - line / 3.0), MappedRadius, MappedRadius);
        const QString label = tr(entry.label);
        DrawShadowedText(painter, QPointF(x + 2 * MappedRadius + 5, y), label, QColor(210, 214, 219));
        x += 2 * MappedRadius + 5 + painter.fontMetrics().horizontalAdvance(label) + 16;
    }
}

QString SkeletonViewport::ToolTipFor(int index) const
{
    const QString bone = mHub.GetScene().Bone(index).name;
    const std::shared_ptr<Characterization> current =
        mModel != nullptr ? mModel->GetCurrentCharacterization() : nullptr;
    const int nodeId = current ? current->FindNode(bone) : -1;
    if (nodeId < 0)
        return bone;
    const QString message = QString::fromStdString(mModel->GetNodeMessage(nodeId));
    const QString node = QString::fromLatin1(BoneCatalogue::NodeName(nodeId));
    return message.isEmpty() ? tr("%1: %2").arg(bone, node) : tr("%1: %2\n%3").arg(bone, node, message);
}

bool SkeletonViewport::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    auto* help = static_cast<QHelpEvent*>(event);
    const int index = BoneAt(help->pos());
    if (index < 0)
    {
        QToolTip::hideText();
        event->ignore();
    }
    else
        QToolTip::showText(help->globalPos(), ToolTipFor(index), this);
    return true;
}

void SkeletonViewport::mousePressEvent(QMouseEvent* event)
{
    mPressPosition = event->position().toPoint();
    mLastPosition = mPressPosition;
    mButton = event->button();
    mDragging = false;
    event->accept();
}

void SkeletonViewport::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    if (!mDragging && (position - mPressPosition).manhattanLength() >= QApplication::startDragDistance())
        mDragging = true;
    if (mDragging)
        Drag(position - mLastPosition, mButton == Qt::LeftButton && mMode == PerspectiveView);
    mLastPosition = position;
}

void SkeletonViewport::mouseReleaseEvent(QMouseEvent* event)
{
    if (!mDragging && event->button() == Qt::LeftButton)
        PickAt(event->position(), event->modifiers());
    mDragging = false;
    mButton = Qt::NoButton;
}

void SkeletonViewport::Drag(const QPoint& delta, bool orbit)
{
    if (orbit)
    {
        mYaw = std::fmod(mYaw - delta.x() * DegreesPerPixel, 360.0);
        mPitch = std::clamp(mPitch + delta.y() * DegreesPerPixel, -85.0, 85.0);
    }
    else
        mPan += QPointF(delta);
    update();
}

void SkeletonViewport::wheelEvent(QWheelEvent* event)
{
    mZoom = std::clamp(mZoom * std::pow(1.0015, event->angleDelta().y()), MinZoom, MaxZoom);
    update();
    event->accept();
}

void SkeletonViewport::keyPressEvent(QKeyEvent* event)
{
    switch (event->key())
    {
    case Qt::Key_F:
        FrameAll();
        break;
    case Qt::Key_1:
        SetViewMode(FrontView);
        break;
    case Qt::Key_2:
        SetViewMode(SideView);
        break;
    case Qt::Key_3:
        SetViewMode(PerspectiveView);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void SkeletonViewport::PickAt(const QPointF& point, Qt::KeyboardModifiers modifiers)
{
    const Scene& scene = mHub.GetScene();
    const int index = BoneAt(point);
    QStringList selection;
    if (modifiers & (Qt::ControlModifier | Qt::ShiftModifier))
    {
        // Adds or removes the joint; a click beside every joint keeps what is selected.
        selection = scene.Selection();
        if (index >= 0 && selection.removeAll(scene.Bone(index).name) == 0)
            selection.append(scene.Bone(index).name);
    }
    else if (index >= 0)
        selection.append(scene.Bone(index).name);
    mHub.SelectBones(selection);
}
