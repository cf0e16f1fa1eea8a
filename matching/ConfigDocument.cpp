#include <zelkin/ConfigDocument.h>

#include <algorithm>

#include <QBuffer>
#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSet>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include "KeyedElement.h"

namespace
{
const QString RootName = QStringLiteral("config_root");
const QString ItemName = QStringLiteral("item");
const QString ValueAttribute = QStringLiteral("value");
const QString KeyAttribute = QStringLiteral("key");

// Root, section, key: anything deeper than a key's items is not part of the format and is skipped.
constexpr int KeyDepth = 3;

QString Tr(const char* text)
{
    return QCoreApplication::translate("ConfigDocument", text);
}

bool IsXmlChar(char16_t c)
{
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD);
}

// Text that XML 1.0 can carry: no control characters, no lone surrogates.
bool IsXmlText(const QString& text)
{
    for (qsizetype i = 0; i < text.size(); ++i)
    {
        const QChar c = text[i];
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
        {
            ++i;
            continue;
        }
        if (c.isSurrogate() || !IsXmlChar(c.unicode()))
            return false;
    }
    return true;
}

bool IsXmlText(const QStringList& texts)
{
    return std::all_of(texts.begin(), texts.end(), [](const QString& text) { return IsXmlText(text); });
}

class KeyedReader
{
public:
    KeyedReader(QIODevice& device, KeyedElement& root) : mReader(&device), mRoot(root)
    {
        mReader.setNamespaceProcessing(false);
    }

    bool Read()
    {
        while (!mReader.atEnd() && !mReader.hasError())
        {
            const QXmlStreamReader::TokenType token = mReader.readNext();
            if (token == QXmlStreamReader::StartElement)
                StartElement();
            else if (token == QXmlStreamReader::EndElement)
                EndElement();
        }
        if (!mReader.hasError() && !mSawRoot)
            mReader.raiseError(Tr("The document has no root element."));
        return !mReader.hasError();
    }

    QString ErrorText(const QString& sourceName) const
    {
        return QStringLiteral("Error in parsing %1 %2 at line %3 at column %4")
            .arg(sourceName, mReader.errorString())
            .arg(mReader.lineNumber())
            .arg(mReader.columnNumber());
    }

private:
    void StartElement()
    {
        if (mSkipDepth > 0)
        {
            ++mSkipDepth;
            return;
        }
        if (mStack.empty())
        {
            OpenRoot();
            return;
        }
        KeyedElement* parent = mStack.back();
        if (mReader.name() == ItemName && parent != &mRoot)
        {
            if (!parent->items.Append(mReader.attributes()))
                mReader.raiseError(Tr("The items of \"%1\" carry more than %2 different attributes.")
                                       .arg(parent->name)
                                       .arg(ItemTable::MaxColumns));
            mSkipDepth = 1;
        }
        else if (int(mStack.size()) >= KeyDepth)
            mSkipDepth = 1;
        else
            OpenChild(*parent);
    }

    void EndElement()
    {
        if (mSkipDepth > 0)
            --mSkipDepth;
        else if (!mStack.empty())
            mStack.pop_back();
    }

    void OpenRoot()
    {
        if (mReader.name() != RootName)
        {
            mReader.raiseError(Tr("The root element is \"%1\", not \"config_root\".").arg(mReader.name()));
            return;
        }
        mSawRoot = true;
        mStack.push_back(&mRoot);
    }

    void OpenChild(KeyedElement& parent)
    {
        if (++mElementCount > ConfigDocument::MaxElements)
        {
            mReader.raiseError(Tr("The document holds more than %1 sections and keys.").arg(ConfigDocument::MaxElements));
            return;
        }
        // Only the deepest open element grows, so the pointers held for its ancestors stay valid.
        parent.children.emplace_back();
        KeyedElement& child = parent.children.back();
        child.name = mReader.name().toString();
        const QXmlStreamAttributes attributes = mReader.attributes();
        child.hasValue = attributes.hasAttribute(ValueAttribute);
        child.value = attributes.value(ValueAttribute).toString();
        QXmlStreamAttributes others;
        for (const QXmlStreamAttribute& attribute : attributes)
        {
            if (attribute.qualifiedName() != ValueAttribute)
                others.append(attribute);
        }
        if (!others.isEmpty() && !child.attributes.Append(others))
            mReader.raiseError(Tr("\"%1\" carries more than %2 attributes.").arg(child.name).arg(ItemTable::MaxColumns));
        mStack.push_back(&child);
    }

