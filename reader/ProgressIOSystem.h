#pragma once

#include <assimp/DefaultIOSystem.h>

class ImportProgress;

// The default file system, with every read counted towards the import's progress.
class ProgressIOSystem : public Assimp::DefaultIOSystem
{
public:
    explicit ProgressIOSystem(ImportProgress& progress);

    using DefaultIOSystem::Open;
    Assimp::IOStream* Open(const char* file, const char* mode = "rb") override;
    void Close(Assimp::IOStream* stream) override;

private:
    ImportProgress& mProgress;
};
