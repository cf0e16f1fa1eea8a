#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

#include <zelkin/Characterization.h>

// The panel's files without the user interface: bytes in and out, and the ".bones.xml" companion of a ".zelc"
// stream. Every operation that can fail returns the reason for the user, empty on success; writes are atomic.
namespace CharacterizationFiles
{
using FileContent = QPair<QString, QByteArray>;

QString SaveBytes(const QString& path, const QByteArray& bytes);
// All the files or none: each is written aside first, and only when all are written are they put in place.
QString SaveTogether(const QList<FileContent>& files);
// At most `limit` bytes: a stream never needs more, and a wrong file must not fill memory.
QString LoadBytes(const QString& path, qint64 limit, QByteArray& bytes);

// "hero.zelc" -> "hero.bones.xml".
QString BonesFileFor(const QString& binaryPath);
// The characterization's name and its 212 bone names; empty when a name cannot be stored in XML.
QByteArray BoneCorrespondence(const Characterization& characterization);

// The same characterization with every rotation limit switched off.
Characterization WithoutRotationLimits(const Characterization& characterization);

// The largest stream the solver writes: every node with full geometry.
constexpr qint64 LargestStream = 872 + 120 * 212;
} // namespace CharacterizationFiles
