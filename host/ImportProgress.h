#pragma once

#include <cstdint>
#include <functional>

// Progress of one import as a percentage that only grows, and the user's wish to stop it. The file-reading share
// comes from the bytes read, the rest from the import's steps.
class ImportProgress
{
public:
    // Called with 0 to 100; returning false cancels the import.
    using Callback = std::function<bool(int percent)>;

    static constexpr int ReadShare = 80;
    static constexpr int ParsedPercent = 90;

    ImportProgress(Callback callback, int64_t fileSize);

    // Reports the percentage unless it is not above the last one; false once cancelled.
    bool Report(int percent);
    void AddBytesRead(int64_t bytes);
    bool IsCancelled() const { return mCancelled; }

private:
    Callback mCallback;
    int64_t mFileSize;
    int64_t mBytesRead = 0;
    int mPercent = -1;
    bool mCancelled = false;
};
