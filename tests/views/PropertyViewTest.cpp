// The property view: what it shows for the edited node, in which format, and what a double click on the bone does.
#include <cmath>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

#include <zelkin/CharacterizationModel.h>
#include <zelkin/RotationConversion.h>

#include "LineEditWithMouseBroadcast.h"
#include "PropertyView.h"
#include "ReadablePalette.h"
#include "TestHub.h"
#include "TestScenes.h"

namespace
{
class PropertyViewTest : public testing::Test
{
protected:
    // x, y, z of one row as shown.
    QStringList Row(PropertyView::Quantity quantity) const
    {
        QStringList values;
        for (int axis = 0; axis < 3; ++axis)
            values << view.GetValueField(quantity, axis)->text();
        return values;
    }

    QList<bool> Enabled(PropertyView::Quantity quantity) const
    {
        QList<bool> enabled;
        for (int axis = 0; axis < 3; ++axis)
            enabled << view.GetValueField(quantity, axis)->isEnabled();
        return enabled;
    }

    // A hips bone with this geometry, assigned and edited.
    void EditHips(const CharacterJointGeometry& geometry)
    {
        hub.AddBone("rig:Hips", "", geometry);
        ASSERT_TRUE(model.AssignBone(1, "rig:Hips"));
        model.SetEditedPart(1, false);
    }

