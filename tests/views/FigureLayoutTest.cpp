#include <cmath>
#include <set>

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <zelkin/BoneCatalogue.h>

#include "FigureLayout.h"

using namespace FigureLayout;

namespace
{
const PartRecord* FindPart(int nodeId)
{
    for (const ViewRecord& view : Views()) {
        for (const PartRecord& part : view.parts) {
            if (part.nodeId == nodeId)
                return &part;
        }
    }
    return nullptr;
}

double Distance(const QRect& a, const QRect& b)
{
    const QPointF d = Centre(a) - Centre(b);
    return std::hypot(d.x(), d.y());
}

// "LeftHands" -> "Left Hands"
QString Words(const QString& name)
{
    QString words = name;
    return words.replace(QRegularExpression("([a-z])([A-Z])"), "\\1 \\2");
}
} // namespace

TEST(FigureLayout, ViewsComeInIndexOrderWithTheirBaseImagesAndBackground)
{
    const QStringList names = {"FullBody", "LeftHands", "RightHands", "LeftFeet", "RightFeet", "Neck",
                               "Spine", "LeftCollar", "RightCollar", "LeftShoulderRoll", "LeftElbowRoll",
                               "RightShoulderRoll", "RightElbowRoll", "LeftHipRoll", "LeftKneeRoll",
                               "RightHipRoll", "RightKneeRoll"};
    ASSERT_EQ(Views().size(), size_t(ViewCount));
    for (int i = 0; i < ViewCount; ++i) {
        const ViewRecord& view = Views()[i];
        EXPECT_EQ(view.index, i);
        EXPECT_EQ(view.name, names[i]);
        EXPECT_TRUE(view.baseImage.file.endsWith("_Base.png") || view.baseImage.file.contains("_Base_"));
        EXPECT_EQ(view.baseImage.first, 0);
        EXPECT_EQ(view.baseImage.second, 0);
        EXPECT_EQ(view.red, 68);
        EXPECT_EQ(view.green, 68);
        EXPECT_EQ(view.blue, 68);
        EXPECT_EQ(view.inversions.empty(), i != FullBodyView);
    }
    EXPECT_EQ(Views()[0].baseImage.file, "BodyGUI_Base.png");
    EXPECT_EQ(Views()[2].baseImage.file, "HandsGUI_Base_Right.png");
    EXPECT_EQ(Views()[12].baseImage.file, "ForeArmRightGUI_Base.png");
}

TEST(FigureLayout, EveryNodeButTheInlineRollBonesHasExactlyOnePart)
{
    std::set<int> shown;
    size_t parts = 0;
    for (const ViewRecord& view : Views()) {
        for (const PartRecord& part : view.parts) {
            EXPECT_EQ(part.second, -1);
            EXPECT_TRUE(shown.insert(part.nodeId).second) << "node " << part.nodeId << " twice";
            ++parts;
        }
    }
    EXPECT_EQ(parts, size_t(BoneCatalogue::NodeCount - 8));
    for (int node = 41; node <= 48; ++node)
        EXPECT_EQ(shown.count(node), 0u) << node;
    EXPECT_EQ(*shown.begin(), 0);
    EXPECT_EQ(*shown.rbegin(), BoneCatalogue::NodeCount - 1);
    const std::vector<size_t> counts = {17, 31, 31, 31, 31, 10, 9, 2, 2, 5, 5, 5, 5, 5, 5, 5, 5};
    for (int i = 0; i < ViewCount; ++i)
        EXPECT_EQ(Views()[i].parts.size(), counts[i]) << Views()[i].name.toStdString();
}

