#pragma once

#include <array>

#include <QString>
#include <QStringList>

#include <zelkin/CharacterizationExport.h>
#include <zelkin/ZELSolver.h>

class Characterization;
class ConfigDocument;

// A per-node list of bone-name patterns: entry i belongs to node i. Stored as the keyed document's "match_list",
// one "item" per node in node order with "key" (the node's name, for people), "value" (the pattern) and
// "use_root" ("true" or "false").
class ZELKIN_CHARACTERIZATION_EXPORT MappingTemplate
{
public:
    struct Entry
    {
        QString pattern;
        bool useRoot = false;
        bool operator==(const Entry& other) const { return pattern == other.pattern && useRoot == other.useRoot; }
    };

    // Every node with an empty pattern.
    MappingTemplate() = default;

    // Out-of-range identifiers read as an empty entry and are ignored when set.
    const Entry& GetEntry(int nodeId) const;
    void SetEntry(int nodeId, const QString& pattern, bool useRoot = false);
    // True when no entry has a pattern or the root flag.
    bool IsEmpty() const;

    // Items are taken in document order; items past the last node are ignored, missing ones stay empty.
    // False, with a message, when the document has no "match_list".
    bool ReadFrom(const ConfigDocument& document, QString* error = nullptr);
    bool WriteTo(ConfigDocument& document) const;
    bool Load(const QString& fileName, QString* error = nullptr);
    bool Save(const QString& fileName, QString* error = nullptr) const;

    // The characterization's bones with the prefix (and the delimiter after it) removed; unmapped nodes get an
    // empty pattern and no entry uses the root.
    static MappingTemplate Extract(const Characterization& characterization, const QString& prefix,
                                   const QStringList& delimiters);

    bool operator==(const MappingTemplate& other) const { return mEntries == other.mEntries; }
    bool operator!=(const MappingTemplate& other) const { return !(*this == other); }

private:
    std::array<Entry, ZELNodeCount> mEntries;
};
