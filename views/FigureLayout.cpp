#include "FigureLayout.h"

#include <array>

#include <QCoreApplication>

namespace FigureLayout
{
namespace
{
struct Spot
{
    int x;
    int y;
};

constexpr int DigitCount = 6;
constexpr int SpotsPerDigit = 5; // the in-hand (in-foot) node, then joints 1 to 4
using DigitSpots = std::array<std::array<Spot, SpotsPerDigit>, DigitCount>;
using DigitNodes = std::array<int, DigitCount>;

// Picture words of the digits, in table order; the extra digit's pictures say "Extra", not "ExtraFinger".
const std::array<const char*, DigitCount> DigitWords = {"Thumb", "Index", "Middle", "Ring", "Pinky", "Extra"};

// The left hand seen from its back, fingers up: thumb to the right, the extra finger outside the pinky. The fingers
// fan out from the palm so that neighbouring joints keep a few pixels apart.
const DigitSpots LeftHandSpots = {{
    {{{128, 294}, {147, 260}, {162, 228}, {177, 195}, {192, 163}}},
    {{{124, 248}, {136, 204}, {144, 169}, {152, 135}, {160, 100}}},
    {{{100, 244}, {112, 196}, {117, 159}, {123, 122}, {128, 85}}},
    {{{76, 246}, {88, 198}, {91, 163}, {93, 129}, {96, 94}}},
    {{{52, 252}, {64, 206}, {64, 174}, {64, 142}, {64, 110}}},
    {{{30, 262}, {42, 220}, {39, 186}, {35, 151}, {32, 117}}},
}};

// The left foot from above, toes up: big toe to the right, the extra toe outside the little one.
const DigitSpots LeftFootSpots = {{
    {{{160, 186}, {162, 130}, {163, 106}, {164, 83}, {165, 60}}},
    {{{133, 180}, {135, 124}, {135, 101}, {135, 78}, {135, 55}}},
    {{{109, 182}, {111, 130}, {110, 108}, {109, 86}, {108, 64}}},
    {{{86, 188}, {88, 140}, {86, 118}, {84, 97}, {82, 76}}},
    {{{64, 196}, {66, 152}, {63, 131}, {60, 110}, {57, 90}}},
    {{{44, 206}, {45, 168}, {41, 147}, {37, 126}, {33, 105}}},
}};

// Mirrors for the right side, on top-left corners: the hand's maps the left finger base (92) onto the right one
// (131), the foot's the left toe base (124) onto the right one (90).
constexpr int RightHandMirror = 223;
constexpr int RightFootMirror = 214;
constexpr int RightRollMirror = BaseImageSize.width() - PartExtent;

// Along the limb from its upper joint down to its lower one.
const std::array<Spot, 5> RollSpots = {{{94, 36}, {103, 90}, {107, 142}, {114, 195}, {120, 248}}};
constexpr int RollNodeStep = 8;

QRect At(int x, int y, int height = PartExtent)
{
    return QRect(x, y, PartExtent, height);
}

PartRecord Part(int nodeId, const QString& imageBase, int x, int y)
{
    return PartRecord {nodeId, -1, imageBase, At(x, y)};
}

ViewRecord View(int index, const char* name, const char* baseImage)
{
    return ViewRecord {name, ImageRecord {baseImage, 0, 0}, BackgroundGrey, BackgroundGrey, BackgroundGrey, index,
                       {}, {}, {}};
}

ArrowRecord ReturnArrow()
{
    return ArrowRecord {-1, FullBodyView, QString(), QT_TRANSLATE_NOOP("DiagramWidget", "To Full Body View"),
                        "ReturnToArrow", At(8, 8)};
}

ArrowRecord GoTo(int sourceNode, int targetView, const char* toolTip, bool trans, int x, int y, int last)
{
    const QString base = trans ? "GoToArrowTrans" : "GoToArrow";
    return ArrowRecord {sourceNode, targetView, base + ".png", toolTip, base, At(x, y, last)};
}

void FillFullBody(ViewRecord& view)
{
    const QString folder = "Bones/FullBody/";
    view.parts = {
        Part(0, folder + "Reference", 118, 342),
        Part(49, folder + "NotReq_LeftArm", 161, 166), // the hips translation borrows this picture on purpose
        Part(8, folder + "Spine", 120, 133),
        Part(1, folder + "Hips", 107, 164),
        Part(2, folder + "LeftUpLeg", 138, 184),
        Part(3, folder + "LeftLeg", 144, 264),
        Part(4, folder + "LeftFoot", 152, 344),
        Part(5, folder + "RightUpLeg", 97, 184),
        Part(6, folder + "RightLeg", 91, 264),
        Part(7, folder + "RightFoot", 82, 344),
        Part(9, folder + "LeftArm", 156, 84),
        Part(10, folder + "LeftForeArm", 172, 126),
        Part(11, folder + "LeftHand", 189, 174),
        Part(12, folder + "RightArm", 76, 84),
        Part(13, folder + "RightForeArm", 57, 126),
        Part(14, folder + "RightHand", 46, 174),
        Part(15, folder + "Head", 118, 20),
    };
    view.arrows = {
        GoTo(21, 1, QT_TRANSLATE_NOOP("DiagramWidget", "To Left Hands View"), false, 215, 191, 20),
        GoTo(22, 2, QT_TRANSLATE_NOOP("DiagramWidget", "To Right Hands View"), false, 19, 191, 20),
        GoTo(16, 3, QT_TRANSLATE_NOOP("DiagramWidget", "To Left Feet View"), false, 173, 343, 20),
        GoTo(17, 4, QT_TRANSLATE_NOOP("DiagramWidget", "To Right Feet View"), false, 61, 343, 20),
        GoTo(20, 5, QT_TRANSLATE_NOOP("DiagramWidget", "To Neck View"), false, 117, 64, 20),
        GoTo(23, 6, QT_TRANSLATE_NOOP("DiagramWidget", "To Spine View"), false, 117, 110, 90),
        GoTo(18, 7, QT_TRANSLATE_NOOP("DiagramWidget", "To Left Shoulder View"), false, 135, 81, 90),
        GoTo(19, 8, QT_TRANSLATE_NOOP("DiagramWidget", "To Right Shoulder View"), false, 100, 81, 20),
        GoTo(172, 13, QT_TRANSLATE_NOOP("DiagramWidget", "To Left Hip Roll View"), true, 167, 214, 20),
        GoTo(173, 14, QT_TRANSLATE_NOOP("DiagramWidget", "To Left Knee Roll View"), true, 172, 290, 20),
        GoTo(174, 15, QT_TRANSLATE_NOOP("DiagramWidget", "To Right Hip Roll View"), true, 66, 214, 20),
        GoTo(175, 16, QT_TRANSLATE_NOOP("DiagramWidget", "To Right Knee Roll View"), true, 65, 290, 20),
        GoTo(176, 9, QT_TRANSLATE_NOOP("DiagramWidget", "To Left Shoulder Roll View"), true, 181, 86, 20),
        GoTo(177, 10, QT_TRANSLATE_NOOP("DiagramWidget", "To Left Elbow Roll View"), true, 197, 132, 20),
        GoTo(178, 11, QT_TRANSLATE_NOOP("DiagramWidget", "To Right Shoulder Roll View"), true, 53, 86, 20),
        GoTo(179, 12, QT_TRANSLATE_NOOP("DiagramWidget", "To Right Elbow Roll View"), true, 39, 132, 20),
    };
    view.inversions = {
        InversionRecord {3, "LeftInversed.png", "LeftNormal.png", At(162, 250), 0},
        InversionRecord {6, "RightInversed.png", "RightNormal.png", At(65, 250), 0},
        InversionRecord {10, "LeftInversed.png", "LeftNormal.png", At(183, 104), 0},
        InversionRecord {13, "RightInversed.png", "RightNormal.png", At(45, 104), 0},
    };
}

struct DigitView
{
    int baseNode;
    const char* baseWord; // "FingerBase" or "ToeBase"
    QString prefix;       // folder and side, as "Bones/Hands/Left"
    const char* inWord;   // "InHand" or "InFoot"
    const char* jointWord;
    DigitNodes inNodes;
    DigitNodes firstJoints;
    Spot base;
    int mirror; // 0: drawn as the table has it
};

void FillDigits(ViewRecord& view, const DigitView& digits, const DigitSpots& spots)
{
    const auto x = [&digits](int left) { return digits.mirror ? digits.mirror - left : left; };
    view.parts.push_back(Part(digits.baseNode, digits.prefix + digits.baseWord, digits.base.x, digits.base.y));
    for (int d = 0; d < DigitCount; ++d) {
        const QString word = DigitWords[d];
        const Spot& in = spots[d][0];
        view.parts.push_back(Part(digits.inNodes[d], digits.prefix + digits.inWord + word, x(in.x), in.y));
        for (int joint = 1; joint <= 4; ++joint) {
            const Spot& spot = spots[d][joint];
            view.parts.push_back(Part(digits.firstJoints[d] + joint - 1,
                                      digits.prefix + digits.jointWord + word + QString::number(joint), x(spot.x),
                                      spot.y));
        }
    }
}

void FillHands(std::vector<ViewRecord>& views)
{
    const DigitNodes leftIn = {146, 147, 148, 149, 150, 151};
    const DigitNodes leftJoints = {50, 54, 58, 62, 66, 70};
    FillDigits(views[1],
               {21, "FingerBase", "Bones/Hands/Left", "InHand", "Hand", leftIn, leftJoints, {92, 298}, 0},
               LeftHandSpots);
    const DigitNodes rightIn = {152, 153, 154, 155, 156, 157};
    const DigitNodes rightJoints = {74, 78, 82, 86, 90, 94};
    FillDigits(views[2],
               {22, "FingerBase", "Bones/Hands/Right", "InHand", "Hand", rightIn, rightJoints,
                {RightHandMirror - 92, 298}, RightHandMirror},
               LeftHandSpots);
}

// The foot views cross the big toe and the extra toe: the big toe's pictures stand for the solver's extra-digit
// nodes and the extra toe's pictures for its thumb nodes.
void FillFeet(std::vector<ViewRecord>& views)
{
    const DigitNodes leftIn = {163, 159, 160, 161, 162, 158};
    const DigitNodes leftJoints = {118, 102, 106, 110, 114, 98};
    FillDigits(views[3],
               {16, "ToeBase", "Bones/Feet/Left", "InFoot", "Foot", leftIn, leftJoints, {124, 254}, 0},
               LeftFootSpots);
    const DigitNodes rightIn = {169, 165, 166, 167, 168, 164};
    const DigitNodes rightJoints = {142, 126, 130, 134, 138, 122};
    FillDigits(views[4],
               {17, "ToeBase", "Bones/Feet/Right", "InFoot", "Foot", rightIn, rightJoints,
                {RightFootMirror - 124, 254}, RightFootMirror},
               LeftFootSpots);
}

void FillColumn(ViewRecord& view, const std::vector<int>& nodes, int bottomY)
{
    constexpr int Step = 31;
    int y = bottomY;
    for (int node : nodes) {
        view.parts.push_back(Part(node, "Bones/Neck_Spine/NeckSpine", 114, y));
        y -= Step;
    }
}

void FillNeckAndSpine(std::vector<ViewRecord>& views)
{
    FillColumn(views[5], {20, 32, 33, 34, 35, 36, 37, 38, 39, 40}, 315);
    FillColumn(views[6], {23, 24, 25, 26, 27, 28, 29, 30, 31}, 284);
}

void FillCollars(std::vector<ViewRecord>& views)
{
    views[7].parts = {Part(18, "Bones/Shoulders/LeftShoulder", 22, 175),
                      Part(170, "Bones/Shoulders/LeftShoulderExtra", 123, 153)};
    views[8].parts = {Part(19, "Bones/Shoulders/RightShoulder", 127, 175),
                      Part(171, "Bones/Shoulders/RightShoulderExtra", 19, 153)};
}

// The right limbs lean the other way, so their roll parts follow the mirrored line.
void FillRolls(std::vector<ViewRecord>& views)
{
    struct Roll
    {
        int view;
        int firstNode;
        const char* picture;
        bool right;
    };
    const std::array<Roll, 8> rolls = {{
        {9, 176, "Bones/ArmRolls/LeftArmRollBone", false},
        {10, 177, "Bones/ArmRolls/LeftForearmRollBone", false},
        {11, 178, "Bones/ArmRolls/RightArmRollBone", true},
        {12, 179, "Bones/ArmRolls/RightForearmRollBone", true},
        {13, 172, "Bones/LegRolls/LeftLegRollBone", false},
        {14, 173, "Bones/LegRolls/LeftShinRollBone", false},
        {15, 174, "Bones/LegRolls/RightLegRollBone", true},
        {16, 175, "Bones/LegRolls/RightShinRollBone", true},
    }};
    for (const Roll& roll : rolls) {
        int node = roll.firstNode;
        for (const Spot& spot : RollSpots) {
            const int x = roll.right ? RightRollMirror - spot.x : spot.x;
            views[roll.view].parts.push_back(Part(node, roll.picture, x, spot.y));
            node += RollNodeStep;
        }
    }
}

std::vector<ViewRecord> BuildViews()
{
    std::vector<ViewRecord> views = {
        View(0, "FullBody", "BodyGUI_Base.png"),
        View(1, "LeftHands", "HandsGUI_Base_Left.png"),
        View(2, "RightHands", "HandsGUI_Base_Right.png"),
        View(3, "LeftFeet", "FootGUI_Base_Left.png"),
        View(4, "RightFeet", "FootGUI_Base_Right.png"),
        View(5, "Neck", "NeckGUI_Base.png"),
        View(6, "Spine", "SpineGUI_Base.png"),
        View(7, "LeftCollar", "ShoulderLeftGUI_Base.png"),
        View(8, "RightCollar", "ShoulderRightGUI_Base.png"),
        View(9, "LeftShoulderRoll", "ArmLeftGUI_Base.png"),
        View(10, "LeftElbowRoll", "ForeArmLeftGUI_Base.png"),
        View(11, "RightShoulderRoll", "ArmRightGUI_Base.png"),
        View(12, "RightElbowRoll", "ForeArmRightGUI_Base.png"),
        View(13, "LeftHipRoll", "LegLeftGUI_Base.png"),
        View(14, "LeftKneeRoll", "ShinLeftGUI_Base.png"),
        View(15, "RightHipRoll", "LegRightGUI_Base.png"),
        View(16, "RightKneeRoll", "ShinRightGUI_Base.png"),
    };
    FillFullBody(views[FullBodyView]);
    FillHands(views);
    FillFeet(views);
    FillNeckAndSpine(views);
    FillCollars(views);
    FillRolls(views);
    for (ViewRecord& view : views) {
        if (view.index != FullBodyView)
            view.arrows.push_back(ReturnArrow());
    }
    return views;
}
} // namespace

const std::vector<ViewRecord>& Views()
{
    static const std::vector<ViewRecord> views = BuildViews();
    return views;
}

const ArrowRecord& StatusElement()
{
    static const ArrowRecord status {-1, -1, QString(), "ValidationElement", "Status", At(205, 11)};
    return status;
}

int ViewOfNode(int nodeId)
{
    for (const ViewRecord& view : Views()) {
        for (const PartRecord& part : view.parts) {
            if (part.nodeId == nodeId)
                return view.index;
        }
    }
    return -1;
}

QStringList StatePictureBases()
{
    QStringList bases;
    const auto add = [&bases](const QString& base) {
        if (!bases.contains(base))
            bases.append(base);
    };
    for (const ViewRecord& view : Views()) {
        for (const PartRecord& part : view.parts)
            add(part.imageBase);
        for (const ArrowRecord& arrow : view.arrows)
            add(arrow.imageBase);
    }
    add(StatusElement().imageBase);
    return bases;
}

QPointF Centre(const QRect& placement)
{
    return QPointF(placement.x() + PartExtent / 2.0, placement.y() + PartExtent / 2.0);
}
} // namespace FigureLayout
