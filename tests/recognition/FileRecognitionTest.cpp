// Rigs written to files as other programs write them (glTF, FBX, Collada, BVH; an armature node that turns and
// scales the skeleton; a mesh, a camera, a light and a prop beside it; two characters in one scene) and read back
// through the zelkin program: it gives every bone the node the recognizer gives it on the skeleton the file holds.
#include <cmath>
#include <iostream>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/TemplateLibrary.h>

#include "CliProcess.h"
#include "ConventionRigs.h"
#include "RecognizerSuite.h"
#include "RigFiles.h"

namespace
{
using Nodes = QMap<QString, QString>; // bone -> node name

TruthRig Convention(const QString& id)
{
    for (const TruthRig& rig : conventions::All())
        if (rig.id == id)
            return rig;
    ADD_FAILURE() << "no convention rig " << id.toStdString();
    return {};
}

class FileRecognitionTest : public RecognizerSuite
{
protected:
    static Nodes InMemory(const TruthRig& rig)
    {
        Nodes nodes;
        for (const SkeletonRecognizer::Character& character : sRecognizer->Recognize(rig.bones).characters)
            for (const SkeletonRecognizer::NodeMatch& match : character.nodes)
                nodes.insert(rig.bones[size_t(match.bone)].name, BoneCatalogue::NodeName(match.nodeId));
        return nodes;
    }

    // What `zelkin bones --json` says of each bone, and what `zelkin characterize --json` maps, which must agree.
    static Nodes ThroughTheProgram(const QString& path, int& characters)
    {
        const ProcessResult bones = zelkin({"bones", path, "--json"});
        EXPECT_EQ(bones.status, 0) << bones.err.constData();
        Nodes nodes;
        const QJsonObject document = bones.Json();
        for (const QJsonValue& bone : document["bones"].toArray())
            if (!bone["node"].isNull())
                nodes.insert(bone["name"].toString(), bone["node"].toString());
        characters = document["characters"].toArray().size();

        // A rig without a head is characterized with an error it reports (status 2), and still mapped.
        const ProcessResult characterized = zelkin({"characterize", path, "--json"});
        EXPECT_TRUE(characterized.status == 0 || characterized.status == 2) << characterized.err.constData();
        // One document, or one a line for several characters.
        QList<QByteArray> documents = {characterized.out};
        if (QJsonDocument::fromJson(characterized.out).isNull())
            documents = characterized.out.split('\n');
        Nodes mapped;
        for (const QByteArray& document : documents)
            for (const QJsonValue& node : QJsonDocument::fromJson(document).object()["nodes"].toArray())
                mapped.insert(node["bone"].toString(), node["name"].toString());
        EXPECT_TRUE(mapped == nodes) << path.toStdString() << ": " << Difference(mapped, nodes).toStdString();
        return nodes;
    }

    static QString Difference(const Nodes& got, const Nodes& wanted)
    {
        QStringList differences;
        for (auto it = wanted.cbegin(); it != wanted.cend(); ++it)
            if (got.value(it.key()) != it.value())
                differences.append(QStringLiteral("%1: %2 for %3").arg(it.key(), got.value(it.key()), it.value()));
        for (auto it = got.cbegin(); it != got.cend(); ++it)
            if (!wanted.contains(it.key()))
                differences.append(QStringLiteral("%1: %2 for nothing").arg(it.key(), it.value()));
        return differences.join(QLatin1String(", "));
    }

    static double Share(const TruthRig& rig, const Nodes& nodes)
    {
        int right = 0;
        for (auto it = rig.truth.cbegin(); it != rig.truth.cend(); ++it)
            right += nodes.value(it.key()) == BoneCatalogue::NodeName(it.value()) ? 1 : 0;
        return rig.truth.isEmpty() ? 1.0 : double(right) / rig.truth.size();
    }