    TestHub hub;
    CharacterizationModel model {&hub};
    PropertyView view {nullptr, &hub, &model};
};

TEST(PropertyViewFormat, ThreeDecimalsWithoutANegativeZero)
{
    EXPECT_EQ(PropertyView::FormatValue(1.0 * PropertyView::DegreesPerRadian), "57.296");
    EXPECT_EQ(PropertyView::FormatValue(1.23456), "1.235");
    EXPECT_EQ(PropertyView::FormatValue(-2.5), "-2.500");
    EXPECT_EQ(PropertyView::FormatValue(-0.0004), "0.000");
    EXPECT_EQ(PropertyView::FormatValue(12345.0), "12345.000");
    EXPECT_FALSE(PropertyView::FormatValue(std::nan("")).isEmpty());
}

TEST_F(PropertyViewTest, NoNodeSelectedLeavesEveryValueEmpty)
{
    EditHips(CharacterJointGeometry());
    model.SetEditedPart(CharacterizationModel::NoPart, false);
    EXPECT_EQ(view.GetStatusText(), "No node selected.");
    EXPECT_EQ(view.GetNodeText(), "");
    EXPECT_EQ(view.GetBoneText(), "");
    EXPECT_EQ(view.GetRotationOrderText(), "");
    for (int quantity = 0; quantity < PropertyView::QuantityCount; ++quantity)
    {
        EXPECT_EQ(Row(PropertyView::Quantity(quantity)), QStringList({"", "", ""}));
        EXPECT_EQ(Enabled(PropertyView::Quantity(quantity)), QList<bool>({false, false, false}));
        EXPECT_FALSE(view.GetQuantityLabel(PropertyView::Quantity(quantity))->isEnabled());
    }
}

TEST_F(PropertyViewTest, ANinetyDegreeTurnAboutXShowsInTheXColumn)
{
    CharacterJointGeometry geometry;
    geometry.SetTranslate(1, 2, -3);
    const float half = std::sqrt(0.5f);
    geometry.SetRotateQ(half, 0, 0, half);
    geometry.SetScale(1, 1, 2);
    EditHips(geometry);
    EXPECT_EQ(view.GetNodeText(), "Hips");
    EXPECT_EQ(view.GetBoneText(), "rig:Hips");
    EXPECT_EQ(view.GetRotationOrderText(), "Euler XYZ");
    EXPECT_EQ(Row(PropertyView::Translate), QStringList({"1.000", "2.000", "-3.000"}));
    EXPECT_EQ(Row(PropertyView::Rotate), QStringList({"90.000", "0.000", "0.000"}));
    EXPECT_EQ(Row(PropertyView::Scale), QStringList({"1.000", "1.000", "2.000"}));
    EXPECT_EQ(Row(PropertyView::PreRotate), QStringList({"0.000", "0.000", "0.000"}));
    EXPECT_EQ(Enabled(PropertyView::Rotate), QList<bool>({true, true, true}));
}

TEST_F(PropertyViewTest, TheRotationIsReadInTheJointsOwnOrder)
{
    CharacterJointGeometry geometry;
    const double degrees[3] = {10, 20, 30};
    float q[4];
    RotationConversion::EulerToQuaternion(degrees, ZELEulerZYX, q);
    geometry.SetRotateQ(q[0], q[1], q[2], q[3]);
    geometry.SetRotationOrder(ZELEulerZYX);
    RotationConversion::EulerToQuaternion(degrees, ZELEulerXYZ, q);
    geometry.SetPreRotQ(q[0], q[1], q[2], q[3]);
    EditHips(geometry);
    EXPECT_EQ(view.GetRotationOrderText(), "Euler ZYX");
    EXPECT_EQ(Row(PropertyView::Rotate), QStringList({"10.000", "20.000", "30.000"}));
    EXPECT_EQ(Row(PropertyView::PreRotate), QStringList({"10.000", "20.000", "30.000"}));
}

TEST_F(PropertyViewTest, LimitsAreShownInDegreesAndOnlyTheEnabledAxesAreEnabled)
{
    CharacterJointGeometry geometry;
    geometry.SetMinRLimit(1.0f, -0.5f, 0);
    geometry.SetMinRLimitEnable(true, false, false);
    geometry.SetMaxRLimit(0, 0, 3.14159265f);
    EditHips(geometry);
    EXPECT_EQ(Row(PropertyView::MinRotLimit), QStringList({"57.296", "-28.648", "0.000"}));
    EXPECT_EQ(Enabled(PropertyView::MinRotLimit), QList<bool>({true, false, false}));
    EXPECT_TRUE(view.GetQuantityLabel(PropertyView::MinRotLimit)->isEnabled());
    EXPECT_EQ(Row(PropertyView::MaxRotLimit), QStringList({"0.000", "0.000", "180.000"}));
    EXPECT_EQ(Enabled(PropertyView::MaxRotLimit), QList<bool>({false, false, false}));
    EXPECT_FALSE(view.GetQuantityLabel(PropertyView::MaxRotLimit)->isEnabled());
}

TEST_F(PropertyViewTest, AnUnknownRotationOrderShowsNoNameButStillTheValues)
{
    CharacterJointGeometry geometry;
    geometry.SetRotationOrder(static_cast<ZELRotationOrder>(99));
    EditHips(geometry);
    EXPECT_EQ(view.GetRotationOrderText(), "");
    EXPECT_EQ(PropertyView::RotationOrderName(ZELSphericXYZ), "Spheric XYZ");
    EXPECT_EQ(Row(PropertyView::Rotate), QStringList({"0.000", "0.000", "0.000"}));
}

TEST_F(PropertyViewTest, StatusTellsTheValidationResult)
{
    EditHips(CharacterJointGeometry());
    EXPECT_EQ(view.GetStatusText(), "Missing required bones.");

    // An unassigned node still shows its name and the status, but no values.
    model.SetEditedPart(15, false);
    EXPECT_EQ(view.GetNodeText(), "Head");
    EXPECT_EQ(view.GetBoneText(), "");
    EXPECT_EQ(Row(PropertyView::Translate), QStringList({"", "", ""}));
    EXPECT_EQ(view.GetStatusText(), "Missing required bones.");

    TestHub poseHub;
    CharacterizationModel poseModel(&poseHub);
    PropertyView poseView(nullptr, &poseHub, &poseModel);
    std::vector<CharacterizationModel::Assignment> pose = testscenes::AddHandMadeTPose(poseHub);
    ASSERT_TRUE(poseModel.AssignBones(pose));
    ASSERT_EQ(poseModel.GetValidationState(), Valid) << poseModel.GetValidationMessage();
    poseModel.SetEditedPart(1, false);
    EXPECT_EQ(poseView.GetStatusText(), "Characterization is valid.");
}

TEST(PropertyViewStatus, NothingValidatedYetIsNotEnoughInformation)
{
    CharacterizationModel model(nullptr);
    PropertyView view(nullptr, nullptr, &model);
    model.SetEditedPart(2, false);
    EXPECT_EQ(view.GetNodeText(), "LeftUpLeg");
    EXPECT_EQ(view.GetStatusText(), "Not enough information to validate.");
}

TEST_F(PropertyViewTest, FollowsTheModelAfterTheNodeWasChosen)
{
    hub.AddBone("rig:Head", "", 0, 170, 0);
    model.SetEditedPart(15, false);
    EXPECT_EQ(view.GetBoneText(), "");
    ASSERT_TRUE(model.AssignBone(15, "rig:Head"));
    EXPECT_EQ(view.GetBoneText(), "rig:Head");
    EXPECT_EQ(Row(PropertyView::Translate), QStringList({"0.000", "170.000", "0.000"}));
    EXPECT_EQ(Enabled(PropertyView::Translate), QList<bool>({true, true, true}));
    ASSERT_TRUE(model.ClearNode(15));
    EXPECT_EQ(view.GetBoneText(), "");
    EXPECT_EQ(Enabled(PropertyView::Translate), QList<bool>({false, false, false}));
}

TEST_F(PropertyViewTest, DoubleClickOnTheBoneSelectsItInTheHost)
{
    EditHips(CharacterJointGeometry());
    hub.selection.clear();
    QTest::mouseDClick(view.GetBoneField(), Qt::LeftButton);
    EXPECT_EQ(hub.selection, QStringList {"rig:Hips"});

    // Without a bone there is nothing to select.
    model.SetEditedPart(15, false);
    hub.selection = QStringList {"other"};
    QTest::mouseDClick(view.GetBoneField(), Qt::LeftButton);
    EXPECT_EQ(hub.selection, QStringList {"other"});
}

TEST_F(PropertyViewTest, ALongBoneNameIsCutInTheMiddleAndTheValuesTakeTheWidth)
{
    const QString bone = QStringLiteral("mixamorig:RightHandMiddle1_with_a_long_suffix");
    hub.AddBone(bone, "", 0, 100, 0);
    ASSERT_TRUE(model.AssignBone(1, bone));
    model.SetEditedPart(1, false);
    view.resize(262, view.sizeHint().height());
    view.show();
    QApplication::processEvents();

    LineEditWithMouseBroadcast* field = view.GetBoneField();
    EXPECT_EQ(field->text(), bone); // what a double click selects
    ASSERT_TRUE(field->IsElided());
    const QString shown = field->ShownText();
    EXPECT_TRUE(shown.startsWith(QStringLiteral("mixa")) && shown.endsWith(QStringLiteral("suffix"))) << shown.toStdString();
    EXPECT_TRUE(field->toolTip().startsWith(bone + QLatin1Char('\n')));
    field->setFocus();
    EXPECT_FALSE(field->IsElided()); // with the focus, to select and copy, the whole name

    // Wide, the labels keep their width and the rest goes to the values.
    view.resize(600, view.height());
    QApplication::processEvents();
    EXPECT_FALSE(field->IsElided());
    const QLabel* label = view.GetQuantityLabel(PropertyView::ParentOffsetR);
    EXPECT_LE(label->width(), label->sizeHint().width() + 8);
    EXPECT_GE(view.GetValueField(PropertyView::Translate, 2)->x(), 600 * 2 / 3);
}

QPalette Palette(const QColor& window, const QColor& base, const QColor& text, const QColor& disabledText)
{
    QPalette palette;
    for (QPalette::ColorRole role : {QPalette::Window, QPalette::Button})
        palette.setColor(role, window);
    palette.setColor(QPalette::Base, base);
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, disabledText);
    }
    return palette;
}

