#include "ImportProgress.h"

#include <algorithm>
#include <utility>

ImportProgress::ImportProgress(Callback callback, int64_t fileSize)
    : mCallback(std::move(callback))
    , mFileSize(fileSize)
{
}

void ImportProgress::Report(int percent)
{
    percent = std::clamp(percent, 0, 100);
    if (percent <= mPercent)
        return;
    mPercent = percent;
    if (mCallback)
        mCallback(percent);
}

void ImportProgress::AddBytesRead(int64_t bytes)
{
    mBytesRead += bytes;
    if (mFileSize > 0)
        Report(static_cast<int>(std::min(mBytesRead, mFileSize) * ReadShare / mFileSize));
}
