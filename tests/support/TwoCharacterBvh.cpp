#include "TwoCharacterBvh.h"

#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

namespace
{
// The sample's hierarchy with its joints renamed and its root made a joint `x` to the side; counts the channels.
QString SampleJoints(const QString& sample, const QString& prefix, double x, int& channels)
{
    QString joints = sample.mid(sample.indexOf("ROOT"), sample.indexOf("MOTION") - sample.indexOf("ROOT"));
    joints.replace("ROOT ", "JOINT ");
    joints.replace(QRegularExpression("JOINT (\\S+)"), "JOINT " + prefix + "\\1");
    joints.replace("OFFSET 0.00 95.00 0.00", QStringLiteral("OFFSET %1 95.00 0.00").arg(x));
    for (const QString& line : joints.split('\n'))
        if (line.trimmed().startsWith("CHANNELS"))
            channels += line.trimmed().section(' ', 1, 1).toInt();
    return joints;
}
} // namespace

QByteArray TwoCharacterBvh()
{
    QFile file(QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid.bvh"));
    file.open(QIODevice::ReadOnly);
    const QString sample = QString::fromUtf8(file.readAll());
    int channels = 6;
    QString bvh = "HIERARCHY\nROOT Stage\n{\n  OFFSET 0 0 0\n  CHANNELS 6 Xposition Yposition Zposition Zrotation "
                  "Xrotation Yrotation\n";
    bvh += SampleJoints(sample, "A_", -80.0, channels);
    bvh += SampleJoints(sample, "B_", 80.0, channels);
    bvh += "}\nMOTION\nFrames: 1\nFrame Time: 0.0333333\n";
    for (int i = 0; i < channels; ++i)
        bvh += "0 ";
    return (bvh + "\n").toUtf8();
}
