#include "BinaryFbx.h"

#include <vector>

#include <QtEndian>

namespace
{
// The 21-byte signature, 0x1A, 0x00 and the version.
constexpr qsizetype HeaderBytes = 27;
constexpr quint32 FirstWideVersion = 7500;

struct Record
{
    QByteArray name;
    quint64 propertyCount = 0;
    QByteArray properties;
    std::vector<Record> children;
};

class RecordReader
{
public:
    RecordReader(const QByteArray& bytes, bool wide)
        : mBytes(bytes)
        , mWide(wide)
    {
    }

    // One record starting at `at`, which moves past it; false at the empty record closing a list, or when the
    // offsets do not hold together (then `mBroken` is set).
    bool Read(qsizetype& at, qsizetype limit, Record& record)
    {
        if (at + HeaderSize() + 1 > limit)
            return Fail();
        const quint64 end = Number(at, 0);
        if (end == 0)
        {
            at += HeaderSize() + 1;
            return false;
        }
        record.propertyCount = Number(at, 1);
        const quint64 propertyBytes = Number(at, 2);
        const qsizetype nameAt = at + HeaderSize() + 1;
        const qsizetype nameBytes = static_cast<unsigned char>(mBytes[at + HeaderSize()]);
        if (end > static_cast<quint64>(limit) || nameAt + nameBytes + static_cast<qsizetype>(propertyBytes) > limit)
            return Fail();
        record.name = mBytes.mid(nameAt, nameBytes);
        record.properties = mBytes.mid(nameAt + nameBytes, static_cast<qsizetype>(propertyBytes));
        qsizetype child = nameAt + nameBytes + static_cast<qsizetype>(propertyBytes);
        const qsizetype recordEnd = static_cast<qsizetype>(end);
        while (child < recordEnd)
        {
            Record nested;
            if (!Read(child, recordEnd, nested))
                break;
            record.children.push_back(nested);
        }
        at = recordEnd;
        return !mBroken;
    }

    bool IsBroken() const { return mBroken; }
    qsizetype HeaderSize() const { return mWide ? 24 : 12; }

private:
    bool Fail()
    {
        mBroken = true;
        return false;
    }

    quint64 Number(qsizetype at, int index) const
    {
        const char* field = mBytes.constData() + at + index * (mWide ? 8 : 4);
        return mWide ? qFromLittleEndian<quint64>(field) : qFromLittleEndian<quint32>(field);
    }

    const QByteArray& mBytes;
    const bool mWide;
    bool mBroken = false;
};

class RecordWriter
{
public:
    explicit RecordWriter(bool wide)
        : mWide(wide)
    {
    }

    void Write(const Record& record, QByteArray& out) const
    {
        const qsizetype start = out.size();
        out.append(QByteArray(HeaderSize(), '\0'));
        out.append(static_cast<char>(record.name.size()));
        out.append(record.name);
        out.append(record.properties);
        for (const Record& child : record.children)
            Write(child, out);
        if (!record.children.empty())
            Close(out);
        SetNumber(out, start, 0, static_cast<quint64>(out.size()));
        SetNumber(out, start, 1, record.propertyCount);
        SetNumber(out, start, 2, static_cast<quint64>(record.properties.size()));
    }

    void Close(QByteArray& out) const { out.append(QByteArray(HeaderSize() + 1, '\0')); }

private:
    qsizetype HeaderSize() const { return mWide ? 24 : 12; }

    void SetNumber(QByteArray& out, qsizetype start, int index, quint64 value) const
    {
        char* field = out.data() + start + index * (mWide ? 8 : 4);
        if (mWide)
            qToLittleEndian<quint64>(value, field);
        else
            qToLittleEndian<quint32>(static_cast<quint32>(value), field);
    }

    const bool mWide;
};
} // namespace

QByteArray CloseBinaryFbxRecords(const QByteArray& written)
{
    if (written.size() < HeaderBytes)
        return {};
    const bool wide = qFromLittleEndian<quint32>(written.constData() + HeaderBytes - 4) >= FirstWideVersion;
    RecordReader reader(written, wide);
    const RecordWriter writer(wide);
    QByteArray closed = written.left(HeaderBytes);
    qsizetype at = HeaderBytes;
    Record record;
    while (at < written.size() && reader.Read(at, written.size(), record))
    {
        writer.Write(record, closed);
        record = Record();
    }
    if (reader.IsBroken())
        return {};
    writer.Close(closed);
    return closed;
}
