#include "ImportProgressHandler.h"

#include "ImportProgress.h"

ImportProgressHandler::ImportProgressHandler(ImportProgress& progress)
    : mProgress(progress)
{
}

bool ImportProgressHandler::Update(float fraction)
{
    // Assimp reports half-way once the file is parsed and the rest for post-processing, which we do not ask for.
    if (fraction >= 0.5f)
        mProgress.Report(ImportProgress::ParsedPercent);
    return true;
}
