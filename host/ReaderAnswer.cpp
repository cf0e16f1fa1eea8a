#include "ReaderAnswer.h"

#include <cmath>
#include <cstring>

#include <QMatrix4x4>
#include <QQuaternion>
#include <QVector3D>

#include "ReaderWire.h"
#include "Scene.h"

namespace
{
constexpr int kFrameHeader = 5;
constexpr quint32 kLongestReason = 64 * 1024;
constexpr int kRotationOrders = ZELSphericXYZ + 1;

// Reads little-endian values from a payload, refusing to go past its end.
class Cursor
{
public:
    explicit Cursor(const QByteArray& bytes) : mBytes(bytes) {}

    bool Ok() const { return mOk; }
    qsizetype Left() const { return mBytes.size() - mAt; }

    quint32 Uint32()
    {
        if (!Need(4))
            return 0;
        quint32 value = 0;
        for (int i = 0; i < 4; ++i)
            value |= quint32(quint8(mBytes[mAt + i])) << (8 * i);
        mAt += 4;
        return value;
    }

    float Float()
    {
        const quint32 bits = Uint32();
        float value = 0.0f;
        std::memcpy(&value, &bits, sizeof value);
        // A transform that is not a number is no skeleton anyone can use.
        mOk = mOk && std::isfinite(value);
        return value;
    }

    quint8 Byte()
    {
        if (!Need(1))
            return 0;
        return quint8(mBytes[mAt++]);
    }

    QByteArray Bytes(quint32 count)
    {
        if (!Need(count))
            return QByteArray();
        const QByteArray taken = mBytes.mid(mAt, count);
        mAt += count;
        return taken;
    }

private:
    bool Need(qint64 count)
    {
        mOk = mOk && count <= Left();
        return mOk;
    }

    const QByteArray& mBytes;
    qsizetype mAt = 0;
    bool mOk = true;
};

// The smallest a bone takes on the wire: an empty name's length, parent, 16 + 4 floats, order, flags, 3 floats.
constexpr qsizetype kSmallestBone = 4 + 4 + 4 * 20 + 4 + 1 + 4 * 3;
} // namespace

void ReaderAnswer::Feed(const QByteArray& bytes)
{
    mSize += bytes.size();
    mPending += bytes;
    if (!mMagicSeen)
    {
        if (mPending.size() < qsizetype(sizeof readerwire::kMagic))
            return;
        mGarbage = std::memcmp(mPending.constData(), readerwire::kMagic, sizeof readerwire::kMagic) != 0;
        mMagicSeen = true;
        mPending.remove(0, sizeof readerwire::kMagic);
    }
    ParseFrames();
}

void ReaderAnswer::ParseFrames()
{
    while (!mGarbage && mPending.size() >= kFrameHeader)
    {
        Cursor header(mPending);
        const char type = char(header.Byte());
        const quint32 length = header.Uint32();
        if (mPending.size() - kFrameHeader < qsizetype(length))
            return; // the rest is on its way
        Take(type, mPending.mid(kFrameHeader, length));
        mPending.remove(0, kFrameHeader + qsizetype(length));
    }
}

void ReaderAnswer::Take(char type, const QByteArray& payload)
{
    // Nothing may follow the answer.
    if (HasFailure() || HasSkeleton())
    {
        mGarbage = true;
        return;
    }
    switch (type)
    {
    case readerwire::Progress:
        mGarbage = payload.size() != 1 || quint8(payload[0]) > 100;
        if (!mGarbage)
            mProgress.append(quint8(payload[0]));
        break;
    case readerwire::Failure:
        mGarbage = payload.size() > qsizetype(kLongestReason);
        if (!mGarbage)
            mFailure = QString::fromUtf8(payload).simplified();
        break;
    case readerwire::Skeleton:
        mSkeleton = payload;
        break;
    default:
        mGarbage = true;
    }
}

QList<int> ReaderAnswer::TakeProgress()
{
    QList<int> taken;
    taken.swap(mProgress);
    return taken;
}

bool ReaderAnswer::BuildScene(Scene& scene) const
{
    Cursor in(mSkeleton);
    const quint32 count = in.Uint32();
    // Counts come from the other side: none may claim more bones than the bytes could hold.
    if (!in.Ok() || count == 0 || qsizetype(count) > in.Left() / kSmallestBone)
        return false;
    Scene built;
    for (quint32 index = 0; index < count && in.Ok(); ++index)
    {
        SceneBone bone;
        bone.name = QString::fromUtf8(in.Bytes(in.Uint32()));
        bone.parent = int(qint32(in.Uint32()));
        float matrix[16];
        for (float& value : matrix)
            value = in.Float();
        // Qt's constructor from the sixteen values, not from an array: that one lives in Qt's GUI library.
        bone.local = QMatrix4x4(matrix[0], matrix[1], matrix[2], matrix[3], matrix[4], matrix[5], matrix[6], matrix[7],
                                matrix[8], matrix[9], matrix[10], matrix[11], matrix[12], matrix[13], matrix[14],
                                matrix[15]);
        float w = in.Float();
        float x = in.Float();
        float y = in.Float();
        float z = in.Float();
        bone.preRotation = QQuaternion(w, x, y, z);
        const quint32 order = in.Uint32();
        const quint8 flags = in.Byte();
        x = in.Float();
        y = in.Float();
        z = in.Float();
        if (!in.Ok() || order >= quint32(kRotationOrders) || flags > (readerwire::SkinsMesh | readerwire::HasTip))
            return false;
        bone.rotationOrder = ZELRotationOrder(order);
        bone.skinsMesh = (flags & readerwire::SkinsMesh) != 0;
        bone.hasTip = (flags & readerwire::HasTip) != 0;
        bone.tip = QVector3D(x, y, z);
        // The scene refuses an empty or repeated name and a parent that does not come first.
        if (built.AddBone(bone) != int(index))
            return false;
    }
    if (!in.Ok() || in.Left() != 0)
        return false;
    scene = std::move(built);
    return true;
}
