// Skeleton definition files through the panel: saving in each format and loading back, refused files, atomic saves,
// the bone correspondence file and clip files.
#include <cmath>
#include <cstring>

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QTemporaryDir>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterizationXml.h>
#include <zelkin/StreamInfo.h>

#include "ModalScript.h"
#include "PanelFixture.h"

namespace
{

QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void WriteAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

bool SameRotation(const float* a, const float* b)
{
    const double dot = double(a[0]) * b[0] + double(a[1]) * b[1] + double(a[2]) * b[2] + double(a[3]) * b[3];
    return std::fabs(std::fabs(dot) - 1.0) < 1e-5;
}

bool Near(const float* a, const float* b, int count)
{
    for (int i = 0; i < count; ++i)
    {
        if (std::fabs(a[i] - b[i]) > 1e-4f * std::max(1.0f, std::fabs(a[i])))
            return false;
    }
    return true;
}

// The XML file writes rotations as Euler angles, so they come back as the same rotation, not the same numbers.
void ExpectSameGeometry(const Characterization& a, const Characterization& b)
{
    for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
    {
        const CharacterJointGeometry& x = a.GetJointGeometry(nodeId);
        const CharacterJointGeometry& y = b.GetJointGeometry(nodeId);
        EXPECT_TRUE(Near(x.GetTranslate(), y.GetTranslate(), 3)) << nodeId;
        EXPECT_TRUE(Near(x.GetScale(), y.GetScale(), 3)) << nodeId;
        EXPECT_TRUE(SameRotation(x.GetRotateQ(), y.GetRotateQ())) << nodeId;
        EXPECT_TRUE(SameRotation(x.GetPreRotQ(), y.GetPreRotQ())) << nodeId;
        EXPECT_TRUE(SameRotation(x.GetPostRotQ(), y.GetPostRotQ())) << nodeId;
        EXPECT_TRUE(Near(x.GetMinRLimit(), y.GetMinRLimit(), 3)) << nodeId;
        EXPECT_TRUE(Near(x.GetMaxRLimit(), y.GetMaxRLimit(), 3)) << nodeId;
        EXPECT_EQ(x.GetLimitEnableMask(), y.GetLimitEnableMask()) << nodeId;
        EXPECT_EQ(x.GetRotationOrder(), y.GetRotationOrder()) << nodeId;
    }
}

// The rig mapped by its template, with hand-made joint data on the left knee, in a panel without a host: nothing
// refreshes the geometry from a scene, so what comes back is exactly what the file held.
struct OfflinePanel : MixamoPanel
{
    void SetUp() override
    {
        MixamoPanel::SetUp();
        model->AutoMatch();
        Characterization mapped = Current();
        CharacterJointGeometry knee = mapped.GetJointGeometry(3);
        knee.SetPreRotQ(0.0f, 0.38268343f, 0.0f, 0.9238795f);
        knee.SetPostRotQ(0.0f, 0.0f, 0.0f, 1.0f);
        knee.SetParentOffsetRotateQ(0.0f, 0.0f, 0.0f, 1.0f);
        knee.SetMinRLimit(-10.0f, 0.0f, 0.0f);
        knee.SetMaxRLimit(120.0f, 0.0f, 0.0f);
        knee.SetMinRLimitEnable(true, false, false);
        knee.SetMaxRLimitEnable(true, false, false);
        knee.SetRotationOrder(ZELEulerZXY);
        mapped.SetJointGeometry(3, knee);
        mapped.SetInverted(ZELLimbRightArm, true);
        offline = std::make_unique<CharacterTool>(false, "", "", &host, nullptr);
        ASSERT_TRUE(offline->GetModel()->ReplaceCurrentContent(mapped));
        original = *offline->GetCharacterization();
        ASSERT_GT(original.AssignedCount(), 50);
        ASSERT_TRUE(folder.isValid());
    }

    QString File(const QString& name) const { return folder.filePath(name); }

    // Saves through the panel's own dialog, as the user does.
    void SaveThroughDialog(CharacterTool& panel, const QString& filter, const QString& path, bool limits)
    {
        ModalScript script({ModalScript::Accept<QFileDialog>([&](QFileDialog* dialog) {
            EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Save Skeleton Definition"));
            EXPECT_EQ(dialog->nameFilters(),
                      QStringList({"Binary ZEL little endian (*.zelc)", "Binary ZEL big endian (*.zelc)",
                                   "Xml Characterization File (*.xml)"}));
            auto* box = dialog->findChild<QCheckBox*>();
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(box->text(), QStringLiteral("Save rotation limits"));
            box->setChecked(limits);
            dialog->selectNameFilter(filter);
            dialog->selectFile(path);
        })});
        panel.OnSave();
        EXPECT_TRUE(script.Done());
        EXPECT_EQ(script.Unexpected(), 0);
    }