    QXmlStreamReader mReader;
    KeyedElement& mRoot;
    std::vector<KeyedElement*> mStack;
    int mSkipDepth = 0;
    int mElementCount = 0;
    bool mSawRoot = false;
};

void WriteElement(QXmlStreamWriter& writer, const KeyedElement& element)
{
    writer.writeStartElement(element.name);
    if (element.hasValue)
        writer.writeAttribute(ValueAttribute, element.value);
    const ItemTable& own = element.attributes;
    for (int column = 0; column < own.Columns().size(); ++column)
        if (own.HasCell(0, column))
            writer.writeAttribute(own.Columns()[column], own.Cell(0, column).toString());
    const ItemTable& items = element.items;
    for (int item = 0; item < items.Count(); ++item)
    {
        writer.writeEmptyElement(ItemName);
        for (int column = 0; column < items.Columns().size(); ++column)
            if (items.HasCell(item, column))
                writer.writeAttribute(items.Columns()[column], items.Cell(item, column).toString());
    }
    for (const KeyedElement& child : element.children)
        WriteElement(writer, child);
    writer.writeEndElement();
}

KeyedElement EmptyRoot()
{
    KeyedElement root;
    root.name = RootName;
    return root;
}
} // namespace

struct ConfigDocument::Data
{
    KeyedElement root = EmptyRoot();
    QString fileName;
    QString error;
    bool modified = false;

    const KeyedElement* Key(const QString& section, const QString& key) const
    {
        const KeyedElement* parent = section.isEmpty() ? &root : root.Child(section);
        return parent ? parent->Child(key) : nullptr;
    }

    // Made when missing.
    KeyedElement& Section(const QString& section)
    {
        KeyedElement* parent = section.isEmpty() ? &root : root.Child(section);
        if (!parent)
        {
            root.children.emplace_back();
            parent = &root.children.back();
            parent->name = section;
        }
        return *parent;
    }

    KeyedElement& AppendKey(KeyedElement& parent, const QString& key)
    {
        parent.children.emplace_back();
        parent.children.back().name = key;
        modified = true;
        return parent.children.back();
    }

    KeyedElement& ReplaceKey(const QString& section, const QString& key)
    {
        KeyedElement& parent = Section(section);
        parent.RemoveChildren(key);
        return AppendKey(parent, key);
    }
};

ConfigDocument::ConfigDocument() : d(std::make_unique<Data>()) {}
ConfigDocument::ConfigDocument(const ConfigDocument& other) : d(std::make_unique<Data>(*other.d)) {}
// The moved-from document stays usable (and empty).
ConfigDocument::ConfigDocument(ConfigDocument&& other) : d(std::make_unique<Data>())
{
    d.swap(other.d);
}
ConfigDocument::~ConfigDocument() = default;

ConfigDocument& ConfigDocument::operator=(const ConfigDocument& other)
{
    if (this != &other)
        *d = *other.d;
    return *this;
}

ConfigDocument& ConfigDocument::operator=(ConfigDocument&& other) noexcept
{
    d.swap(other.d);
    return *this;
}

bool ConfigDocument::Fail(const QString& message)
{
    qWarning().noquote() << message;
    d->root = EmptyRoot();
    d->error = message;
    d->modified = false;
    return false;
}

bool ConfigDocument::ParseDevice(QIODevice& device, const QString& sourceName)
{
    KeyedElement root = EmptyRoot();
    KeyedReader reader(device, root);
    if (!reader.Read())
        return Fail(reader.ErrorText(sourceName));
    d->root = std::move(root);
    return true;
}

bool ConfigDocument::Load(const QString& fileName)
{
    Clear();
    d->fileName = fileName;
    const QFileInfo info(fileName);
    if (!info.exists())
        return true;
    if (!info.isFile())
        return Fail(Tr("%1 is not a file.").arg(fileName));
    if (info.size() > MaxFileSize)
        return Fail(Tr("%1 is %2 bytes long; files over 64 MiB are not read.").arg(fileName).arg(info.size()));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return Fail(Tr("Cannot open %1: %2").arg(fileName, file.errorString()));
    if (file.size() == 0)
        return true;
    return ParseDevice(file, fileName);
}

