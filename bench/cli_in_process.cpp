// bench_cli's yardstick for isolation: the same command line as zelkin, but reading each skeleton with Assimp in
// its own process instead of in zelkin-reader, as the programs did before a hostile file could no longer take
// them down.
#include <string>

#include <QByteArray>
#include <QString>

#include "ReaderWire.h"
#include "SceneImporter.h"
#include "SkeletonReading.h"
#include "ZelkinMain.h"

namespace
{
void ReadHere(const QString& path, const SceneImporter::AnswerSink& answer)
{
    answer(QByteArray(readerwire::kMagic, sizeof readerwire::kMagic));
    // Left to the process's end, as zelkin-reader leaves it: the comparison is of the isolation, not of freeing.
    auto* reading = new SkeletonReading([&answer](readerwire::Frame type, const std::string& payload) {
        const std::string frame = readerwire::FrameOf(type, payload);
        answer(QByteArray(frame.data(), qsizetype(frame.size())));
    });
    reading->Read(path.toStdString());
}
} // namespace

int main(int argc, char** argv)
{
    SceneImporter::ReadInProcess(ReadHere);
    return RunZelkin(argc, argv);
}
