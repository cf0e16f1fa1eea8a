// The panel's saves failing: skeleton definitions in each format, templates and the configuration, into a folder
// that takes no file, onto a disk that fills up part-way, and with the process killed in the middle of the write.
// Every previous file stays byte for byte, and the user is told once.
#include <QAbstractButton>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QTableWidget>
#include <QTemporaryDir>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/ConfigMirrorDialog.h>
#include <zelkin/IDCCHub.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/ResourceBridge.h>
#include <zelkin/SaveTemplateDialog.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

#include "ModalScript.h"
#include "PanelFixture.h"
#include "SaveFailures.h"

using namespace savefailure;

namespace
{

QString Native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

// The rig mapped by its template, saving into a folder of its own that others can reach (a superuser test acts as
// Nobody there).
struct FailingSaves : MixamoPanel
{
    void SetUp() override
    {
        MixamoPanel::SetUp();
        ASSERT_TRUE(work.isValid());
        ASSERT_TRUE(OpenToOthers(work.path()) && OpenToOthers(qEnvironmentVariable("APPDATA")));
        ASSERT_TRUE(QDir(work.path()).mkpath("saves") && QDir(work.path()).mkpath("probe"));
        model->AutoMatch();
        ASSERT_GT(Current().AssignedCount(), 50);
    }

    QString Saves() const { return work.filePath("saves"); }

    // One message box, under this title, naming where the save went.
    static void ExpectOneMessage(const ModalScript& script, const QString& title, const QString& where)
    {
        EXPECT_EQ(script.boxTitles, QStringList({title}));
        EXPECT_TRUE(script.boxTexts.value(0).contains(Native(where))) << script.boxTexts.value(0).toStdString();
        EXPECT_EQ(script.Unexpected(), 0);
    }

    QTemporaryDir work;
};

struct Format
{
    const char* name;
    CharacterTool::FileFormat format;
    const char* file;
    const char* companion; // the bones file a stream gets beside it
};

struct FailingFileSaves : FailingSaves, testing::WithParamInterface<std::tuple<Format, Failure>>
{
    const Format& GetFormat() const { return std::get<0>(GetParam()); }
    QString Target(const QString& folder) const { return QDir(folder).filePath(QLatin1String(GetFormat().file)); }
    bool Save(const QString& folder) { return tool->SaveFile(Target(folder), GetFormat().format, true); }

    // Lets the stream through whole and stops its bones file part-way, or stops a single file half-way.
    rlim_t LimitWithinTheSave()
    {
        const QString probe = work.filePath("probe");
        EXPECT_TRUE(Save(probe));
        const qint64 first = QFileInfo(Target(probe)).size();
        if (GetFormat().companion == nullptr)
            return static_cast<rlim_t>(first / 2);
        EXPECT_GT(QFileInfo(QDir(probe).filePath(QLatin1String(GetFormat().companion))).size(), first)
            << "the bones file must be the larger one";
        return static_cast<rlim_t>(first);
    }
};

TEST_P(FailingFileSaves, KeepThePreviousFilesAndSaySoOnce)
{
    // Long bone names, as a namespaced rig has, make the bones file outweigh the stream.
    for (const QString& bone : Current().GetBoneNames())
    {
        if (!bone.isEmpty())
            hub.RenameSceneBone(bone, QStringLiteral("hero_character_rig_take_0042_long_namespace|") + bone);
    }
    ASSERT_TRUE(Save(Saves()));
    const Snapshot previous = Take(Saves());
    ASSERT_EQ(previous.size(), GetFormat().companion != nullptr ? 2 : 1);
    model->ClearNode(BoneCatalogue::NodeId("Head"));
    const Failure failure = std::get<1>(GetParam());
    const rlim_t limit = failure == Failure::UnwritableFolder ? 0 : LimitWithinTheSave();

    bool saved = true;
    ModalScript script({ModalScript::Answer(QMessageBox::Ok)});
    EXPECT_TRUE(SaveFailing(failure, Saves(), limit, [&] { saved = Save(Saves()); }));
    EXPECT_TRUE(KeptAsItWas(Saves(), previous, failure == Failure::Killed));
    if (failure == Failure::Killed)
        EXPECT_TRUE(script.boxTitles.isEmpty());
    else
    {
        EXPECT_FALSE(saved);
        ExpectOneMessage(script, QStringLiteral("Save Error"), Target(Saves()));
    }

    ASSERT_TRUE(Save(Saves()));
    EXPECT_NE(Take(Saves()), previous) << "the failed save had something new to write";
}

INSTANTIATE_TEST_SUITE_P(
    Panel, FailingFileSaves,
    testing::Combine(testing::Values(Format {"LittleEndian", CharacterTool::BinaryLittleEndian, "hero.zelc",
                                             "hero.bones.xml"},
                                     Format {"BigEndian", CharacterTool::BinaryBigEndian, "hero.zelc", "hero.bones.xml"},
                                     Format {"Xml", CharacterTool::XmlFile, "hero.xml", nullptr}),
                     testing::Values(Failure::UnwritableFolder, Failure::FullDisk, Failure::Killed)),
    [](const testing::TestParamInfo<std::tuple<Format, Failure>>& info) {
        return std::string(std::get<0>(info.param).name) + "_" + NameOf(std::get<1>(info.param));
    });

// The template and configuration saves, each with a previous file in place. A child process must not paint (the
// raster engine's helper threads do not survive fork), so the killed child saves as the dialog's OK does, without
// the dialog.
struct FailingSettings : FailingSaves, testing::WithParamInterface<Failure>
{
    static QString ConfigFolder() { return PrivateAppData::ToolFolder() + QStringLiteral("/config"); }
    static QString TemplateFolder() { return ConfigFolder() + QStringLiteral("/template"); }

