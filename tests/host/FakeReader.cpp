// Stands in for zelkin-reader (ZELKIN_READER) and misbehaves as its input file's first word says, the ways a
// reader over a hostile file can: crash, hang, flood, babble, stop half-way, or try to take all the memory there is; or
// answer late, but answer.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

#include "ReaderWire.h"

namespace
{
void Write(const std::string& bytes)
{
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

void Start()
{
    Write(std::string(readerwire::kMagic, sizeof readerwire::kMagic));
    Write(readerwire::FrameOf(readerwire::Progress, std::string(1, char(10))));
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    std::string mode;
    std::ifstream(argv[1]) >> mode;
    if (mode == "crash")
    {
        Start();
        std::raise(SIGSEGV);
    }
    else if (mode == "hang")
    {
        Start();
        for (;;)
            std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    else if (mode == "flood")
    {
        Start();
        std::string header(1, char(readerwire::Skeleton));
        readerwire::PutUint32(header, 0xfffffff0u);
        Write(header);
        const std::string block(1 << 20, '\0');
        for (;;)
            Write(block);
    }
    else if (mode == "babble")
    {
        Write("Segmentation fault? No: just words where an answer should be.\n");
    }
    else if (mode == "half")
    {
        Start();
        std::string header(1, char(readerwire::Skeleton));
        readerwire::PutUint32(header, 1000);
        Write(header + "0123456789");
    }
    else if (mode == "memory")
    {
        Start();
        // Six gigabytes is past the reader's address-space limit; without the limit the system would promise it.
        void* taken = std::malloc(size_t(6) << 30);
        if (taken == nullptr)
            std::abort();
        Write(readerwire::FrameOf(readerwire::Failure, "nothing limited the address space"));
    }
    else if (mode == "late")
    {
        // The answer comes while the importer is busy with its first progress step, and the reader is gone by
        // the time it looks again.
        Start();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        Write(readerwire::FrameOf(readerwire::Failure, "a late reason"));
    }
    else if (mode == "reason")
    {
        Start();
        Write(readerwire::FrameOf(readerwire::Failure, "a reason\nover two lines"));
    }
    return 0;
}
