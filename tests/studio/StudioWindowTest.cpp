#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QLineEdit>
#include <QMimeData>
#include <QStyledItemDelegate>
#include <QTest>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QUrl>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/ConfigDocument.h>

#include "BoneTreeWidget.h"
#include "ModalAnswerer.h"
#include "RecentFiles.h"
#include "StudioFixture.h"

namespace
{
const int kHips = BoneCatalogue::NodeId("Hips");
const int kLeftArm = BoneCatalogue::NodeId("LeftArm");
const int kLeftHand = BoneCatalogue::NodeId("LeftHand");

struct Snapshot
{
    QString skeleton;
    QStringList names;
    QList<bool> locks;
    QList<QStringList> mappings;
    QString current;
    int boneCount = 0;

    bool operator==(const Snapshot& other) const
    {
        return skeleton == other.skeleton && names == other.names && locks == other.locks &&
               mappings == other.mappings && current == other.current && boneCount == other.boneCount;
    }
};

// How many cells of the panel's trees show the text.
int PanelCount(const CharacterTool& tool, const QString& text)
{
    int count = 0;
    for (QTreeWidget* tree : tool.findChildren<QTreeWidget*>())
    {
        for (QTreeWidgetItemIterator it(tree); *it != nullptr; ++it)
        {
            for (int column = 0; column < (*it)->columnCount(); ++column)
                count += (*it)->text(column) == text ? 1 : 0;
        }
    }
    return count;
}

class StudioWindowTest : public StudioFixture
{
protected:
    Snapshot Take()
    {
        Snapshot snapshot;
        snapshot.skeleton = GetScene().SourcePath();
        snapshot.boneCount = GetScene().BoneCount();
        snapshot.current = Current().GetName();
        for (const auto& characterization : Model().GetCharacterizations())
        {
            snapshot.names.append(characterization->GetName());
            snapshot.locks.append(characterization->IsLocked());
            snapshot.mappings.append(characterization->GetBoneNames());
        }
        return snapshot;
    }