TEST_F(PropertyViewTest, ItsDisabledRowsStayReadableWhateverTheApplicationsPalette)
{
    const QPalette original = QApplication::palette();
    QWidget page; // as in the panel, inside a window
    PropertyView embedded(&page, &hub, &model);
    for (const QPalette& palette :
         {Palette(QColor(239, 239, 239), Qt::white, Qt::black, QColor(190, 190, 190)),
          Palette(QColor(45, 45, 48), QColor(30, 30, 32), QColor(232, 232, 232), QColor(50, 50, 50)),
          Palette(QColor(250, 250, 250), Qt::white, QColor(20, 20, 20), QColor(220, 220, 220))})
    {
        QApplication::setPalette(palette);
        QApplication::processEvents();
        for (const PropertyView* shown : {&view, &embedded})
        {
            const QLabel* limits = shown->GetQuantityLabel(PropertyView::MinRotLimit);
            ASSERT_FALSE(limits->isEnabled());
            const QPalette& shownPalette = limits->palette();
            EXPECT_EQ(shownPalette.color(QPalette::Window), palette.color(QPalette::Window));
            const QColor background = shownPalette.color(QPalette::Disabled, QPalette::Window);
            const double disabled = ContrastRatio(shownPalette.color(QPalette::Disabled, QPalette::WindowText), background);
            EXPECT_GE(disabled, 5.5);
            // Still dimmer than an enabled label.
            EXPECT_LT(disabled, ContrastRatio(shownPalette.color(QPalette::Active, QPalette::WindowText), background) * 0.6);
        }
    }
    QApplication::setPalette(original);
}

TEST_F(PropertyViewTest, SceneSelectionFollowsTheHost)
{
    hub.selection = QStringList {"rig:Hips", "rig:Spine"};
    emit hub.selectionChanged();
    EXPECT_EQ(view.GetSelectionText(), "rig:Hips, rig:Spine");
    hub.selection.clear();
    emit hub.selectionChanged();
    EXPECT_EQ(view.GetSelectionText(), "");
}

TEST_F(PropertyViewTest, EveryFieldIsReadOnly)
{
    EditHips(CharacterJointGeometry());
    for (QLineEdit* line : view.findChildren<QLineEdit*>())
        EXPECT_TRUE(line->isReadOnly());
}
} // namespace
