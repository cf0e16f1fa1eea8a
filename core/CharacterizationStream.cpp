#include <zelkin/CharacterizationStream.h>

#include <cstdlib>

#include <QCoreApplication>

#include <zelkin/Characterization.h>
#include <zelkin/StreamInfo.h>

#include "SolverCharacter.h"

namespace
{
QString Tr(const char* text)
{
    return QCoreApplication::translate("CharacterizationStream", text);
}

bool Refuse(QString* reason, const QString& text)
{
    if (reason != nullptr)
        *reason = text;
    return false;
}
} // namespace

QByteArray CharacterizationStream::Write(const Characterization& characterization, bool bigEndian, bool storedFlags)
{
    const SolverCharacter character(characterization, storedFlags);
    if (character.Get() == nullptr)
        return QByteArray();
    int32_t length = 0;
    void* buffer = ZELCharacterizationStreamWrite(&length, &character.GetDefinition(), character.Get(), bigEndian,
                                                  std::malloc, std::free);
    if (buffer == nullptr)
        return QByteArray();
    const QByteArray stream(static_cast<const char*>(buffer), length);
    std::free(buffer);
    return stream;
}

bool CharacterizationStream::Read(const QByteArray& stream, const QStringList& boneNames, Characterization& out,
                                  QString* reason)
{
    // The header check names the problem; the solver's reader would only say no.
    const StreamInfo info = StreamInfo::Read(stream.constData(), stream.size());
    if (!info.IsValid())
        return Refuse(reason, StreamInfo::Describe(info.GetProblem()));
    if (boneNames.size() != ZELNodeCount)
        return Refuse(reason, Tr("given %1 bone names instead of %2").arg(boneNames.size()).arg(ZELNodeCount));
    ZELCharacterDefinition definition {};
    ZELCharacter* character = ZELCharacterizationStreamRead(
        &definition, stream.constData(), static_cast<int32_t>(info.GetStreamLength()), std::malloc, std::free);
    if (character == nullptr)
        return Refuse(reason, Tr("not usable by the solver"));
    const bool read = ReadCharacterization(definition, character, boneNames, out);
    ZELCharacterDestroy(character, std::free);
    return read || Refuse(reason, Tr("its bone names do not fit the nodes it uses"));
}