    // Names the template "Rig" in its dialog, agrees to replace it and acknowledges every message.
    static std::vector<ModalScript::Step> ExtractAsRig()
    {
        const ModalScript::Step play = [](QWidget* window) {
            if (auto* dialog = qobject_cast<SaveTemplateDialog*>(window))
            {
                dialog->GetNameEdit()->setText(QStringLiteral("Rig"));
                QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
                return;
            }
            auto* box = qobject_cast<QMessageBox*>(window);
            if (box == nullptr)
                return;
            QAbstractButton* yes = box->button(QMessageBox::Yes);
            QMetaObject::invokeMethod(yes != nullptr ? yes : box->button(QMessageBox::Ok), "click", Qt::QueuedConnection);
        };
        return std::vector<ModalScript::Step>(4, play);
    }

    // Adds a keyword pair in the mirror matching dialog, whose OK saves the configuration.
    static ModalScript::Step AddMirrorPair(const char* left, const char* right)
    {
        return ModalScript::Accept<ConfigMirrorDialog>([left, right](ConfigMirrorDialog* dialog) {
            dialog->AddRow();
            QTableWidget* table = dialog->Table();
            table->setItem(table->rowCount() - 1, 0, new QTableWidgetItem(QString::fromLatin1(left)));
            table->setItem(table->rowCount() - 1, 1, new QTableWidgetItem(QString::fromLatin1(right)));
        });
    }
};

TEST_P(FailingSettings, ATemplateKeepsItsPreviousFileAndSaysSoOnce)
{
    {
        ModalScript first(ExtractAsRig());
        tool->ExtractTemplate();
        ASSERT_TRUE(first.boxTexts.contains(QStringLiteral("Template successfully saved.")));
    }
    const Snapshot previous = Take(TemplateFolder());
    ASSERT_GT(previous.value(QStringLiteral("Rig.xml")).size(), 1024);
    model->ClearNode(BoneCatalogue::NodeId("Head"));

    const auto extract = [this] {
        if (GetParam() != Failure::Killed)
            tool->ExtractTemplate();
        else
            model->GetTemplateLibrary().Save(QStringLiteral("Rig"),
                                             MappingTemplate::Extract(Current(), Rig(""), model->GetNameDelimiters()));
    };
    ModalScript script(ExtractAsRig());
    EXPECT_TRUE(SaveFailing(GetParam(), TemplateFolder(), 512, extract));
    EXPECT_TRUE(KeptAsItWas(TemplateFolder(), previous, GetParam() == Failure::Killed));
    if (GetParam() != Failure::Killed)
    {
        // A user who cannot write there is stopped before the dialog; the superuser acting as Nobody only by the save.
        EXPECT_EQ(script.boxTitles.count(QStringLiteral("Extract Template Error")), 1)
            << script.boxTitles.join(", ").toStdString();
        EXPECT_FALSE(script.boxTexts.contains(QStringLiteral("Template successfully saved.")));
        const QString told = script.boxTexts.value(script.boxTexts.size() - 1);
        EXPECT_TRUE(told.contains(Native(TemplateFolder()))) << told.toStdString();
    }

    ModalScript again(ExtractAsRig());
    tool->ExtractTemplate();
    EXPECT_NE(Take(TemplateFolder()), previous) << "the failed save had something new to write";
}

TEST_P(FailingSettings, TheConfigurationKeepsItsPreviousFileAndSaysSoOnce)
{
    {
        ModalScript first({AddMirrorPair("_L", "_R")});
        hub.ShowConfigureMirrorMatching();
        ASSERT_TRUE(first.Done());
        ASSERT_TRUE(first.boxTitles.isEmpty());
    }
    const Snapshot previous = Take(ConfigFolder());
    ASSERT_TRUE(previous.contains(QStringLiteral("characterization_tool.xml")));

    const auto addPair = [this] {
        if (GetParam() != Failure::Killed)
        {
            hub.ShowConfigureMirrorMatching();
            return;
        }
        tool->GetBridge()->GetConfiguration().Document().WritePairs("mirror_list", "mirror",
                                                                     {{"_L", "_R"}, {"Left", "Right"}});
        tool->GetBridge()->SaveConfiguration();
    };
    ModalScript script({AddMirrorPair("Left", "Right"), ModalScript::Answer(QMessageBox::Ok)});
    EXPECT_TRUE(SaveFailing(GetParam(), ConfigFolder(), 64, addPair));
    EXPECT_TRUE(KeptAsItWas(ConfigFolder(), previous, GetParam() == Failure::Killed));
    if (GetParam() != Failure::Killed)
        ExpectOneMessage(script, QStringLiteral("Configuration Error"), ConfigFolder() + "/characterization_tool.xml");

    ModalScript again({AddMirrorPair("Up", "Down")});
    hub.ShowConfigureMirrorMatching();
    EXPECT_NE(Take(ConfigFolder()), previous) << "the failed save had something new to write";
}

INSTANTIATE_TEST_SUITE_P(Panel, FailingSettings,
                         testing::Values(Failure::UnwritableFolder, Failure::FullDisk, Failure::Killed),
                         [](const testing::TestParamInfo<Failure>& info) { return std::string(NameOf(info.param)); });

} // namespace