    // The file read through the program gives what the recognizer gives on the skeleton written, and that is right.
    static void ExpectAsWritten(const TruthRig& rig, const QString& path, const rigfiles::Options& options,
                                int characters = 1)
    {
        int found = 0;
        const Nodes read = ThroughTheProgram(path, found);
        const Nodes expected = InMemory(rigfiles::AsWritten(rig, options));
        EXPECT_EQ(found, characters) << path.toStdString();
        EXPECT_TRUE(read == expected) << path.toStdString() << ": " << Difference(read, expected).toStdString();
        const double share = Share(rig, read);
        std::cout << "  " << rig.id.toStdString() << " as " << path.section('.', -1).toStdString() << ": "
                  << std::lround(100.0 * share) << "%\n";
        Nodes truth;
        for (auto it = rig.truth.cbegin(); it != rig.truth.cend(); ++it)
            truth.insert(it.key(), BoneCatalogue::NodeName(it.value()));
        EXPECT_GE(share, 0.98) << path.toStdString() << ": " << Difference(read, truth).toStdString();
    }
};

TEST_F(FileRecognitionTest, SkinnedRigsInEveryFormatWithMeshCameraLightAndProp)
{
    QTemporaryDir dir;
    rigfiles::Options options;
    options.skinned = true;
    const struct
    {
        const char* format;
        const char* extension;
    } formats[] = {{"glb2", "glb"}, {"fbx", "fbx"}, {"collada", "dae"}};
    for (const QString id : {"newer mannequin", "whole rigging armature", "extended avatar"})
    {
        const TruthRig rig = Convention(id);
        for (const auto& format : formats)
        {
            const QByteArray bytes = rigfiles::Export(rig, format.format, options);
            ASSERT_FALSE(bytes.isEmpty()) << format.format;
            const QString name = QStringLiteral("%1.%2").arg(QString(id).replace(' ', '_'), format.extension);
            ExpectAsWritten(rig, writeFile(dir, name, bytes), options);
        }
    }
}

TEST_F(FileRecognitionTest, CaptureFilesWithEndSites)
{
    QTemporaryDir dir;
    for (const QString id : {"capture library", "marker studio"})
    {
        const TruthRig rig = Convention(id);
        ExpectAsWritten(rig, writeFile(dir, QString(id).replace(' ', '_') + ".bvh", rigfiles::Bvh(rig)), {});
    }
}

TEST_F(FileRecognitionTest, AnArmatureTurnedAndScaledAboveTheBones)
{
    // As a 3-D package writes a Y-up rig in centimetres: the armature turned a quarter about X, scaled by 0.01.
    QTemporaryDir dir;
    rigfiles::Options options;
    options.hasArmature = true;
    options.armature = {0.01, 0, 0, 0, 0, 0, -0.01, 0, 0, 0.01, 0, 0, 0, 0, 0, 1};
    options.skinned = true;
    for (const TruthRig& corpus : rigs::CorpusRigs())
    {
        const TruthRig rig = rigs::Scaled(corpus, corpus.id.contains("mixamo") ? 100.0 : 1.0);
        for (const char* format : {"glb2", "fbx"})
            ExpectAsWritten(rig, writeFile(dir, corpus.id + "." + (format[0] == 'g' ? "glb" : "fbx"),
                                           rigfiles::Export(rig, format, options)),
                            options);
    }
}

TEST_F(FileRecognitionTest, NodesPosedAwayFromThePoseTheMeshWasBoundIn)
{
    // Saved with the character posed, arms lowered and knees bent unevenly, while its mesh stays bound in the rig's
    // own pose.
    QTemporaryDir dir;
    for (const QString id : {"asset pack", "engine biped"})
    {
        const TruthRig rig = Convention(id);
        rigfiles::Options options;
        options.skinned = true;
        for (const SkeletonRecognizer::Bone& bone : rigs::Posed(rig, {40.0, 60.0, 25.0, 10.0}).bones)
            options.nodePose.push_back(bone.position);
        for (const char* format : {"glb2", "fbx"})
        {
            const QString name = QString(id).replace(' ', '_') + "_posed." + (format[0] == 'g' ? "glb" : "fbx");
            ExpectAsWritten(rig, writeFile(dir, name, rigfiles::Export(rig, format, options)), options);
        }
    }
}

TEST_F(FileRecognitionTest, TwoCharactersOfDifferentConventionsInOneFile)
{
    QTemporaryDir dir;
    const TruthRig both =
        rigs::Merged({Convention("asset pack"), rigs::Scaled(Convention("block avatar"), 40.0)}, 250.0);
    rigfiles::Options options;
    options.skinned = true;
    ExpectAsWritten(both, writeFile(dir, "both.glb", rigfiles::Export(both, "glb2", options)), options, 2);
}
} // namespace
