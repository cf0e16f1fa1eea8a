#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

// One command's arguments: flags ("--json"), options with a value ("-o OUT"), and the positional arguments in
// order. Anything else that starts with '-' is refused, so a mistyped option never reads as a file name.
class Arguments
{
public:
    Arguments(const QStringList& arguments, const QStringList& flags, const QStringList& valueOptions);

    // Empty when the arguments parsed; otherwise one phrase ("unknown option --x").
    const QString& Error() const { return mError; }
    bool Has(const QString& flag) const { return mSeen.contains(flag); }
    // The last value given, null when the option is absent.
    QString Value(const QString& option) const { return mValues.value(option); }
    const QStringList& Positionals() const { return mPositionals; }

private:
    QSet<QString> mSeen;
    QHash<QString, QString> mValues;
    QStringList mPositionals;
    QString mError;
};