// The picture of a part names its node, except the hips translation and the crossed big and extra toes.
TEST(FigureLayout, PicturesNameTheirNodesAndTheFeetCrossThumbAndExtra)
{
    for (const ViewRecord& view : Views()) {
        const bool foot = view.index == 3 || view.index == 4;
        for (const PartRecord& part : view.parts) {
            QString leaf = part.imageBase.section('/', -1);
            if (part.nodeId == 49 || view.index == 5 || view.index == 6 || view.index >= 9)
                continue;
            if (foot && leaf.contains("Thumb"))
                leaf.replace("Thumb", "Extra");
            else if (foot && leaf.contains("Extra"))
                leaf.replace("Extra", "Thumb");
            if (view.index >= 1 && view.index <= 4)
                leaf.replace(QRegularExpression("Extra(\\d?)$"), "ExtraFinger\\1");
            EXPECT_EQ(leaf.toStdString(), BoneCatalogue::NodeName(part.nodeId)) << part.imageBase.toStdString();
        }
    }
    EXPECT_EQ(FindPart(49)->imageBase, "Bones/FullBody/NotReq_LeftArm");
    EXPECT_EQ(FindPart(163)->imageBase, "Bones/Feet/LeftInFootThumb");
    EXPECT_EQ(FindPart(118)->imageBase, "Bones/Feet/LeftFootThumb1");
    EXPECT_EQ(FindPart(98)->imageBase, "Bones/Feet/LeftFootExtra1");
    EXPECT_EQ(FindPart(145)->imageBase, "Bones/Feet/RightFootThumb4");
    EXPECT_EQ(FindPart(164)->imageBase, "Bones/Feet/RightInFootExtra");
}

TEST(FigureLayout, SharedPicturesOfTheColumnAndRollViews)
{
    for (int index : {5, 6}) {
        int y = index == 5 ? 315 : 284;
        for (const PartRecord& part : Views()[index].parts) {
            EXPECT_EQ(part.imageBase, "Bones/Neck_Spine/NeckSpine");
            EXPECT_EQ(part.placement, QRect(114, y, 20, 20));
            y -= 31;
        }
        EXPECT_EQ(y + 31, 36);
    }
    const std::vector<int> rollViews = {13, 14, 15, 16, 9, 10, 11, 12};
    for (size_t limb = 0; limb < rollViews.size(); ++limb) {
        const ViewRecord& view = Views()[rollViews[limb]];
        for (size_t level = 0; level < view.parts.size(); ++level) {
            EXPECT_EQ(view.parts[level].nodeId, int(172 + limb + 8 * level));
            EXPECT_EQ(view.parts[level].imageBase, view.parts[0].imageBase);
        }
    }
    const std::vector<QPoint> hipRoll = {{94, 36}, {103, 90}, {107, 142}, {114, 195}, {120, 248}};
    for (size_t level = 0; level < hipRoll.size(); ++level)
        EXPECT_EQ(Views()[13].parts[level].placement, QRect(hipRoll[level], QSize(20, 20)));
    EXPECT_EQ(Views()[10].parts[0].imageBase, "Bones/ArmRolls/LeftForearmRollBone");
    EXPECT_EQ(Views()[14].parts[0].imageBase, "Bones/LegRolls/LeftShinRollBone");
}

TEST(FigureLayout, GivenHandAndFootPlacementsAndTheRightHandMirror)
{
    const std::vector<std::pair<int, QPoint>> given = {{146, {128, 294}}, {50, {147, 260}}, {53, {192, 163}},
                                                       {73, {32, 117}},   {21, {92, 298}},  {22, {131, 298}},
                                                       {16, {124, 254}},  {17, {90, 254}},  {15, {118, 20}},
                                                       {18, {22, 175}},   {171, {19, 153}}};
    for (const auto& [node, at] : given)
        EXPECT_EQ(FindPart(node)->placement, QRect(at, QSize(20, 20))) << node;
    const ViewRecord& left = Views()[1];
    const ViewRecord& right = Views()[2];
    for (size_t i = 0; i < left.parts.size(); ++i) {
        EXPECT_EQ(right.parts[i].placement.x(), 223 - left.parts[i].placement.x());
        EXPECT_EQ(right.parts[i].placement.y(), left.parts[i].placement.y());
        EXPECT_EQ(right.parts[i].imageBase, QString(left.parts[i].imageBase).replace("Left", "Right"));
    }
}

TEST(FigureLayout, ForwardArrowsLeadToTheViewOfTheirNode)
{
    const ViewRecord& body = Views()[FullBodyView];
    ASSERT_EQ(body.arrows.size(), 16u);
    std::set<int> targets;
    for (const ArrowRecord& arrow : body.arrows) {
        targets.insert(arrow.targetView);
        EXPECT_EQ(ViewOfNode(arrow.sourceNode), arrow.targetView) << arrow.sourceNode;
        EXPECT_EQ(arrow.imageFile, arrow.imageBase + ".png");
        EXPECT_EQ(arrow.imageBase, arrow.targetView >= 9 ? "GoToArrowTrans" : "GoToArrow");
        const QString target = Words(Views()[arrow.targetView].name).replace("Collar", "Shoulder");
        EXPECT_EQ(arrow.toolTip, "To " + target + " View");
        const bool tall = arrow.sourceNode == 23 || arrow.sourceNode == 18;
        EXPECT_EQ(arrow.placement.size(), QSize(20, tall ? 90 : 20)) << arrow.sourceNode;
    }
    EXPECT_EQ(targets.size(), 16u);
    EXPECT_EQ(*targets.begin(), 1);
    EXPECT_EQ(body.arrows[5].placement.topLeft(), QPoint(117, 110));
    EXPECT_EQ(body.arrows[15].placement.topLeft(), QPoint(39, 132));
}

