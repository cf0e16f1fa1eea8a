#include <zelkin/TemplateChooser.h>

#include <cmath>

#include <QCoreApplication>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/TemplateLibrary.h>

struct TemplateChooser::Compiled
{
    Compiled(const QString& templateName, const MappingTemplate& mappingTemplate, NameMatcher::MatchType type,
             const QStringList& delimiters)
        : name(templateName), matcher(mappingTemplate, type, delimiters)
    {
    }

    QString name;
    NameMatcher matcher;
};

namespace
{
const QLatin1String EndSuffixes[] = {QLatin1String("end"), QLatin1String("nub"), QLatin1String("site"),
                                     QLatin1String("tip")};

// Fills the counts of a result from its assignments; a node is counted once even if two bones reached it.
void CountNodes(TemplateChooser::Result& result)
{
    NameMatcher::TakenNodes taken {};
    for (const NameMatcher::Assignment& assignment : result.assignments)
    {
        if (taken[assignment.nodeId])
            continue;
        taken[assignment.nodeId] = true;
        ++result.mappedNodes;
        if (BoneCatalogue::IsRequired(assignment.nodeId))
            ++result.requiredMapped;
    }
}

bool Beats(const TemplateChooser::Result& candidate, const TemplateChooser::Result& best)
{
    if (candidate.requiredMapped != best.requiredMapped)
        return candidate.requiredMapped > best.requiredMapped;
    return candidate.mappedNodes > best.mappedNodes;
}
} // namespace

double TemplateChooser::Result::Score() const
{
    return candidateBones > 0 ? double(mappedNodes) / candidateBones : 0.0;
}

QString TemplateChooser::Result::Summary() const
{
    if (!IsValid())
        return QCoreApplication::translate("TemplateChooser", "No mapping template fits any of the %n bone(s).",
                                           nullptr, candidateBones);
    return QCoreApplication::translate("TemplateChooser", "Template \"%1\": %2 of %3 bones mapped (%4%).")
        .arg(templateName)
        .arg(mappedNodes)
        .arg(candidateBones)
        .arg(std::lround(Score() * 100.0));
}

TemplateChooser::TemplateChooser(const TemplateLibrary& library, NameMatcher::MatchType type,
                                 const QStringList& delimiters)
{
    for (const QString& name : library.Names())
    {
        MappingTemplate mappingTemplate;
        QString error;
        if (library.Load(name, mappingTemplate, &error))
            mTemplates.push_back(std::make_unique<Compiled>(name, mappingTemplate, type, delimiters));
        else
            mProblems.append(error);
    }
}

TemplateChooser::~TemplateChooser() = default;

QStringList TemplateChooser::TemplateNames() const
{
    QStringList names;
    for (const std::unique_ptr<Compiled>& compiled : mTemplates)
        names.append(compiled->name);
    return names;
}

TemplateChooser::Result TemplateChooser::Choose(const QStringList& offeredBones, const QSet<QString>& leafBones,
                                                const QString& prefix) const
{
    Result best;
    for (const std::unique_ptr<Compiled>& compiled : mTemplates)
    {
        Result candidate;
        candidate.assignments = compiled->matcher.Match(offeredBones, prefix, {});
        CountNodes(candidate);
        if (candidate.mappedNodes > 0 && Beats(candidate, best))
        {
            candidate.templateName = compiled->name;
            best = std::move(candidate);
        }
    }
    best.candidateBones = CandidateCount(offeredBones, leafBones);
    return best;
}

bool TemplateChooser::MarksEnd(QStringView name)
{
    if (name.contains(QLatin1String("EndSite_"), Qt::CaseInsensitive))
        return true;
    for (QLatin1String suffix : EndSuffixes)
        if (name.endsWith(suffix, Qt::CaseInsensitive))
            return true;
    return false;
}

int TemplateChooser::CandidateCount(const QStringList& offeredBones, const QSet<QString>& leafBones)
{
    int count = 0;
    for (const QString& bone : offeredBones)
        if (!leafBones.contains(bone) || !MarksEnd(bone))
            ++count;
    return count;
}
