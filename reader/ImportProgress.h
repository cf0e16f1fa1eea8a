#pragma once

#include <cstdint>
#include <functional>

// Progress of one reading as a percentage that only grows: the file-reading share comes from the bytes read, the
// rest from the import's steps. Stopping is not asked here: the program that started the reader ends it.
class ImportProgress
{
public:
    using Callback = std::function<void(int percent)>;

    static constexpr int ReadShare = 80;
    static constexpr int ParsedPercent = 90;

    ImportProgress(Callback callback, int64_t fileSize);

    // Reports the percentage unless it is not above the last one.
    void Report(int percent);
    void AddBytesRead(int64_t bytes);

private:
    Callback mCallback;
    int64_t mFileSize;
    int64_t mBytesRead = 0;
    int mPercent = -1;
};
