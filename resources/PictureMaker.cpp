// Draws every picture of the figure, each also at twice the size, and lists them in a resource collection file for
// rcc. Everything goes into a staging folder that replaces the old one in a single rename, so a build never sees a
// half-drawn set; syncing three thousand small files one by one would cost most of the build's time.

#include <cstdio>
#include <functional>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QSet>
#include <QString>
#include <QStringList>

#include "FigureLayout.h"
#include "FigureSilhouettes.h"
#include "PartPictures.h"
#include "StateRepresentation.h"

namespace
{
bool Fail(const QString& path)
{
    std::fprintf(stderr, "zelkin_picture_maker: cannot write %s\n", qPrintable(path));
    return false;
}

using Drawing = std::function<QImage(int scale)>;

class PictureWriter
{
public:
    explicit PictureWriter(const QString& root) : mRoot(root) {}

    // Writes name and its @2x twin; a name already written is kept as it is.
    bool Write(const QString& name, const Drawing& draw)
    {
        if (mWritten.contains(name))
            return true;
        const QString high = name.left(name.size() - 4) + "@2x.png";
        if (!Save(name, draw(1)) || !Save(high, draw(2)))
            return false;
        mNames << name << high;
        mWritten.insert(name);
        return true;
    }

    bool WriteCollection(const QString& fileName) const
    {
        QByteArray text = "<!DOCTYPE RCC>\n<RCC version=\"1.0\">\n<qresource prefix=\"/\">\n";
        for (const QString& name : mNames)
            text += "<file>" + name.toUtf8() + "</file>\n";
        text += "</qresource>\n</RCC>\n";
        QFile file(mRoot.filePath(fileName));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush())
            return Fail(file.fileName());
        return true;
    }

    int Count() const { return mNames.size(); }

private:
    bool Save(const QString& name, const QImage& image) const
    {
        const QString path = mRoot.filePath(name);
        if (!mRoot.mkpath(QFileInfo(name).path()))
            return Fail(path);
        if (!image.save(path, "PNG"))
            return Fail(path);
        return true;
    }

    QDir mRoot;
    QStringList mNames;
    QSet<QString> mWritten;
};

bool WriteStatePictures(PictureWriter& writer)
{
    const StateRepresentation states;
    for (const QString& base : FigureLayout::StatePictureBases()) {
        for (int index = 0; index < StateRepresentation::SuffixCount; ++index) {
            const Drawing draw = [&base, index](int scale) { return PartPictures::StatePicture(base, index, scale); };
            if (!writer.Write(base + states.Suffix(index), draw))
                return false;
        }
    }
    return true;
}

bool WriteViewPictures(PictureWriter& writer)
{
    for (const FigureLayout::ViewRecord& view : FigureLayout::Views()) {
        const Drawing base = [&view](int scale) { return FigureSilhouettes::BaseImage(view, scale); };
        if (!writer.Write(view.baseImage.file, base))
            return false;
        for (const FigureLayout::InversionRecord& marker : view.inversions) {
            for (const QString& name : {marker.invertedImage, marker.normalImage}) {
                const bool left = name.startsWith("Left");
                const bool inverted = name == marker.invertedImage;
                const Drawing draw = [left, inverted](int scale) {
                    return PartPictures::InversionPicture(left, inverted, scale);
                };
                if (!writer.Write(name, draw))
                    return false;
            }
        }
    }
    return true;
}

// The name match view's state bubbles; it has no red highlight.
bool WriteBubbles(PictureWriter& writer)
{
    struct Bubble
    {
        const char* colour;
        bool highlight;
    };
    const Bubble bubbles[] = {{"Green", true}, {"Orange", true}, {"Gray", true}, {"Red", false},
                              {"Orange", false}, {"Green", false}, {"Gray", false}};
    for (const Bubble& bubble : bubbles) {
        const QString colour = bubble.colour;
        const bool highlight = bubble.highlight;
        const QString name = "BubbleSmall_" + colour + (highlight ? "_Highlight.png" : ".png");
        const Drawing draw = [colour, highlight](int scale) { return PartPictures::Bubble(colour, highlight, scale); };
        if (!writer.Write(name, draw))
            return false;
    }
    return true;
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: zelkin_picture_maker OUTPUT_FOLDER\n");
        return 2;
    }
    const QString target = QDir::cleanPath(QString::fromLocal8Bit(argv[1]));
    const QString staging = target + ".partial";
    QDir(staging).removeRecursively();
    PictureWriter writer(staging);
    if (!WriteStatePictures(writer) || !WriteViewPictures(writer) || !WriteBubbles(writer)
        || !writer.WriteCollection("figures.qrc"))
        return 1;
    if (!QDir(target).removeRecursively() || !QDir().rename(staging, target)) {
        Fail(target);
        return 1;
    }
    std::printf("zelkin_picture_maker: %d pictures\n", writer.Count());
    return 0;
}