bool ConfigDocument::LoadFromData(const QByteArray& data, const QString& sourceName)
{
    Clear();
    const QString name = sourceName.isEmpty() ? Tr("(data)") : sourceName;
    if (data.size() > MaxFileSize)
        return Fail(Tr("%1 is %2 bytes long; documents over 64 MiB are not read.").arg(name).arg(data.size()));
    if (data.isEmpty())
        return true;
    QByteArray bytes = data;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return ParseDevice(buffer, name);
}

const QString& ConfigDocument::ErrorString() const { return d->error; }
const QString& ConfigDocument::FileName() const { return d->fileName; }

QByteArray ConfigDocument::ToByteArray() const
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter writer(&buffer);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(4);
    writer.writeStartDocument();
    WriteElement(writer, d->root);
    writer.writeEndDocument();
    return bytes;
}

bool ConfigDocument::Save(const QString& fileName)
{
    d->error.clear();
    const QFileInfo info(fileName);
    QDir().mkpath(info.absolutePath());
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
    {
        d->error = Tr("Cannot write %1: %2").arg(fileName, file.errorString());
        return false;
    }
    const QByteArray bytes = ToByteArray();
    // commit() does not check the flush it makes on closing: a file cut short by a full disk would be put in place.
    if (file.write(bytes) != bytes.size() || !file.flush() || !file.commit())
    {
        d->error = Tr("Cannot write %1: %2").arg(fileName, file.errorString());
        file.cancelWriting();
        return false;
    }
    d->modified = false;
    return true;
}

void ConfigDocument::SaveIfModified()
{
    if (d->modified && !d->fileName.isEmpty())
        Save(d->fileName);
}

bool ConfigDocument::IsModified() const { return d->modified; }
void ConfigDocument::SetModified(bool modified) { d->modified = modified; }
bool ConfigDocument::IsEmpty() const { return d->root.children.empty(); }

void ConfigDocument::Clear()
{
    d->root = EmptyRoot();
    d->error.clear();
    d->modified = false;
}

QStringList ConfigDocument::Sections() const
{
    QStringList names;
    QSet<QString> seen;
    for (const KeyedElement& child : d->root.children)
        if (!seen.contains(child.name))
        {
            seen.insert(child.name);
            names.append(child.name);
        }
    return names;
}

QStringList ConfigDocument::Keys(const QString& section) const
{
    QStringList names;
    const KeyedElement* parent = section.isEmpty() ? &d->root : d->root.Child(section);
    if (parent)
        for (const KeyedElement& child : parent->children)
            names.append(child.name);
    return names;
}

bool ConfigDocument::HasKey(const QString& section, const QString& key) const
{
    return d->Key(section, key) != nullptr;
}

int ConfigDocument::ItemCount(const QString& section, const QString& key) const
{
    const KeyedElement* element = d->Key(section, key);
    return element ? element->items.Count() : 0;
}

QString ConfigDocument::ReadValue(const QString& section, const QString& key, const QString& defaultValue) const
{
    const KeyedElement* element = d->Key(section, key);
    return element && element->hasValue ? element->value : defaultValue;
}

bool ConfigDocument::ReadBool(const QString& section, const QString& key, bool defaultValue) const
{
    const QString text = ReadValue(section, key);
    if (text == QLatin1String("true"))
        return true;
    if (text == QLatin1String("false"))
        return false;
    return defaultValue;
}

QStringList ConfigDocument::ReadList(const QString& section, const QString& key) const
{
    QStringList values;
    const KeyedElement* element = d->Key(section, key);
    if (!element)
        return values;
    const ItemTable& items = element->items;
    const int column = items.ColumnOf(ValueAttribute);
    values.reserve(items.Count());
    for (int item = 0; item < items.Count(); ++item)
        values.append(items.Cell(item, column).toString());
    return values;
}

QList<ConfigDocument::Pair> ConfigDocument::ReadPairs(const QString& section, const QString& key) const
{
    QList<Pair> pairs;
    const QList<QStringList> rows = ReadTable(section, key, {KeyAttribute, ValueAttribute});
    pairs.reserve(rows.size());
    for (const QStringList& row : rows)
        pairs.append(Pair(row[0], row[1]));
    return pairs;
}

QList<QStringList> ConfigDocument::ReadTable(const QString& section, const QString& key,
                                             const QStringList& attributes) const
{
    QList<QStringList> rows;
    const KeyedElement* element = d->Key(section, key);
    if (!element)
        return rows;
    const ItemTable& items = element->items;
    QList<int> columns;
    for (const QString& attribute : attributes)
        columns.append(items.ColumnOf(attribute));
    rows.reserve(items.Count());
    for (int item = 0; item < items.Count(); ++item)
    {
        QStringList row;
        row.reserve(columns.size());
        for (int column : columns)
            row.append(items.Cell(item, column).toString());
        rows.append(row);
    }
    return rows;
}