    // The sample under a "Hero" characterization, locked, and a second one with the left arm cleared, current.
    void MakeTwoCharacterizations(const QString& skeleton = Sample())
    {
        ASSERT_TRUE(window->OpenSkeleton(skeleton));
        ASSERT_TRUE(Hub().RenameCharacterObject(Characterization::DefaultName(), "Hero"));
        Hub().Lock(true);
        ASSERT_TRUE(Model().IsLocked());
        ASSERT_TRUE(window->GetTool()->CreateCharacterization("Second"));
        Model().AutoMatch();
        ASSERT_TRUE(Model().ClearNode(kLeftArm));
    }
};

TEST_F(StudioWindowTest, OpenedSkeletonsAreMatchedAndValid)
{
    for (const QString& path : {Sample(), Mixamo()})
    {
        SCOPED_TRACE(path.toStdString());
        ASSERT_TRUE(window->OpenSkeleton(path));
        const QString prefix = path == Mixamo() ? QStringLiteral("mixamorig:") : QString();
        EXPECT_EQ(window->GetBoneTree()->VisibleBones().size(), GetScene().BoneCount());
        QTreeWidgetItem* hand = window->GetBoneTree()->FindItem(prefix + "LeftHand");
        ASSERT_NE(hand, nullptr);
        EXPECT_EQ(hand->parent()->text(BoneTreeWidget::BoneColumn), prefix + "LeftForeArm");
        EXPECT_EQ(hand->text(BoneTreeWidget::NodeColumn), "LeftHand");

        // One fresh characterization each time, every required node mapped, and valid.
        EXPECT_EQ(Model().GetCharacterizationNames(), QStringList {Characterization::DefaultName()});
        for (int nodeId : BoneCatalogue::RequiredNodes())
            EXPECT_TRUE(Current().IsAssigned(nodeId)) << BoneCatalogue::NodeName(nodeId);
        EXPECT_EQ(Current().GetBone(kHips), prefix + "Hips");
        EXPECT_EQ(Model().GetValidationState(), Valid) << Model().GetValidationMessage();
        EXPECT_EQ(window->GetViewport()->JointState(GetScene().IndexOf(prefix + "Hips")), Valid);
        EXPECT_EQ(GetScene().Find(prefix + "Hips")->attachCount, 1);

        EXPECT_FALSE(Session().IsModified());
        EXPECT_FALSE(Session().GetUndoStack().canUndo());
        EXPECT_EQ(window->GetRecentFiles().Files().front(), QFileInfo(path).absoluteFilePath());
    }
    // Every bone of the Mixamo rig that plays a node was given it.
    EXPECT_EQ(Current().AssignedCount(), 62);
}

TEST_F(StudioWindowTest, ProjectBringsBackNamesLocksAndMappingsFromItsOwnFolder)
{
    QTemporaryDir work;
    const QDir root(work.path());
    ASSERT_TRUE(root.mkpath("rigs") && root.mkpath("projects"));
    ASSERT_TRUE(QFile::copy(Sample(), root.filePath("rigs/hero.bvh")));
    MakeTwoCharacterizations(root.filePath("rigs/hero.bvh"));
    const Snapshot original = Take();
    const QString project = root.filePath("projects/hero.zelproj");
    ASSERT_TRUE(window->SaveProject(project));
    EXPECT_FALSE(Session().IsModified());
    ConfigDocument document;
    ASSERT_TRUE(document.Load(project));
    EXPECT_EQ(document.ReadValue("project", "skeleton"), "../rigs/hero.bvh");

    // Moved elsewhere as a whole, and opened over another skeleton.
    QTemporaryDir elsewhere;
    const QDir moved(elsewhere.path());
    ASSERT_TRUE(moved.mkpath("rigs") && moved.mkpath("projects"));
    ASSERT_TRUE(QFile::copy(root.filePath("rigs/hero.bvh"), moved.filePath("rigs/hero.bvh")));
    ASSERT_TRUE(QFile::copy(project, moved.filePath("projects/hero.zelproj")));
    ASSERT_TRUE(window->OpenSkeleton(Mixamo()));
    ASSERT_TRUE(window->OpenProject(moved.filePath("projects/hero.zelproj")));

    Snapshot restored = Take();
    EXPECT_EQ(restored.skeleton, moved.filePath("rigs/hero.bvh"));
    restored.skeleton = original.skeleton;
    EXPECT_TRUE(restored == original);
    EXPECT_EQ(restored.names, QStringList({"Hero", "Second"}));
    EXPECT_EQ(restored.locks, QList<bool>({true, false}));
    EXPECT_EQ(restored.current, "Second");
    EXPECT_TRUE(restored.mappings[1][kLeftArm].isEmpty());
    // The host's side was rebuilt too: both characterizations hold the hand, and the scene has both objects.
    EXPECT_EQ(GetScene().Find("LeftHand")->attachCount, 2);
    EXPECT_EQ(GetScene().Characters(), QStringList({"Hero", "Second"}));
    EXPECT_EQ(Session().GetProjectPath(), moved.filePath("projects/hero.zelproj"));
    EXPECT_FALSE(Session().IsModified());
    EXPECT_EQ(window->GetBoneTree()->FindItem("LeftArm")->text(BoneTreeWidget::NodeColumn), "");
}

TEST_F(StudioWindowTest, DamagedProjectChangesNothingAndSaysSoOnce)
{
    MakeTwoCharacterizations();
    QTemporaryDir work;
    const QString good = QDir(work.path()).filePath("good.zelproj");
    ASSERT_TRUE(window->SaveProject(good));
    QFile file(good);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    file.close();
    ASSERT_TRUE(window->OpenSkeleton(Mixamo()));
    // An undoable step, saved so that opening does not ask about it.
    ASSERT_TRUE(Model().AssignBone(kLeftHand, "mixamorig:LeftArm"));
    ASSERT_TRUE(window->SaveProject(QDir(work.path()).filePath("current.zelproj")));
    const Snapshot before = Take();
    const QString projectBefore = Session().GetProjectPath();
    const int stepsBefore = Session().GetUndoStack().count();

    QByteArray wrongSkeleton = bytes;
    wrongSkeleton.replace("sample_humanoid.bvh", "missing.bvh");
    QByteArray wrongBones = bytes;
    wrongBones.replace("bone=\"Hips\"", "bone=\"\"");
    const QList<QByteArray> damaged = {bytes.left(bytes.size() / 2), QByteArray("\x00\x01garbage", 9), wrongSkeleton,
                                       wrongBones, QByteArray(bytes).replace("value=\"true\"", "value=\"yes\"")};
    for (int index = 0; index < damaged.size(); ++index)
    {
        SCOPED_TRACE(index);
        const QString path = QDir(work.path()).filePath(QStringLiteral("bad%1.zelproj").arg(index));
        QFile bad(path);
        ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
        bad.write(damaged[index]);
        bad.close();
        ModalAnswerer answerer(QMessageBox::Ok);
        EXPECT_FALSE(window->OpenProject(path));
        EXPECT_EQ(answerer.Count(), 1) << answerer.texts.join('|').toStdString();
        EXPECT_EQ(answerer.titles.value(0), "Open Project");
        EXPECT_TRUE(answerer.texts.value(0).contains(QFileInfo(path).fileName()));
        EXPECT_TRUE(Take() == before);
        EXPECT_EQ(Session().GetProjectPath(), projectBefore);
        EXPECT_EQ(Session().GetUndoStack().count(), stepsBefore);
    }
    EXPECT_EQ(window->GetBoneTree()->VisibleBones().size(), 65);
}

TEST_F(StudioWindowTest, RenamedBoneStaysMappedInThePanelAndInTheProject)
{
    ASSERT_TRUE(window->OpenSkeleton(Sample()));
    // "LeftArm" is both a node and a bone name: only the bone's cells change.
    const int shownBefore = PanelCount(*window->GetTool(), "LeftArm");
    // The hub drops what a bone name cannot hold.
    ASSERT_TRUE(window->RenameBone("LeftArm", "arm L"));
    EXPECT_EQ(Current().GetBone(kLeftArm), "armL");
    const int renamedCells = PanelCount(*window->GetTool(), "armL");
    EXPECT_GE(renamedCells, 1);
    EXPECT_EQ(PanelCount(*window->GetTool(), "LeftArm"), shownBefore - renamedCells);
    EXPECT_NE(window->GetBoneTree()->FindItem("armL"), nullptr);
    EXPECT_EQ(window->GetBoneTree()->FindItem("LeftArm"), nullptr);
    EXPECT_EQ(GetScene().Find("armL")->attachCount, 1);
    EXPECT_EQ(Model().GetValidationState(), Valid);
    EXPECT_TRUE(Session().IsModified());

    {
        ModalAnswerer answerer(QMessageBox::Ok);
        EXPECT_FALSE(window->RenameBone("armL", "Left Leg|"));
        EXPECT_EQ(answerer.Count(), 1);
        EXPECT_EQ(answerer.titles.value(0), "Rename Bone");
        // The bone keeps its lower-case first letter in the message.
        EXPECT_TRUE(answerer.texts.value(0).contains("bone armL cannot")) << answerer.texts.value(0).toStdString();
    }
    EXPECT_LT(GetScene().IndexOf("LeftLeg|"), 0);
    EXPECT_EQ(Current().GetBone(kLeftArm), "armL");

    // The file on disk keeps its names: the project replays the edit.
    QTemporaryDir work;
    const QString project = QDir(work.path()).filePath("renamed.zelproj");
    ASSERT_TRUE(window->SaveProject(project));
    ASSERT_TRUE(window->OpenSkeleton(Mixamo()));
    ASSERT_TRUE(window->OpenProject(project));
    EXPECT_GE(GetScene().IndexOf("armL"), 0);
    EXPECT_LT(GetScene().IndexOf("LeftArm"), 0);
    EXPECT_EQ(Current().GetBone(kLeftArm), "armL");
    EXPECT_EQ(Model().GetValidationState(), Valid);
    EXPECT_FALSE(Session().IsModified());
}

TEST_F(StudioWindowTest, PickedJointIsSelectedInTreeHubAndPanel)
{
    ASSERT_TRUE(window->OpenSkeleton(Mixamo()));
    SkeletonViewport* viewport = window->GetViewport();
    BoneTreeWidget* tree = window->GetBoneTree();
    QPointF hand;
    QPointF hips;
    ASSERT_TRUE(viewport->ProjectBone(GetScene().IndexOf("mixamorig:LeftHand"), hand));
    ASSERT_TRUE(viewport->ProjectBone(GetScene().IndexOf("mixamorig:Hips"), hips));
    // Seen from the front, the character's left is on the viewer's right.
    EXPECT_GT(hand.x(), hips.x());
    EXPECT_LT(hand.y(), hips.y());

    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, (hand + QPointF(3, -2)).toPoint());
    EXPECT_EQ(GetScene().Selection(), QStringList {"mixamorig:LeftHand"});
    EXPECT_TRUE(tree->FindItem("mixamorig:LeftHand")->isSelected());
    EXPECT_EQ(tree->GetTree()->selectedItems().size(), 1);
    EXPECT_EQ(Model().GetEditedPart(), kLeftHand);

