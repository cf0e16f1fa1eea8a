// Renders the name match page (tree over property view) with the corpus's Mixamo rig mapped, for looking at by eye.
// usage: zelkin_name_match_shots OUTPUT_FOLDER
#include <cstdio>

#include <QApplication>
#include <QDir>
#include <QTreeWidgetItem>
#include <QVBoxLayout>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>

#include "NameMatchTreeWidget.h"
#include "NameMatchWidget.h"
#include "PictureCache.h"
#include "PropertyView.h"
#include "TestHub.h"
#include "TestScenes.h"

namespace
{
void PrintStates(const CharacterizationModel& model)
{
    std::printf("overall %d: %s\n", int(model.GetValidationState()), model.GetValidationMessage().c_str());
    for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
    {
        if (model.GetNodeState(nodeId) > 1)
            std::printf("  %s: %d %s\n", BoneCatalogue::NodeName(nodeId), model.GetNodeState(nodeId),
                        model.GetNodeMessage(nodeId).c_str());
    }
}
} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc < 2)
    {
        std::fprintf(stderr, "usage: zelkin_name_match_shots OUTPUT_FOLDER\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    if (!out.mkpath("."))
        return 2;

    TestHub hub;
    QString error;
    if (!testscenes::LoadSkeleton(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb", hub, error))
    {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    QWidget host;
    CharacterTool tool(false, "", "", &host, &hub);
    CharacterizationModel* model = tool.GetModel();
    model->AutoMatch();
    // A hole in the left index finger is an error; a left hand lowered spoils the T-pose with a warning.
    model->ClearNode(55);
    CharacterJointGeometry hand;
    hub.GetBoneReferenceGeometry("mixamorig:LeftHand", hand);
    const float* at = hand.GetTranslate();
    hub.MoveBone("mixamorig:LeftHand", at[0], at[1] - 0.1f, at[2]);
    model->Validate();
    PrintStates(*model);

    // The name match page as the panel builds it: the tree over its property view.
    QWidget page;
    auto* layout = new QVBoxLayout(&page);
    layout->setContentsMargins(1, 1, 1, 1);
    auto* names = new NameMatchWidget(&page, &hub, tool.GetBridge(), model, &tool);
    auto* properties = new PropertyView(&page, &hub, model);
    layout->addWidget(names, 1);
    layout->addWidget(properties);
    page.resize(380, 980);
    page.show();

    names->GetGroupRow("Left Hand")->setExpanded(true);
    names->GetTree()->setCurrentItem(names->GetNodeRows(11).front()); // picks LeftHand: the host selects its bone
    // The error row selected too shows the highlight quirk: no red highlight, so green.
    hub.SelectBones({"mixamorig:LeftHand", "mixamorig:LeftHandIndex3"});
    emit hub.selectionChanged();
    names->GetTree()->scrollToItem(names->GetNodeRows(57).front());
    QApplication::processEvents();
    if (!page.grab().save(out.filePath("name_match_page.png")))
        return 1;

    names->GetTree()->setCurrentItem(names->GetNodeRows(56).front());
    QApplication::processEvents();
    if (!properties->grab().save(out.filePath("property_view_error.png")))
        return 1;
    model->SetEditedPart(CharacterizationModel::NoPart, false);
    QApplication::processEvents();
    return properties->grab().save(out.filePath("property_view_none.png")) ? 0 : 1;
}
