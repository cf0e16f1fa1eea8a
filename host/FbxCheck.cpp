#include "FbxCheck.h"

#include <vector>

#include <QtEndian>

#include "FbxHierarchy.h"

namespace
{
// The signature (ending "FBX Binary  ", 0x00, 0x1A, 0x00) and the version.
constexpr qsizetype HeaderBytes = 27;
constexpr quint32 FirstWideVersion = 7500;
// Far deeper than any file an exporter writes, and shallow enough for Assimp's recursion.
constexpr int MaxDepth = 64;
// zlib never inflates by more than about 1032 to 1.
constexpr quint64 MaxInflation = 1100;

// A property as far as the hierarchy needs it: its type, and its value when a string or a whole number.
struct Value
{
    char type = 0;
    qint64 number = 0;
    QByteArray text;
};

class RecordWalk
{
public:
    RecordWalk(const QByteArray& bytes, FbxHierarchy& hierarchy)
        : mHierarchy(hierarchy)
        , mData(reinterpret_cast<const uchar*>(bytes.constData()))
        , mSize(static_cast<quint64>(bytes.size()))
        , mWide(qFromLittleEndian<quint32>(mData + HeaderBytes - 4) >= FirstWideVersion)
    {
    }

    // The records at the top level, up to the empty one that ends them.
    QString Problem()
    {
        quint64 at = HeaderBytes;
        bool ended = false;
        while (!ended && at < mSize)
        {
            if (!Record(at, mSize, 0, ended))
                return mProblem;
        }
        return QString();
    }

private:
    quint64 HeaderSize() const { return mWide ? 25 : 13; }

    bool Fail(const char* what)
    {
        mProblem = QStringLiteral("its binary FBX records are damaged (%1)").arg(QLatin1String(what));
        return false;
    }

    bool Number(quint64& at, quint64 limit, quint64& value, bool wide)
    {
        const quint64 bytes = wide ? 8 : 4;
        if (limit - at < bytes)
            return Fail("a number runs past its block");
        value = wide ? qFromLittleEndian<quint64>(mData + at) : qFromLittleEndian<quint32>(mData + at);
        at += bytes;
        return true;
    }

    // One record starting at `at`; `ended` when it is the empty record closing a list.
    bool Record(quint64& at, quint64 limit, int depth, bool& ended)
    {
        quint64 end = 0;
        quint64 propertyCount = 0;
        quint64 propertyBytes = 0;
        if (limit - at < HeaderSize() || !Number(at, limit, end, mWide) || !Number(at, limit, propertyCount, mWide) ||
            !Number(at, limit, propertyBytes, mWide))
            return Fail("a record header runs past its block");
        const quint64 nameBytes = mData[at++];
        if (end == 0)
        {
            ended = true;
            return true;
        }
        if (end > limit || end < at || end - at < nameBytes || end - at - nameBytes < propertyBytes)
            return Fail("a record's end lies outside its block");
        const QByteArray name(reinterpret_cast<const char*>(mData + at), static_cast<qsizetype>(nameBytes));
        at += nameBytes;
        const quint64 propertiesEnd = at + propertyBytes;
        std::vector<Value> values;
        for (quint64 index = 0; index < propertyCount; ++index)
        {
            Value value;
            if (!Property(at, propertiesEnd, value))
                return false;
            if (values.size() < 3)
                values.push_back(value);
        }
        if (at != propertiesEnd)
            return Fail("a property list has the wrong length");
        if (depth == 1)
            Collect(name, values);
        return at == end || Nested(at, end, depth);
    }

    // The models (in "Objects") and their connections (in "Connections"), each one level down.
    void Collect(const QByteArray& name, const std::vector<Value>& values)
    {
        if (name == "Model" && !values.empty() && values[0].type == 'L')
            mHierarchy.AddModel(values[0].number);
        const bool linked = values.size() == 3 && (values[0].text == "OO" || values[0].text == "OP") &&
                            values[1].type == 'L' && values[2].type == 'L';
        if (name == "C" && linked)
            mHierarchy.AddConnection(values[1].number, values[2].number);
    }

    // The records inside another, closed by an empty record of header size.
    bool Nested(quint64& at, quint64 end, int depth)
    {
        if (depth >= MaxDepth)
            return Fail("records nested too deeply");
        if (end - at < HeaderSize())
            return Fail("a list of records is not closed");
        const quint64 listEnd = end - HeaderSize();
        // Assimp reads on past an empty record inside a list, up to the closing one.
        bool ended = false;
        while (at < listEnd)
        {
            if (!Record(at, listEnd, depth + 1, ended))
                return false;
        }
        for (quint64 i = listEnd; i < end; ++i)
        {
            if (mData[i] != 0)
                return Fail("a list of records is not closed");
        }
        at = end;
        return true;
    }

    bool Property(quint64& at, quint64 limit, Value& value)
    {
        if (at >= limit)
            return Fail("a property runs past its record");
        const char type = static_cast<char>(mData[at++]);
        value.type = type;
        quint64 bytes = 0;
        switch (type)
        {
        case 'C':
            bytes = 1;
            break;
        case 'Y':
            bytes = 2;
            break;
        case 'I':
        case 'F':
            bytes = 4;
            break;
        case 'D':
        case 'L':
            bytes = 8;
            break;
        case 'S':
        case 'R':
            if (!Number(at, limit, bytes, false))
                return false;
            break;
        case 'b':
        case 'c':
            return Array(at, limit, 1);
        case 'i':
        case 'f':
            return Array(at, limit, 4);
        case 'd':
        case 'l':
            return Array(at, limit, 8);
        default:
            return Fail("a property of unknown type");
        }
        if (limit - at < bytes)
            return Fail("a property runs past its record");
        if (type == 'L')
            value.number = qFromLittleEndian<qint64>(mData + at);
        else if (type == 'S')
            value.text = QByteArray(reinterpret_cast<const char*>(mData + at), static_cast<qsizetype>(bytes));
        at += bytes;
        return true;
    }

    bool Array(quint64& at, quint64 limit, quint64 elementBytes)
    {
        quint64 count = 0;
        quint64 encoding = 0;
        quint64 stored = 0;
        if (!Number(at, limit, count, false) || !Number(at, limit, encoding, false) ||
            !Number(at, limit, stored, false))
            return false;
        if (limit - at < stored)
            return Fail("an array runs past its record");
        const quint64 unpacked = count * elementBytes;
        if (encoding > 1 || (encoding == 0 ? unpacked != stored : unpacked > stored * MaxInflation + 64))
            return Fail("an array claims more values than it holds");
        at += stored;
        return true;
    }

    FbxHierarchy& mHierarchy;
    const uchar* mData;
    const quint64 mSize;
    const bool mWide;
    QString mProblem;
};
} // namespace

bool FbxCheck::IsBinary(const QByteArray& head)
{
    return head.size() >= HeaderBytes && head.mid(8, 10) == "FBX Binary";
}

QString FbxCheck::Problem(const QByteArray& bytes)
{
    if (!IsBinary(bytes))
        return FbxHierarchy::FromText(bytes).Problem();
    FbxHierarchy hierarchy;
    const QString problem = RecordWalk(bytes, hierarchy).Problem();
    return problem.isEmpty() ? hierarchy.Problem() : problem;
}
