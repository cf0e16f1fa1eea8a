#include "KeyedElement.h"

#include <algorithm>

#include <QXmlStreamAttributes>

int ItemTable::ColumnOf(QStringView name) const
{
    for (int i = 0; i < mColumns.size(); ++i)
        if (mColumns[i] == name)
            return i;
    return -1;
}

int ItemTable::AddColumn(const QString& name)
{
    // Columns appear with the first items, so widening the earlier rows is rare and cheap.
    const size_t oldWidth = size_t(mColumns.size());
    mColumns.append(name);
    const size_t newWidth = oldWidth + 1;
    std::vector<Span> widened(size_t(mCount) * newWidth);
    for (size_t row = 0; row < size_t(mCount); ++row)
        std::copy_n(mCells.begin() + row * oldWidth, oldWidth, widened.begin() + row * newWidth);
    mCells.swap(widened);
    return int(oldWidth);
}

void ItemTable::SetLastRowCell(int column, QStringView text)
{
    Span& span = mCells[size_t(mCount - 1) * size_t(mColumns.size()) + size_t(column)];
    span.start = uint32_t(mPool.size());
    span.length = uint32_t(text.size());
    mPool.append(text);
}

bool ItemTable::Append(const QXmlStreamAttributes& attributes)
{
    int newColumns = 0;
    for (const QXmlStreamAttribute& attribute : attributes)
        newColumns += ColumnOf(attribute.qualifiedName()) < 0 ? 1 : 0;
    if (mColumns.size() + newColumns > MaxColumns)
        return false;
    ++mCount;
    mCells.resize(size_t(mCount) * size_t(mColumns.size()));
    for (const QXmlStreamAttribute& attribute : attributes)
    {
        int column = ColumnOf(attribute.qualifiedName());
        if (column < 0)
            column = AddColumn(attribute.qualifiedName().toString());
        SetLastRowCell(column, attribute.value());
    }
    return true;
}

void ItemTable::Assign(const QStringList& columns, const QList<QStringList>& rows)
{
    Clear();
    mColumns = columns;
    for (const QStringList& row : rows)
    {
        ++mCount;
        mCells.resize(size_t(mCount) * size_t(mColumns.size()));
        for (int column = 0; column < mColumns.size(); ++column)
            SetLastRowCell(column, column < row.size() ? QStringView(row[column]) : QStringView());
    }
}

void ItemTable::Clear()
{
    mColumns.clear();
    mPool.clear();
    mCells.clear();
    mCount = 0;
}

bool ItemTable::HasCell(int item, int column) const
{
    if (item < 0 || item >= mCount || column < 0 || column >= mColumns.size())
        return false;
    return mCells[size_t(item) * size_t(mColumns.size()) + size_t(column)].start != Span::Missing;
}

QStringView ItemTable::Cell(int item, int column) const
{
    if (!HasCell(item, column))
        return {};
    const Span& span = mCells[size_t(item) * size_t(mColumns.size()) + size_t(column)];
    return QStringView(mPool).mid(span.start, span.length);
}

QStringView ItemTable::Cell(int item, QStringView column) const
{
    return Cell(item, ColumnOf(column));
}

const KeyedElement* KeyedElement::Child(const QString& childName) const
{
    for (const KeyedElement& child : children)
        if (child.name == childName)
            return &child;
    return nullptr;
}

KeyedElement* KeyedElement::Child(const QString& childName)
{
    return const_cast<KeyedElement*>(static_cast<const KeyedElement*>(this)->Child(childName));
}

void KeyedElement::RemoveChildren(const QString& childName)
{
    children.erase(std::remove_if(children.begin(), children.end(),
                                  [&](const KeyedElement& child) { return child.name == childName; }),
                   children.end());
}
