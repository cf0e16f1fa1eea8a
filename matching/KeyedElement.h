#pragma once

#include <cstdint>
#include <vector>

#include <QString>
#include <QStringList>
#include <QStringView>

class QXmlStreamAttributes;

// The "item" children of one key element as a table: one column per attribute name seen, all text in one pool.
// A million items cost a few dozen bytes each instead of a heap object per item and per attribute.
class ItemTable
{
public:
    int Count() const { return mCount; }
    const QStringList& Columns() const { return mColumns; }
    int ColumnOf(QStringView name) const;

    // Attribute names one table may collect; more means a hostile file, since each new one widens every row.
    static constexpr int MaxColumns = 64;

    // False, with nothing appended, when the item would bring the columns over MaxColumns.
    bool Append(const QXmlStreamAttributes& attributes);
    // Every row gets every column.
    void Assign(const QStringList& columns, const QList<QStringList>& rows);
    void Clear();

    bool HasCell(int item, int column) const;
    QStringView Cell(int item, int column) const;
    // Empty for a missing column or attribute.
    QStringView Cell(int item, QStringView column) const;

private:
    struct Span
    {
        static constexpr uint32_t Missing = 0xffffffffu;
        uint32_t start = Missing;
        uint32_t length = 0;
    };

    int AddColumn(const QString& name);
    void SetLastRowCell(int column, QStringView text);

    QStringList mColumns;
    QString mPool;
    std::vector<Span> mCells; // row-major, mCount rows of mColumns.size() cells
    int mCount = 0;
};

// One element of the keyed document: the root, a section or a key.
struct KeyedElement
{
    QString name;
    QString value;
    bool hasValue = false;
    // Its other attributes, as one row (none when it has no others).
    ItemTable attributes;
    ItemTable items;
    std::vector<KeyedElement> children;

    const KeyedElement* Child(const QString& childName) const;
    KeyedElement* Child(const QString& childName);
    void RemoveChildren(const QString& childName);
};
