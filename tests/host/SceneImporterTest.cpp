#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QtEndian>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "Scene.h"
#include "SceneImporter.h"

namespace {

const QString kCorpus = QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/");
const QString kSample = QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid.bvh");

QVector3D Position(const Scene& scene, const QString& bone)
{
    const SceneBone* found = scene.Find(bone);
    return found == nullptr ? QVector3D(NAN, NAN, NAN) : found->global.column(3).toVector3D();
}

void ExpectAt(const Scene& scene, const QString& bone, const QVector3D& expected, float tolerance)
{
    const QVector3D actual = Position(scene, bone);
    EXPECT_NEAR(actual.x(), expected.x(), tolerance) << bone.toStdString();
    EXPECT_NEAR(actual.y(), expected.y(), tolerance) << bone.toStdString();
    EXPECT_NEAR(actual.z(), expected.z(), tolerance) << bone.toStdString();
}

void ExpectParentFirst(const Scene& scene)
{
    for (int i = 0; i < scene.BoneCount(); ++i)
        EXPECT_LT(scene.Bone(i).parent, i);
}

Scene Import(const QString& path)
{
    Scene scene;
    SceneImporter importer;
    EXPECT_TRUE(importer.Import(path, scene)) << importer.ErrorText().toStdString();
    return scene;
}

QString WriteFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return path;
}

TEST(SceneImporterTest, GltfXBotGivesItsSixtyFiveRigBones)
{
    const Scene scene = Import(kCorpus + "mixamo_xbot.glb");
    ASSERT_EQ(scene.BoneCount(), 65);
    for (const QString& name : scene.BoneNames())
        EXPECT_TRUE(name.startsWith("mixamorig:")) << name.toStdString();
    EXPECT_EQ(scene.Bone(0).name, "mixamorig:Hips");
    EXPECT_EQ(scene.Bone(0).parent, -1);
    ExpectParentFirst(scene);
    EXPECT_EQ(scene.Bone(scene.Find("mixamorig:LeftHandIndex2")->parent).name, "mixamorig:LeftHandIndex1");
    ExpectAt(scene, "mixamorig:LeftArm", {0.152f, 1.441f, -0.055f}, 2e-3f);
    ExpectAt(scene, "mixamorig:LeftHand", {0.713f, 1.441f, -0.055f}, 2e-3f);
    ExpectAt(scene, "mixamorig:LeftUpLeg", {0.082f, 0.975f, 0.0f}, 2e-3f);
    ExpectAt(scene, "mixamorig:RightUpLeg", {-0.082f, 0.975f, 0.0f}, 2e-3f);
    // Every joint of the skin deforms the mesh; none ends in a marker that is not a joint itself.
    for (int i = 0; i < scene.BoneCount(); ++i)
    {
        EXPECT_TRUE(scene.Bone(i).skinsMesh) << scene.Bone(i).name.toStdString();
        EXPECT_FALSE(scene.Bone(i).hasTip) << scene.Bone(i).name.toStdString();
    }
}

TEST(SceneImporterTest, BvhFilesGiveTheirJointsWithoutEndSites)
{
    const Scene pirouette = Import(kCorpus + "poser_pirouette.bvh");
    const QStringList expected = {"hip",     "abdomen", "chest",    "neck",     "rcollar", "rshldr", "rforearm",
                                  "rhand",   "lcollar", "lshldr",   "lforearm", "lhand",   "rbuttock", "rthigh",
                                  "rshin",   "rfoot",   "lbuttock", "lthigh",   "lshin",   "lfoot"};
    EXPECT_EQ(pirouette.BoneNames().join(" "), expected.join(" "));
    ExpectParentFirst(pirouette);
    const QVector3D arm = Position(pirouette, "lhand") - Position(pirouette, "lshldr");
    EXPECT_NEAR(std::acos(arm.normalized().x()) * 57.29578, 8.6, 0.2);
    // "Zrotation Yrotation Xrotation": X is applied first.
    EXPECT_EQ(pirouette.Find("lshldr")->rotationOrder, ZELEulerXYZ);
    // End sites are no bones, but their bones keep where they end, in their own frame.
    const SceneBone& foot = *pirouette.Find("lfoot");
    ASSERT_TRUE(foot.hasTip);
    EXPECT_NEAR(foot.tip.x(), 1.1221f, 1e-4f);
    EXPECT_NEAR(foot.tip.z(), 12.103f, 1e-4f);
    EXPECT_FALSE(pirouette.Find("lshin")->hasTip);
    EXPECT_FALSE(foot.skinsMesh);

    const Scene sample = Import(kSample);
    EXPECT_EQ(sample.BoneCount(), 53); // ROOT Hips and 52 JOINTs
    ExpectParentFirst(sample);
    ExpectAt(sample, "Hips", {0, 95, 0}, 1e-4f);
    ExpectAt(sample, "LeftHand", {3 + 14 + 27 + 25, 95 + 8 + 10 + 10 + 11, 0}, 1e-4f);
    EXPECT_EQ(sample.Find("LeftHand")->rotationOrder, ZELEulerYXZ);
    EXPECT_EQ(sample.IndexOf("EndSite_Head"), -1);
}

