#include "TemplateOpinions.h"

#include <map>

#include <zelkin/MappingTemplate.h>
#include <zelkin/NameMatcher.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

struct TemplateOpinions::Compiled
{
    explicit Compiled(const MappingTemplate& loaded)
        : mapping(loaded), matcher(loaded, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters())
    {
    }

    MappingTemplate mapping;
    NameMatcher matcher;
};

TemplateOpinions::TemplateOpinions(const TemplateLibrary& library)
{
    for (const QString& name : library.Names())
    {
        MappingTemplate loaded;
        if (library.Load(name, loaded))
            mTemplates.push_back(std::make_unique<Compiled>(loaded));
    }
}

TemplateOpinions::~TemplateOpinions() = default;

int TemplateOpinions::NodeFor(const QString& bone, int* patternLength) const
{
    static const NameMatcher::TakenNodes kNoneTaken {};
    // The longest pattern is the most specific; among templates whose patterns are as long, the most agreed node.
    std::map<int, int> votes;
    int bestLength = 0;
    for (const std::unique_ptr<Compiled>& compiled : mTemplates)
    {
        // No root name: the root entries stand for the reference node, which recognition never gives.
        const int node = compiled->matcher.MatchOne(bone, QStringView(), kNoneTaken);
        const int length = node >= 0 ? int(compiled->mapping.GetEntry(node).pattern.size()) : 0;
        if (length == 0 || length < bestLength)
            continue;
        if (length > bestLength)
            votes.clear();
        bestLength = length;
        ++votes[node];
    }
    int best = -1;
    for (const auto& [node, count] : votes)
        if (best < 0 || count > votes[best])
            best = node;
    if (patternLength != nullptr)
        *patternLength = bestLength;
    return best;
}
