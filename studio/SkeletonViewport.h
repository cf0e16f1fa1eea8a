#pragma once

#include <vector>

#include <QColor>
#include <QPointF>
#include <QPointer>
#include <QVector3D>
#include <QWidget>

class CharacterizationModel;
class SceneHub;

// Draws the scene's skeleton in its reference pose: bones as lines, joints as dots coloured by the validation state
// of the node they are mapped to, the hub's selection ringed and named. Orthographic front (X-Y) and side (Z-Y)
// views, and a perspective view that orbits the skeleton. A click picks the nearest joint into the hub's selection.
class SkeletonViewport : public QWidget
{
    Q_OBJECT

public:
    enum ViewMode
    {
        FrontView,
        SideView,
        PerspectiveView
    };

    // How close to a joint, in pixels, a click must land to pick it.
    static constexpr double PickRadius = 7.0;
    // The joint of a bone no node holds.
    static constexpr int Unmapped = -1;

    explicit SkeletonViewport(SceneHub& hub, QWidget* parent = nullptr);

    void SetModel(CharacterizationModel* model);
    ViewMode GetViewMode() const { return mMode; }

    // Where the bone's joint is drawn; false when it lies behind the camera.
    bool ProjectBone(int index, QPointF& point) const;
    // The visible joint nearest to the point within PickRadius, -1 when none.
    int BoneAt(const QPointF& point) const;
    // Unmapped, or the model's state of the node the bone is mapped to (0 not validated, 1 valid, 2 warning,
    // 3 error).
    int JointState(int index) const;
    static QColor StateColour(int state);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public slots:
    void SetViewMode(SkeletonViewport::ViewMode mode);
    // Fits the whole skeleton in view and forgets zoom and panning.
    void FrameAll();

signals:
    void ViewModeChanged(SkeletonViewport::ViewMode mode);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Projected
    {
        QPointF point;
        double depth = 0.0; // larger is farther
        bool visible = false;
    };

    Projected Project(const QVector3D& world) const;
    // Pixels per scene unit in the orthographic views, fitting the skeleton's extent seen from that side.
    double OrthographicScale() const;
    std::vector<Projected> ProjectAll() const;
    std::vector<int> JointStates() const;
    void PickAt(const QPointF& point, Qt::KeyboardModifiers modifiers);
    void Drag(const QPoint& delta, bool orbit);
    void DrawBones(QPainter& painter, const std::vector<Projected>& joints, const std::vector<int>& states) const;
    void DrawJoints(QPainter& painter, const std::vector<Projected>& joints, const std::vector<int>& states) const;
    void DrawSelection(QPainter& painter, const std::vector<Projected>& joints) const;
    void DrawAxes(QPainter& painter) const;
    void DrawOverlay(QPainter& painter) const;
    QString ToolTipFor(int index) const;

    SceneHub& mHub;
    QPointer<CharacterizationModel> mModel;
    ViewMode mMode = FrontView;
    QVector3D mCenter;
    QVector3D mExtent {1.0f, 1.0f, 1.0f};
    float mRadius = 1.0f;
    double mYaw = 30.0;   // degrees about Y; 0 looks at the front
    double mPitch = 12.0; // degrees above the horizon
    double mZoom = 1.0;
    QPointF mPan;
    QPoint mPressPosition;
    QPoint mLastPosition;
    Qt::MouseButton mButton = Qt::NoButton;
    bool mDragging = false;
};