// Assimp's generated root, a pivot helper, a camera and two nodes of one name.
const char kHelperGltf[] = R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0,4]}],
 "cameras":[{"type":"perspective","perspective":{"yfov":1.0,"znear":0.1}}],
 "nodes":[
  {"name":"Hips_$AssimpFbx$_PreRotation","rotation":[0,0,0.7071068,0.7071068],"children":[1]},
  {"name":"Hips","translation":[0,1,0],"children":[2,3]},
  {"name":"Bone","translation":[1,0,0],"scale":[1,2,1]},
  {"name":"Bone","translation":[-1,0,0]},
  {"name":"Cam","camera":0}]})";

TEST(SceneImporterTest, HelpersFoldIntoTheBonesBelowThem)
{
    QTemporaryDir dir;
    const Scene scene = Import(WriteFile(dir, "helpers.gltf", kHelperGltf));
    ASSERT_EQ(scene.BoneNames(), QStringList({"Hips", "Bone", "Bone_2"}));
    const SceneBone& hips = scene.Bone(0);
    EXPECT_NEAR(hips.preRotation.z(), 0.7071068f, 1e-6f);
    EXPECT_NEAR(hips.preRotation.scalar(), 0.7071068f, 1e-6f);
    ExpectAt(scene, "Hips", {-1, 0, 0}, 1e-5f);
    ExpectAt(scene, "Bone", {-1, 1, 0}, 1e-5f);
    ExpectAt(scene, "Bone_2", {-1, -1, 0}, 1e-5f);
    // Folded into the root bone's local transform, not into its children's.
    ExpectAt(scene, "Bone", (hips.global * scene.Bone(1).local).column(3).toVector3D(), 1e-5f);
    EXPECT_TRUE(scene.Bone(1).HasNonUniformScale(1e-4f));
}

class ImportFailureTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(importer.Import(kSample, scene)); }

    void ExpectRefused(const QString& path, const QString& reason)
    {
        EXPECT_FALSE(importer.Import(path, scene));
        EXPECT_TRUE(importer.ErrorText().startsWith("cannot read " + path + ": ")) << importer.ErrorText().toStdString();
        if (!reason.isEmpty())
        {
            EXPECT_EQ(importer.ErrorText().toStdString(), ("cannot read " + path + ": " + reason).toStdString());
        }
        EXPECT_EQ(scene.BoneCount(), 53);
        EXPECT_EQ(scene.SourcePath(), kSample);
    }

    QTemporaryDir dir;
    SceneImporter importer;
    Scene scene;
};

