#pragma once

#include <vector>

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

// One command's arguments, parsed by Qt's parser, and the help that describes them. Option names are given
// without their dashes ("json", "o").
class CommandLine
{
public:
    struct Option
    {
        QStringList names;
        QString valueName; // empty for a flag
        QString description;
        bool hidden = false; // for the program's own use: parsed, not shown
    };

    CommandLine(const QString& synopsis, const QString& summary, const std::vector<Option>& options);

    // False when the command should not run: the help was asked for, or Error() says what is wrong.
    bool Parse(const QStringList& arguments);
    bool HelpRequested() const { return mHelp; }
    // One phrase, with a pointer to the help ("unknown option --x (see zelkin characterize --help)").
    const QString& Error() const { return mError; }

    bool Has(const QString& name) const { return mParser.isSet(name); }
    // The last value given, null when the option is absent.
    QString Value(const QString& name) const;
    QStringList Positionals() const { return mParser.positionalArguments(); }

    // Usage, summary and options, for `--help`.
    QString Help() const;
    // Prints the help on stdout and returns 0, or the error on stderr and returns 1.
    int Refuse() const;

private:
    QCommandLineParser mParser;
    QString mSynopsis;
    QString mSummary;
    std::vector<Option> mOptions;
    bool mHelp = false;
    QString mError;
};