    QTest::mouseClick(viewport, Qt::LeftButton, Qt::ControlModifier, hips.toPoint());
    EXPECT_EQ(GetScene().Selection(), QStringList({"mixamorig:LeftHand", "mixamorig:Hips"}));
    EXPECT_EQ(tree->GetTree()->selectedItems().size(), 2);
    // Beyond the pick radius of every joint: the selection is cleared.
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, QPoint(5, viewport->height() / 2));
    EXPECT_TRUE(GetScene().Selection().isEmpty());
    EXPECT_TRUE(tree->GetTree()->selectedItems().isEmpty());

    // The tree's selection goes to the hub, and the viewport rings it.
    tree->FindItem("mixamorig:RightFoot")->setSelected(true);
    EXPECT_EQ(GetScene().Selection(), QStringList {"mixamorig:RightFoot"});

    // A drag orbits the perspective view: the joints move on screen, and a click still picks where they are now.
    viewport->SetViewMode(SkeletonViewport::PerspectiveView);
    QPointF before;
    ASSERT_TRUE(viewport->ProjectBone(GetScene().IndexOf("mixamorig:LeftHand"), before));
    const QPoint start(viewport->width() / 2, viewport->height() / 2);
    QTest::mousePress(viewport, Qt::LeftButton, Qt::NoModifier, start);
    const QPoint end = start + QPoint(180, 0);
    QMouseEvent move(QEvent::MouseMove, QPointF(end), viewport->mapToGlobal(QPointF(end)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
    QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, end);
    EXPECT_EQ(GetScene().Selection(), QStringList {"mixamorig:RightFoot"});
    QPointF after;
    ASSERT_TRUE(viewport->ProjectBone(GetScene().IndexOf("mixamorig:LeftHand"), after));
    EXPECT_GT(QLineF(before, after).length(), 30.0);
    EXPECT_EQ(viewport->BoneAt(after), GetScene().IndexOf("mixamorig:LeftHand"));
}

