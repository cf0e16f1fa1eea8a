// Mapping templates and mirror matching through the panel: applying, extracting, refusals, the remembered match
// type, and mirror mode with the keyword pairs of the configuration.
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QTableWidget>

#include <zelkin/ApplyTemplateDialog.h>
#include <zelkin/BoneCatalogue.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/ConfigMirrorDialog.h>
#include <zelkin/IDCCHub.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/SaveTemplateDialog.h>

#include "DiagramWidget.h"
#include "ModalScript.h"
#include "NameMatchWidget.h"
#include "PanelFixture.h"

namespace
{

using Dialog = ApplyTemplateDialog;

// Templates are applied with a bone of the skeleton selected in the host.
struct Templates : MixamoPanel
{
    void SetUp() override
    {
        MixamoPanel::SetUp();
        hub.selection = QStringList({Rig("Hips")});
    }
};

QString ConfigFile()
{
    return PrivateAppData::ToolFolder() + QStringLiteral("/config/characterization_tool.xml");
}

QString TemplateFile(const QString& name)
{
    return PrivateAppData::ToolFolder() + QStringLiteral("/config/template/") + name + QStringLiteral(".xml");
}

ModalScript::Step ApplyWith(std::function<void(Dialog*)> fill)
{
    return ModalScript::Accept<Dialog>(std::move(fill));
}

int Node(const char* name)
{
    return BoneCatalogue::NodeId(name);
}

TEST_F(Templates, AutomaticCharacterizationIsOfferedFirstAndAsksBeforeItMovesBones)
{
    ModalScript script({ApplyWith([](Dialog* dialog) {
                            EXPECT_TRUE(dialog->IsAutomatic());
                            EXPECT_EQ(dialog->GetTemplateList()->item(0)->text(),
                                      QStringLiteral("Automatic (from the skeleton)"));
                            EXPECT_FALSE(dialog->GetMatchTypeBox()->isEnabled());
                            EXPECT_GE(dialog->GetTemplateList()->count(), 11);
                        }),
                        ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    ASSERT_TRUE(script.Done());
    const int mapped = Current().AssignedCount();
    EXPECT_EQ(mapped, 62);
    EXPECT_EQ(Current().GetBone(Node("LeftForeArm")), Rig("LeftForeArm"));
    EXPECT_EQ(script.boxTitles, QStringList({"Apply Mapping Template"}));
    EXPECT_EQ(script.boxTexts.value(0),
              QStringLiteral("The skeleton was characterized automatically.\n%1 nodes were mapped.").arg(mapped));
    EXPECT_EQ(model->GetValidationState(), Valid) << model->GetValidationMessage();

    // Over a hand-made change it asks first: declined, the hand-made change stays and nothing is mapped; accepted,
    // the bones found in the skeleton win.
    model->AssignBones({{Node("Head"), QString()}, {Node("Neck"), Rig("Head")}});
    ModalScript declined({ApplyWith({}), ModalScript::Answer(QMessageBox::No), ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    EXPECT_EQ(declined.boxTitles, QStringList({"Bone Already Assigned", "Apply Mapping Template"}));
    EXPECT_EQ(declined.boxTexts.value(0),
              QStringLiteral("1 node(s) already hold other bones.\nReplace them with the bones found in the skeleton?"));
    EXPECT_EQ(declined.boxTexts.value(1), QStringLiteral("The skeleton was characterized automatically.\n0 nodes were mapped."));
    EXPECT_EQ(Current().GetBone(Node("Neck")), Rig("Head"));
    EXPECT_FALSE(Current().IsAssigned(Node("Head")));
    ModalScript accepted({ApplyWith({}), ModalScript::Answer(QMessageBox::Yes), ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    EXPECT_EQ(Current().GetBone(Node("Neck")), Rig("Neck"));
    EXPECT_EQ(Current().GetBone(Node("Head")), Rig("Head"));
}

TEST_F(Templates, TheBestFittingTemplateIsAppliedAndCounted)
{
    ModalScript script({ApplyWith([](Dialog* dialog) {
                            ASSERT_TRUE(dialog->SelectTemplate(QStringLiteral("Mixamo")));
                            EXPECT_FALSE(dialog->IsAutomatic());
                            EXPECT_TRUE(dialog->GetMatchTypeBox()->isEnabled());
                            EXPECT_EQ(dialog->GetMatchType(), NameMatcher::Suffix);
                            EXPECT_EQ(dialog->GetScope(), Dialog::AllWithPrefix);
                            EXPECT_EQ(dialog->GetPrefixEdit()->text(), QStringLiteral("mixamorig:"));
                            EXPECT_EQ(dialog->GetScopeButton(Dialog::AllWithPrefix)->text(),
                                      QStringLiteral("Match all bones with prefix:"));
                            EXPECT_EQ(dialog->GetScopeButton(Dialog::SelectedOnly)->text(),
                                      QStringLiteral("Match only selected bones"));
                        }),
                        ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    ASSERT_TRUE(script.Done());
    const int mapped = Current().AssignedCount();
    EXPECT_GE(mapped, 60);
    EXPECT_EQ(script.boxTexts.value(0),
              QStringLiteral("Template successfully applied.\n%1 nodes were mapped.").arg(mapped));

    // Applying it again over a hand-made change maps nothing and moves no bone.
    model->AssignBones({{Node("Head"), QString()}, {Node("Neck"), Rig("Head")}});
    ModalScript again({ApplyWith([](Dialog* dialog) { dialog->SelectTemplate(QStringLiteral("Mixamo")); }),
                       ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    EXPECT_EQ(again.boxTexts.value(0), QStringLiteral("Template successfully applied.\n0 nodes were mapped."));
    EXPECT_EQ(Current().GetBone(Node("Neck")), Rig("Head"));
    EXPECT_FALSE(Current().IsAssigned(Node("Head")));
}

TEST_F(Templates, AnEmptySelectionIsRefusedBeforeAnyDialogAndTheSelectedScopeMapsOnlyIt)
{
    hub.selection.clear();
    ModalScript refused({ModalScript::Answer(QMessageBox::Ok), ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    hub.ShowMapBones();
    EXPECT_EQ(refused.windowTitles, QStringList({"Match Error", "Match Error"}));
    EXPECT_EQ(refused.boxTexts.value(0),
              QStringLiteral("You must select at least one bone in the skeleton\nbefore you can use a mapping template."));
    EXPECT_EQ(refused.Unexpected(), 0);
    EXPECT_EQ(Current().AssignedCount(), 0);

    hub.selection = QStringList({Rig("LeftArm"), Rig("Hips")});
    ModalScript accepted({ApplyWith([](Dialog* dialog) {
                              dialog->SelectTemplate(QStringLiteral("Mixamo"));
                              dialog->GetScopeButton(Dialog::SelectedOnly)->click();
                          }),
                          ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    EXPECT_EQ(Current().AssignedCount(), 2);
    EXPECT_EQ(Current().GetBone(Node("Hips")), Rig("Hips"));
    EXPECT_EQ(Current().GetBone(Node("LeftArm")), Rig("LeftArm"));
    EXPECT_EQ(accepted.boxTexts.value(0), QStringLiteral("Template successfully applied.\n2 nodes were mapped."));
}

TEST_F(Templates, TheMatchTypeIsRememberedForTheNextPanel)
{
    ModalScript script({ApplyWith([](Dialog* dialog) {
                            dialog->SelectTemplate(QStringLiteral("Mixamo"));
                            QComboBox* types = dialog->GetMatchTypeBox();
                            EXPECT_EQ(types->count(), 2);
                            types->setCurrentIndex(types->findText(QStringLiteral("Contains")));
                        }),
                        ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    ConfigDocument saved;
    ASSERT_TRUE(saved.Load(ConfigFile()));
    EXPECT_EQ(saved.ReadValue(QStringLiteral("name_match"), QStringLiteral("match_type")), QStringLiteral("Contains"));

    TestHub otherHub;
    QWidget otherHost;
    CharacterTool other(false, "", "", &otherHost, &otherHub);
    ModalScript next({ModalScript::Accept<Dialog>([](Dialog* dialog) {
        EXPECT_EQ(dialog->GetMatchType(), NameMatcher::Contains);
        dialog->reject();
    })});
    other.AutoMatch();
    EXPECT_TRUE(next.Done());
}

TEST_F(Templates, ALockedCharacterizationIsRefusedBeforeAnyDialog)
{
    model->AutoMatch();
    ASSERT_TRUE(tool->DoToggleEditMode(true));
    ModalScript script({ModalScript::Answer(QMessageBox::Ok)});
    hub.ShowMapBones();
    EXPECT_EQ(script.windowTitles, QStringList({"Characterization Locked"}));
    EXPECT_EQ(script.boxTexts, QStringList({"The current characterization is locked.\nYou must unlock it before you can "
                                            "apply a mapping template."}));
    EXPECT_EQ(script.Unexpected(), 0);
}

TEST_F(Templates, TheUsersTemplateWinsOverAShippedOneOfTheSameName)
{
    MappingTemplate own;
    own.SetEntry(Node("Hips"), QStringLiteral("Hips"));
    QDir().mkpath(QFileInfo(TemplateFile("Mixamo")).absolutePath());
    ASSERT_TRUE(own.Save(TemplateFile("Mixamo")));
    ModalScript script({ApplyWith([](Dialog* dialog) {
                            ASSERT_TRUE(dialog->SelectTemplate(QStringLiteral("Mixamo")));
                            EXPECT_EQ(dialog->GetTemplateList()->currentItem()->text(),
                                      QStringLiteral("Mixamo (user template)"));
                            EXPECT_FALSE(dialog->SelectTemplate(QStringLiteral("No Such Template")));
                        }),
                        ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    EXPECT_EQ(Current().AssignedCount(), 1);
    EXPECT_EQ(script.boxTexts.value(0), QStringLiteral("Template successfully applied.\n1 node was mapped."));
}

TEST_F(Templates, AnExtractedTemplateMapsTheRigAgain)
{
    model->AutoMatch();
    const Characterization mapped = Current();
    ModalScript script({ModalScript::Accept<SaveTemplateDialog>([](SaveTemplateDialog* dialog) {
                            EXPECT_EQ(dialog->GetPrefix(), QStringLiteral("mixamorig:"));
                            EXPECT_EQ(dialog->GetTemplateName(), QStringLiteral("New Characterization"));
                            dialog->GetNameEdit()->setText(QStringLiteral("My Rig"));
                        }),
                        ModalScript::Answer(QMessageBox::Ok)});
    hub.ShowExtractMappingTemplate();
    EXPECT_EQ(script.boxTitles, QStringList({"Save Template"}));
    EXPECT_EQ(script.boxTexts, QStringList({"Template successfully saved."}));
    MappingTemplate saved;
    ASSERT_TRUE(saved.Load(TemplateFile("My Rig")));
    EXPECT_EQ(saved.GetEntry(Node("Hips")).pattern, QStringLiteral("Hips"));
    EXPECT_TRUE(saved.GetEntry(Node("Reference")).pattern.isEmpty());

    ASSERT_TRUE(tool->CreateCharacterization(QStringLiteral("Second")));
    ModalScript apply({ApplyWith([](Dialog* dialog) { ASSERT_TRUE(dialog->SelectTemplate(QStringLiteral("My Rig"))); }),
                       ModalScript::Answer(QMessageBox::Ok)});
    tool->AutoMatch();
    EXPECT_EQ(Current().GetName(), QStringLiteral("Second"));
    EXPECT_EQ(Current().GetBoneNames(), mapped.GetBoneNames());
}

TEST_F(Templates, ReplacingATemplateAsksAndNamesCannotLeaveTheFolder)
{
    model->AutoMatch();
    const auto named = [](const char* name) {
        return ModalScript::Accept<SaveTemplateDialog>(
            [name](SaveTemplateDialog* dialog) { dialog->GetNameEdit()->setText(QString::fromUtf8(name)); });
    };
    {
        ModalScript first({named("Rig"), ModalScript::Answer(QMessageBox::Ok)});
        tool->ExtractTemplate();
        ASSERT_TRUE(first.Done());
    }
    model->ClearNode(Node("Head"));
    {
        ModalScript declined({named("Rig"), ModalScript::Answer(QMessageBox::No), ModalScript::Reject()});
        tool->ExtractTemplate();
        EXPECT_EQ(declined.boxTitles, QStringList({"Save Template"}));
        EXPECT_EQ(declined.boxTexts,
                  QStringList({"A template with the same name already exists.\nDo you want to overwrite it?"}));
        EXPECT_TRUE(declined.Done());
    }
    MappingTemplate kept;
    ASSERT_TRUE(kept.Load(TemplateFile("Rig")));
    EXPECT_EQ(kept.GetEntry(Node("Head")).pattern, QStringLiteral("Head"));
    {
        ModalScript replaced({named("Rig"), ModalScript::Answer(QMessageBox::Yes), ModalScript::Answer(QMessageBox::Ok)});
        tool->ExtractTemplate();
        EXPECT_EQ(replaced.boxTexts.value(1), QStringLiteral("Template successfully saved."));
    }
    ASSERT_TRUE(kept.Load(TemplateFile("Rig")));
    EXPECT_TRUE(kept.GetEntry(Node("Head")).pattern.isEmpty());

    ModalScript escape({named("../escape"), ModalScript::Answer(QMessageBox::Ok), ModalScript::Reject()});
    tool->ExtractTemplate();
    EXPECT_EQ(escape.boxTitles, QStringList({"Save Template"}));
    EXPECT_FALSE(QFileInfo::exists(PrivateAppData::ToolFolder() + QStringLiteral("/config/escape.xml")));

    for (const char* bad : {"", "  ", "../x", "a/b", "a\\b", ".hidden", "x..y", "tab\there"})
        EXPECT_FALSE(SaveTemplateDialog::IsValidName(QString::fromUtf8(bad))) << bad;
    for (const char* good : {"My Rig", "rig_01", "Personnage é", "v1.2"})
        EXPECT_TRUE(SaveTemplateDialog::IsValidName(QString::fromUtf8(good))) << good;
}

TEST_F(Templates, ExtractionRefusesAnEmptyCharacterizationAndAFolderItCannotUse)
{
    ModalScript empty({ModalScript::Answer(QMessageBox::Ok)});
    tool->ExtractTemplate();
    EXPECT_EQ(empty.boxTitles, QStringList({"Extract Template Error"}));
    EXPECT_EQ(empty.boxTexts, QStringList({"A naming template cannot be extracted from an empty characterization.\nYou "
                                           "must map at least one bone in the skeleton first."}));

    model->AutoMatch();
    // The folder went missing: it is not made again behind the user's back.
    ASSERT_TRUE(QDir(PrivateAppData::ToolFolder() + QStringLiteral("/config/template")).removeRecursively());
    ModalScript missing({ModalScript::Answer(QMessageBox::Ok)});
    tool->ExtractTemplate();
    EXPECT_EQ(missing.boxTitles, QStringList({"Extract Template Error"}));
    EXPECT_EQ(missing.boxTexts, QStringList({"The directory does not exist."}));
    EXPECT_EQ(missing.Unexpected(), 0);
    EXPECT_FALSE(QFileInfo::exists(PrivateAppData::ToolFolder() + QStringLiteral("/config/template")));

    // A file where the folder belongs is no folder either.
    QFile blocker(PrivateAppData::ToolFolder() + QStringLiteral("/config/template"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    ModalScript blocked({ModalScript::Answer(QMessageBox::Ok)});
    tool->ExtractTemplate();
    EXPECT_EQ(blocked.boxTexts, QStringList({"The directory does not exist."}));

    // A new panel sets the folder up again, and extraction works.
    ASSERT_TRUE(QFile::remove(blocker.fileName()));
    TestHub otherHub;
    QWidget otherHost;
    CharacterTool other(false, "", "", &otherHost, &otherHub);
    EXPECT_TRUE(QFileInfo(PrivateAppData::ToolFolder() + QStringLiteral("/config/template")).isDir());
}

TEST_F(Templates, MirrorModeGivesTheCounterpartBoneToTheOppositeNode)
{
    BoneAssignment& figure = tool->GetDiagramWidget()->GetAssignment();
    ASSERT_TRUE(figure.Assign(Node("LeftArm"), Rig("LeftArm")));
    EXPECT_FALSE(Current().IsAssigned(Node("RightArm"))); // mirror mode is off

    hub.MirrorMatching();
    ASSERT_TRUE(hub.IsMirrorToggle());
    ASSERT_TRUE(figure.Assign(Node("LeftUpLeg"), Rig("LeftUpLeg")));
    EXPECT_EQ(Current().GetBone(Node("RightUpLeg")), Rig("RightUpLeg"));
    ASSERT_TRUE(model->AssignBone(Node("RightHand"), Rig("RightHand")));
    EXPECT_EQ(Current().GetBone(Node("LeftHand")), Rig("LeftHand"));
    ASSERT_TRUE(model->AssignBone(Node("Hips"), Rig("Hips"))); // no side, no counterpart
    EXPECT_EQ(Current().AssignedCount(), 6);

    // The opposite node already holds another bone: the user is asked under the mirroring title.
    model->AssignBones({{Node("RightForeArm"), Rig("RightShoulder")}});
    ModalScript script({ModalScript::Answer(QMessageBox::No)});
    ASSERT_TRUE(tool->GetNameMatchWidget()->GetAssignment().Assign(Node("LeftForeArm"), Rig("LeftForeArm")));
    EXPECT_EQ(script.boxTitles, QStringList({"Mirroring: Bone Already Assigned"}));
    EXPECT_EQ(Current().GetBone(Node("RightForeArm")), Rig("RightShoulder"));
}

TEST_F(Templates, MirrorPairsEditedInTheDialogAreSavedAndUsedAtOnce)
{
    hub.AddBone(QStringLiteral("arm_L"), Rig("LeftShoulder"), 0.3f, 1.4f, 0.0f);
    hub.AddBone(QStringLiteral("arm_R"), Rig("RightShoulder"), -0.3f, 1.4f, 0.0f);
    hub.AddBone(QStringLiteral("hand_L"), QStringLiteral("arm_L"), 0.7f, 1.4f, 0.0f);
    hub.AddBone(QStringLiteral("hand_R"), QStringLiteral("arm_R"), -0.7f, 1.4f, 0.0f);
    ModalScript script({ModalScript::Accept<ConfigMirrorDialog>([](ConfigMirrorDialog* dialog) {
        dialog->AddRow();
        QTableWidget* table = dialog->Table();
        table->setItem(table->rowCount() - 1, 0, new QTableWidgetItem(QStringLiteral("_L")));
        table->setItem(table->rowCount() - 1, 1, new QTableWidgetItem(QStringLiteral("_R")));
    })});
    hub.ShowConfigureMirrorMatching();
    ASSERT_TRUE(script.Done());
    ConfigDocument saved;
    ASSERT_TRUE(saved.Load(ConfigFile()));
    EXPECT_EQ(saved.ReadPairs(QStringLiteral("mirror_list"), QStringLiteral("mirror")),
              QList<ConfigDocument::Pair>({{"_L", "_R"}}));

    tool->DoToggleMirrorMode(true);
    ASSERT_TRUE(tool->GetNameMatchWidget()->GetAssignment().Assign(Node("LeftArm"), QStringLiteral("arm_L")));
    EXPECT_EQ(Current().GetBone(Node("RightArm")), QStringLiteral("arm_R"));
    ASSERT_TRUE(model->AssignBone(Node("RightHand"), QStringLiteral("hand_R")));
    EXPECT_EQ(Current().GetBone(Node("LeftHand")), QStringLiteral("hand_L"));

    // A panel built later reads the pairs back.
    TestHub otherHub;
    QWidget otherHost;
    CharacterTool other(false, "", "", &otherHost, &otherHub);
    EXPECT_EQ(other.GetModel()->GetMirrorMatcher().Pairs(), QList<MirrorMatcher::Pair>({{"_L", "_R"}}));
}

} // namespace
