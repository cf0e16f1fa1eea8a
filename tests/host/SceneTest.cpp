#include <gtest/gtest.h>

#include "Scene.h"

namespace {

void ExpectNear(const QVector3D& actual, const QVector3D& expected)
{
    EXPECT_NEAR(actual.x(), expected.x(), 1e-4);
    EXPECT_NEAR(actual.y(), expected.y(), 1e-4);
    EXPECT_NEAR(actual.z(), expected.z(), 1e-4);
}

QVector3D Origin(const QMatrix4x4& m)
{
    return m.column(3).toVector3D();
}

// root -> arm (a quarter turn about Z) -> hand -> finger; root -> leg
class SceneTest : public testing::Test
{
protected:
    void SetUp() override
    {
        QMatrix4x4 arm;
        arm.translate(0, 10, 0);
        arm.rotate(90, 0, 0, 1);
        Add("root", -1, Moved(0, 100, 0));
        Add("arm", 0, arm);
        Add("hand", 1, Moved(5, 0, 0));
        Add("finger", 2, Moved(2, 0, 0));
        Add("leg", 0, Moved(0, -50, 0));
    }

    static QMatrix4x4 Moved(float x, float y, float z)
    {
        QMatrix4x4 m;
        m.translate(x, y, z);
        return m;
    }

    int Add(const QString& name, int parent, const QMatrix4x4& local)
    {
        SceneBone bone;
        bone.name = name;
        bone.parent = parent;
        bone.local = local;
        return scene.AddBone(bone);
    }

    void ExpectParentFirst() const
    {
        for (int i = 0; i < scene.BoneCount(); ++i)
        {
            EXPECT_LT(scene.Bone(i).parent, i);
            EXPECT_EQ(scene.IndexOf(scene.Bone(i).name), i);
        }
    }

    Scene scene;
};

TEST_F(SceneTest, DeletingReparentsChildrenKeepingTheirPlaceInTheWorld)
{
    EXPECT_EQ(Add("arm", 0, QMatrix4x4()), -1);
    EXPECT_EQ(Add("later", 7, QMatrix4x4()), -1);
    ExpectNear(Origin(scene.Bone(3).global), QVector3D(0, 117, 0));
    scene.SetSelection({"hand", "leg"});

    ASSERT_TRUE(scene.DeleteBone("arm"));
    EXPECT_FALSE(scene.DeleteBone("arm"));
    EXPECT_EQ(scene.BoneNames(), QStringList({"root", "hand", "finger", "leg"}));
    ExpectParentFirst();
    const SceneBone* hand = scene.Find("hand");
    EXPECT_EQ(hand->parent, 0);
    EXPECT_EQ(scene.Find("finger")->parent, 1);
    ExpectNear(Origin(hand->global), QVector3D(0, 115, 0));
    ExpectNear(Origin(scene.Bone(0).global * hand->local), QVector3D(0, 115, 0));

    ASSERT_TRUE(scene.DeleteBone("root"));
    ExpectParentFirst();
    EXPECT_EQ(scene.Children(0), std::vector<int>({1}));
    // A new root's local transform is its place in the world.
    ExpectNear(Origin(scene.Find("hand")->local), QVector3D(0, 115, 0));
    scene.DeleteBone("leg");
    EXPECT_EQ(scene.Selection(), QStringList({"hand"}));
}

TEST_F(SceneTest, NewLocalTransformsMoveWhatHangsBelowAndNothingElse)
{
    EXPECT_EQ(scene.Subtrees({1, 42}), std::vector<int>({1, 2, 3}));
    const std::vector<Scene::SavedTransforms> saved = scene.SaveTransforms(scene.Subtrees({1}));
    const QMatrix4x4 leg = scene.Bone(4).global;
    const QMatrix4x4 hand = scene.Bone(2).local;

    // The arm straightened: the hand and the finger follow it out along X.
    scene.SetLocalTransforms({{1, Moved(0, 10, 0)}, {-1, QMatrix4x4()}, {42, QMatrix4x4()}});
    ExpectNear(Origin(scene.Bone(3).global), QVector3D(7, 110, 0));
    EXPECT_EQ(scene.Bone(2).local, hand);
    EXPECT_EQ(scene.Bone(4).global, leg);

    scene.RestoreTransforms(saved);
    for (const Scene::SavedTransforms& bone : saved)
    {
        EXPECT_EQ(scene.Bone(bone.index).local, bone.local);
        EXPECT_EQ(scene.Bone(bone.index).global, bone.global);
    }
    ExpectNear(Origin(scene.Bone(3).global), QVector3D(0, 117, 0));
}

TEST(SceneBoneTest, DecomposesRotationAndMirroringScale)
{
    SceneBone bone;
    bone.global.translate(1, 2, 3);
    bone.global.rotate(30, 0, 1, 0);
    bone.global.scale(-2, 2, 2);
    QVector3D translation;
    QQuaternion rotation;
    QVector3D scale;
    bone.DecomposeGlobal(translation, rotation, scale);
    ExpectNear(translation, QVector3D(1, 2, 3));
    ExpectNear(scale, QVector3D(-2, 2, 2));
    EXPECT_NEAR(std::abs(QQuaternion::dotProduct(rotation, QQuaternion::fromAxisAndAngle(0, 1, 0, 30))), 1.0, 1e-6);
    EXPECT_FALSE(bone.HasNonUniformScale(1e-4f));
}

TEST(SceneBoneTest, DecomposesRotationsNearAHalfTurnAboutEachAxis)
{
    // Where the matrix's trace is near -1 the quaternion comes from its largest diagonal term instead.
    const QVector3D axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}};
    for (const QVector3D& axis : axes)
    {
        SceneBone bone;
        bone.global.rotate(179.5f, axis);
        QVector3D translation;
        QQuaternion rotation;
        QVector3D scale;
        bone.DecomposeGlobal(translation, rotation, scale);
        const QQuaternion expected = QQuaternion::fromAxisAndAngle(axis, 179.5f);
        EXPECT_NEAR(std::abs(QQuaternion::dotProduct(rotation, expected)), 1.0, 1e-5) << axis.x() << axis.y();
    }
}

TEST(SceneBoneTest, InvertsItsGlobalTransform)
{
    SceneBone bone;
    bone.global.translate(4, -2, 7);
    bone.global.rotate(40, 1, 2, 3);
    bone.global.scale(2, 0.5f, 3);
    const QMatrix4x4 product = bone.InverseGlobal() * bone.global;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(product(row, column), row == column ? 1.0f : 0.0f, 1e-5f) << row << column;

    // A bone squashed flat has no inverse; its children then keep their global transforms as local ones.
    bone.global.scale(1, 0, 1);
    EXPECT_TRUE(bone.InverseGlobal().isIdentity());
}

} // namespace
