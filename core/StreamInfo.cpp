#include <zelkin/StreamInfo.h>

#include <cstring>

#include <QCoreApplication>

namespace
{
constexpr int64_t HeaderBytes = 8;
constexpr int64_t DefinitionBytes = 212 * 4;
constexpr int64_t RecordBytes = 120;
constexpr int64_t LimbFlagBytes = 16;

uint32_t wordAt(const unsigned char* bytes, int64_t offset, bool bigEndian)
{
    const unsigned char* p = bytes + offset;
    if (bigEndian)
        return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | uint32_t(p[3]);
    return uint32_t(p[3]) << 24 | uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | uint32_t(p[0]);
}
} // namespace

StreamInfo StreamInfo::Read(const void* data, int64_t length)
{
    StreamInfo info;
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (!bytes || length <= 0)
        return info;
    if (length < 4)
    {
        // A few bytes that begin like a stream are a cut-off stream; anything else is another kind of file.
        unsigned char little[4], big[4];
        for (int i = 0; i < 4; ++i)
        {
            little[i] = static_cast<unsigned char>(Magic >> (8 * i));
            big[i] = little[3 - i];
        }
        if (std::memcmp(bytes, little, length) == 0 || std::memcmp(bytes, big, length) == 0)
            info.mProblem = Truncated;
        return info;
    }
    if (wordAt(bytes, 0, false) == Magic)
        info.mBigEndian = false;
    else if (wordAt(bytes, 0, true) == Magic)
        info.mBigEndian = true;
    else
        return info;

    info.mProblem = Truncated;
    if (length < HeaderBytes)
        return info;
    info.mVersion = static_cast<int32_t>(wordAt(bytes, 4, info.mBigEndian));
    if (info.mVersion > CurrentVersion)
    {
        info.mProblem = NewerVersion;
        return info;
    }
    if (length - HeaderBytes < DefinitionBytes)
        return info;
    for (int node = 0; node < 212; ++node)
        info.mUsedNodes += wordAt(bytes, HeaderBytes + node * 4, info.mBigEndian) & 1u;
    info.mStreamLength = HeaderBytes + DefinitionBytes + RecordBytes * info.mUsedNodes + LimbFlagBytes;
    if (length >= info.mStreamLength)
        info.mProblem = NoProblem;
    return info;
}

QString StreamInfo::Describe(Problem problem)
{
    switch (problem)
    {
    case NotCharacterization:
        return QCoreApplication::translate("StreamInfo", "not a characterization file");
    case Truncated:
        return QCoreApplication::translate("StreamInfo", "truncated");
    case NewerVersion:
        return QCoreApplication::translate("StreamInfo", "made by a newer version");
    case NoProblem:
        break;
    }
    return QString();
}
