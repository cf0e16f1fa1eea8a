#include "ProgressIOSystem.h"

#include <algorithm>
#include <memory>

#include <assimp/IOStream.hpp>

#include "ImportProgress.h"

namespace {

// Large reads are split so that progress moves while a big file comes in.
constexpr size_t kChunkBytes = 256 * 1024;

class ProgressStream : public Assimp::IOStream
{
public:
    ProgressStream(Assimp::IOStream* inner, ImportProgress& progress)
        : mInner(inner)
        , mProgress(progress)
    {
    }

    size_t Read(void* buffer, size_t size, size_t count) override
    {
        if (size == 0)
            return 0;
        const size_t perChunk = std::max<size_t>(1, kChunkBytes / size);
        char* out = static_cast<char*>(buffer);
        size_t done = 0;
        while (done < count)
        {
            const size_t wanted = std::min(perChunk, count - done);
            const size_t got = mInner->Read(out + done * size, size, wanted);
            done += got;
            mProgress.AddBytesRead(static_cast<int64_t>(got * size));
            if (got < wanted)
                break;
        }
        return done;
    }

    size_t Write(const void* buffer, size_t size, size_t count) override
    {
        return mInner->Write(buffer, size, count);
    }
    aiReturn Seek(size_t offset, aiOrigin origin) override { return mInner->Seek(offset, origin); }
    size_t Tell() const override { return mInner->Tell(); }
    size_t FileSize() const override { return mInner->FileSize(); }
    void Flush() override { mInner->Flush(); }

private:
    std::unique_ptr<Assimp::IOStream> mInner;
    ImportProgress& mProgress;
};

} // namespace

ProgressIOSystem::ProgressIOSystem(ImportProgress& progress)
    : mProgress(progress)
{
}

Assimp::IOStream* ProgressIOSystem::Open(const char* file, const char* mode)
{
    Assimp::IOStream* inner = DefaultIOSystem::Open(file, mode);
    return inner == nullptr ? nullptr : new ProgressStream(inner, mProgress);
}

void ProgressIOSystem::Close(Assimp::IOStream* stream)
{
    // Importers also delete streams directly; the wrapper owns the inner stream either way.
    delete stream;
}