TEST(FigureLayout, EveryOtherViewHasOneReturnArrow)
{
    for (int i = 1; i < ViewCount; ++i) {
        const std::vector<ArrowRecord>& arrows = Views()[i].arrows;
        ASSERT_EQ(arrows.size(), 1u) << i;
        EXPECT_EQ(arrows[0].sourceNode, -1);
        EXPECT_EQ(arrows[0].targetView, FullBodyView);
        EXPECT_TRUE(arrows[0].imageFile.isEmpty());
        EXPECT_EQ(arrows[0].toolTip, "To Full Body View");
        EXPECT_EQ(arrows[0].imageBase, "ReturnToArrow");
        EXPECT_EQ(arrows[0].placement, QRect(8, 8, 20, 20));
    }
}

TEST(FigureLayout, InversionMarkersSitBesideTheHingeJoints)
{
    const std::vector<InversionRecord>& markers = Views()[FullBodyView].inversions;
    ASSERT_EQ(markers.size(), 4u);
    const std::vector<int> nodes = {3, 6, 10, 13};
    for (size_t i = 0; i < markers.size(); ++i) {
        const InversionRecord& marker = markers[i];
        EXPECT_EQ(marker.nodeId, nodes[i]);
        const QString side = QString(BoneCatalogue::NodeName(marker.nodeId)).startsWith("Left") ? "Left" : "Right";
        EXPECT_EQ(marker.invertedImage, side + "Inversed.png");
        EXPECT_EQ(marker.normalImage, side + "Normal.png");
        EXPECT_EQ(marker.flag, 0);
        EXPECT_LT(Distance(marker.placement, FindPart(marker.nodeId)->placement), 30) << marker.nodeId;
    }
    EXPECT_EQ(markers[3].placement, QRect(45, 104, 20, 20));
    EXPECT_EQ(StatusElement().imageBase, "Status");
    EXPECT_EQ(StatusElement().toolTip, "ValidationElement");
    EXPECT_EQ(StatusElement().placement, QRect(205, 11, 20, 20));
}

// Parts and arrows must not cover each other: the widest picture, a ringed part, is 19.6 across (the table itself
// puts the right elbow roll arrow 19 pixels from the forearm). Markers only show while their joint is hovered.
TEST(FigureLayout, ItemsFitTheirViewAndKeepApart)
{
    const QRect image(QPoint(0, 0), BaseImageSize);
    for (const ViewRecord& view : Views()) {
        std::vector<QRect> items;
        for (const PartRecord& part : view.parts)
            items.push_back(part.placement);
        for (const ArrowRecord& arrow : view.arrows)
            items.push_back(arrow.placement);
        if (view.index == FullBodyView)
            items.push_back(StatusElement().placement);
        for (const InversionRecord& marker : view.inversions)
            EXPECT_TRUE(image.contains(marker.placement));
        for (size_t i = 0; i < items.size(); ++i) {
            EXPECT_TRUE(image.contains(items[i])) << view.name.toStdString() << " item " << i;
            for (size_t j = i + 1; j < items.size(); ++j)
                EXPECT_GE(Distance(items[i], items[j]), 18.9) << view.name.toStdString() << " " << i << "/" << j;
        }
    }
}

TEST(FigureLayout, StatePictureBasesListEachBaseOnce)
{
    QStringList bases = StatePictureBases();
    EXPECT_EQ(bases.removeDuplicates(), 0);
    EXPECT_TRUE(bases.contains("Status"));
    EXPECT_TRUE(bases.contains("GoToArrow"));
    EXPECT_TRUE(bases.contains("GoToArrowTrans"));
    EXPECT_TRUE(bases.contains("ReturnToArrow"));
    EXPECT_EQ(bases.size(), 154 + 4);
    EXPECT_EQ(ViewOfNode(41), -1);
    EXPECT_EQ(ViewOfNode(211), 12);
}
