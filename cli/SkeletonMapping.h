#pragma once

#include <QString>

#include <zelkin/NameMatcher.h>

#include "ValidationReport.h"

class CharacterizationModel;

// How `zelkin characterize` maps a skeleton's bones to nodes: by the template the user names (a library name or
// an ".xml" file), else by the library template that maps the most required nodes, then the most nodes.
struct SkeletonMapping
{
    QString templateArgument; // empty: choose
    NameMatcher::MatchType type = NameMatcher::Suffix;
    QString prefix; // empty: every bone of the scene

    // Assigns the matched bones through the model (whose hub is over the skeleton). False, with an error line,
    // when the named template cannot be read or no bone has the prefix.
    bool Apply(CharacterizationModel& model, ValidationReport::Mapping& mapping, QString& error) const;
};