QList<QStringList> ConfigDocument::ReadEntries(const QString& section, const QString& key,
                                               const QStringList& attributes) const
{
    QList<QStringList> rows;
    const KeyedElement* parent = section.isEmpty() ? &d->root : d->root.Child(section);
    if (!parent)
        return rows;
    for (const KeyedElement& child : parent->children)
    {
        if (child.name != key)
            continue;
        QStringList row;
        row.reserve(attributes.size());
        for (const QString& attribute : attributes)
            row.append(attribute == ValueAttribute ? child.value : child.attributes.Cell(0, attribute).toString());
        rows.append(row);
    }
    return rows;
}

bool ConfigDocument::IsValidName(const QString& name)
{
    if (name.isEmpty() || !(name[0].isLetter() || name[0] == QLatin1Char('_')))
        return false;
    return std::all_of(name.begin(), name.end(), [](QChar c) {
        return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('-') || c == QLatin1Char('.');
    });
}

bool ConfigDocument::WriteValue(const QString& section, const QString& key, const QString& value)
{
    if ((!section.isEmpty() && !IsValidName(section)) || !IsValidName(key) || !IsXmlText(value))
        return false;
    KeyedElement& element = d->ReplaceKey(section, key);
    element.hasValue = true;
    element.value = value;
    return true;
}

bool ConfigDocument::WriteBool(const QString& section, const QString& key, bool value)
{
    return WriteValue(section, key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

bool ConfigDocument::WriteList(const QString& section, const QString& key, const QStringList& values)
{
    QList<QStringList> rows;
    rows.reserve(values.size());
    for (const QString& value : values)
        rows.append(QStringList {value});
    return WriteTable(section, key, {ValueAttribute}, rows);
}

bool ConfigDocument::WritePairs(const QString& section, const QString& key, const QList<Pair>& pairs)
{
    QList<QStringList> rows;
    rows.reserve(pairs.size());
    for (const Pair& pair : pairs)
        rows.append(QStringList {pair.first, pair.second});
    return WriteTable(section, key, {KeyAttribute, ValueAttribute}, rows);
}

bool ConfigDocument::CanWriteTable(const QString& section, const QString& key, const QStringList& attributes,
                                   const QList<QStringList>& rows)
{
    if ((!section.isEmpty() && !IsValidName(section)) || !IsValidName(key))
        return false;
    QStringList distinct = attributes;
    if (!std::all_of(attributes.begin(), attributes.end(), IsValidName) || distinct.removeDuplicates() > 0)
        return false;
    return std::all_of(rows.begin(), rows.end(), [](const QStringList& row) { return IsXmlText(row); });
}

bool ConfigDocument::WriteTable(const QString& section, const QString& key, const QStringList& attributes,
                                const QList<QStringList>& rows)
{
    if (!CanWriteTable(section, key, attributes, rows))
        return false;
    d->ReplaceKey(section, key).items.Assign(attributes, rows);
    return true;
}

bool ConfigDocument::WriteEntries(const QString& section, const QString& key, const QStringList& attributes,
                                  const QList<QStringList>& rows)
{
    if (!CanWriteTable(section, key, attributes, rows))
        return false;
    KeyedElement& parent = d->Section(section);
    parent.RemoveChildren(key);
    d->modified = true;
    const int valueColumn = attributes.indexOf(ValueAttribute);
    QStringList others = attributes;
    others.removeAll(ValueAttribute);
    for (const QStringList& row : rows)
    {
        KeyedElement& entry = d->AppendKey(parent, key);
        QStringList cells;
        for (int column = 0; column < attributes.size(); ++column)
        {
            const QString cell = row.value(column);
            if (column == valueColumn)
            {
                entry.hasValue = true;
                entry.value = cell;
            }
            else
                cells.append(cell);
        }
        if (!others.isEmpty())
            entry.attributes.Assign(others, {cells});
    }
    return true;
}

void ConfigDocument::RemoveKey(const QString& section, const QString& key)
{
    KeyedElement* parent = section.isEmpty() ? &d->root : d->root.Child(section);
    if (parent && parent->Child(key))
    {
        parent->RemoveChildren(key);
        d->modified = true;
    }
}
