#include "InputFiles.h"

#include <QDirIterator>
#include <QFileInfo>

InputFiles InputFiles::Expand(const QStringList& arguments, bool recursive,
                              const std::function<bool(const QString&)>& wanted)
{
    InputFiles inputs;
    for (const QString& argument : arguments)
    {
        if (!QFileInfo(argument).isDir())
        {
            inputs.files.append(argument);
            continue;
        }
        inputs.folderGiven = true;
        QStringList found;
        QDirIterator it(argument, QDir::Files, recursive ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
        while (it.hasNext())
            found.append(it.next());
        // The file system's order is nobody's; reports come in name order.
        found.sort();
        for (const QString& file : found)
        {
            if (wanted(file))
                inputs.files.append(file);
            else
                ++inputs.skipped;
        }
    }
    return inputs;
}
