// The answer decoder takes bytes from a process that read a hostile file: whatever arrives, in whatever pieces,
// gives a scene that keeps the scene's promises or nothing.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <QByteArray>

#include <gtest/gtest.h>

#include "ReaderAnswer.h"
#include "ReaderWire.h"
#include "Scene.h"

namespace
{
struct WireBone
{
    std::string name;
    int32_t parent = -1;
    float x = 0.0f; // translation from the parent
    uint32_t order = 0;
    uint8_t flags = 0;
};

std::string Skeleton(const std::vector<WireBone>& bones, uint32_t count)
{
    std::string out;
    readerwire::PutUint32(out, count);
    for (const WireBone& bone : bones)
    {
        readerwire::PutUint32(out, uint32_t(bone.name.size()));
        out += bone.name;
        readerwire::PutUint32(out, uint32_t(bone.parent));
        const float local[16] = {1, 0, 0, bone.x, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        for (float value : local)
            readerwire::PutFloat(out, value);
        for (float value : {1.0f, 0.0f, 0.0f, 0.0f})
            readerwire::PutFloat(out, value);
        readerwire::PutUint32(out, bone.order);
        out.push_back(char(bone.flags));
        for (float value : {bone.x, 0.0f, 0.0f})
            readerwire::PutFloat(out, value);
    }
    return out;
}

QByteArray Answer(const std::string& skeleton)
{
    std::string bytes(readerwire::kMagic, sizeof readerwire::kMagic);
    bytes += readerwire::FrameOf(readerwire::Progress, std::string(1, char(40)));
    bytes += readerwire::FrameOf(readerwire::Skeleton, skeleton);
    return QByteArray::fromStdString(bytes);
}

const std::vector<WireBone> kArm = {{"Shoulder", -1, 0.0f, 6, 0},
                                    {"Elbow", 0, 25.0f, 0, readerwire::SkinsMesh},
                                    {"Hand", 1, 27.0f, 0, readerwire::SkinsMesh | readerwire::HasTip}};

bool Builds(const std::vector<WireBone>& bones, uint32_t count, Scene& scene)
{
    ReaderAnswer answer;
    answer.Feed(Answer(Skeleton(bones, count)));
    return !answer.IsGarbage() && answer.HasSkeleton() && answer.BuildScene(scene);
}

TEST(ReaderAnswerTest, AnAnswerInAnyPiecesGivesTheSameScene)
{
    const QByteArray bytes = Answer(Skeleton(kArm, 3));
    for (const int piece : {1, 3, 7, int(bytes.size())})
    {
        ReaderAnswer answer;
        QList<int> progress;
        for (int at = 0; at < bytes.size(); at += piece)
        {
            answer.Feed(bytes.mid(at, piece));
            progress += answer.TakeProgress();
        }
        EXPECT_EQ(progress, QList<int>({40})) << piece;
        Scene scene;
        ASSERT_TRUE(answer.BuildScene(scene)) << piece;
        ASSERT_EQ(scene.BoneNames(), QStringList({"Shoulder", "Elbow", "Hand"}));
        EXPECT_EQ(scene.Bone(0).rotationOrder, ZELEulerYXZ);
        EXPECT_FLOAT_EQ(scene.Bone(2).global.column(3).x(), 52.0f);
        EXPECT_TRUE(scene.Bone(2).skinsMesh && scene.Bone(2).hasTip);
        EXPECT_FLOAT_EQ(scene.Bone(2).tip.x(), 27.0f);
        EXPECT_FALSE(scene.Bone(0).skinsMesh || scene.Bone(0).hasTip);
    }
}

TEST(ReaderAnswerTest, BonesThatMakeNoSkeletonGiveNoScene)
{
    const auto with = [](auto change) {
        std::vector<WireBone> bones = kArm;
        change(bones);
        return bones;
    };
    Scene scene;
    EXPECT_FALSE(Builds(with([](auto& b) { b[2].parent = 2; }), 3, scene)); // its own parent
    EXPECT_FALSE(Builds(with([](auto& b) { b[1].parent = 5; }), 3, scene)); // a parent that comes later
    EXPECT_FALSE(Builds(with([](auto& b) { b[1].parent = -7; }), 3, scene));
    EXPECT_FALSE(Builds(with([](auto& b) { b[2].name = "Elbow"; }), 3, scene));
    EXPECT_FALSE(Builds(with([](auto& b) { b[0].name.clear(); }), 3, scene));
    EXPECT_FALSE(Builds(with([](auto& b) { b[1].order = ZELSphericXYZ + 1; }), 3, scene));
    EXPECT_FALSE(Builds(with([](auto& b) { b[1].flags = 4; }), 3, scene));
    EXPECT_FALSE(Builds(with([](auto& b) { b[1].x = std::numeric_limits<float>::quiet_NaN(); }), 3, scene));
    EXPECT_FALSE(Builds(with([](auto& b) { b[1].x = INFINITY; }), 3, scene));
    // Counts that promise more or fewer bones than are there, and a count no bytes could hold.
    EXPECT_FALSE(Builds(kArm, 4, scene));
    EXPECT_FALSE(Builds(kArm, 2, scene));
    EXPECT_FALSE(Builds(kArm, 0xffffffffu, scene));
    EXPECT_FALSE(Builds({}, 0, scene));
    EXPECT_TRUE(scene.IsEmpty());
    EXPECT_TRUE(Builds(with([](auto& b) { b[1].order = ZELSphericXYZ; }), 3, scene));
}

TEST(ReaderAnswerTest, AnythingButTheReadersFramesIsGarbage)
{
    const auto garbage = [](const std::string& bytes) {
        ReaderAnswer answer;
        answer.Feed(QByteArray::fromStdString(bytes));
        return answer.IsGarbage();
    };
    const std::string magic(readerwire::kMagic, sizeof readerwire::kMagic);
    const std::string skeleton = readerwire::FrameOf(readerwire::Skeleton, Skeleton(kArm, 3));
    EXPECT_TRUE(garbage("ZSK2"));
    EXPECT_TRUE(garbage(magic + readerwire::FrameOf(readerwire::Progress, std::string(1, char(101)))));
    EXPECT_TRUE(garbage(magic + readerwire::FrameOf(readerwire::Progress, "12")));
    EXPECT_TRUE(garbage(magic + readerwire::FrameOf(readerwire::Frame('Q'), "")));
    EXPECT_TRUE(garbage(magic + skeleton + skeleton)); // nothing follows the answer
    EXPECT_TRUE(garbage(magic + readerwire::FrameOf(readerwire::Failure, "no") + skeleton));
    EXPECT_TRUE(garbage(magic + readerwire::FrameOf(readerwire::Failure, std::string(100000, 'x'))));
    // A frame still on its way is not garbage, and not an answer either.
    ReaderAnswer waiting;
    waiting.Feed(QByteArray::fromStdString(magic + skeleton.substr(0, skeleton.size() - 1)));
    EXPECT_FALSE(waiting.IsGarbage() || waiting.HasSkeleton() || waiting.HasFailure());
}
} // namespace
