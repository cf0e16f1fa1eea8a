#include "Arguments.h"

Arguments::Arguments(const QStringList& arguments, const QStringList& flags, const QStringList& valueOptions)
{
    for (int i = 0; i < arguments.size() && mError.isEmpty(); ++i)
    {
        const QString& argument = arguments[i];
        if (flags.contains(argument))
        {
            mSeen.insert(argument);
        }
        else if (valueOptions.contains(argument))
        {
            if (i + 1 == arguments.size())
            {
                mError = QStringLiteral("%1 needs a value").arg(argument);
                break;
            }
            mSeen.insert(argument);
            mValues.insert(argument, arguments[++i]);
        }
        else if (argument.startsWith(QLatin1Char('-')) && argument.size() > 1)
        {
            mError = QStringLiteral("unknown option %1").arg(argument);
        }
        else
        {
            mPositionals.append(argument);
        }
    }
}