TEST_F(ImportFailureTest, UnreadableFilesLeaveTheSceneAlone)
{
    ExpectRefused(dir.filePath("missing.fbx"), "no such file");
    ExpectRefused(WriteFile(dir, "noise.fbx", QByteArray(4096, '\x7f')), QString());
    // Cut glTF rather than BVH: Assimp 5.2 leaks the nodes of a BVH cut inside its hierarchy.
    QFile xbot(kCorpus + "mixamo_xbot.glb");
    xbot.open(QIODevice::ReadOnly);
    ExpectRefused(WriteFile(dir, "cut.glb", xbot.read(xbot.size() / 3)), QString());
    const char cameraOnly[] = R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
        "cameras":[{"type":"perspective","perspective":{"yfov":1.0,"znear":0.1}}],"nodes":[{"name":"Cam","camera":0}]})";
    ExpectRefused(WriteFile(dir, "camera.gltf", cameraOnly), "the file holds no skeleton");
    EXPECT_FALSE(importer.WasCancelled());

    // Assimp's own reason reaches the user: three points, one patched by a sparse index (1000) past them.
    QByteArray data(36, '\0');
    data += QByteArray("\xe8\x03\x00\x00", 4) + QByteArray(12, '\0');
    const QString sparse = QStringLiteral(R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
        "nodes":[{"name":"Hips","mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
        "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[0,0,0],
            "sparse":{"count":1,"indices":{"bufferView":1,"componentType":5125},"values":{"bufferView":2}}}],
        "bufferViews":[{"buffer":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":4},
            {"buffer":0,"byteOffset":40,"byteLength":12}],
        "buffers":[{"byteLength":52,"uri":"data:application/octet-stream;base64,%1"}]})")
                               .arg(QString::fromLatin1(data.toBase64()));
    ExpectRefused(WriteFile(dir, "sparse.gltf", sparse.toUtf8()), QString());
    EXPECT_FALSE(importer.ErrorText().endsWith("unknown format or damaged file")) << importer.ErrorText().toStdString();
}

// Avatar exporters write binary glTF files whose last buffer view runs past the length their buffer declares, with
// the bytes there in the file: Assimp reads them, and so must we.
TEST_F(ImportFailureTest, ABufferViewPastItsDeclaredBufferStillReads)
{
    QFile file(kCorpus + "mixamo_xbot.glb");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray xbot = file.readAll();
    const quint32 jsonLength = qFromLittleEndian<quint32>(xbot.constData() + 12);
    QJsonDocument json = QJsonDocument::fromJson(xbot.mid(20, jsonLength));
    QJsonObject root = json.object();
    QJsonArray buffers = root.value("buffers").toArray();
    QJsonObject buffer = buffers[0].toObject();
    const int declared = buffer.value("byteLength").toInt();
    int end = 0;
    for (const QJsonValue& view : root.value("bufferViews").toArray())
        end = std::max(end, view.toObject().value("byteOffset").toInt() + view.toObject().value("byteLength").toInt());
    ASSERT_EQ(end, declared);
    buffer["byteLength"] = declared - 64;
    buffers[0] = buffer;
    root["buffers"] = buffers;
    QByteArray text = QJsonDocument(root).toJson(QJsonDocument::Compact);
    text.append(QByteArray((4 - text.size() % 4) % 4, ' '));
    const QByteArray binary = xbot.mid(20 + jsonLength);
    QByteArray glb = xbot.left(12);
    const auto put = [&glb](quint32 value) { glb.append(reinterpret_cast<const char*>(&value), 4); };
    put(quint32(text.size()));
    glb.append("JSON").append(text).append(binary);
    qToLittleEndian<quint32>(quint32(glb.size()), glb.data() + 8);

    Scene avatar;
    ASSERT_TRUE(importer.Import(WriteFile(dir, "avatar.glb", glb), avatar)) << importer.ErrorText().toStdString();
    EXPECT_EQ(avatar.BoneCount(), 65);
}

TEST_F(ImportFailureTest, ProgressClimbsToAHundredAndCancellingStopsTheImport)
{
    QList<int> seen;
    importer.SetProgressCallback([&seen](int percent) {
        seen.append(percent);
        return true;
    });
    Scene xbot;
    ASSERT_TRUE(importer.Import(kCorpus + "mixamo_xbot.glb", xbot));
    EXPECT_EQ(seen.front(), 0);
    EXPECT_EQ(seen.back(), 100);
    // The reading moves in steps; while the reader says nothing, its last step is repeated.
    EXPECT_GE(QSet<int>(seen.begin(), seen.end()).size(), 5);
    for (int i = 1; i < seen.size(); ++i)
        EXPECT_GE(seen[i], seen[i - 1]);

    seen.clear();
    importer.SetProgressCallback([&seen](int percent) {
        seen.append(percent);
        return percent == 0;
    });
    ExpectRefused(kCorpus + "mixamo_xbot.glb", "import cancelled");
    EXPECT_TRUE(importer.WasCancelled());
    EXPECT_GT(seen.back(), 0);
    EXPECT_EQ(seen.count(seen.back()), 1); // asked no more once cancelled
    EXPECT_LT(seen.back(), 80);
}

} // namespace
