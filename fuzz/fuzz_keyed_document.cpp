// Hostile bytes into the keyed document reader, and from there into the template and characterization readers.
// Besides never crashing or leaking, whatever the reader accepts must write out to text that reads back and
// writes again to the very same bytes.
#include <cstddef>
#include <cstdint>

#include <QByteArray>
#include <QtGlobal>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationXml.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/MappingTemplate.h>

#include "FuzzCheck.h"

namespace
{
void Quiet(QtMsgType, const QMessageLogContext&, const QString&) {}

// Every reading operation over every key, so that no stored shape is left untried.
void ReadEverything(const ConfigDocument& document)
{
    for (const QString& section : document.Sections())
        for (const QString& key : document.Keys(section))
        {
            const int count = document.ItemCount(section, key);
            require(document.ReadList(section, key).size() == count);
            require(document.ReadPairs(section, key).size() == count);
            document.ReadValue(section, key, QStringLiteral("default"));
            document.ReadBool(section, key, false);
            document.ReadTable(section, key, {QStringLiteral("use_root"), QStringLiteral("value")});
        }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QtMessageHandler previous = qInstallMessageHandler(Quiet);
    (void)previous;

    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    ConfigDocument document;
    if (!document.LoadFromData(bytes, QStringLiteral("fuzz")))
    {
        require(document.IsEmpty() && !document.ErrorString().isEmpty());
        return 0;
    }
    ReadEverything(document);

    MappingTemplate mappingTemplate;
    mappingTemplate.ReadFrom(document);
    Characterization characterization;
    CharacterizationXml::FromDocument(document, characterization);

    const QByteArray written = document.ToByteArray();
    ConfigDocument again;
    require(again.LoadFromData(written));
    require(again.ToByteArray() == written);
    return 0;
}
