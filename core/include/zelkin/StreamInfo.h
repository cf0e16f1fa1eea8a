#pragma once

#include <cstdint>

#include <QString>

#include <zelkin/CharacterizationExport.h>

// What a characterization stream's header says about it, and, for a stream the solver refuses, the reason to give
// the user. It accepts exactly the streams the solver's reader accepts.
class ZELKIN_CHARACTERIZATION_EXPORT StreamInfo
{
public:
    enum Problem
    {
        NoProblem,
        NotCharacterization,
        Truncated,
        NewerVersion
    };

    static constexpr uint32_t Magic = 0x24022789u;
    static constexpr int32_t CurrentVersion = 2;

    static StreamInfo Read(const void* bytes, int64_t length);
    // "not a characterization file", "truncated", "made by a newer version"; empty for NoProblem.
    static QString Describe(Problem problem);

    Problem GetProblem() const { return mProblem; }
    bool IsValid() const { return mProblem == NoProblem; }
    bool IsBigEndian() const { return mBigEndian; }
    int32_t GetVersion() const { return mVersion; }
    int GetUsedNodeCount() const { return mUsedNodes; }
    // Header, definition, one record per used node and the limb flags; later bytes are ignored by readers.
    int64_t GetStreamLength() const { return mStreamLength; }

private:
    Problem mProblem = NotCharacterization;
    bool mBigEndian = false;
    int32_t mVersion = 0;
    int mUsedNodes = 0;
    int64_t mStreamLength = 0;
};
