#pragma once

#include <QString>

// A command's failure: the one line printed on stderr and the exit status.
struct CliError
{
    enum Status
    {
        BadInput = 1,
        ValidationFailed = 2
    };

    QString message;
    int status = BadInput;

    // Prints "zelkin: <message>" and returns the status, so commands can `return fail(...)`.
    int Report() const;
};

int fail(const QString& message, int status = CliError::BadInput);
