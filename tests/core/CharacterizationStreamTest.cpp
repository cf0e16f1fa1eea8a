// The public stream class: what a characterization keeps through a stream and what a refused stream leaves alone.
#include <QByteArray>
#include <QStringList>

#include <gtest/gtest.h>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationStream.h>

namespace
{
// A hips bone with plain geometry, a knee with full geometry (flag word 7, a limit, a pre-rotation), the left
// elbow inverted.
Characterization Hero()
{
    Characterization hero(QStringLiteral("hero"));
    hero.SetBone(1, QStringLiteral("pelvis"));
    CharacterJointGeometry hips;
    hips.SetTranslate(0.0f, 95.5f, 1.25f);
    hips.SetRotateQ(0.0f, 0.0f, 0.70710677f, 0.70710677f);
    hero.SetJointGeometry(1, hips);

    hero.SetBone(3, QStringLiteral("knee_l"));
    hero.SetNodeFlags(3, 7);
    CharacterJointGeometry knee;
    knee.SetTranslate(9.0f, 48.0f, 0.5f);
    knee.SetPreRotQ(0.5f, 0.5f, 0.5f, 0.5f);
    knee.SetMaxRLimit(0.0f, 0.0f, 2.5f);
    knee.SetMaxRLimitEnable(false, false, true);
    knee.SetRotationOrder(ZELEulerZXY);
    hero.SetJointGeometry(3, knee);
    hero.SetInverted(2, true);
    return hero;
}

} // namespace

TEST(CharacterizationStream, BothByteOrdersReadBackTheSameCharacterization)
{
    const Characterization hero = Hero();
    const QByteArray little = CharacterizationStream::Write(hero, false, true);
    const QByteArray big = CharacterizationStream::Write(hero, true, true);
    ASSERT_EQ(little.size(), 872 + 2 * 120);
    ASSERT_EQ(big.size(), little.size());
    EXPECT_EQ(big.left(4), QByteArray("\x24\x02\x27\x89", 4));
    EXPECT_EQ(little.left(4), QByteArray("\x89\x27\x02\x24", 4));

    for (const QByteArray& stream : {little, big})
    {
        Characterization read;
        QString reason;
        ASSERT_TRUE(CharacterizationStream::Read(stream, hero.GetBoneNames(), read, &reason)) << qPrintable(reason);
        read.SetName(hero.GetName()); // the stream has no name
        EXPECT_EQ(read, hero);
    }
}

TEST(CharacterizationStream, WithoutStoredFlagsNoNodeKeepsItsFullGeometry)
{
    const Characterization hero = Hero();
    Characterization read;
    ASSERT_TRUE(CharacterizationStream::Read(CharacterizationStream::Write(hero, false, false), hero.GetBoneNames(), read));
    EXPECT_EQ(read.GetNodeFlags(3), 1u);
    const CharacterJointGeometry& knee = read.GetJointGeometry(3);
    EXPECT_EQ(knee.GetLimitEnableMask(), 0);
    EXPECT_FLOAT_EQ(knee.GetTranslate()[1], 48.0f) << "the transform itself is always stored";
    EXPECT_NE(knee, hero.GetJointGeometry(3));
}

TEST(CharacterizationStream, RefusedStreamsLeaveTheCharacterizationAloneAndSayWhy)
{
    const Characterization hero = Hero();
    const QByteArray stream = CharacterizationStream::Write(hero, false, true);
    QStringList swapped = hero.GetBoneNames();
    swapped[2] = swapped[3];
    swapped[3].clear();
    const struct
    {
        QByteArray bytes;
        QStringList names;
        const char* reason;
    } cases[] = {
        {stream.left(stream.size() - 1), hero.GetBoneNames(), "truncated"},
        {QByteArray("HIERARCHY\nROOT Hips\n"), hero.GetBoneNames(), "not a characterization file"},
        {QByteArray(), hero.GetBoneNames(), "not a characterization file"},
        {stream, hero.GetBoneNames().mid(0, 100), "bone names"},
        {stream, swapped, "do not fit"},
    };
    for (const auto& c : cases)
    {
        Characterization untouched(QStringLiteral("untouched"));
        untouched.SetBone(7, QStringLiteral("foot_r"));
        const Characterization before = untouched;
        QString reason;
        EXPECT_FALSE(CharacterizationStream::Read(c.bytes, c.names, untouched, &reason)) << c.reason;
        EXPECT_TRUE(reason.contains(QLatin1String(c.reason))) << qPrintable(reason);
        EXPECT_EQ(untouched, before) << c.reason;
    }
}
