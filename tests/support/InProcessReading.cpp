#include "InProcessReading.h"

#include <memory>
#include <string>

#include <QByteArray>
#include <QString>

#include "ReaderWire.h"
#include "SceneImporter.h"
#include "SkeletonReading.h"

void ReadSkeletonsInProcess(bool keepUntilExit)
{
    SceneImporter::ReadInProcess([keepUntilExit](const QString& path, const SceneImporter::AnswerSink& answer) {
        answer(QByteArray(readerwire::kMagic, sizeof readerwire::kMagic));
        auto reading = std::make_unique<SkeletonReading>([&answer](readerwire::Frame type, const std::string& payload) {
            const std::string frame = readerwire::FrameOf(type, payload);
            answer(QByteArray(frame.data(), qsizetype(frame.size())));
        });
        reading->Read(path.toStdString());
        if (keepUntilExit)
            reading.release();
    });
}
