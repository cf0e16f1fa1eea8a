#include "CommandLine.h"

#include <cstdio>

#include <QRegularExpression>

#include "CliError.h"

namespace
{
constexpr int kDescriptionColumn = 30;
constexpr int kWidth = 100;

// Words wrapped to the help's width, every line after the first indented to `indent`.
QString Wrapped(const QString& text, int first, int indent)
{
    QString wrapped;
    int column = first;
    for (const QString& word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts))
    {
        if (column > indent && column + 1 + word.size() > kWidth)
        {
            wrapped += QLatin1Char('\n') + QString(indent, QLatin1Char(' '));
            column = indent;
        }
        else if (column > first)
        {
            wrapped += QLatin1Char(' ');
            ++column;
        }
        wrapped += word;
        column += int(word.size());
    }
    return wrapped;
}
} // namespace

CommandLine::CommandLine(const QString& synopsis, const QString& summary, const std::vector<Option>& options)
    : mSynopsis(synopsis), mSummary(summary), mOptions(options)
{
    mParser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    mParser.addOption(QCommandLineOption(QStringList {QStringLiteral("h"), QStringLiteral("help")}));
    for (const Option& option : options)
        mParser.addOption(QCommandLineOption(option.names, option.description, option.valueName));
}

bool CommandLine::Parse(const QStringList& arguments)
{
    // The parser takes the program's name first.
    if (!mParser.parse(QStringList {QStringLiteral("zelkin")} + arguments))
    {
        // Qt's "Unknown option 'x'." names the option without its dashes; the user typed them.
        QString reason = mParser.errorText();
        reason.replace(QRegularExpression(QStringLiteral("^Unknown options? '([^']+)'\\.?$")), QStringLiteral("unknown option \\1"));
        const QRegularExpressionMatch unknown = QRegularExpression(QStringLiteral("^unknown option (.+)$")).match(reason);
        if (unknown.hasMatch())
            reason = QStringLiteral("unknown option %1%2").arg(unknown.captured(1).size() == 1 ? "-" : "--", unknown.captured(1));
        if (!reason.isEmpty())
            reason[0] = reason[0].toLower();
        if (reason.endsWith(QLatin1Char('.')))
            reason.chop(1);
        mError = QStringLiteral("%1 (see %2 --help)").arg(reason, mSynopsis.section(QLatin1Char(' '), 0, 1));
        return false;
    }
    mHelp = mParser.isSet(QStringLiteral("help"));
    return !mHelp;
}

QString CommandLine::Value(const QString& name) const
{
    const QStringList values = mParser.values(name);
    return values.isEmpty() ? QString() : values.last();
}

QString CommandLine::Help() const
{
    QString help = QStringLiteral("usage: %1\n\n%2\n\noptions:\n").arg(mSynopsis, Wrapped(mSummary, 0, 0));
    std::vector<Option> all = mOptions;
    all.push_back({{"h", "help"}, QString(), QStringLiteral("this help")});
    for (const Option& option : all)
    {
        if (option.hidden)
            continue;
        QStringList spelled;
        for (const QString& name : option.names)
            spelled.append((name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name);
        QString head = QStringLiteral("  ") + spelled.join(QStringLiteral(", "));
        if (!option.valueName.isEmpty())
            head += QLatin1Char(' ') + option.valueName;
        head = head.size() + 1 < kDescriptionColumn ? head.leftJustified(kDescriptionColumn)
                                                   : head + QLatin1Char('\n') + QString(kDescriptionColumn, ' ');
        help += head + Wrapped(option.description, kDescriptionColumn, kDescriptionColumn) + QLatin1Char('\n');
    }
    help += QStringLiteral("\nexit status: 0 valid or warnings only, 2 validation error, 1 bad input or I/O failure\n");
    return help;
}

int CommandLine::Refuse() const
{
    if (mHelp)
    {
        std::fputs(qPrintable(Help()), stdout);
        return 0;
    }
    return fail(mError);
}