TEST_F(StudioWindowTest, FilterKeepsMatchesAndTheirAncestors)
{
    ASSERT_TRUE(window->OpenSkeleton(Sample()));
    window->GetBoneTree()->GetFilter()->setText("thumb3");
    EXPECT_EQ(window->GetBoneTree()->VisibleBones(),
              QStringList({"Hips", "Spine", "Spine1", "Spine2", "LeftShoulder", "LeftArm", "LeftForeArm", "LeftHand",
                           "LeftHandThumb1", "LeftHandThumb2", "LeftHandThumb3", "RightShoulder", "RightArm",
                           "RightForeArm", "RightHand", "RightHandThumb1", "RightHandThumb2", "RightHandThumb3"}));
    // The filter outlives a change of skeleton structure.
    ASSERT_TRUE(window->DeleteBones({"RightHandThumb3"}));
    EXPECT_EQ(window->GetBoneTree()->VisibleBones().size(), 11);
    window->GetBoneTree()->GetFilter()->clear();
    EXPECT_EQ(window->GetBoneTree()->VisibleBones().size(), GetScene().BoneCount());
}

// Counts how often the view measures a cell.
class MeasuringDelegate : public QStyledItemDelegate
{
public:
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        ++measured;
        return QStyledItemDelegate::sizeHint(option, index);
    }

    mutable int measured = 0;
};

TEST_F(StudioWindowTest, BoneTreeMeasuresItsNodeColumnOncePerChange)
{
    ASSERT_TRUE(window->OpenSkeleton(Mixamo()));
    QTreeWidget* tree = window->GetBoneTree()->GetTree();
    MeasuringDelegate delegate;
    tree->setItemDelegateForColumn(BoneTreeWidget::NodeColumn, &delegate);
    Model().ClearAll();
    QApplication::processEvents();
    delegate.measured = 0;
    // Every row gets a node; measuring the column again for each row would take the square of the rows.
    Model().AutoMatch();
    QApplication::processEvents();
    EXPECT_GT(delegate.measured, 0);
    EXPECT_LE(delegate.measured, 4 * GetScene().BoneCount());
    tree->setItemDelegateForColumn(BoneTreeWidget::NodeColumn, nullptr);
}

