#include <gtest/gtest.h>

#include <QFile>
#include <QImage>

#include "FigureLayout.h"
#include "StateRepresentation.h"

using namespace FigureLayout;

namespace
{
QImage Resource(const QString& name)
{
    return QImage(":/" + name);
}

QString High(const QString& name)
{
    return name.left(name.size() - 4) + "@2x.png";
}

// Every name must be there at its size, and its @2x twin at twice that size.
void ExpectPicture(const QString& name, const QSize& size)
{
    const QImage plain = Resource(name);
    EXPECT_EQ(plain.size(), size) << name.toStdString();
    EXPECT_EQ(Resource(High(name)).size(), size * 2) << name.toStdString();
}

// The fill of a picture's shape: its centre, or beside the glyph of the status element.
QColor FillColour(const QString& name)
{
    const QImage image = Resource(name);
    return image.pixelColor(name.startsWith("Status") ? 4 : 10, 10);
}

// Equal but for anti-aliasing.
bool Similar(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return false;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y), q = b.pixelColor(x, y);
            if (std::abs(p.alpha() - q.alpha()) > 40 || std::abs(p.red() - q.red()) > 40)
                return false;
        }
    }
    return true;
}

const QColor Background(68, 68, 68);
} // namespace

TEST(FigureResources, EveryStatePictureOfEveryItemExists)
{
    const StateRepresentation states;
    int checked = 0;
    for (const QString& base : StatePictureBases()) {
        for (int index = 0; index < StateRepresentation::SuffixCount; ++index) {
            ExpectPicture(base + states.Suffix(index), QSize(PartExtent, PartExtent));
            ++checked;
        }
    }
    EXPECT_EQ(checked, 158 * 12);
    for (const ViewRecord& view : Views()) {
        for (const ArrowRecord& arrow : view.arrows) {
            if (!arrow.imageFile.isEmpty())
                ExpectPicture(arrow.imageFile, QSize(PartExtent, PartExtent));
        }
    }
}

TEST(FigureResources, BaseImagesMarkersAndBubblesExist)
{
    for (const ViewRecord& view : Views()) {
        ExpectPicture(view.baseImage.file, BaseImageSize);
        for (const InversionRecord& marker : view.inversions) {
            ExpectPicture(marker.invertedImage, QSize(PartExtent, PartExtent));
            ExpectPicture(marker.normalImage, QSize(PartExtent, PartExtent));
        }
    }
    for (const char* bubble :
         {"BubbleSmall_Green_Highlight.png", "BubbleSmall_Orange_Highlight.png", "BubbleSmall_Gray_Highlight.png",
          "BubbleSmall_Red.png", "BubbleSmall_Orange.png", "BubbleSmall_Green.png", "BubbleSmall_Gray.png"})
        ExpectPicture(bubble, QSize(16, 16));
    EXPECT_FALSE(QFile::exists(":/BubbleSmall_Red_Highlight.png"));
}

// Grey for plain, green valid, orange warning, red error, whatever the part's shape.
TEST(FigureResources, StateColoursReadAtAGlance)
{
    for (const char* name : {"Bones/FullBody/Hips", "Bones/Hands/LeftHandIndex2", "Bones/Feet/RightInFootRing",
                             "Bones/Neck_Spine/NeckSpine", "Bones/LegRolls/LeftShinRollBone", "Status"}) {
        const QString base = name;
        const QColor plain = FillColour(base + ".png");
        EXPECT_LT(std::abs(plain.red() - plain.blue()), 12) << base.toStdString();
        EXPECT_LT(std::abs(plain.red() - plain.green()), 12) << base.toStdString();
        const QColor valid = FillColour(base + "_Valid.png");
        EXPECT_GT(valid.green(), valid.red() + 60) << base.toStdString();
        const QColor warning = FillColour(base + "_Warn.png");
        EXPECT_GT(warning.red(), warning.green() + 40) << base.toStdString();
        EXPECT_GT(warning.green(), warning.blue() + 60) << base.toStdString();
        const QColor error = FillColour(base + "_Err.png");
        EXPECT_GT(error.red(), error.green() + 100) << base.toStdString();
    }
}

TEST(FigureResources, TheTwelveStatesOfAPartAllLookDifferent)
{
    const StateRepresentation states;
    for (const char* name : {"Bones/FullBody/LeftArm", "GoToArrow", "ReturnToArrow"}) {
        const QString base = name;
        std::vector<QImage> pictures;
        for (int index = 0; index < StateRepresentation::SuffixCount; ++index)
            pictures.push_back(Resource(base + states.Suffix(index)));
        for (size_t i = 0; i < pictures.size(); ++i) {
            for (size_t j = i + 1; j < pictures.size(); ++j)
                EXPECT_NE(pictures[i], pictures[j]) << base.toStdString() << " " << i << "/" << j;
        }
    }
    EXPECT_NE(Resource("LeftNormal.png"), Resource("LeftInversed.png"));
    EXPECT_TRUE(Similar(Resource("LeftNormal.png").mirrored(true, false), Resource("RightNormal.png")));
    EXPECT_FALSE(Similar(Resource("LeftNormal.png"), Resource("RightNormal.png")));
}

// Each part sits on the drawn body, not on the bare background; only the hips translation floats beside the hips.
TEST(FigureResources, PartsSitOnTheSilhouette)
{
    for (const ViewRecord& view : Views()) {
        const QImage base = Resource(view.baseImage.file);
        ASSERT_FALSE(base.isNull());
        EXPECT_EQ(base.pixelColor(base.width() - 1, 0), Background) << view.name.toStdString();
        for (const PartRecord& part : view.parts) {
            if (part.nodeId == 49)
                continue;
            const QPoint centre = Centre(part.placement).toPoint();
            EXPECT_NE(base.pixelColor(centre), Background) << view.name.toStdString() << " node " << part.nodeId;
        }
    }
}
