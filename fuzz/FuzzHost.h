#pragma once

#include <cstddef>
#include <cstdint>

#include <QString>

// What a fuzz target that reads files needs from Qt: an application object, silence (the library's diagnostics on
// hostile input are expected and slow the run), a per-user folder of its own so the user's configuration and
// templates stay out of it, and a scratch folder the input is written to. Start it once, from
// LLVMFuzzerInitialize.
class FuzzHost
{
public:
    static void Start(int* argc, char*** argv);
    // Where a file of that name goes in the scratch folder.
    static QString Path(const QString& name);
    // Writes the input to the scratch folder under `name`, replacing the previous one, and returns its path.
    static QString Write(const QString& name, const uint8_t* data, size_t size);
};
