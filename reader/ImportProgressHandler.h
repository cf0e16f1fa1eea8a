#pragma once

#include <assimp/ProgressHandler.hpp>

class ImportProgress;

// Assimp's own progress steps.
class ImportProgressHandler : public Assimp::ProgressHandler
{
public:
    explicit ImportProgressHandler(ImportProgress& progress);

    bool Update(float fraction) override;

private:
    ImportProgress& mProgress;
};
