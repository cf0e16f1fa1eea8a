#pragma once

#include <functional>
#include <string>

#include <assimp/Importer.hpp>

#include "ReaderWire.h"

// Reads one skeleton file with Assimp and answers in the reader's format (ReaderWire.h): progress as it goes, then
// the skeleton or the reason there is none. Runs in zelkin-reader; a program that accepts the risk of Assimp
// crashing it can run it in its own process.
class SkeletonReading
{
public:
    // Takes each frame as it is ready.
    using Sink = std::function<void(readerwire::Frame type, const std::string& payload)>;

    explicit SkeletonReading(Sink sink);

    // Sends progress and then exactly one skeleton or failure frame; never throws. Assimp's scene stays with this
    // object, whose owner may leave it to the process's end to take back.
    void Read(const std::string& path);

    // Assimp's extensions, lower case, one per line ("bvh", "fbx", ...).
    static std::string Extensions();
    // "Assimp 5.2.5".
    static std::string Version();

private:
    void ReadOrThrow(const std::string& path);
    void Fail(const std::string& reason);

    Sink mSink;
    Assimp::Importer mImporter;
};