    std::unique_ptr<CharacterTool> offline;
    Characterization original;
    QTemporaryDir folder;
};

struct FormatCase
{
    const char* name;
    const char* filter;
    const char* file; // typed without extension: the chosen filter adds it
    const char* saved;
    unsigned char firstByte;
};

struct SavedFormats : OfflinePanel, testing::WithParamInterface<FormatCase>
{
};

TEST_P(SavedFormats, LoadBackToTheSameCharacterization)
{
    const FormatCase format = GetParam();
    SaveThroughDialog(*offline, QString::fromLatin1(format.filter), File(QString::fromLatin1(format.file)), true);
    const QString saved = File(QString::fromLatin1(format.saved));
    ASSERT_TRUE(QFileInfo::exists(saved));
    EXPECT_EQ(static_cast<unsigned char>(ReadAll(saved).at(0)), format.firstByte);
    const bool binary = saved.endsWith(QLatin1String(".zelc"));
    EXPECT_EQ(QFileInfo::exists(File(QStringLiteral("hero.bones.xml"))), binary);

    offline->GetModel()->ClearAll();
    ModalScript script;
    ASSERT_TRUE(offline->LoadFile(saved));
    EXPECT_TRUE(script.windowTitles.isEmpty());
    const Characterization& loaded = *offline->GetCharacterization();
    if (binary)
    {
        EXPECT_EQ(loaded, original);
        return;
    }
    EXPECT_EQ(loaded.GetBoneNames(), original.GetBoneNames());
    for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
        EXPECT_EQ(loaded.GetNodeFlags(nodeId), original.GetNodeFlags(nodeId)) << nodeId;
    ExpectSameGeometry(loaded, original); // the XML file has no place for the limb flags
}

INSTANTIATE_TEST_SUITE_P(
    Panel, SavedFormats,
    testing::Values(FormatCase {"LittleEndian", "Binary ZEL little endian (*.zelc)", "hero", "hero.zelc", 0x89},
                    FormatCase {"BigEndian", "Binary ZEL big endian (*.zelc)", "hero", "hero.zelc", 0x24},
                    FormatCase {"Xml", "Xml Characterization File (*.xml)", "hero", "hero.xml", '<'}),
    [](const testing::TestParamInfo<FormatCase>& info) { return std::string(info.param.name); });

TEST_F(OfflinePanel, WithoutRotationLimitsEveryJointTurnsFreely)
{
    SaveThroughDialog(*offline, QStringLiteral("Binary ZEL little endian (*.zelc)"), File("free.zelc"), false);
    offline->GetModel()->ClearAll();
    ASSERT_TRUE(offline->LoadFile(File("free.zelc")));
    const CharacterJointGeometry& knee = offline->GetCharacterization()->GetJointGeometry(3);
    EXPECT_EQ(knee.GetLimitEnableMask(), 0);
    EXPECT_TRUE(SameRotation(knee.GetPreRotQ(), original.GetJointGeometry(3).GetPreRotQ())); // the rest stays
    EXPECT_EQ(original.GetJointGeometry(3).GetLimitEnableMask(), 0x9); // and the panel's own copy keeps its limits
}

struct BadFile
{
    const char* name;
    const char* reason;
    // Turns a good stream into the bad one.
    QByteArray (*spoil)(QByteArray);
};

struct RefusedFiles : OfflinePanel, testing::WithParamInterface<BadFile>
{
};

TEST_P(RefusedFiles, ChangeNothingAndSayWhyOnce)
{
    const QString path = File("bad.zelc");
    ASSERT_TRUE(offline->SaveFile(path, CharacterTool::BinaryLittleEndian, true));
    WriteAll(path, GetParam().spoil(ReadAll(path)));
    offline->GetModel()->ClearNode(15);
    const Characterization before = *offline->GetCharacterization();

    ModalScript script({ModalScript::Answer(QMessageBox::Ok)});
    EXPECT_FALSE(offline->LoadFile(path));
    EXPECT_EQ(script.boxTitles, QStringList({"Load Error"}));
    ASSERT_EQ(script.boxTexts.size(), 1);
    EXPECT_TRUE(script.boxTexts[0].contains(QStringLiteral("bad.zelc"))) << script.boxTexts[0].toStdString();
    EXPECT_TRUE(script.boxTexts[0].contains(QLatin1String(GetParam().reason))) << script.boxTexts[0].toStdString();
    EXPECT_EQ(script.Unexpected(), 0);
    EXPECT_EQ(*offline->GetCharacterization(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Panel, RefusedFiles,
    testing::Values(BadFile {"Truncated", "truncated", [](QByteArray bytes) { return bytes.left(bytes.size() - 1); }},
                    BadFile {"HeaderOnly", "truncated", [](QByteArray bytes) { return bytes.left(12); }},
                    BadFile {"Empty", "not a characterization file", [](QByteArray) { return QByteArray(); }},
                    BadFile {"Text", "not a characterization file",
                             [](QByteArray) { return QByteArray("<config_root/>\n"); }},
                    BadFile {"Newer", "made by a newer version",
                             [](QByteArray bytes) {
                                 bytes[4] = 3;
                                 return bytes;
                             }},
                    BadFile {"NamesDoNotFit", "bone names",
                             [](QByteArray bytes) {
                                 bytes[12] = 0; // the hips are no longer used, but the names still give them a bone
                                 return bytes;
                             }}),
    [](const testing::TestParamInfo<BadFile>& info) { return std::string(info.param.name); });

TEST_F(OfflinePanel, ARefusedXmlFileChangesNothing)
{
    const QString path = File("broken.xml");
    WriteAll(path, "<config_root><bone_correspondance><item value=\"x\"/>");
    const Characterization before = *offline->GetCharacterization();
    ModalScript script({ModalScript::Answer(QMessageBox::Ok)});
    EXPECT_FALSE(offline->LoadFile(path));
    EXPECT_EQ(script.boxTitles, QStringList({"Load Error"}));
    EXPECT_TRUE(script.boxTexts.value(0).contains(QStringLiteral("broken.xml")));
    EXPECT_EQ(*offline->GetCharacterization(), before);
}

TEST_F(OfflinePanel, AFailedSaveKeepsTheOldFilesAndSaysSoOnce)
{
    const QString path = File("kept.zelc");
    WriteAll(path, "old stream");
    QDir(folder.path()).mkdir(QStringLiteral("kept.bones.xml")); // its companion cannot be put in place
    ModalScript script({ModalScript::Answer(QMessageBox::Ok)});
    EXPECT_FALSE(offline->SaveFile(path, CharacterTool::BinaryBigEndian, true));
    EXPECT_EQ(script.boxTitles, QStringList({"Save Error"}));
    EXPECT_EQ(ReadAll(path), QByteArray("old stream"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList({"kept.zelc"})); // no leftovers
}

TEST_F(OfflinePanel, WithoutItsBoneFileTheUserIsAskedForOne)
{
    const QString path = File("stream.zelc");
    ASSERT_TRUE(offline->SaveFile(path, CharacterTool::BinaryLittleEndian, true));
    QDir(folder.path()).mkdir(QStringLiteral("elsewhere"));
    const QString bones = File("elsewhere/names.bones.xml");
    ASSERT_TRUE(QFile::rename(File("stream.bones.xml"), bones));

    {
        ModalScript script({ModalScript::Reject()});
        EXPECT_EQ(offline->LoadBinary(path), nullptr); // the user gave up: no error on top
        EXPECT_EQ(script.windowTitles, QStringList({"Choose bone correspondance file"}));
        EXPECT_EQ(script.Unexpected(), 0);
    }
    ModalScript script({ModalScript::Accept<QFileDialog>([&](QFileDialog* dialog) {
        EXPECT_EQ(dialog->nameFilters(), QStringList({"Bone correspondance file (*.bones.xml)"}));
        EXPECT_EQ(QDir(dialog->directory()).canonicalPath(), QDir(folder.path()).canonicalPath());
        EXPECT_EQ(dialog->fileMode(), QFileDialog::ExistingFile);
        dialog->selectFile(bones);
    })});
    const std::unique_ptr<Characterization> loaded = offline->LoadBinary(path);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetBoneNames(), original.GetBoneNames());
    EXPECT_EQ(loaded->GetJointGeometry(3), original.GetJointGeometry(3));
    // A bone file given outright is taken without asking.
    ModalScript none;
    EXPECT_NE(offline->LoadBinary(path, bones), nullptr);
    EXPECT_TRUE(none.windowTitles.isEmpty());
}

TEST_F(MixamoPanel, LoadingTellsTheHostAndAsksBeforeReplacingAMapping)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("rig.xml");
    model->AutoMatch();
    const Characterization mapped = Current();
    ASSERT_TRUE(tool->SaveFile(path, CharacterTool::XmlFile, true));
    model->ClearNodes({1, 2, 3});

    {
        ModalScript script({ModalScript::Answer(QMessageBox::No)});
        EXPECT_FALSE(tool->LoadFile(path));
        EXPECT_EQ(script.boxTitles, QStringList({"Load Skeleton Definition"}));
    }
    EXPECT_FALSE(Current().IsAssigned(1));
    hub.journal.clear();
    {
        ModalScript script({ModalScript::Answer(QMessageBox::Yes)});
        ASSERT_TRUE(tool->LoadFile(path));
    }
    EXPECT_EQ(Current(), mapped);
    EXPECT_EQ(hub.journal.filter(QStringLiteral("Attach:")).size(), mapped.AssignedCount());
    EXPECT_EQ(hub.journal.filter(QStringLiteral("Detach:")).size(), mapped.AssignedCount() - 3);

    model->SetEditMode(true);
    ModalScript locked({ModalScript::Answer(QMessageBox::Ok)});
    EXPECT_FALSE(tool->LoadFile(path));
    EXPECT_EQ(locked.boxTitles, QStringList({"Characterization Locked"}));
}

TEST_F(OfflinePanel, ALockedCharacterizationIsRefusedBeforeTheLoadDialogAndDialogsReopenWhereLastUsed)
{
    offline->GetModel()->SetEditMode(true);
    {
        ModalScript locked({ModalScript::Answer(QMessageBox::Ok)});
        offline->OnLoad();
        EXPECT_EQ(locked.windowTitles, QStringList({"Characterization Locked"}));
        EXPECT_EQ(locked.Unexpected(), 0);
    }
    offline->GetModel()->SetEditMode(false);

    QDir(folder.path()).mkdir(QStringLiteral("saved"));
    QDir(folder.path()).mkdir(QStringLiteral("loaded"));
    SaveThroughDialog(*offline, QStringLiteral("Xml Characterization File (*.xml)"), File("saved/hero"), true);
    ASSERT_TRUE(QFile::copy(File("saved/hero.xml"), File("loaded/other.xml")));
    QStringList opened;
    const auto noteFolder = [&opened](QFileDialog* dialog) {
        opened.append(QDir::cleanPath(dialog->directory().absolutePath()));
    };
    {
        ModalScript load({ModalScript::Accept<QFileDialog>([&](QFileDialog* dialog) {
                              noteFolder(dialog);
                              dialog->selectFile(File("loaded/other.xml"));
                          }),
                          ModalScript::Answer(QMessageBox::Yes)});
        offline->OnLoad();
        EXPECT_TRUE(load.Done());
    }
    {
        ModalScript save({[&](QWidget* window) {
            if (auto* dialog = qobject_cast<QFileDialog*>(window))
                noteFolder(dialog);
            QMetaObject::invokeMethod(window, "reject", Qt::QueuedConnection);
        }});
        offline->OnSave();
        EXPECT_TRUE(save.Done());
    }
    EXPECT_EQ(opened, QStringList({QDir::cleanPath(File("saved")), QDir::cleanPath(File("loaded"))}));
}

TEST_F(OfflinePanel, ClipFilesCarryBitZeroOrTheStoredFlagWords)
{
    Characterization& current = *offline->GetCharacterization();
    current.SetNodeFlags(15, current.GetNodeFlags(15) | 0x100u);
    const uint32_t stored[] = {current.GetNodeFlags(3), current.GetNodeFlags(15)};
    ASSERT_EQ(stored[0] & 7u, 7u);

    ASSERT_TRUE(offline->SaveKst(File("plain.kst"), 0, false));
    ASSERT_TRUE(offline->SaveKst(File("flags.kst"), 1, true));
    EXPECT_FALSE(offline->SaveKst(File("bad.kst"), 2, false));
    EXPECT_FALSE(QFileInfo::exists(File("bad.kst")));

    const auto word = [](const QByteArray& bytes, int nodeId, bool big) {
        uint32_t value = 0;
        std::memcpy(&value, bytes.constData() + 8 + 4 * nodeId, 4);
        return big ? __builtin_bswap32(value) : value;
    };
    const QByteArray plain = ReadAll(File("plain.kst"));
    const QByteArray flags = ReadAll(File("flags.kst"));
    EXPECT_EQ(plain.size(), 872 + 120 * current.AssignedCount());
    EXPECT_EQ(StreamInfo::Read(flags.constData(), flags.size()).IsBigEndian(), true);
    for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
        EXPECT_EQ(word(plain, nodeId, false), current.IsAssigned(nodeId) ? 1u : 0u) << nodeId;
    EXPECT_EQ(word(flags, 3, true), stored[0]);
    EXPECT_EQ(word(flags, 15, true), stored[1]);
}

} // namespace
