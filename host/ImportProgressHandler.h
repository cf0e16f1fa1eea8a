#pragma once

#include <assimp/ProgressHandler.hpp>

class ImportProgress;

// Assimp's own progress steps. Assimp 5.2 mostly ignores the answer, so cancelling also relies on the reads
// failing (ProgressIOSystem) and on the importer checking afterwards.
class ImportProgressHandler : public Assimp::ProgressHandler
{
public:
    explicit ImportProgressHandler(ImportProgress& progress);

    bool Update(float fraction) override;

private:
    ImportProgress& mProgress;
};
