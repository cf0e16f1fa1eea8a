#pragma once

#include <memory>

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <zelkin/CharacterizationExport.h>

// The keyed XML document behind the configuration, the mapping templates and the characterization files:
//
//   <config_root>
//       <section>
//           <key value="single value"/>
//           <key><item value="list entry"/>...</key>
//           <key><item key="a" value="b"/>...</key>
//           <entry path="a"/><entry path="b"/>   (a key that repeats, its setting in attributes of its own)
//       </section>
//       <key value="..."/>            (an empty section name addresses keys placed directly under the root)
//   </config_root>
//
// Items are kept as compact attribute tables, so documents with millions of items stay small in memory.
class ZELKIN_CHARACTERIZATION_EXPORT ConfigDocument
{
public:
    using Pair = QPair<QString, QString>;

    // Larger files are refused before parsing.
    static constexpr qint64 MaxFileSize = qint64(64) * 1024 * 1024;
    // Sections and keys (not items) one document may hold; bounds the memory a hostile file can claim.
    static constexpr int MaxElements = 250000;

    ConfigDocument();
    ConfigDocument(const ConfigDocument& other);
    ConfigDocument& operator=(const ConfigDocument& other);
    ConfigDocument(ConfigDocument&& other);
    ConfigDocument& operator=(ConfigDocument&& other) noexcept;
    ~ConfigDocument();

    // Reads the file; a missing or empty file gives an empty document and true. On any failure the document is
    // empty, the diagnostic goes to the debug output, ErrorString() says why and the result is false.
    bool Load(const QString& fileName);
    // The same for bytes in memory; sourceName stands in for the file name in messages.
    bool LoadFromData(const QByteArray& data, const QString& sourceName = QString());
    const QString& ErrorString() const;
    const QString& FileName() const;

    // Writes atomically (4-space indentation); on failure the old file stays and ErrorString() says why.
    bool Save(const QString& fileName);
    // Writes back to the loaded file only when something changed; failures are silent.
    void SaveIfModified();
    QByteArray ToByteArray() const;

    bool IsModified() const;
    void SetModified(bool modified);
    bool IsEmpty() const;
    void Clear();

    QStringList Sections() const;
    QStringList Keys(const QString& section) const;
    bool HasKey(const QString& section, const QString& key) const;
    int ItemCount(const QString& section, const QString& key) const;

    QString ReadValue(const QString& section, const QString& key, const QString& defaultValue = QString()) const;
    bool ReadBool(const QString& section, const QString& key, bool defaultValue) const;
    QStringList ReadList(const QString& section, const QString& key) const;
    QList<Pair> ReadPairs(const QString& section, const QString& key) const;
    // One row per item, one column per requested attribute; a missing attribute reads as an empty string.
    QList<QStringList> ReadTable(const QString& section, const QString& key, const QStringList& attributes) const;
    // One row per element of that name in the section (document order), one column per requested attribute of the
    // element itself; a missing attribute reads as an empty string.
    QList<QStringList> ReadEntries(const QString& section, const QString& key, const QStringList& attributes) const;

    // Each write replaces the whole key element (appended at the end of its section) and marks the document
    // modified. Section and key must be XML names; otherwise nothing is written and the result is false.
    bool WriteValue(const QString& section, const QString& key, const QString& value);
    bool WriteBool(const QString& section, const QString& key, bool value);
    bool WriteList(const QString& section, const QString& key, const QStringList& values);
    bool WritePairs(const QString& section, const QString& key, const QList<Pair>& pairs);
    bool WriteTable(const QString& section, const QString& key, const QStringList& attributes,
                    const QList<QStringList>& rows);
    // Replaces every element of that name in the section by one element per row, appended in row order.
    bool WriteEntries(const QString& section, const QString& key, const QStringList& attributes,
                      const QList<QStringList>& rows);
    void RemoveKey(const QString& section, const QString& key);

    static bool IsValidName(const QString& name);

private:
    struct Data;
    bool Fail(const QString& message);
    static bool CanWriteTable(const QString& section, const QString& key, const QStringList& attributes,
                              const QList<QStringList>& rows);
    bool ParseDevice(class QIODevice& device, const QString& sourceName);

    std::unique_ptr<Data> d;
};
