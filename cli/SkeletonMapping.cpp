#include "SkeletonMapping.h"

#include <QFileInfo>

#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/TemplateChooser.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

namespace
{
// A path, not a library name, when it looks like one: library names never hold '/' or end in ".xml".
bool NamesFile(const QString& argument)
{
    return argument.contains(QLatin1Char('/')) || argument.endsWith(QLatin1String(".xml"), Qt::CaseInsensitive);
}

// The command line's model has no resource bridge: it reads the user's template folder and matches with the
// built-in delimiters, as the model does then.
TemplateLibrary Library()
{
    return TemplateLibrary(UserConfiguration::TemplateDirectory());
}

bool LoadTemplate(const QString& argument, MappingTemplate& loaded,
                  QString& error)
{
    QString problem;
    if (NamesFile(argument))
    {
        if (!QFileInfo(argument).isFile())
            error = QStringLiteral("%1: no such template file").arg(argument);
        else if (!loaded.Load(argument, &problem))
            error = QStringLiteral("%1: not a mapping template (%2)").arg(argument, problem);
        return error.isEmpty();
    }
    const TemplateLibrary library = Library();
    if (!library.Contains(argument))
        error = QStringLiteral("no template named \"%1\" (zelkin templates lists them)").arg(argument);
    else if (!library.Load(argument, loaded, &problem))
        error = QStringLiteral("template \"%1\" cannot be read (%2)").arg(argument, problem);
    return error.isEmpty();
}
} // namespace

bool SkeletonMapping::Apply(CharacterizationModel& model, ValidationReport::Mapping& mapping, QString& error) const
{
    QStringList sceneBones;
    model.GetHub()->GetSceneBones(sceneBones);
    const QStringList offered = prefix.isEmpty() ? sceneBones : NameMatcher::BonesWithPrefix(sceneBones, prefix);
    if (offered.isEmpty())
    {
        error = QStringLiteral("no bone of the skeleton starts with \"%1\"").arg(prefix);
        return false;
    }
    const QSet<QString> leaves = model.GetLeafBones(sceneBones);

    std::vector<NameMatcher::Assignment> matches;
    if (templateArgument.isEmpty())
    {
        const TemplateChooser chooser(Library(), type, UserConfiguration::BuiltInDelimiters());
        TemplateChooser::Result best = chooser.Choose(offered, leaves, prefix);
        mapping.templateName = best.templateName;
        matches = std::move(best.assignments);
    }
    else
    {
        MappingTemplate chosen;
        if (!LoadTemplate(templateArgument, chosen, error))
            return false;
        mapping.templateName = templateArgument;
        matches = NameMatcher(chosen, type, UserConfiguration::BuiltInDelimiters()).Match(offered, prefix, {});
    }

    std::vector<CharacterizationModel::Assignment> batch;
    for (const NameMatcher::Assignment& match : matches)
        batch.emplace_back(match.nodeId, match.bone);
    model.AssignBones(batch);
    mapping.mappedNodes = model.GetCurrentCharacterization()->AssignedCount();
    mapping.candidateBones = TemplateChooser::CandidateCount(offered, leaves);
    return true;
}

bool SkeletonMapping::ChooseCharacters(const SkeletonRecognizer::Result& result,
                                       const std::vector<SkeletonRecognizer::Bone>& bones, std::vector<int>& chosen,
                                       QString& error) const
{
    chosen.clear();
    const int count = int(result.characters.size());
    if (character.isEmpty())
    {
        for (int index = 0; index < count; ++index)
            chosen.push_back(index);
        return true;
    }
    bool isNumber = false;
    const int number = character.toInt(&isNumber);
    QStringList names;
    for (int index = 0; index < count; ++index)
    {
        const SkeletonRecognizer::Character& found = result.characters[size_t(index)];
        const QString root = bones[size_t(found.root)].name;
        names << QStringLiteral("\"%1\"").arg(root);
        if ((isNumber && number == index + 1) || character == root || character == bones[size_t(found.hips)].name)
        {
            chosen.push_back(index);
            return true;
        }
    }
    error = QStringLiteral("no character \"%1\" in the skeleton (it has %2: %3)")
                .arg(character)
                .arg(count)
                .arg(names.join(QLatin1String(", ")));
    return false;
}