TEST_F(StudioWindowTest, DroppedFileOpens)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(Sample())});
    QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &drop);
    // It opens once the drop has returned.
    EXPECT_EQ(GetScene().BoneCount(), 0);
    for (int attempt = 0; attempt < 100 && GetScene().BoneCount() == 0; ++attempt)
        QTest::qWait(10);
    EXPECT_EQ(GetScene().BoneCount(), 53);
    EXPECT_EQ(GetScene().SourcePath(), Sample());
}

TEST_F(StudioWindowTest, CancelledOpenChangesNothing)
{
    ASSERT_TRUE(window->OpenSkeleton(Sample()));
    int reports = 0;
    QString error = "unset";
    EXPECT_FALSE(Session().OpenSkeleton(Mixamo(), [&reports](int) { return ++reports < 2; }, error));
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(reports, 2);
    EXPECT_EQ(GetScene().SourcePath(), Sample());
    EXPECT_EQ(Current().GetBone(kHips), "Hips");
    EXPECT_EQ(GetScene().Find("Hips")->attachCount, 1);
}

TEST_F(StudioWindowTest, JointsAndRowsShowTheirNodesFindings)
{
    ASSERT_TRUE(window->OpenSkeleton(Mixamo()));
    const int hand = GetScene().IndexOf("mixamorig:LeftHand");
    EXPECT_EQ(window->GetViewport()->JointState(GetScene().IndexOf("mixamorig:HeadTop_End")),
              SkeletonViewport::Unmapped);
    // A stretched hand: the host warns about its scale.
    GetScene().Bone(hand).global.scale(1.0f, 1.5f, 1.0f);
    Model().Validate();
    EXPECT_EQ(Model().GetNodeState(kLeftHand), Warning);
    EXPECT_EQ(window->GetViewport()->JointState(hand), Warning);
    const QTreeWidgetItem* row = window->GetBoneTree()->FindItem("mixamorig:LeftHand");
    EXPECT_TRUE(row->toolTip(BoneTreeWidget::NodeColumn).contains("non-uniform scale"));
    EXPECT_EQ(window->GetViewport()->JointState(GetScene().IndexOf("mixamorig:Hips")), Valid);
}

TEST_F(StudioWindowTest, CharacterizationFileOpensIntoTheCurrentOne)
{
    ASSERT_TRUE(window->OpenSkeleton(Sample()));
    QTemporaryDir work;
    const QString saved = QDir(work.path()).filePath("hero.zelc");
    ASSERT_TRUE(window->GetTool()->SaveFile(saved, CharacterTool::BinaryBigEndian, false));
    const QStringList mapped = Current().GetBoneNames();
    Model().ClearAll();
    ASSERT_EQ(Current().AssignedCount(), 0);
    ASSERT_TRUE(window->OpenFile(saved));
    EXPECT_EQ(Current().GetBoneNames(), mapped);
    EXPECT_EQ(GetScene().Find("LeftHand")->attachCount, 1);
    // Loading is one more step to undo.
    window->OnUndo();
    EXPECT_EQ(Current().AssignedCount(), 0);
}

TEST_F(StudioWindowTest, UnsavedWorkIsAskedAboutBeforeClosing)
{
    ASSERT_TRUE(window->OpenSkeleton(Sample()));
    EXPECT_TRUE(window->close());
    window->show();
    ASSERT_TRUE(Model().ClearNode(kLeftArm));
    EXPECT_TRUE(window->isWindowModified());
    {
        ModalAnswerer answerer(QMessageBox::Cancel);
        EXPECT_FALSE(window->close());
        EXPECT_EQ(answerer.titles, QStringList {"Unsaved Changes"});
    }
    EXPECT_TRUE(window->isVisible());
    {
        // Asked again before another skeleton replaces the work.
        ModalAnswerer answerer(QMessageBox::Cancel);
        EXPECT_FALSE(window->OpenSkeleton(Mixamo()));
        EXPECT_EQ(answerer.Count(), 1);
    }
    EXPECT_EQ(GetScene().SourcePath(), Sample());
    ModalAnswerer answerer(QMessageBox::Discard);
    EXPECT_TRUE(window->close());
    EXPECT_EQ(answerer.Count(), 1);
}

} // namespace
