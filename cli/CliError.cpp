#include "CliError.h"

#include <cstdio>

int CliError::Report() const
{
    std::fprintf(stderr, "zelkin: %s\n", qPrintable(message));
    return status;
}

int fail(const QString& message, int status)
{
    return CliError {message, status}.Report();
}
