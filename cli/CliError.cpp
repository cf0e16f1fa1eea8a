#include "CliError.h"

#include <cstdio>

int CliError::Report() const
{
    // Reasons from readers and importers may span lines; scripts read stderr one line per failure.
    std::fprintf(stderr, "zelkin: %s\n", qPrintable(message.simplified()));
    return status;
}

int fail(const QString& message, int status)
{
    return CliError {message, status}.Report();
}
